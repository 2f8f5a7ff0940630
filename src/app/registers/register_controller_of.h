#pragma once

#include <QQmlEngine>
#include <algorithm>

#include "app/registers/record_sheet.h"
#include "app/registers/register_controller.h"
#include "app/registers/register_detail.h"
#include "app/registers/register_model_of.h"
#include "app/registers/register_transfer.h"
#include "core/record_csv.h"

namespace thalvorn::app {

/// What a paper is made of, in copies: it stays as it was asked for while the records, the list and the vessel in view
/// change.
template <class T>
struct PaperContents {
  std::vector<T> records;
  ReportVessel vessel;  ///< whose paper it is; blank where the list is of the whole fleet
  ReportPeriod period;  ///< the days that the list was narrowed to
};

/// A register of records of type T. A new register derives from it, says what a blank record is and which papers it
/// prints, and overrides what else is its own.
template <HasRegister T>
class RegisterControllerOf : public RegisterController {
 public:
  QString key() const override { return key_; }
  QString title() const override { return toQt(Register<T>::facts.title); }
  QString singular() const override { return toQt(Register<T>::facts.singular); }
  QString plural() const override { return toQt(Register<T>::facts.plural); }
  RegisterModelOf<T>* model() const override { return model_.get(); }

  QObject* sheet(const QString& id) override {
    const T* stored = id.isEmpty() ? nullptr : find(id);
    if (!id.isEmpty() && !stored) return nullptr;
    if (!stored && belongsToVessel && !tools_.store.selectedVesselID()) return nullptr;
    auto* sheet = new RecordSheetOf<T>(tools_.store, tools_.preferences, stored ? *stored : withIdentity(blank()),
                                       !stored, &Register<T>::name, tools_.format);
    addRules(sheet->form());
    connect(sheet, &RecordSheet::saved, this, [this, sheet] { Q_EMIT recordSaved(sheet->recordId()); });
    QQmlEngine::setObjectOwnership(sheet, QQmlEngine::JavaScriptOwnership);
    return sheet;
  }

  QVariantMap detail(const QString& id) const override {
    const T* record = find(id);
    if (!record) return {};
    QVariantMap described = describeRecord(*record, tools_.format);
    described.insert(QStringLiteral("title"), toQt(Register<T>::name(*record)));
    describeMore(*record, described);
    return described;
  }

  void remove(const QStringList& ids) override {
    Edit edit;
    for (const QString& id : ids)
      if (const T* record = find(id)) {
        edit.label = "“" + Register<T>::name(*record) + "” deleted";
        edit.remove(*record);
      }
    if (edit.changes.size() > 1)
      edit.label = std::to_string(edit.changes.size()) + " " + std::string(Register<T>::facts.plural) + " deleted";
    applyEdit(std::move(edit));
  }

  bool reveal(const QString& id) override {
    const T* record = find(id);
    if (!record) return false;
    if (const auto vessel = vesselOf(*record); vessel && vesselInView() && *vesselInView() != *vessel)
      tools_.store.setSelectedVesselID(*vessel);
    if (selectRecords<T>(std::span(record, 1), model_->query()).empty()) model_->clearFilters();
    return true;
  }

  void print(const QString& paper, const QString& id) override {
    if (!id.isEmpty() && !find(id)) return;
    tools_.reports.open(order(paper, id));
  }

  QVariantMap readCsv(const QUrl& file) override {
    read_.clear();
    if constexpr (belongsToVessel) {
      if (!tools_.store.selectedVesselID())
        return {{QStringLiteral("problem"), QStringLiteral("Choose a vessel first: the records are added to hers.")}};
    }
    const auto text = readSpreadsheet(file);
    if (!text) return {{QStringLiteral("problem"), text.error()}};
    const Uuid vessel = tools_.store.selectedVesselID().value_or(Uuid());
    auto import = recordsFromCsv<T>(*text, vessel, tools_.store.calendar(), std::nullopt, calendarAboard());
    for (const std::string& column : import.ignoredColumns)
      import.problems.push_back({1, "The column “" + column + "” is not known and not read."});
    const std::size_t inFile = import.records.size();
    read_ = newRecords<T>(std::move(import.records), tools_.store.collection<T>().records(),
                          tools_.store.vessels().records(), vessel);
    return describeImport(read_.size(), inFile - read_.size(), import.skipped, import.problems, plural());
  }

  void importRead() override {
    Edit edit{.label = std::to_string(read_.size()) + " " +
                       std::string(read_.size() == 1 ? Register<T>::facts.singular : Register<T>::facts.plural) +
                       " imported"};
    for (T& record : read_) edit.add(std::move(record));
    read_.clear();
    applyEdit(std::move(edit));
  }

 protected:
  static constexpr bool belongsToVessel = requires(const T& record) { record.vesselID; };

  /// `suffix` tells two lists of one register apart.
  RegisterControllerOf(const RegisterTools& tools, RegisterScope scope, QObject* parent, const QString& suffix = {})
      : RegisterController(tools, parent),
        key_(toQt(Register<T>::facts.key) + suffix),
        model_(std::make_unique<RegisterModelOf<T>>(tools.store, tools.preferences, tools.format, scope, key_)) {
    QQmlEngine::setObjectOwnership(model_.get(), QQmlEngine::CppOwnership);
    follow();
  }

