// sign-in, sign-out, sync, account, open-account, invite, conflicts, status: the fleet shared through the fleet server.

#include <fmt/format.h>

#include <QCoroFuture>
#include <algorithm>
#include <chrono>

#include "backend/next_emission.h"
#include "base/date_format.h"
#include "cli/commands.h"
#include "cli/json_text.h"
#include "cli/store_use.h"
#include "cli/text_table.h"
#include "platform/desktop_settings.h"
#include "sync/cloud_session.h"
#include "sync/conflicts.h"
#include "sync/file_words.h"
#include "sync/settings_step.h"

namespace thalvorn::cli {
namespace {

constexpr std::chrono::milliseconds kUntilChange = std::chrono::minutes(5);

CommandResult refusedBy(const SBError& error) {
  return refused(error.text.isEmpty() ? error.message.toStdString() : error.text.toStdString());
}

std::optional<CommandResult> unlessSignedIn(const CommandContext& context) {
  if (!context.cloud) return refused(context.cloudProblem);
  if (context.cloud->needsSignIn()) return refused("Nobody is signed in. Use: thalvorn-cli sign-in EMAIL");
  return std::nullopt;
}

/// The first line of standard input; its bytes leave memory with the command.
std::string passwordFrom(const std::string& input) {
  std::string password = input.substr(0, input.find('\n'));
  if (password.ends_with('\r')) password.pop_back();
  return password;
}

std::string when(const CommandContext& context, const std::optional<Timestamp>& time) {
  return time ? formatDistance(*time, context.now, context.calendar) : "never";
}

std::string problemLine(const SyncProblem& problem) {
  return fmt::format("{}{}: {}\n", problem.table, problem.record.empty() ? "" : " “" + printable(problem.record) + "”",
                     printable(problem.text));
}

/// Why no run was started, and what to do.
std::string whySkipped(const CommandContext& context) {
  const AppViewModel& store = *context.store;
  if (context.cloud->needsSignIn()) return "Nobody is signed in. Use: thalvorn-cli sign-in EMAIL";
  if (store.staysOnThisComputer() || store.prefix() != context.cloud->userID().toStdString())
    return "The fleet that is open stays on this computer; there is nothing to exchange.";
  if (store.accountID().empty()) return context.cloud->sync().whyNoAccount().toStdString();
  return "Another exchange is under way. Run sync again in a moment.";
}

CommandResult afterSync(const CommandContext& context, SyncOutcome outcome) {
  const SyncManager& sync = context.cloud->sync();
  CommandResult result;
  if (const std::string kept = context.cloud->setAsideFleet().toStdString(); !kept.empty())
    result.err = fmt::format(
        "You are no member any more of the account that the fleet here belonged to. It is kept, with what had not been "
        "sent, to be read: --user {}\n",
        kept);
  if (context.json) {
    std::vector<std::string> problems;
    for (const SyncProblem& problem : sync.problems())
      problems.push_back(JsonObject()
                             .text("table", problem.table)
                             .text("record", problem.record)
                             .text("problem", problem.text)
                             .take());
    result.out = JsonObject()
                     .flag("complete", outcome == SyncOutcome::complete)
                     .count("waiting", static_cast<std::size_t>(context.cloud->unsentCount()))
                     .json("problems", jsonList(problems))
                     .take() +
                 "\n";
  } else if (outcome == SyncOutcome::complete) {
    result.out = "Everything is up to date.\n";
  }
  if (outcome == SyncOutcome::complete) return result;
  result.exit = kRefused;
  if (sync.isOffline()) {
    result.err += "The fleet server cannot be reached. What was changed here waits.\n";
  } else if (outcome == SyncOutcome::skipped) {
    result.err += whySkipped(context) + "\n";
  } else if (sync.problems().empty()) {
    result.err += "The run was cut short. Run sync again.\n";
  } else {
    for (const SyncProblem& problem : sync.problems()) result.err += problemLine(problem);
  }
  return result;
}

QCoro::Task<SyncOutcome> syncNow(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing())
    if (!co_await nextEmission(&sync, &SyncManager::stateChanged, kUntilChange)) break;
  const QString setAside = cloud->setAsideFleet();
  SyncOutcome outcome = co_await sync.syncAll();
  if (cloud->setAsideFleet() != setAside) {
    // The run ended with the fleet of the former account; another one is for that of the present.
    while (sync.isSyncing())
      if (!co_await nextEmission(&sync, &SyncManager::stateChanged, kUntilChange)) break;
    outcome = co_await sync.syncAll();
  }
  co_return outcome;
}

/// Photos and papers go beside the records; the command ends when those that can go are there.
QCoro::Task<void> untilFilesMoved(CloudSession* cloud) {
  FileSync& files = cloud->files();
  while (files.isMoving())
    if (!co_await nextEmission(&files, &FileSync::changed, kUntilChange)) break;
}

std::string roleText(const AccountMember& member) {
  return std::string(member.role.display()) + (member.isOwner ? ", owner" : member.isActive ? "" : ", inactive");
}

std::string stateOf(const AccountMember& member) { return member.userId ? "" : "invited"; }

}  // namespace

