#include "sync/row_upload.h"

#include <QCoroFuture>

namespace thalvorn {
namespace {

constexpr std::size_t kMostBytes = 900'000;
constexpr int kMostWaits = 3;
constexpr std::chrono::seconds kLongestWait{20};
constexpr std::chrono::seconds kUsualWait{2};

/// Waits out a server that is busy, as it asks for; false when it stays busy.
QCoro::Task<bool> waitOut(SyncRunPtr run, SBError error, int attempt) {
  const std::chrono::seconds wait = error.retryAfter.value_or(kUsualWait * attempt);
  if (attempt > kMostWaits || wait > kLongestWait) co_return false;
  co_await run->timing.wait(wait);
  co_return true;
}

/// Consecutive rows of an upload.
struct Batch {
  std::size_t first;
  std::size_t count;
};

void halve(const Batch& batch, std::vector<Batch>& into) {
  const std::size_t half = batch.count / 2;
  into.push_back({batch.first + half, batch.count - half});
  into.push_back({batch.first, half});
}

}  // namespace

bool isRefusal(const SBError& error) {
  return error.remedy == SBError::Remedy::mendRecord || error.remedy == SBError::Remedy::askPermission;
}

void logUpsert(SyncLog& log, std::string_view table, std::size_t rows, const std::expected<void, SBError>& sent) {
  const QString name = QString::fromUtf8(table.data(), static_cast<qsizetype>(table.size()));
  if (sent) return log.say(QStringLiteral("upsert %1 [%2]").arg(name).arg(rows));
  const SBError& error = sent.error();
  QString message = error.code.isEmpty() ? QString() : error.code + QStringLiteral(": ");
  message += error.reason.left(300);
  log.say(QStringLiteral("upsert %1 failed [%2]: %3").arg(name).arg(error.status).arg(message));
}

SBTask<void> uploadRows(SyncRunPtr run, RunToken token, RowUpload upload, std::unordered_set<Uuid>* refusedRows) {
  std::vector<Batch> batches{{0, upload.ids.size()}};
  int attempt = 0;
  while (!batches.empty()) {
    const Batch batch = batches.back();
    batches.pop_back();
    if (batch.count == 0) continue;
    const std::string body =
        upload.body(batch.first, batch.count, run->schema.ownColumns ? RowColumns::all : RowColumns::standard);
    if (body.size() > kMostBytes && batch.count > 1) {
      halve(batch, batches);
      continue;
    }
    const auto sent = co_await run->client.upsert(TableQuery(upload.table), QByteArray::fromStdString(body));
    if (token.isOver()) co_return {};
    logUpsert(run->log, upload.table, batch.count, sent);
    if (sent) continue;
    const SBError& error = sent.error();
    if (error.remedy == SBError::Remedy::updateSchema && run->schema.ownColumns) {
      run->schema.ownColumns = false;
      batches.push_back(batch);
    } else if (error.remedy == SBError::Remedy::retryLater && error.status != 0) {
      if (!co_await waitOut(run, error, ++attempt)) co_return std::unexpected(error);
      if (token.isOver()) co_return {};
      batches.push_back(batch);
    } else if (!isRefusal(error) && error.remedy != SBError::Remedy::smallerBatch) {
      co_return std::unexpected(error);
    } else if (batch.count > 1) {
      halve(batch, batches);
    } else {
      const Uuid id = upload.ids[batch.first];
      const std::string called = upload.nameOf(id);
      if (!upload.failure.empty()) run->log.say(std::string(upload.failure) + called);
      run->problems.push_back({std::string(upload.table), called, error.text.toStdString()});
      refusedRows->insert(id);
    }
  }
  co_return {};
}

}  // namespace thalvorn
