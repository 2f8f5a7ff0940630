#include "app/page_access.h"

#include "app/module_table.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

PageAccess pageAccess(const AppViewModel& model) {
  PageAccess access;
  for (const PageEntry& page : pageTable()) {
    if (!page.module) continue;
    const ModuleRights rights = model.rights(page.module);
    if (!rights.read) access.closed.append(QString::fromUtf16(page.id));
    if (!rights.write) access.readOnly.append(QString::fromUtf16(page.id));
  }
  return access;
}

}  // namespace thalvorn::app
