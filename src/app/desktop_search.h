#pragma once

#include <QHash>

#include "app/search_model.h"
#include "platform/search_provider.h"

namespace thalvorn::app {

/// Answers the desktop's search from the program's own.
class DesktopSearch : public DesktopSearchIndex {
 public:
  explicit DesktopSearch(SearchSource source) : source_(std::move(source)) {}

  QStringList find(const QStringList& terms, qsizetype most) const override;
  SearchMeta meta(const QString& id) const override;

  /// The hit behind an id that `find` gave; null when it gave none such.
  const SearchHit* hit(const QString& id) const;

 private:
  SearchSource source_;
  mutable QHash<QString, SearchHit> found_;  ///< of the last searches, which the desktop asks about next
};

}  // namespace thalvorn::app
