#include "app/record_search.h"

#include <QElapsedTimer>
#include <memory>

#include "app/registers/register_pages.h"
#include "app/text.h"
#include "base/date_format.h"
#include "base/search_text.h"
#include "core/template_catalogue.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

constexpr auto kSlice = 4ms;
constexpr std::size_t kLookAtClockEvery = 64;

QVariantMap highlight(const Uuid& id) { return {{QStringLiteral("highlight"), toQt(id.toString())}}; }

/// One search through the records, kind after kind, that can be interrupted. Records may come and go meanwhile: then
/// some may be missed, which the next letter typed puts right.
class Scan {
 public:
  Scan(const AppViewModel& model, const QString& query, int limit, bool withTemplates)
      : model_(model), words_(query.toStdString()), limit_(limit), withTemplates_(withTemplates) {}

  /// Goes on for a slice of time, or to the end when `slice` is zero; true when everything was looked at.
  bool step(std::vector<SearchHit>& hits, std::chrono::milliseconds slice) {
    if (words_.empty()) return true;
    slice_ = slice;
    clock_.start();
    while (kind_ < 4) {
      if (!scanKind(hits)) return false;
      ++kind_;
      at_ = 0;
      found_ = 0;
    }
    return true;
  }

 private:
  bool scanKind(std::vector<SearchHit>& hits) {
    switch (kind_) {
      case 0:
        return scan(model_.vessels().records(), hits);
      case 1:
        return scan(model_.tasks().records(), hits);
      case 2:
        return scan(model_.logs().records(), hits);
      default:
        return !withTemplates_ || scan(templateCatalogue(), hits);
    }
  }

  template <class Record>
  bool scan(std::span<const Record> records, std::vector<SearchHit>& hits) {
    while (at_ < records.size() && found_ < limit_) {
      const Record& record = records[at_++];
      if (matches(record)) {
        hits.push_back(hit(record));
        ++found_;
      }
      if (slice_ > 0ms && at_ % kLookAtClockEvery == 0 && clock_.hasExpired(slice_.count())) return false;
    }
    return true;
  }

  bool matches(const Vessel& vessel) { return words_.matches({vessel.name, vessel.type}); }
  bool matches(const MaintenanceTask& task) {
    return !task.isCompleted && words_.matches({task.title, task.category.display(), task.notes});
  }
  bool matches(const ServiceLog& log) { return words_.matches({log.taskTitle, log.completedBy, log.technicianNotes}); }
  bool matches(const TaskTemplate& made) { return words_.matches({made.title, made.category.display(), made.notes}); }

  QString vesselName(const Uuid& id) const {
    const Vessel* vessel = model_.vessels().find(id);
    return vessel ? toQt(vessel->name) : QString();
  }

  SearchHit hit(const Vessel& vessel) const {
    return {.title = toQt(vessel.name),
            .detail = toQt(vessel.type),
            .icon = QStringLiteral("boat"),
            .group = QStringLiteral("Vessels"),
            .page = QStringLiteral("vessels"),
            .arguments = highlight(vessel.id),
            .notification = {}};
  }
  SearchHit hit(const MaintenanceTask& task) const {
    return {.title = toQt(task.title),
            .detail = vesselName(task.vesselID),
            .icon = QStringLiteral("wrench"),
            .group = QStringLiteral("Tasks"),
            .page = QStringLiteral("taskLibrary"),
            .arguments = highlight(task.id),
            .notification = {}};
  }
  SearchHit hit(const ServiceLog& log) const {
    const QString day = toQt(formatDate(model_.calendar().date(log.completedDate)));
    return {.title = toQt(log.taskTitle),
            .detail = day + QStringLiteral(" · ") + vesselName(log.vesselID),
            .icon = QStringLiteral("clock-counter-clockwise"),
            .group = QStringLiteral("Service history"),
            .page = QStringLiteral("serviceHistory"),
            .arguments = highlight(log.id),
            .notification = {}};
  }
  SearchHit hit(const TaskTemplate& made) const {
    return {.title = toQt(made.title),
            .detail = toQt(repeatText(made)),
            .icon = QStringLiteral("stack"),
            .group = QStringLiteral("Templates"),
            .page = QStringLiteral("templateLibrary"),
            .arguments = highlight(made.id),
            .notification = {}};
  }

  const AppViewModel& model_;
  SearchWords words_;
  int limit_;
  bool withTemplates_;
  int kind_ = 0;
  std::size_t at_ = 0;
  int found_ = 0;
  std::chrono::milliseconds slice_{};
  QElapsedTimer clock_;
};

/// One search through a register, likewise.
template <class T>
class RegisterScan {
 public:
  RegisterScan(const AppViewModel& model, const QString& query, int limit, std::u16string_view icon)
      : model_(model), words_(query.toStdString()), limit_(limit), icon_(icon) {}

  bool step(std::vector<SearchHit>& hits) {
    if (words_.empty()) return true;
    QElapsedTimer clock;
    clock.start();
    const std::span<const T> records = model_.collection<T>().records();
    while (at_ < records.size() && found_ < limit_) {
      const T& record = records[at_++];
      texts_.clear();
      appendSearched(texts_, record);
      if (words_.matches({texts_})) {
        hits.push_back(hit(record));
        ++found_;
      }
      if (at_ % kLookAtClockEvery == 0 && clock.hasExpired(kSlice.count())) return false;
    }
    return true;
  }

 private:
  SearchHit hit(const T& record) const {
    QString detail = toQt(formatDate(model_.calendar().date(record.*Register<T>::date)));
    const auto id = vesselOf(record);
    if (const Vessel* vessel = id ? model_.vessels().find(*id) : nullptr)
      detail += QStringLiteral(" · ") + toQt(vessel->name);
    return {.title = toQt(Register<T>::name(record)),
            .detail = detail,
            .icon = QString::fromUtf16(icon_.data(), static_cast<qsizetype>(icon_.size())),
            .group = toQt(Register<T>::facts.title),
            .page = toQt(Register<T>::facts.key),
            .arguments = highlight(record.id),
            .notification = {}};
  }

  const AppViewModel& model_;
  SearchWords words_;
  int limit_;
  std::u16string_view icon_;
  std::size_t at_ = 0;
  int found_ = 0;
  std::string texts_;
};

}  // namespace

SearchSource recordSearch(const AppViewModel& model) {
  return [&model](const QString& query, int limit) {
    std::vector<SearchHit> hits;
    Scan(model, query, limit, false).step(hits, 0ms);
    return hits;
  };
}

SearchScan recordScan(const AppViewModel& model) {
  return [&model](const QString& query, int limit) -> SearchStep {
    return [scan = std::make_shared<Scan>(model, query, limit, true)](std::vector<SearchHit>& hits) {
      return scan->step(hits, kSlice);
    };
  };
}

void addRegisterScans(SearchModel& search, const AppViewModel& model) {
  forEachRegister([&]<class T>(std::type_identity<T>, std::u16string_view icon) {
    search.addScan([&model, icon](const QString& query, int limit) -> SearchStep {
      return [scan = std::make_shared<RegisterScan<T>>(model, query, limit, icon)](std::vector<SearchHit>& hits) {
        return scan->step(hits);
      };
    });
  });
}

}  // namespace thalvorn::app
