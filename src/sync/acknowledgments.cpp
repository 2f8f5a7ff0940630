#include "sync/acknowledgments.h"

#include <QJsonObject>
#include <algorithm>

#include "sync/row_upload.h"
#include "sync/table_reader.h"

namespace thalvorn {
namespace {

constexpr std::string_view kTable = kAcknowledgmentTables.front();
constexpr std::string_view kKey = "post_id.asc,user_id.asc";

}  // namespace

SBTask<Acknowledgments> readAcknowledgments(SyncRunPtr run, std::vector<Uuid> posts) {
  Acknowledgments acknowledgments;
  if (posts.empty()) co_return acknowledgments;
  const auto read = co_await readWhole(
      &run->client,
      TableQuery(kTable).eq("account_id", run->accountID).in("post_id", posts).select("post_id,user_id,account_id"),
      kKey, run->token);
  if (!read) co_return std::unexpected(read.error());
  for (const QJsonValue& row : read->rows) {
    const auto post = Uuid::parse(row[QStringLiteral("post_id")].toString().toStdString());
    const auto user = Uuid::parse(row[QStringLiteral("user_id")].toString().toStdString());
    if (post && user) acknowledgments[*post].push_back(user->toString());
  }
  for (auto& entry : acknowledgments) std::ranges::sort(entry.second);
  co_return acknowledgments;
}

std::vector<std::string> withOwnAcknowledgment(const std::vector<std::string>& stored,
                                               const std::vector<std::string>& wanted, const std::string& userID) {
  std::vector<std::string> users = stored;
  std::erase(users, userID);
  if (std::ranges::find(wanted, userID) != wanted.end()) users.push_back(userID);
  std::ranges::sort(users);
  return users;
}

SBTask<void> sendAcknowledgment(SyncRunPtr run, Uuid post, bool acknowledged) {
  if (!acknowledged)
    co_return co_await run->client.remove(TableQuery(kTable).eq("post_id", post).eq("user_id", run->userID));
  const AckRow row{.postId = post,
                   .userId = Uuid::parse(run->userID).value_or(Uuid{}),
                   .accountId = Uuid::parse(run->accountID).value_or(Uuid{})};
  const auto sent = co_await run->client.upsert(
      TableQuery(kTable), QByteArray::fromStdString(rowsToJson(std::vector{row}, RowColumns::all)));
  logUpsert(run->log, kTable, 1, sent);
  co_return sent;
}

}  // namespace thalvorn
