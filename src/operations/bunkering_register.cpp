#include "operations/bunkering_register.h"

namespace thalvorn {

std::string Register<BunkeringRecord>::name(const BunkeringRecord& record) {
  if (record.supplierName.empty()) return record.port.empty() ? "Bunkering" : "Bunkering at " + record.port;
  return record.port.empty() ? record.supplierName : record.supplierName + ", " + record.port;
}

}  // namespace thalvorn
