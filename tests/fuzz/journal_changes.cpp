// Any bytes as the changes of a journal row: what is understood is written in a form that is understood alike.

#include <string_view>

#include "fuzz/require.h"
#include "store/local_cache_journal.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace thalvorn;
  const auto changes = cache_detail::decodeChanges({reinterpret_cast<const char*>(data), size});
  if (!changes) return 0;
  const std::string written = cache_detail::encodeChanges(*changes);
  const auto again = cache_detail::decodeChanges(written);
  require(again && again->size() == changes->size());
  for (std::size_t i = 0; i < changes->size(); ++i) {
    require((*again)[i].suffix == (*changes)[i].suffix && (*again)[i].id == (*changes)[i].id);
    require((*again)[i].before == (*changes)[i].before && (*again)[i].after == (*changes)[i].after);
    require((*again)[i].sent == (*changes)[i].sent);
  }
  return 0;
}
