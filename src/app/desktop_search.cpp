#include "app/desktop_search.h"

namespace thalvorn::app {

namespace {
constexpr qsizetype kRememberedHits = 2000;
}

QStringList DesktopSearch::find(const QStringList& terms, qsizetype most) const {
  if (found_.size() > kRememberedHits) found_.clear();
  QStringList ids;
  for (SearchHit& hit : source_(terms.join(u' '), static_cast<int>(most))) {
    const QString id = hit.page + u'/' + hit.arguments.value(QStringLiteral("highlight")).toString();
    ids.append(id);
    found_.insert(id, std::move(hit));
  }
  return ids.mid(0, most);
}

SearchMeta DesktopSearch::meta(const QString& id) const {
  const SearchHit* found = hit(id);
  if (!found) return {};
  return {.name = found->title,
          .description = found->group + QStringLiteral(" · ") + found->detail,
          .iconName = QStringLiteral("org.thalvorn.Thalvorn"),
          .clipboard = found->title};
}

const SearchHit* DesktopSearch::hit(const QString& id) const {
  const auto found = found_.constFind(id);
  return found == found_.constEnd() ? nullptr : &*found;
}

}  // namespace thalvorn::app