QCoro::Task<CommandResult> signIn(CommandContext context, Arguments arguments) {
  if (!context.cloud) co_return refused(context.cloudProblem);
  const std::string password = passwordFrom(*context.input);
  if (password.empty()) co_return refused("No password came on standard input.");
  const auto signedIn = co_await context.cloud->signIn(QString::fromStdString(arguments.operands.front()),
                                                       QString::fromStdString(password));
  if (!signedIn) co_return refusedBy(signedIn.error());
  const SyncOutcome outcome = co_await syncNow(context.cloud);
  CommandResult result = done(fmt::format("Signed in as {}.\n", signedIn->email.toStdString()));
  if (signedIn->passwordChangeRequired) result.err = "The password has to be changed; do so in the program's window.\n";
  result.err += afterSync(context, outcome).err;
  co_return result;
}

QCoro::Task<CommandResult> signOut(CommandContext context, Arguments arguments) {
  if (!context.cloud) co_return refused(context.cloudProblem);
  if (context.cloud->userID().isEmpty()) co_return done("Nobody was signed in.\n");
  const int waiting = context.cloud->unsentCount();
  if (waiting > 0 && !arguments.has("--force"))
    co_return refused(
        fmt::format("{} not sent yet. Run sync first, or sign out with --force; they stay in this "
                    "computer's store and are sent after the next sign-in.",
                    counted(static_cast<std::size_t>(waiting), "change is", "changes are")));
  co_await context.cloud->signOut();
  co_return done("Signed out.\n");
}

QCoro::Task<CommandResult> syncFleet(CommandContext context, Arguments arguments) {
  if (auto problem = unlessSignedIn(context)) co_return *problem;
  if (!arguments.has("--watch")) {
    const SyncOutcome outcome = co_await syncNow(context.cloud);
    co_await untilFilesMoved(context.cloud);
    co_return afterSync(context, outcome);
  }
  if (context.inWindow) co_return refused("The program's window has the store open and keeps it in step already.");
  SyncManager& sync = context.cloud->sync();
  const DesktopSettings desktop;
  QObject::connect(&desktop, &DesktopSettings::meteredChanged, &desktop, [&sync, &desktop] {
    sync.metered().setDesktopSays(desktop.metered() == DesktopSettings::Metered::yes);
  });
  QObject::connect(&desktop, &DesktopSettings::networkReturned, context.cloud, &CloudSession::networkReturned);
  SyncOutcome outcome = co_await syncNow(context.cloud);
  for (;;) {
    const CommandResult result = afterSync(context, outcome);
    fmt::print("{} {}{}", formatTimestamp(context.store->now()), result.out, result.err);
    std::fflush(stdout);
    if (context.cloud->needsSignIn()) co_return refused("The session has expired. Sign in again.");
    // Nothing else changes this store meanwhile: what is to come comes from the server.
    do {
      co_await nextEmission(context.store, &AppViewModel::unsentChanged, kUntilChange);
    } while (sync.isSyncing() || (!sync.mayPull() && context.store->dirtyCount() == 0));
    outcome = sync.mayPull() ? co_await syncNow(context.cloud) : co_await sync.pushChanges();
  }
}

