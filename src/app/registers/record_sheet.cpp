#include "app/registers/record_sheet.h"

#include <QQmlEngine>
#include <algorithm>

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

constexpr auto kDraftAfter = 800ms;

}  // namespace

RecordSheet::RecordSheet(AppViewModel& store, PreferenceStore& preferences, bool isNew, const QString& draftKey)
    : store_(store), preferences_(preferences), isNew_(isNew), draftKey_(draftKey) {
  draftTimer_.setSingleShot(true);
  draftTimer_.setInterval(kDraftAfter);
  connect(&draftTimer_, &QTimer::timeout, this, &RecordSheet::keepDraft);
}

void RecordSheet::addList(const QString& field, SubRecords* list) {
  QQmlEngine::setObjectOwnership(list, QQmlEngine::CppOwnership);
  lists_.emplace_back(field, list);
}

QObject* RecordSheet::list(const QString& field) const {
  const auto found = std::ranges::find(lists_, field, &std::pair<QString, SubRecords*>::first);
  return found == lists_.end() ? nullptr : found->second;
}

QString RecordSheet::error() const {
  if (marked_ && !valid()) return QStringLiteral("Something has to be put right first: see the marked fields.");
  return error_;
}

void RecordSheet::entered() {
  if (!left_) draftTimer_.start();
  Q_EMIT changed();
}

void RecordSheet::keepDraft() {
  if (left_ || (!dirty() && preferences_.preference(draftKey_).isEmpty())) return;
  preferences_.setPreference(draftKey_, dirty() ? QString::fromStdString(draft()) : QString());
}

void RecordSheet::discard() {
  left_ = true;
  draftTimer_.stop();
  if (!preferences_.preference(draftKey_).isEmpty()) preferences_.setPreference(draftKey_, {});
}

void RecordSheet::forgetDraft() {
  restored_ = false;
  preferences_.setPreference(draftKey_, {});
  startAgain();
  Q_EMIT changed();
}

bool RecordSheet::save() {
  bool right = check();
  for (const auto& [field, list] : lists_) right = list->check() && right;
  marked_ = !right;
  error_.clear();
  if (right) {
    if (Edit made = edit(); !made.empty()) error_ = refusalOf(store_.apply(std::move(made)));
    if (error_.isEmpty()) discard();
  }
  Q_EMIT changed();
  const bool done = right && error_.isEmpty();
  if (done) Q_EMIT saved();
  return done;
}

}  // namespace thalvorn::app
