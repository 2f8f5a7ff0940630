#include "backend/file_transfer_queue.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QTimer>
#include <algorithm>

#include "backend/logging.h"
#include "base/json_codec.h"

namespace thalvorn {

THALVORN_JSON_INSTANTIATE(FileTransfer);

namespace {

using namespace std::chrono_literals;

/// Whether an attempt may succeed later without anybody doing anything.
bool passes(const StorageError& error) {
  return error.kind != StorageError::Case::badURL &&
         (error.cause.remedy == SBError::Remedy::retryLater || error.cause.remedy == SBError::Remedy::refreshToken ||
          error.cause.remedy == SBError::Remedy::waitForClock);
}

std::chrono::milliseconds pauseAfter(std::int64_t attempts, const StorageError& error) {
  const std::chrono::seconds own =
      std::min<std::chrono::seconds>(5s * (1LL << std::min<std::int64_t>(attempts, 8)), 300s);
  return error.cause.retryAfter.value_or(own);
}

}  // namespace

FileTransferQueue::FileTransferQueue(SupabaseStorage& storage, SupabaseClient& client, const Clock& clock,
                                     Timing& timing, const QString& file, QObject* parent)
    : QObject(parent), storage_(storage), client_(client), clock_(clock), timing_(timing), file_(file) {
  load();
  connect(&client_, &SupabaseClient::sessionChanged, this, &FileTransferQueue::process);
  QTimer::singleShot(0, this, &FileTransferQueue::process);
}

FileTransferQueue::~FileTransferQueue() { *alive_ = false; }

void FileTransferQueue::load() {
  QFile file(file_);
  if (!file.exists()) return;
  if (file.open(QIODevice::ReadOnly)) {
    auto list = listFromJson<FileTransfer>(file.readAll().toStdString(), JsonFields::full);
    if (list) transfers_ = std::move(list->records);
    if (list && list->setAside.empty()) return;
  }
  const QString aside =
      file_ + QStringLiteral(".unreadable-") + QString::number(clock_.now().time_since_epoch().count());
  QFile::copy(file_, aside);
  qCWarning(backendLog).noquote() << QStringLiteral(
                                         "⚠️ The list of waiting files could not be read whole; a copy is in ") +
                                         aside;
}

bool FileTransferQueue::save() const {
  QSaveFile file(file_);
  if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner))
    return false;
  file.write(QByteArray::fromStdString(listToJson(transfers_, JsonFields::full)));
  return file.commit();
}

bool FileTransferQueue::add(FileTransfer transfer) {
  transfer.id = Uuid::random();
  transfer.userID = client_.userID().toStdString();
  transfer.addedAt = clock_.now();
  auto before = transfers_;
  std::erase_if(transfers_, [&](const FileTransfer& other) {
    return other.userID == transfer.userID && other.bucket == transfer.bucket && other.path == transfer.path;
  });
  transfers_.push_back(std::move(transfer));
  if (!save()) {
    transfers_ = std::move(before);
    return false;
  }
  Q_EMIT changed();
  process();
  return true;
}

bool FileTransferQueue::upload(const QString& account, const QString& bucket, const QString& path,
                               const QString& local_file, const QString& name) {
  FileTransfer transfer;
  transfer.name = name.toStdString();
  transfer.accountID = account.toStdString();
  transfer.bucket = bucket.toStdString();
  transfer.path = path.toStdString();
  transfer.localFile = local_file.toStdString();
  return !transfer.localFile.empty() && add(std::move(transfer));
}

bool FileTransferQueue::remove(const QString& account, const QString& bucket, const QString& path) {
  FileTransfer transfer;
  transfer.accountID = account.toStdString();
  transfer.bucket = bucket.toStdString();
  transfer.path = path.toStdString();
  return add(std::move(transfer));
}

void FileTransferQueue::retryParked() {
  for (FileTransfer& transfer : transfers_) transfer.isParked = false;
  save();
  Q_EMIT changed();
  process();
}

void FileTransferQueue::retry(const Uuid& id) {
  const auto found = find(id);
  if (found == transfers_.end()) return;
  found->isParked = false;
  std::rotate(transfers_.begin(), found, found + 1);
  save();
  Q_EMIT changed();
  process();
}

bool FileTransferQueue::discard(const Uuid& id) {
  const auto found = find(id);
  if (found == transfers_.end()) return false;
  transfers_.erase(found);
  save();
  Q_EMIT changed();
  return true;
}

void FileTransferQueue::process() {
  if (!running_ || pausing_) run();
}

void FileTransferQueue::setAccount(const QString& account) { account_ = account.toStdString(); }

std::optional<FileTransfer> FileTransferQueue::next() const {
  const std::string user = client_.userID().toStdString();
  for (const FileTransfer& transfer : transfers_)
    if (!transfer.isParked && transfer.userID == user && (!account_ || transfer.accountID == *account_))
      return transfer;
  return std::nullopt;
}

std::vector<FileTransfer>::iterator FileTransferQueue::find(const Uuid& id) {
  return std::ranges::find(transfers_, id, &FileTransfer::id);
}

QCoro::Task<void> FileTransferQueue::run() {
  const auto alive = alive_;
  const int turn = ++turn_;
  running_ = true;
  pausing_ = false;
  while (client_.isAuthenticated()) {
    const auto waiting = next();
    if (!waiting) break;
    const FileTransfer& transfer = *waiting;
    const QString bucket = QString::fromStdString(transfer.bucket);
    const QString path = QString::fromStdString(transfer.path);
    std::optional<StorageError> failure;
    if (transfer.isDeletion()) {
      const auto result = co_await storage_.remove(bucket, path);
      if (!result) failure = result.error();
    } else {
      const auto result = co_await storage_.uploadFile(bucket, path, QString::fromStdString(transfer.localFile),
                                                       SupabaseStorage::contentType(path));
      if (!result) failure = result.error();
    }
    if (!*alive) co_return;
    if (!failure) {
      const auto now = find(transfer.id);
      if (now != transfers_.end()) transfers_.erase(now);
      save();
      Q_EMIT done(transfer);
      if (!*alive) co_return;
      Q_EMIT changed();
      if (!*alive) co_return;
      continue;
    }
    Q_EMIT failed(transfer, *failure);
    if (!*alive) co_return;
    if (failure->kind == StorageError::Case::notAuthenticated || failure->cause.remedy == SBError::Remedy::signIn)
      break;
    // The list may have changed meanwhile: a transfer that was replaced or discarded is no longer there.
    if (const auto now = find(transfer.id); now != transfers_.end()) {
      now->attempts += 1;
      now->problem = failure->cause.text.toStdString();
      now->isParked = !passes(*failure);
      save();
      Q_EMIT changed();
      if (!*alive) co_return;
    }
    if (!passes(*failure)) continue;
    pausing_ = true;
    Q_EMIT changed();
    if (!*alive) co_return;
    co_await timing_.wait(pauseAfter(transfer.attempts, *failure));
    if (!*alive || turn != turn_) co_return;
    pausing_ = false;
  }
  running_ = false;
  Q_EMIT changed();
}

}  // namespace thalvorn