QCoro::Task<CommandResult> showAccount(CommandContext context, Arguments) {
  if (!context.cloud) co_return refused(context.cloudProblem);
  const AppViewModel& store = *context.store;
  if (context.cloud->userID().isEmpty()) co_return refused("Nobody is signed in. Use: thalvorn-cli sign-in EMAIL");
  const std::vector<OwnAccount>& accounts = context.cloud->account().accounts();
  if (context.json) {
    std::vector<std::string> members;
    std::vector<std::string> own;
    for (const OwnAccount& account : accounts)
      own.push_back(
          JsonObject().text("id", account.id).text("name", account.name).flag("owner", account.isOwner).take());
    for (const AccountMember& member : store.accountMembers().records()) members.push_back(toJson(member));
    co_return done(JsonObject()
                       .text("user", context.cloud->userEmail().toStdString())
                       .text("accountID", store.accountID())
                       .text("refusal", store.accessRefusal())
                       .json("accounts", jsonList(own))
                       .text("plan", context.cloud->account().facts().plan)
                       .count("seats", static_cast<std::size_t>(context.cloud->account().facts().seats()))
                       .json("members", jsonList(members))
                       .take() +
                   "\n");
  }
  TextTable table;
  for (const AccountMember& member : store.accountMembers().records())
    table.row({member.name, member.invitedEmail.value_or(""), roleText(member), stateOf(member)});
  std::string out = printable(context.cloud->userEmail().toStdString()) + "\n";
  if (!store.accessRefusal().empty()) out += printable(store.accessRefusal()) + "\n";
  if (const QString seats = context.cloud->seatsText(); !seats.isEmpty()) out += seats.toStdString() + "\n";
  out += table.take();
  if (accounts.size() > 1) {
    TextTable others;
    for (const OwnAccount& account : accounts)
      others.row(
          {account.id, account.name, account.isOwner ? "your own" : "", account.id == store.accountID() ? "open" : ""});
    out += "\nYour accounts:\n" + others.take();
  }
  co_return done(std::move(out));
}

QCoro::Task<CommandResult> openAccount(CommandContext context, Arguments arguments) {
  if (auto problem = unlessSignedIn(context)) co_return *problem;
  const auto& accounts = context.cloud->account().accounts();
  const auto chosen = std::ranges::find(accounts, arguments.operands.front(), &OwnAccount::id);
  if (chosen == accounts.end())
    co_return refused("You are not a member of an account with this identifier. “account” lists yours.");
  const auto opened = co_await context.cloud->openAccount(chosen->id);
  if (!opened) co_return refused(opened.error().toStdString());
  co_return afterSync(context, co_await syncNow(context.cloud));
}

QCoro::Task<CommandResult> inviteMember(CommandContext context, Arguments arguments) {
  if (auto problem = unlessSignedIn(context)) co_return *problem;
  const auto role = caseFromRaw<TeamRole>(arguments.required("--role"));
  if (!role) co_return misused("--role is admin, editor or viewOnly.");
  const auto invited = co_await context.cloud->inviteTeamMember(
      QString::fromStdString(arguments.operands.front()), QString::fromStdString(arguments.required("--name")), *role);
  if (!invited) co_return refused(invited.error().toStdString());
  co_return done(fmt::format("{} is invited.\n", printable(arguments.operands.front())));
}

