#pragma once

#include <QObject>
#include <QTimer>
#include <QVariant>
#include <functional>
#include <memory>
#include <vector>

#include "app/app_controller.h"
#include "app/record_form.h"
#include "app/save_outcome.h"
#include "base/json.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

/// The records inside a record, such as the guests of a passage: a form for each, in their order.
class SubRecords : public QObject {
  Q_OBJECT
  Q_PROPERTY(QList<QObject*> forms READ forms NOTIFY listChanged)
  Q_PROPERTY(int count READ count NOTIFY listChanged)

 public:
  using QObject::QObject;
  virtual QList<QObject*> forms() const = 0;
  int count() const { return static_cast<int>(forms().size()); }
  /// Adds an empty one at the end and returns its position.
  Q_INVOKABLE virtual int add() = 0;
  Q_INVOKABLE virtual void remove(int position) = 0;
  /// Shows every message, and tells whether all can be saved.
  virtual bool check() = 0;

 Q_SIGNALS:
  void listChanged();
};

template <class T, class S>
class SubRecordsOf : public SubRecords {
 public:
  /// Writes into the list `member` of the form's record.
  SubRecordsOf(RecordFormOf<T>& parent, std::vector<S> T::* member, const Format& format)
      : SubRecords(&parent), parent_(parent), member_(member), format_(format) {
    read();
  }

  QList<QObject*> forms() const override {
    QList<QObject*> list;
    for (const auto& form : forms_) list.append(form);
    return list;
  }
  int add() override {
    S made{};
    if constexpr (requires { made.id; }) made.id = Uuid::random();
    append(made);
    write();
    Q_EMIT listChanged();
    return count() - 1;
  }
  void remove(int position) override {
    if (position < 0 || position >= count()) return;
    const auto at = forms_.begin() + position;
    (*at)->deleteLater();
    forms_.erase(at);
    write();
    Q_EMIT listChanged();
  }
  bool check() override {
    bool right = true;
    for (auto* form : forms_) right = form->check() && right;
    return right;
  }
  /// Begins again with what the form's record holds.
  void read() {
    for (auto* form : forms_) form->deleteLater();
    forms_.clear();
    for (const S& record : parent_.record().*member_) append(record);
    Q_EMIT listChanged();
  }

 private:
  void append(const S& record) {
    auto* form = new RecordFormOf<S>(record, format_, this);
    QObject::connect(form, &RecordForm::changed, this, [this] { write(); });
    forms_.push_back(form);
  }
  void write() {
    std::vector<S> list;
    list.reserve(forms_.size());
    for (const auto* form : forms_) list.push_back(form->record());
    parent_.edit([&](T& record) { record.*member_ = std::move(list); });
  }

  RecordFormOf<T>& parent_;
  std::vector<S> T::* member_;
  const Format& format_;
  std::vector<RecordFormOf<S>*> forms_;
};

/// The form sheet of one record. What is entered is kept as a draft now and then, so that a crash or a power cut does
/// not take it; saving and leaving remove the draft.
class RecordSheet : public QObject {
  Q_OBJECT
  Q_PROPERTY(QObject* form READ formObject CONSTANT)
  Q_PROPERTY(bool isNew READ isNew CONSTANT)
  Q_PROPERTY(bool dirty READ dirty NOTIFY changed)
  Q_PROPERTY(QString error READ error NOTIFY changed)
  Q_PROPERTY(bool restored READ restored NOTIFY changed)
  Q_PROPERTY(QString recordId READ recordId CONSTANT)

 public:
  bool isNew() const { return isNew_; }
  virtual QObject* formObject() = 0;
  virtual bool dirty() const = 0;
  /// Why the last saving failed; empty once what was wrong has been put right.
  QString error() const;
  /// The form began with a draft that was never saved.
  bool restored() const { return restored_; }
  virtual QString recordId() const = 0;
  /// The list of sub-records of this field; null when there is none.
  Q_INVOKABLE QObject* list(const QString& field) const;
  /// Saves; false when a field has to be put right first or the store refuses.
  Q_INVOKABLE bool save();
  /// The first field that has to be put right.
  Q_INVOKABLE virtual QString firstWrong() const = 0;
  /// The form is left without saving: its draft goes.
  Q_INVOKABLE void discard();
  /// Begins again without the draft.
  Q_INVOKABLE void forgetDraft();

 Q_SIGNALS:
  void changed();
  void saved();

