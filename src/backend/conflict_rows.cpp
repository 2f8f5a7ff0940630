#include "backend/conflict_rows.h"

#include "backend/row_conversion.h"

namespace thalvorn {

THALVORN_ROW_INSTANTIATE(ConflictNote);

}  // namespace thalvorn