QCoro::Task<CommandResult> showConflicts(CommandContext context, Arguments arguments) {
  AppViewModel& store = *context.store;
  if (const auto chosen = arguments.value("--take-back")) {
    const auto id = Uuid::parse(*chosen);
    const ConflictNote* note = id ? store.conflicts().find(*id) : nullptr;
    if (!note) co_return refused(fmt::format("There is no conflict {}.", *chosen));
    auto edit = takeBack(store, *note);
    if (!edit) co_return refused(edit.error());
    const auto saved = co_await whenSaved(context, store.apply(*std::move(edit)));
    if (!saved) co_return saved.error();
    co_return done("Taken back.\n");
  }
  std::vector<const ConflictNote*> notes;
  for (const ConflictNote& note : store.conflicts().records())
    if (!note.settled || arguments.has("--all")) notes.push_back(&note);
  std::ranges::sort(notes, std::ranges::greater(), &ConflictNote::createdAt);
  if (context.json) {
    std::vector<std::string> all;
    for (const ConflictNote* note : notes) all.push_back(toJson(*note));
    co_return done(jsonLines(all));
  }
  if (notes.empty()) co_return done("No conflicts.\n");
  std::string out;
  for (const ConflictNote* note : notes) {
    out += fmt::format("{}  {} “{}”{}\n", note->id.toString(), formatTimestamp(note->createdAt),
                       printable(nameOf(store, *note)), note->deleted ? " was deleted while someone changed it" : "");
    for (const ConflictLine& line : conflictLines(store, *note))
      out += fmt::format("    {}: {} — the other: {}\n", line.field, printable(line.now), printable(line.other));
  }
  co_return done(std::move(out));
}

QCoro::Task<CommandResult> showStatus(CommandContext context, Arguments) {
  const AppViewModel& store = *context.store;
  const std::string user = context.cloud ? context.cloud->userEmail().toStdString() : std::string();
  const bool expired = context.cloud && !user.empty() && context.cloud->needsSignIn();
  const std::optional<Timestamp> last = context.cloud ? context.cloud->sync().lastSyncDate() : std::nullopt;
  std::vector<std::pair<std::string_view, int>> waiting;
  forEachKind([&]<class T>(std::type_identity<T>) {
    if (const int count = store.dirtyCount(RecordKind<T>::facts.suffix); count > 0)
      waiting.emplace_back(RecordKind<T>::facts.table, count);
  });
  if (const int count = settingsWaiting(store); count > 0) waiting.emplace_back("user_settings", count);
  std::vector<FileTransfer> files;
  if (context.cloud) files = context.cloud->files().transfers();
  const auto failed = static_cast<std::size_t>(std::ranges::count(files, true, &FileTransfer::isParked));
  if (context.json) {
    JsonObject tables;
    for (const auto& [table, count] : waiting) tables.count(table, static_cast<std::size_t>(count));
    co_return done(JsonObject()
                       .text("user", user)
                       .flag("expired", expired)
                       .text("accountID", store.accountID())
                       .text("refusal", store.accessRefusal())
                       .json("waiting", tables.take())
                       .count("filesWaiting", files.size() - failed)
                       .count("filesFailed", failed)
                       .count("conflicts", static_cast<std::size_t>(std::ranges::count(store.conflicts().records(),
                                                                                       false, &ConflictNote::settled)))
                       .json("lastSync", last ? "\"" + formatTimestamp(*last) + "\"" : "null")
                       .take() +
                   "\n");
  }
  std::string out;
  if (store.staysOnThisComputer()) {
    out = store.isDemo() ? "The demo fleet; it stays on this computer.\n" : "A fleet kept on this computer.\n";
  } else if (user.empty()) {
    out = context.cloud ? "Nobody is signed in.\n" : context.cloudProblem + "\n";
  } else {
    const std::string account = !store.accessRefusal().empty() ? printable(store.accessRefusal())
                                : store.accountID().empty()    ? "not determined yet; sync asks for it"
                                                               : store.accountID();
    out = fmt::format("Signed in as {}{}.\nAccount: {}\nLast sync: {}\n", printable(user),
                      expired ? ", but the session has expired: sign in again" : "", account, when(context, last));
  }
  if (waiting.empty() && files.empty()) out += "Nothing waits to be sent.\n";
  for (const auto& [table, count] : waiting) out += fmt::format("{} waiting in {}\n", count, table);
  if (files.size() > failed) out += counted(files.size() - failed, "file", "files") + " waiting to go up\n";
  for (const FileTransfer& file : files)
    if (file.isParked)
      out += fmt::format("{} “{}” could not go up: {}\n", fileKind(file.bucket), printable(file.name),
                         printable(file.problem));
  co_return done(std::move(out));
}

}  // namespace thalvorn::cli
