// The exchange with a backend on this computer: the first sync of 100,000 tasks beside libcurl fetching the same pages
// with the same decoder into SQLite, a run with nothing changed, and one edit until it stands in the database beside
// the bare upsert.

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>
#include <curl/curl.h>

#include <QCoreApplication>
#include <QCoroFuture>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <filesystem>

#include "backend/next_emission.h"
#include "backend/row_kind.h"
#include "figures.h"
#include "sync/cloud_session.h"
#include "tests/sync/backend_process.h"
#include "tests/sync/faulty_proxy.h"

using namespace thalvorn;

namespace {

constexpr int kTasks = 100'000;
constexpr int kEdits = 40;

QCoro::Task<SyncOutcome> syncNow(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing()) co_await nextEmission(&sync, &SyncManager::stateChanged, std::chrono::minutes(10));
  co_return co_await sync.syncAll();
}

QCoro::Task<bool> untilQuiet(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing()) co_await nextEmission(&sync, &SyncManager::stateChanged, std::chrono::minutes(10));
  co_return sync.problems().empty();
}

QCoro::Task<void> untilSaved(Saving saving) { co_await saving; }

struct Computer {
  explicit Computer(const BackendConfig& config)
      : cache(LocalCache::open(std::filesystem::path(folder.path().toStdString()) / "store.db").value()),
        model(*cache, clock),
        cloud(model, config, clock, timing, {.deletionDelay = std::chrono::seconds(0)}) {}

  QTemporaryDir folder;
  SystemClock clock;
  SystemTiming timing;
  std::unique_ptr<LocalCache> cache;
  AppViewModel model;
  CloudSession cloud;
};

std::size_t takeBody(char* data, std::size_t size, std::size_t count, void* body) {
  static_cast<std::string*>(body)->append(data, size * count);
  return size * count;
}

/// Fetches the pages over one connection, decodes the rows and puts them into SQLite.
void fetchByHand(const BackendProcess& backend, const std::string& token, const std::string& account) {
  const QTemporaryDir folder;
  SQLite::Database database((folder.path() + QStringLiteral("/rows.db")).toStdString(),
                            SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
  database.exec(
      "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL; CREATE TABLE row(id TEXT PRIMARY KEY, json TEXT)");
  CURL* curl = curl_easy_init();
  curl_slist* headers = curl_slist_append(nullptr, ("apikey: " + backend.key().toStdString()).c_str());
  headers = curl_slist_append(headers, ("Authorization: Bearer " + token).c_str());
  curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, takeBody);
  for (int offset = 0; offset < kTasks; offset += 1000) {
    std::string body;
    const std::string url = backend.url().toString().toStdString() + "/rest/v1/maintenance_tasks?account_id=eq." +
                            account + "&order=id.asc&limit=1000&offset=" + std::to_string(offset);
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
    if (curl_easy_perform(curl) != CURLE_OK) std::abort();
    const auto rows = listFromJson<SBTaskRow>(body, JsonFields::full);
    SQLite::Transaction transaction(database);
    SQLite::Statement insert(database, "INSERT OR REPLACE INTO row VALUES(?, ?)");
    for (const SBTaskRow& row : rows->records) {
      SQLite::bind(insert, row.id.toString(), toJson(recordFromRow<MaintenanceTask>(row)->record));
      insert.exec();
      insert.reset();
    }
    transaction.commit();
  }
  curl_slist_free_all(headers);
  curl_easy_cleanup(curl);
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QLoggingCategory::setFilterRules(QStringLiteral("thalvorn.*=false"));
  const BackendProcess backend;
  if (!backend.isRunning()) return 1;
  FaultyProxy proxy(backend.url(), 1);
  const BackendConfig direct = backend.config();
  const BackendConfig counted = BackendConfig::from(proxy.url().toString(), backend.key()).value();

  Computer first(direct);
  if (!QCoro::waitFor(first.cloud.signIn(backend.email(0), backend.password(0)))) return 1;
  QCoro::waitFor(untilQuiet(&first.cloud));
  const Vessel vessel{.id = Uuid::random(), .name = "M/Y Meridian"};
  QCoro::waitFor(untilSaved(first.model.add(vessel)));
  QCoro::waitFor(syncNow(&first.cloud));
  const std::string account = first.model.accountID();
  if (!backend.execute(
          QStringLiteral("insert into public.maintenance_tasks(id, user_id, account_id, vessel_id, title, notes,"
                         " category, trigger_type, due_date) select gen_random_uuid(), '%1', '%2', '%3',"
                         " 'Task ' || n, 'Check, clean and note the reading', 'Engine', 'date', now() from"
                         " generate_series(1, %4) n")
              .arg(first.cloud.userID(), QString::fromStdString(account), QString::fromStdString(vessel.id.toString()))
              .arg(kTasks)))
    return 1;

  const std::string token = first.cache->preference("sb_access_token").value_or("");
  bench::Samples byHand;
  byHand.time([&] { fetchByHand(backend, token, account); });
  bench::Samples sync;
  Computer second(counted);
  sync.time([&] {
    if (!QCoro::waitFor(second.cloud.signIn(backend.email(0), backend.password(0)))) std::abort();
    QCoro::waitFor(untilQuiet(&second.cloud));
  });
  if (second.model.tasks().size() != kTasks) return 1;
  bench::Compared{sync.median(), byHand.median()}.atMost("first sync of 100,000 tasks, sign-in to the end",
                                                         "libcurl, same decoder, SQLite", 1.5);

  QCoro::waitFor(syncNow(&second.cloud));
  const int before = proxy.requests();
  const qint64 bytes = proxy.bytes();
  QCoro::waitFor(syncNow(&second.cloud));
  bench::printFigure("a run with nothing changed, requests", std::to_string(proxy.requests() - before), "at most 3",
                     (proxy.requests() - before) / 3.0, 1);
  bench::printFigure("a run with nothing changed, both ways", std::to_string(proxy.bytes() - bytes) + " bytes", "10 kB",
                     static_cast<double>(proxy.bytes() - bytes) / 10'000, 1);

  QCoro::waitFor(syncNow(&first.cloud));
  bench::Samples edit;
  bench::Samples upsert;
  for (int i = 0; i < kEdits; ++i) {
    Vessel changed = *first.model.vessels().find(vessel.id);
    changed.notes = "Edit " + std::to_string(i);
    QCoro::waitFor(untilSaved(first.model.update(changed)));
    edit.time([&] { QCoro::waitFor(first.cloud.sync().pushChanges()); });
    const RowContext context{.userID = Uuid::parse(first.cloud.userID().toStdString()).value(),
                             .accountID = Uuid::parse(account).value(),
                             .updatedAt = first.model.now(),
                             .seenVersion = {}};
    const std::string body = rowsToJson(std::vector{rowFromRecord<Vessel>(changed, context)}, RowColumns::all);
    upsert.time(
        [&] { QCoro::waitFor(first.cloud.client().upsert(TableQuery("vessels"), QByteArray::fromStdString(body))); });
  }
  bench::Compared{edit.median(), upsert.median()}.atMost("one edit until it stands in the database", "the bare upsert",
                                                         3);
}
