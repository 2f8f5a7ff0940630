#pragma once

#include <optional>

#include "reports/page.h"
#include "reports/page_flow.h"

namespace thalvorn {

/// Lays the document out on pages. Nothing is returned when `progress` stopped it. The document must outlive the pages.
std::optional<PagedLayout> layOut(const Document& document, const Typesetter& typesetter,
                                  const ReportProgress& progress = {});

/// Sets a table: its columns as wide as their texts ask, its head on every page, its rows unbroken as long as a page
/// has room for them; a taller one goes on below the repeated head. The last row keeps `tail` points below it free for
/// the sums and signatures, which never stand alone on a page. False when `progress` stopped it.
bool putTable(PageFlow& flow, const Table& table, double tail, const ReportProgress& progress);

}  // namespace thalvorn
