#include "sync/steps.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "sync/table_step.h"

namespace thalvorn::step_detail {
namespace {

constexpr std::string_view kTombstones = "deleted_records";

}  // namespace

SBError notSaved() {
  SBError error = SBError::server(kNotSaved, QStringLiteral("Not saved yet"));
  error.text = QStringLiteral("What was entered here could not be saved yet; it is sent once it is.");
  return error;
}

std::optional<Uuid> identityIn(const std::string& json) {
  const QJsonObject row = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
  return Uuid::parse(row.value(QStringLiteral("id")).toString().toStdString());
}

void note(SyncRun& run, std::string_view table, std::string record, const SBError& error) {
  run.problems.push_back({std::string(table), std::move(record), error.text.toStdString()});
}

SBTask<Tombstones> readTombstones(SyncRunPtr run, std::string table, std::vector<Uuid> ids) {
  Tombstones tombstones;
  if (!run->schema.tombstones) co_return tombstones;
  const auto reply = co_await readWhole(&run->client,
                                        TableQuery(kTombstones)
                                            .eq("account_id", run->accountID)
                                            .eq("table_name", table)
                                            .in("record_id", ids)
                                            .select("record_id,deleted_at,deleted_by"),
                                        "record_id.asc", run->token);
  if (!reply) {
    if (reply.error().remedy != SBError::Remedy::updateSchema) co_return std::unexpected(reply.error());
    run->schema.tombstones = false;
    co_return tombstones;
  }
  for (const QJsonValue& row : reply->rows) {
    const auto id = Uuid::parse(row[QStringLiteral("record_id")].toString().toStdString());
    const auto at = parseTimestamp(row[QStringLiteral("deleted_at")].toString().toStdString());
    if (id) tombstones[*id] = {at.value_or(Timestamp{}), row[QStringLiteral("deleted_by")].toString().toStdString()};
  }
  co_return tombstones;
}

SBTask<void> takeBackTombstones(SyncRunPtr run, std::string table, std::vector<Uuid> ids) {
  QJsonArray records;
  for (const Uuid& id : ids) records.append(QString::fromStdString(id.toString()));
  const auto taken = co_await run->client.call(
      QStringLiteral("undelete_records"), {{QStringLiteral("p_account_id"), QString::fromStdString(run->accountID)},
                                           {QStringLiteral("p_table_name"), QString::fromStdString(table)},
                                           {QStringLiteral("p_record_ids"), records}});
  if (!taken) co_return std::unexpected(taken.error());
  co_return {};
}

}  // namespace thalvorn::step_detail

namespace thalvorn {

THALVORN_INSTANTIATE_STEP(Vessel);
THALVORN_INSTANTIATE_STEP(VesselProfile);
THALVORN_INSTANTIATE_STEP(MaintenanceTask);
THALVORN_INSTANTIATE_STEP(ServiceLog);

}  // namespace thalvorn