  /// What the form of a new record begins with. It gets its identity, and the vessel in view, by itself.
  virtual T blank() const { return T{}; }
  /// Rules of the form beyond those of the fields' facts.
  virtual void addRules(RecordFormOf<T>&) const {}
  /// What the detail shows beside the fields.
  virtual void describeMore(const T&, QVariantMap&) const {}
  /// The paper of that key; what it gives runs on another thread.
  virtual DocumentMaker document(const QString& paper, PaperContents<T> contents,
                                 const ReportSetting& setting) const = 0;
  /// The records as a spreadsheet.
  virtual std::string spreadsheet(const std::vector<T>& records, const ReportSetting& setting,
                                  const CsvFormat& format) const {
    return recordsCsv<T>(std::span<const T>(records), setting.calendar,
                         {.format = format, .calendarAboard = calendarAboard()});
  }
  /// Dates in a spreadsheet stand by the clock aboard each record's vessel.
  CalendarAboard calendarAboard() const {
    return [&desk = tools_.reports](const Uuid& vessel) { return desk.setting(vessel).calendar; };
  }

  std::string csvText(const ReportSetting& setting, const CsvFormat& format) const override {
    return spreadsheet(model_->copies(model_->chosenRows()), setting, format);
  }
  QStringList chosenIds() const override {
    QStringList ids;
    for (const std::uint32_t at : model_->chosenRows()) ids << toQt(model_->at(at).id.toString());
    return ids;
  }

  /// All vessels of the records, as papers of several need them.
  std::vector<ReportVessel> vesselsOf(const std::vector<T>& records) const {
    std::vector<ReportVessel> vessels;
    for (const Vessel& vessel : tools_.store.vessels().records()) {
      if (std::ranges::any_of(records, [&](const T& record) { return vesselOf(record) == vessel.id; }))
        vessels.push_back(vesselAndProfile(vessel.id));
    }
    return vessels;
  }
  const T* find(const QString& id) const {
    const auto read = Uuid::parse(id.toStdString());
    return read ? tools_.store.collection<T>().find(*read) : nullptr;
  }
  /// Calls `visit` with every record shown.
  template <class Visitor>
  void forEachShown(Visitor&& visit) const {
    for (const std::uint32_t at : model_->rows()) visit(model_->at(at));
  }
  /// The vessel and her particulars as papers need them; blank ones where a list is of the whole fleet.
  ReportVessel vesselAndProfile(const std::optional<Uuid>& id) const {
    const Vessel* vessel = id ? tools_.store.vessels().find(*id) : nullptr;
    const VesselProfile* profile = id ? tools_.store.profileOf(*id) : nullptr;
    return {vessel ? *vessel : Vessel(), profile ? *profile : VesselProfile()};
  }

 private:
  /// The days that the list is narrowed to. They are days by this computer's clock; the paper names the same ones,
  /// though it is written by the clock aboard.
  ReportPeriod periodShown(const Calendar& aboard) const {
    const RegisterQuery query = model_->query();
    const auto dayAboard = [&](Timestamp time) { return aboard.at(tools_.store.calendar().date(time)); };
    ReportPeriod period;
    if (query.from) period.first = dayAboard(*query.from);
    if (query.until) period.last = dayAboard(*query.until - std::chrono::seconds(1));
    return period;
  }

  T withIdentity(T record) const {
    record.id = Uuid::random();
    if constexpr (belongsToVessel) record.vesselID = *tools_.store.selectedVesselID();
    return record;
  }

  ReportOrder order(const QString& paper, const QString& id) const {
    PaperContents<T> contents;
    std::optional<Uuid> vessel = vesselInView();
    if (const T* one = id.isEmpty() ? nullptr : find(id)) {
      contents.records.push_back(*one);
      vessel = vesselOf(*one);
    } else {
      contents.records = model_->copies(model_->chosenRows());
    }
    contents.vessel = vesselAndProfile(vessel);
    contents.period = periodShown(tools_.reports.setting(vessel).calendar);
    const auto all = papers();
    const auto described = std::ranges::find(all, paper, &RegisterPaper::key);
    ReportOrder order{.id = key_ + u'.' + paper,
                      .title = described == all.end() ? title() : described->title,
                      .vessel = vessel,
                      .csvName = csvName()};
    if (id.isEmpty()) {
      order.csv = [this, records = contents.records](const ReportSetting& setting, const CsvFormat& format) {
        return spreadsheet(records, setting, format);
      };
      if (vessel) order.again = [this, paper] { return this->order(paper, {}); };
    }
    order.document = [this, paper, contents = std::move(contents)](const ReportSetting& setting) {
      return document(paper, contents, setting);
    };
    return order;
  }

  QString key_;
  std::unique_ptr<RegisterModelOf<T>> model_;
  std::vector<T> read_;
};

}  // namespace thalvorn::app