 protected:
  RecordSheet(AppViewModel& store, PreferenceStore& preferences, bool isNew, const QString& draftKey);

  virtual bool valid() const = 0;
  virtual bool check() = 0;
  virtual Edit edit() const = 0;
  virtual std::string draft() const = 0;
  virtual void startAgain() = 0;

  QString keptDraft() const { return preferences_.preference(draftKey_); }
  void setRestored() { restored_ = true; }
  /// To be called at every change of what is entered.
  void entered();
  void addList(const QString& field, SubRecords* list);
  void keepDraft();

 private:
  AppViewModel& store_;
  PreferenceStore& preferences_;
  bool isNew_;
  bool restored_ = false;
  bool marked_ = false;  ///< the last saving stopped at marked fields
  bool left_ = false;
  QString draftKey_;
  QString error_;
  QTimer draftTimer_;
  std::vector<std::pair<QString, SubRecords*>> lists_;
};

template <HasFacts T>
class RecordSheetOf : public RecordSheet {
 public:
  /// `label` names the record in the undo bar: “Palma → Antibes” changed.
  using Label = std::function<std::string(const T&)>;

  RecordSheetOf(AppViewModel& store, PreferenceStore& preferences, T record, bool isNew, Label label,
                const Format& format)
      : RecordSheet(store, preferences, isNew, draftKey(store, record, isNew)),
        label_(std::move(label)),
        form_(std::move(record), format, this) {
    restore(keptDraft());
    makeLists(format);
    connect(&form_, &RecordForm::changed, this, [this] { entered(); });
  }
  /// Goes with what was entered kept, unless it was saved or left.
  ~RecordSheetOf() override { keepDraft(); }

  RecordFormOf<T>& form() { return form_; }
  QObject* formObject() override { return &form_; }
  bool dirty() const override { return form_.dirty(); }
  QString recordId() const override { return QString::fromStdString(form_.record().id.toString()); }
  QString firstWrong() const override { return form_.firstWrong(); }

 protected:
  bool valid() const override { return form_.valid(); }
  bool check() override { return form_.check(); }
  Edit edit() const override {
    Edit edit{.label = "“" + label_(form_.record()) + (isNew() ? "” added" : "” changed")};
    if (isNew())
      edit.add(form_.record());
    else if (!(form_.original() == form_.record()))
      edit.replace(form_.original(), form_.record());
    return edit;
  }
  /// What the form began with and what it holds.
  std::string draft() const override {
    return listToJson(std::vector<T>{form_.original(), form_.record()}, JsonFields::full);
  }
  void startAgain() override {
    form_.reset(form_.original());
    for (const auto& again : again_) again();
  }

 private:
  void restore(const QString& draft) {
    if (draft.isEmpty()) return;
    const auto kept = listFromJson<T>(draft.toStdString(), JsonFields::full);
    if (!kept || kept->records.size() != 2) return;
    const T& begun = kept->records[0];
    const T& entered = kept->records[1];
    T restored = form_.original();
    // What others changed in the record since stays, as when a form is saved. A new record keeps the identity it has
    // now: the draft's may have been saved meanwhile.
    copyFields(entered, restored, isNew() ? ~fieldSetOf<T>({"id"}) : changedFields(begun, entered));
    if (restored == form_.original()) return;
    form_.edit([&](T& record) { record = std::move(restored); });
    setRestored();
  }
  static QString draftKey(const AppViewModel& store, const T& record, bool isNew) {
    std::string key =
        "draft." + store.prefix() + "@" + store.fleetAccount() + "." + std::string(RecordKind<T>::facts.collection);
    if (isNew) {
      if (const auto vessel = vesselOf(record)) key += "." + vessel->toString();
      key += ".new";
    } else {
      key += "." + record.id.toString();
    }
    return QString::fromStdString(key);
  }
  void makeLists(const Format& format) {
    boost::mp11::mp_for_each<FieldList<T>>([&](auto field) { makeList(field.pointer, field.name, format); });
  }
  template <class S>
  void makeList(std::vector<S> T::* member, const char* name, const Format& format) {
    if constexpr (HasFacts<S>) {
      auto* list = new SubRecordsOf<T, S>(form_, member, format);
      addList(QString::fromLatin1(name), list);
      again_.push_back([list] { list->read(); });
    }
  }
  template <class V>
  void makeList(V T::*, const char*, const Format&) {}

  Label label_;
  RecordFormOf<T> form_;
  std::vector<std::function<void()>> again_;
};

}  // namespace thalvorn::app
