// The exchange with a backend on this computer: the first sync of 100,000 tasks beside libcurl fetching the same pages
// with the same decoder into SQLite, a run with nothing changed, and one edit until it stands in the database beside
// the bare upsert.

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>
#include <curl/curl.h>

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include "backend/row_kind.h"
#include "figures.h"
#include "shared_fleet.h"
#include "tests/sync/faulty_proxy.h"

using namespace thalvorn;
using bench::Computer;

namespace {

constexpr int kTasks = 100'000;
constexpr int kEdits = 40;

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
  if (!first.enter(backend.email(0), backend.password(0))) return 1;
  const std::optional<Vessel> vessel = bench::makeTasks(first, backend, kTasks);
  if (!vessel) return 1;
  const std::string account = first.model.accountID();

  const std::string token = first.cache->preference("sb_access_token").value_or("");
  bench::Samples byHand;
  byHand.time([&] { fetchByHand(backend, token, account); });
  bench::Samples sync;
  Computer second(counted);
  sync.time([&] {
    if (!second.enter(backend.email(0), backend.password(0))) std::abort();
  });
  if (second.model.tasks().size() != kTasks) return 1;
  bench::Compared{sync.median(), byHand.median()}.atMost("first sync of 100,000 tasks, sign-in to the end",
                                                         "libcurl, same decoder, SQLite", 1.5);

  QCoro::waitFor(bench::syncNow(&second.cloud));
  const int before = proxy.requests();
  const qint64 bytes = proxy.bytes();
  QCoro::waitFor(bench::syncNow(&second.cloud));
  bench::printFigure("a run with nothing changed, requests", std::to_string(proxy.requests() - before), "at most 3",
                     (proxy.requests() - before) / 3.0, 1);
  bench::printFigure("a run with nothing changed, both ways", std::to_string(proxy.bytes() - bytes) + " bytes", "10 kB",
                     static_cast<double>(proxy.bytes() - bytes) / 10'000, 1);

  QCoro::waitFor(bench::syncNow(&first.cloud));
  bench::Samples edit;
  bench::Samples upsert;
  for (int i = 0; i < kEdits; ++i) {
    Vessel changed = *first.model.vessels().find(vessel->id);
    changed.notes = "Edit " + std::to_string(i);
    QCoro::waitFor(bench::untilSaved(first.model.update(changed)));
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
