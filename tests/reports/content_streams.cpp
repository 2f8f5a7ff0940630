#include "content_streams.h"

#include <qpdf/qpdf-c.h>

#include <cstdlib>

namespace thalvorn {

std::vector<QByteArray> contentStreams(const QByteArray& pdf) {
  std::vector<QByteArray> pages;
  auto file = qpdf_init();
  qpdf_read_memory(file, "report", pdf.constData(), static_cast<unsigned long long>(pdf.size()), nullptr);
  const int count = qpdf_has_error(file) ? 0 : qpdf_get_num_pages(file);
  for (int page = 0; page < count; ++page) {
    const auto stream = qpdf_oh_get_key(file, qpdf_get_page_n(file, static_cast<std::size_t>(page)), "/Contents");
    unsigned char* bytes = nullptr;
    std::size_t length = 0;
    if (qpdf_oh_get_stream_data(file, stream, qpdf_dl_all, nullptr, &bytes, &length) != QPDF_SUCCESS) continue;
    pages.emplace_back(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(length));
    std::free(bytes);
  }
  qpdf_cleanup(&file);
  return pages;
}

}  // namespace thalvorn
