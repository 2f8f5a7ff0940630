#pragma once

#include "reports/document/document.h"

namespace thalvorn {

/// A landscape register of bunkerings with `rows` entries, as the ship's office prints it.
Document sampleRegister(int rows);

/// One of every block, in several scripts, with a remark longer than a page.
Document sampleOfEverything();

}  // namespace thalvorn
