#pragma once

#include "reports/page.h"
#include "reports/typesetter.h"

class QPainter;

namespace thalvorn {

/// Paints a laid-out page with its top left corner at the painter's origin, `scale` device units to the point. The
/// device's resolution must agree: 72 × `scale` dots per inch.
void paintPage(QPainter& painter, const Page& page, Typesetter& typesetter, double scale);

}  // namespace thalvorn
