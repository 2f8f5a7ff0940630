#include "app/account/sync_controller.h"

#include <algorithm>
#include <ranges>

#include "app/choice_list.h"
#include "app/format.h"
#include "app/save_outcome.h"
#include "app/text.h"
#include "sync/conflicts.h"
#include "sync/file_words.h"
#include "sync/settings_step.h"

namespace thalvorn::app {

namespace {

using namespace std::chrono_literals;

QString capitalised(std::string_view text) {
  QString told = toQt(text);
  if (!told.isEmpty()) told[0] = told[0].toUpper();
  return told;
}

/// A table as a person calls what it holds; `one` for a single record.
QString nameOfTable(std::string_view table, bool one = false) {
  if (table == "user_settings") return QStringLiteral("Settings");
  QString name;
  forEachKind([&]<class T>(std::type_identity<T>) {
    const KindFacts& kind = RecordKind<T>::facts;
    if (kind.table == table) name = capitalised(one ? kind.singular : kind.plural);
  });
  return name.isEmpty() ? QStringLiteral("The account") : name;
}

QString changesCounted(int count) {
  return count == 1 ? QStringLiteral("1 change") : QStringLiteral("%1 changes").arg(count);
}

}  // namespace

SyncController::SyncController(AppViewModel& model, CloudSession* cloud, AppController& app, QObject* parent)
    : QObject(parent), model_(model), cloud_(cloud), app_(app) {
  for (QTimer* timer : {&details_, &lines_}) {
    timer->setSingleShot(true);
    timer->setInterval(50ms);
  }
  connect(&details_, &QTimer::timeout, this, &SyncController::readDetails);
  connect(&lines_, &QTimer::timeout, this, &SyncController::readLog);
  if (!cloud_) return;
  const auto refresh = [this] {
    Q_EMIT changed();
    if (watched_ && !details_.isActive()) details_.start();
  };
  for (const auto signal : {&AppViewModel::prefixChanged, &AppViewModel::unsentChanged, &AppViewModel::reloaded,
                            &AppViewModel::isAuthenticatedChanged}) {
    connect(&model_, signal, this, refresh);
  }
  const CollectionEvents& events = model_.conflicts().events();
  connect(&events, &CollectionEvents::reset, this, refresh);
  connect(&events, &CollectionEvents::inserted, this, refresh);
  connect(&events, &CollectionEvents::changed, this, refresh);
  connect(&events, &CollectionEvents::removed, this, refresh);
  connect(cloud_, &CloudSession::changed, this, refresh);
  connect(&cloud_->sync(), &SyncManager::stateChanged, this, refresh);
  connect(&cloud_->files(), &FileSync::changed, this, refresh);
  connect(&cloud_->sync(), &SyncManager::messageForUser, this,
          [this](const QString& text) { app_.toast(text, QStringLiteral("soon")); });
  connect(&cloud_->sync().metered(), &MeteredConnection::changed, this, &SyncController::meteredChanged);
  connect(&cloud_->log(), &SyncLog::added, this, [this] {
    if (watched_ && !lines_.isActive()) lines_.start();
  });
}

// ---- how it stands ----

bool SyncController::shown() const {
  return cloud_ && !cloud_->userID().isEmpty() && model_.prefix() == cloud_->userID().toStdString();
}

QString SyncController::state() const {
  if (!shown()) return {};
  const SyncManager& sync = cloud_->sync();
  if (cloud_->needsSignIn()) return QStringLiteral("signIn");
  if (sync.isSyncing() || (model_.accountID().empty() && cloud_->account().isResolving()))
    return QStringLiteral("syncing");
  if (sync.isOffline()) return QStringLiteral("offline");
  if (model_.accountID().empty() || !model_.accessRefusal().empty()) return QStringLiteral("problem");
  if (!sync.problems().empty() || cloud_->files().failedCount() > 0) return QStringLiteral("problem");
  return waitingCount() > 0 ? QStringLiteral("waiting") : QStringLiteral("current");
}

QString SyncController::text() const {
  const QString now = state();
  if (now == u"signIn") return QStringLiteral("Sign in again");
  if (now == u"syncing") return QStringLiteral("Syncing…");
  QString waiting = QStringLiteral("%1 waiting").arg(waitingCount());
  if (now == u"offline") return waitingCount() > 0 ? QStringLiteral("Offline · ") + waiting : QStringLiteral("Offline");
  if (now == u"problem") return QStringLiteral("Not all synced");
  if (now == u"waiting") return waiting;
  return now.isEmpty() ? QString() : QStringLiteral("Up to date");
}

QString SyncController::detail() const {
  const QString now = state();
  const int waiting = waitingCount();
  const QString held =
      waiting == 0 ? QString() : QStringLiteral(" %1 made here will be sent.").arg(changesCounted(waiting));
  if (now == u"signIn")
    return QStringLiteral("The session has ended: nothing is exchanged until you sign in again.") + held;
  if (now == u"syncing") return QStringLiteral("Changes are being exchanged with the fleet server.");
  if (now == u"offline")
    return QStringLiteral(
               "The fleet server cannot be reached. Everything works, and the exchange goes on when the "
               "connection is back.") +
           held;
  if (now == u"problem" && model_.accountID().empty()) return cloud_->sync().whyNoAccount() + held;
  if (now == u"problem" && cloud_->sync().problems().empty())
    return QStringLiteral("A photo or paper could not be sent. Below stands why.");
  if (now == u"problem") return QStringLiteral("The last run could not do everything. What is missing is tried again.");
  if (now == u"waiting") return QStringLiteral("%1 made here will be sent in a moment.").arg(changesCounted(waiting));
  return now.isEmpty() ? QString() : QStringLiteral("This computer and the fleet server hold the same.");
}

QVariant SyncController::lastRun() const {
  if (!shown()) return {};
  const auto last = cloud_->sync().lastSyncDate();
  return last ? QVariant(Format::toQml(*last)) : QVariant();
}

QString SyncController::running() const {
  if (!shown() || !cloud_->sync().isSyncing()) return {};
  const std::string_view table = cloud_->sync().currentTable();
  return table.empty() ? QStringLiteral("Asking what has changed…") : nameOfTable(table) + QStringLiteral("…");
}

int SyncController::waitingCount() const {
  return shown() ? model_.dirtyCount() + settingsWaiting(model_) + cloud_->files().waitingCount() : 0;
}

int SyncController::openConflicts() const {
  if (!shown()) return 0;
  const auto& notes = model_.conflicts().records();
  return static_cast<int>(std::ranges::count(notes, false, &ConflictNote::settled));
}

QString SyncController::metered() const {
  return toQt(rawText(cloud_ ? cloud_->sync().metered().choice() : MeteredChoice::automatic));
}

void SyncController::setMetered(const QString& choice) {
  if (const auto chosen = caseFromRaw<MeteredChoice>(choice.toStdString()); chosen && cloud_)
    cloud_->sync().metered().setChoice(*chosen);
}

QVariantList SyncController::meteredChoices() const { return choicesOf<MeteredChoice>(); }

QString SyncController::meteredText() const {
  const QString meaning = QStringLiteral(
      "On a metered connection your changes are sent at once, and what others changed is fetched once an hour or by "
      "“Sync Now”.");
  if (!cloud_ || cloud_->sync().metered().choice() != MeteredChoice::automatic) return meaning;
  return meaning + (cloud_->sync().metered().isMetered()
                        ? QStringLiteral(" The desktop calls the present connection metered.")
                        : QStringLiteral(" The desktop does not call the present connection metered."));
}

// ---- what stands behind it ----

void SyncController::setWatched(bool watched) {
  if (watched == watched_) return;
  watched_ = watched;
  if (watched_) {
    readDetails();
    readLog();
  }
  Q_EMIT changed();
}

QString SyncController::who(const std::string& userID) const {
  if (userID.empty()) return QStringLiteral("Someone");
  if (userID == model_.prefix()) return QStringLiteral("You");
  for (const AccountMember& member : model_.accountMembers().records())
    if (member.userId && member.userId->toString() == userID && !member.name.empty()) return toQt(member.name);
  return QStringLiteral("Another member");
}

void SyncController::readFiles() {
  files_.clear();
  for (const FileTransfer& transfer : cloud_->files().transfers()) {
    QString text = toQt(transfer.problem);
    if (!transfer.isParked)
      text = text.isEmpty() ? QStringLiteral("Waits to go up.") : text + QStringLiteral(" It is tried again.");
    QString kind = toQt(fileKind(transfer.bucket));
    if (transfer.isDeletion()) kind += QStringLiteral(" to be deleted");
    files_.append(QVariantMap{{QStringLiteral("id"), toQt(transfer.id.toString())},
                              {QStringLiteral("kind"), kind},
                              {QStringLiteral("name"), toQt(transfer.name)},
                              {QStringLiteral("failed"), transfer.isParked},
                              {QStringLiteral("text"), text}});
  }
}

void SyncController::readDetails() {
  files_.clear();
  waiting_.clear();
  problems_.clear();
  conflicts_.clear();
  if (shown()) {
    const auto add = [this](const QString& text, int count) {
      if (count > 0) waiting_.append(QVariantMap{{QStringLiteral("text"), text}, {QStringLiteral("count"), count}});
    };
    forEachKind([&]<class T>(std::type_identity<T>) {
      const KindFacts& kind = RecordKind<T>::facts;
      add(capitalised(kind.plural), model_.dirtyCount(kind.suffix));
    });
    add(QStringLiteral("Settings"), settingsWaiting(model_));
    readFiles();
    for (const SyncProblem& problem : cloud_->sync().problems()) {
      problems_.append(QVariantMap{{QStringLiteral("where"), nameOfTable(problem.table, !problem.record.empty())},
                                   {QStringLiteral("record"), toQt(problem.record)},
                                   {QStringLiteral("text"), toQt(problem.text)}});
    }
    std::vector<const ConflictNote*> open;
    for (const ConflictNote& note : model_.conflicts().records())
      if (!note.settled) open.push_back(&note);
    std::ranges::sort(open, std::ranges::greater(), &ConflictNote::createdAt);
    for (const ConflictNote* note : open) {
      QVariantList lines;
      for (const ConflictLine& line : conflictLines(model_, *note)) {
        lines.append(QVariantMap{{QStringLiteral("field"), toQt(line.field)},
                                 {QStringLiteral("now"), toQt(line.now)},
                                 {QStringLiteral("other"), toQt(line.other)}});
      }
      conflicts_.append(QVariantMap{{QStringLiteral("id"), toQt(note->id.toString())},
                                    {QStringLiteral("name"), toQt(nameOf(model_, *note))},
                                    {QStringLiteral("kind"), nameOfTable(note->tableName, true)},
                                    {QStringLiteral("deleted"), note->deleted},
                                    {QStringLiteral("kept"), who(note->keptBy)},
                                    {QStringLiteral("keptAt"), Format::toQml(note->keptAt)},
                                    {QStringLiteral("other"), who(note->otherBy)},
                                    {QStringLiteral("otherAt"), Format::toQml(note->otherAt)},
                                    {QStringLiteral("lines"), lines}});
    }
  }
  Q_EMIT detailsChanged();
}

void SyncController::readLog() {
  log_.clear();
  if (cloud_) {
    for (const SyncLog::Line& line : cloud_->log().lines() | std::views::reverse) {
      log_.append(QVariantMap{{QStringLiteral("at"), Format::toQml(line.at)},
                              {QStringLiteral("text"), line.text},
                              {QStringLiteral("problem"), line.isProblem}});
    }
  }
  Q_EMIT logChanged();
}

QString SyncController::logText() const {
  QStringList text;
  if (cloud_) {
    for (const SyncLog::Line& line : cloud_->log().lines()) text << toQt(formatTimestamp(line.at)) + u' ' + line.text;
  }
  return text.join(u'\n');
}

// ---- what the user does ----

void SyncController::syncNow() {
  if (!cloud_) {
    app_.toast(QStringLiteral("No fleet server is set up on this computer. “Manage Account…” tells how."));
  } else if (!shown()) {
    app_.toast(QStringLiteral("This fleet stays on this computer; there is nothing to sync."));
  } else if (cloud_->needsSignIn()) {
    app_.toast(QStringLiteral("Sign in again first; what you changed here waits."), QStringLiteral("soon"));
  } else {
    cloud_->files().retryAll();
    cloud_->sync().fullSync();
  }
}

void SyncController::retryFile(const QString& id) {
  if (const auto read = Uuid::parse(id.toStdString()); read && cloud_) cloud_->files().retry(*read);
}

void SyncController::removeFile(const QString& id) {
  if (const auto read = Uuid::parse(id.toStdString()); read && cloud_ && cloud_->files().discard(*read))
    app_.toast(QStringLiteral("The file stays on this computer and is not sent."));
}

const ConflictNote* SyncController::find(const QString& id) const {
  const auto read = Uuid::parse(id.toStdString());
  return read ? model_.conflicts().find(*read) : nullptr;
}

void SyncController::settle(Edit edit, const QString& told) {
  const QString refusal = refusalOf(model_.apply(std::move(edit)));
  app_.toast(refusal.isEmpty() ? told : refusal, refusal.isEmpty() ? QStringLiteral("ok") : QStringLiteral("overdue"));
}

void SyncController::takeBack(const QString& id) {
  const ConflictNote* note = find(id);
  if (!note) return;
  const QString name = toQt(nameOf(model_, *note));
  auto edit = thalvorn::takeBack(model_, *note);
  if (!edit) {
    app_.toast(toQt(edit.error()), QStringLiteral("overdue"));
    return;
  }
  settle(*std::move(edit), QStringLiteral("The other version of “%1” is back. Ctrl+Z undoes it.").arg(name));
}

void SyncController::keep(const QString& id) {
  const ConflictNote* note = find(id);
  if (!note) return;
  ConflictNote settled = *note;
  settled.settled = true;
  const std::string name = nameOf(model_, *note);
  Edit edit{.label = "Conflict over “" + name + "” settled"};
  edit.replace(*note, std::move(settled));
  settle(std::move(edit), QStringLiteral("“%1” stays as it is.").arg(toQt(name)));
}

}  // namespace thalvorn::app
