#pragma once

#include <QByteArray>
#include <vector>

namespace thalvorn {

/// What the pages of a PDF file draw, unpacked, page by page; empty for bytes that are no such file.
std::vector<QByteArray> contentStreams(const QByteArray& pdf);

}  // namespace thalvorn
