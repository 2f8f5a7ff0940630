#include "backend/supabase_storage.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "backend/file_transfer_queue.h"
#include "backend/testing.h"
#include "message_catcher.h"

namespace thalvorn {
namespace {

using testing::HasSubstr;
using testing::Not;
using Case = StorageError::Case;

const QString kBucket = QStringLiteral("task_photos");
const QString kPath = QStringLiteral("11111111-1111-4111-8111-111111111111/a b.jpg");

struct Storage {
  explicit Storage(StoredSession session = Backend::signedIn(), qint64 cache_bytes = 1 << 20)
      : backend(std::move(session)), cache(folder.filePath(QStringLiteral("cache")), cache_bytes) {}
  QString file(const QString& name, const QByteArray& content) const {
    QFile out(folder.filePath(name));
    EXPECT_TRUE(out.open(QIODevice::WriteOnly) && out.write(content) == content.size());
    return out.fileName();
  }
  auto upload(const QString& bucket, const QString& path, const QByteArray& content) {
    return QCoro::waitFor(storage.upload(bucket, path, content, SupabaseStorage::contentType(path)));
  }

  QTemporaryDir folder;
  Backend backend;
  DownloadCache cache;
  SupabaseStorage storage{*backend.client, cache};
};

TEST(SupabaseStorageTest, SendsWhatTheServiceTakes) {
  Storage on;
  on.backend.server.script({{200, R"({"Id":"x","Key":"task_photos/p"})", {}},
                            {200, "{}", {}},
                            {200, "bytes", {}},
                            {200, R"({"message":"Successfully deleted"})", {}}});
  EXPECT_EQ(on.upload(kBucket, kPath, "photo").value(), kPath);
  const FakeRequest up = on.backend.server.last();
  EXPECT_EQ(up.method, "POST");
  EXPECT_EQ(up.target, "/storage/v1/object/task_photos/11111111-1111-4111-8111-111111111111/a%20b.jpg");
  EXPECT_EQ(up.headers["content-type"], "image/jpeg");
  EXPECT_EQ(up.headers["x-upsert"], "true");
  EXPECT_EQ(up.headers["apikey"], "anon-key");
  EXPECT_EQ(up.headers["authorization"], "Bearer old-access");
  EXPECT_EQ(up.body, "photo");

  EXPECT_TRUE(on.upload(QStringLiteral("guest_documents"), QStringLiteral("x/attachment.bin"), {}));
  EXPECT_EQ(on.backend.server.last().target, "/storage/v1/object/guest-documents/x/attachment.bin");
  EXPECT_EQ(on.backend.server.last().headers["content-type"], "application/octet-stream");

  EXPECT_EQ(QCoro::waitFor(on.storage.download(kBucket, kPath))->content, "bytes");
  EXPECT_THAT(on.backend.server.last().target.toStdString(),
              HasSubstr("/storage/v1/object/authenticated/task_photos/"));
  EXPECT_TRUE(QCoro::waitFor(on.storage.remove(kBucket, kPath)));
  EXPECT_EQ(on.backend.server.last().method, "DELETE");
  EXPECT_FALSE(on.backend.server.last().headers.contains("content-type"));
}

TEST(SupabaseStorageTest, RefusesBeforeSending) {
  Storage out(StoredSession{});
  EXPECT_EQ(out.upload(kBucket, kPath, "x").error().kind, Case::notAuthenticated);
  EXPECT_EQ(QCoro::waitFor(out.storage.download(kBucket, kPath)).error().kind, Case::notAuthenticated);
  EXPECT_EQ(QCoro::waitFor(out.storage.remove(kBucket, kPath)).error().kind, Case::notAuthenticated);

  Storage on;
  for (const char* path : {"", "/a", "a/", "a//b", "../a", "a/./b", "käse.jpg", "a#b", "a?b%", "a[1]", "~a"}) {
    EXPECT_EQ(on.upload(kBucket, QString::fromUtf8(path), "x").error().kind, Case::badURL) << path;
  }
  EXPECT_EQ(on.upload(kBucket, kPath, QByteArray(SupabaseStorage::kMaxBytes + 1, 'x')).error().status, 413);
  EXPECT_TRUE(out.backend.server.requests().empty());
  EXPECT_TRUE(on.backend.server.requests().empty());
}

TEST(SupabaseStorageTest, UnderstandsRefusalsThatAllComeAs400) {
  const struct {
    const char* what;
    QByteArray body;
    int status;
    bool missing;
    SBError::Remedy remedy;
  } cases[] = {
      {"missing", R"({"statusCode":"404","error":"not_found","message":"Object not found"})", 404, true,
       SBError::Remedy::mendRecord},
      {"missing, with a code", R"({"statusCode":"404","error":"not_found","message":"gone","code":"NoSuchKey"})", 404,
       true, SBError::Remedy::mendRecord},
      {"no bucket", R"({"statusCode":"404","error":"Bucket not found","message":"Bucket not found"})", 404, false,
       SBError::Remedy::mendRecord},
      {"policy",
       R"({"statusCode":"403","error":"Unauthorized","message":"new row violates row-level security policy"})", 403,
       false, SBError::Remedy::askPermission},
      {"kind of file", R"({"statusCode":"415","error":"invalid_mime_type","message":"mime type not supported"})", 415,
       false, SBError::Remedy::mendRecord},
      {"locked", R"({"statusCode":"423","error":"locked","message":"Resource locked"})", 423, false,
       SBError::Remedy::retryLater},
      {"database timeout", R"({"statusCode":"544","error":"DatabaseTimeout","message":"timed out"})", 544, false,
       SBError::Remedy::retryLater},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.what);
    Storage on;
    on.backend.server.otherwise = [&](const FakeRequest&) { return FakeReply{400, one.body, {}}; };
    const auto up = on.upload(kBucket, kPath, "x");
    ASSERT_FALSE(up);
    EXPECT_EQ(up.error().kind, Case::uploadFailed);
    EXPECT_EQ(up.error().status, one.status);
    EXPECT_EQ(up.error().isMissing(), one.missing);
    EXPECT_EQ(up.error().body, QString::fromUtf8(one.body));
    EXPECT_EQ(static_cast<int>(up.error().cause.remedy), static_cast<int>(one.remedy));
    EXPECT_EQ(QCoro::waitFor(on.storage.download(kBucket, kPath)).error().kind, Case::downloadFailed);
    EXPECT_EQ(QCoro::waitFor(on.storage.remove(kBucket, kPath)).has_value(), one.missing);
  }
}

TEST(SupabaseStorageTest, RefreshesATokenThatHasExpired) {
  Storage on;
  on.backend.server.script(
      {{400, R"({"statusCode":"403","error":"Unauthorized","message":"\"exp\" claim timestamp check failed"})", {}},
       {200, tokenReply("new"), {}},
       {200, "{}", {}}});
  EXPECT_TRUE(on.upload(kBucket, kPath, "photo"));
  EXPECT_EQ(on.backend.server.last().headers["authorization"], "Bearer new-access");
  EXPECT_EQ(on.backend.server.last().body, "photo");
  EXPECT_EQ(on.backend.server.last().headers["content-type"], "image/jpeg");
}

TEST(SupabaseStorageTest, SendsOneUploadToAPathAtATime) {
  Storage on;
  on.backend.server.otherwise = [](const FakeRequest& request) {
    return request.body == "first" ? FakeReply{400, R"({"statusCode":"500"})", {}} : FakeReply{200, "{}", {}};
  };
  auto first = on.storage.upload(kBucket, kPath, "first", QStringLiteral("image/jpeg"));
  auto second = on.storage.upload(kBucket, kPath, "second", QStringLiteral("image/jpeg"));
  EXPECT_FALSE(QCoro::waitFor(first));
  EXPECT_EQ(on.backend.server.requests().size(), 1u);
  EXPECT_TRUE(QCoro::waitFor(second));
}

TEST(DownloadCacheTest, AsksAgainOnlyWhenTold) {
  Storage on;
  on.backend.server.script({{200, "v1", {{"ETag", "\"1\""}}}, {304, "", {}}, {200, "v2", {{"ETag", "\"2\""}}}});
  const auto download = [&](bool revalidate) {
    return QCoro::waitFor(on.storage.download(kBucket, kPath, revalidate)).value_or(StoredFile{"failed"}).content;
  };
  EXPECT_EQ(download(false), "v1");
  EXPECT_EQ(download(false), "v1");
  EXPECT_EQ(on.backend.server.requests().size(), 1u);
  EXPECT_EQ(download(true), "v1");
  EXPECT_EQ(on.backend.server.last().headers["if-none-match"], "\"1\"");
  EXPECT_EQ(download(true), "v2");
  on.backend.server.otherwise = [](const FakeRequest&) { return FakeReply{503, "", {}}; };
  EXPECT_EQ(download(true), "v2") << "better old than nothing";

  const QDir files(on.folder.filePath(QStringLiteral("cache")));
  ASSERT_EQ(files.entryInfoList(QDir::Files).size(), 1);
  EXPECT_EQ(files.entryInfoList(QDir::Files).first().permissions() & ~(QFile::ReadUser | QFile::WriteUser),
            QFile::ReadOwner | QFile::WriteOwner);
  on.backend.server.script({{200, "{}", {}}});
  EXPECT_TRUE(on.upload(kBucket, kPath, "v3"));
  EXPECT_FALSE(on.cache.find(kBucket, kPath)) << "replaced";
}

TEST(DownloadCacheTest, StaysWithinItsSize) {
  const QTemporaryDir folder;
  DownloadCache cache(folder.filePath(QStringLiteral("cache")), 250);
  for (int i = 0; i < 10; ++i) {
    cache.keep(kBucket, QString::number(i), {QByteArray(90, 'x'), {}});
    EXPECT_LE(QDir(folder.filePath(QStringLiteral("cache"))).entryInfoList(QDir::Files).size(), 2);
  }
  cache.keep(kBucket, QStringLiteral("large"), {QByteArray(300, 'x'), {}});
  EXPECT_FALSE(cache.find(kBucket, QStringLiteral("large")));
  cache.clear();
  EXPECT_TRUE(QDir(folder.filePath(QStringLiteral("cache"))).entryInfoList(QDir::Files).isEmpty());
}

// ---- the queue
// -------------------------------------------------------------------------------------------------------

struct Queue : Storage {
  using Storage::Storage;
  std::unique_ptr<FileTransferQueue> open() {
    return std::make_unique<FileTransferQueue>(storage, *backend.client, backend.clock, backend.timing,
                                               folder.filePath(QStringLiteral("transfers.json")));
  }
  /// Lets the queue work until it rests.
  static void settle(FileTransferQueue& queue) {
    while (queue.isRunning()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
};

const QString kAccount = QStringLiteral("33333333-3333-4333-8333-333333333333");

TEST(FileTransferQueueTest, APhotoTakenOfflineGoesUpAfterTheNextStart) {
  Queue on(StoredSession{"", "", "11111111-1111-4111-8111-111111111111", "", std::nullopt});
  const QString photo = on.file(QStringLiteral("photo.jpg"), "pixels");
  {
    const auto queue = on.open();
    ASSERT_TRUE(queue->upload(kAccount, kBucket, kPath, photo));
    ASSERT_TRUE(queue->upload(kAccount, kBucket, kPath, photo)) << "takes the place of the first";
    EXPECT_FALSE(queue->isRunning());
  }
  EXPECT_EQ(QFileInfo(on.folder.filePath(QStringLiteral("transfers.json"))).permissions() &
                (QFile::ReadGroup | QFile::ReadOther),
            QFile::Permissions());
  on.backend.tokens.stored = Backend::signedIn();
  on.backend.server.script({{503, "", {{"Retry-After", "40"}}}, {0, "", {}, FakeReply::Manner::drop}});
  on.backend.server.otherwise = [](const FakeRequest&) { return FakeReply{200, "{}", {}}; };
  MessageCatcher log;
  const auto queue = on.open();
  std::vector<int> failures;
  std::vector<std::string> arrived;
  QObject::connect(queue.get(), &FileTransferQueue::failed,
                   [&](const FileTransfer&, const StorageError& error) { failures.push_back(error.status); });
  QObject::connect(queue.get(), &FileTransferQueue::done,
                   [&](const FileTransfer& transfer) { arrived.push_back(transfer.path); });
  ASSERT_EQ(queue->transfers().size(), 1u);
  queue->process();
  Queue::settle(*queue);
  EXPECT_TRUE(queue->transfers().empty());
  EXPECT_EQ(on.backend.server.last().body, "pixels");
  EXPECT_EQ(on.backend.timing.waits.front(), std::chrono::seconds(40));
  EXPECT_THAT(failures, testing::ElementsAre(503));
  EXPECT_THAT(arrived, testing::ElementsAre(kPath.toStdString()));
  EXPECT_THAT(log.text(), Not(HasSubstr("old-access")));
  EXPECT_TRUE(on.open()->transfers().empty());
}

TEST(FileTransferQueueTest, ParksWhatCannotGoAndGoesOn) {
  Queue on;
  on.backend.server.script({{400, R"({"statusCode":"403","message":"Access denied","code":"AccessDenied"})", {}},
                            {200, "{}", {}},
                            {400, R"({"statusCode":"404","error":"not_found","message":"Object not found"})", {}}});
  const auto queue = on.open();
  const QString photo = on.file(QStringLiteral("photo.jpg"), "pixels");
  EXPECT_TRUE(queue->upload(kAccount, kBucket, QStringLiteral("a/refused.jpg"), photo));
  EXPECT_TRUE(
      queue->upload(kAccount, kBucket, QStringLiteral("a/lost.jpg"), on.folder.filePath(QStringLiteral("none"))));
  EXPECT_TRUE(queue->upload(kAccount, kBucket, QStringLiteral("a/fine.jpg"), photo));
  EXPECT_TRUE(queue->remove(kAccount, kBucket, QStringLiteral("a/gone.jpg")));
  Queue::settle(*queue);
  ASSERT_EQ(queue->transfers().size(), 2u);
  for (const FileTransfer& transfer : queue->transfers()) {
    EXPECT_TRUE(transfer.isParked);
    EXPECT_FALSE(transfer.problem.empty());
  }
  EXPECT_TRUE(on.backend.server.isScriptDone());
  on.backend.timing.onWait = [&] {
    on.backend.timing.onWait = {};
    queue->process();  // cuts the pause short
  };
  on.backend.server.script({{503, "", {}}, {200, "{}", {}}});
  EXPECT_TRUE(queue->upload(kAccount, kBucket, QStringLiteral("a/again.jpg"), photo));
  Queue::settle(*queue);
  EXPECT_EQ(queue->transfers().size(), 2u);
  EXPECT_TRUE(on.backend.server.isScriptDone());
  EXPECT_TRUE(queue->discard(queue->transfers().front().id));
  EXPECT_EQ(on.open()->transfers().size(), 1u);
  // Asked for by hand, the parked one is tried again.
  on.file(QStringLiteral("none"), "found again");
  on.backend.server.script({{200, "{}", {}}});
  queue->retry(queue->transfers().front().id);
  Queue::settle(*queue);
  EXPECT_TRUE(queue->transfers().empty());
  EXPECT_EQ(on.backend.server.last().body, "found again");
}

TEST(FileTransferQueueTest, CarriesNothingOutForSomebodyElse) {
  Queue on;
  on.backend.tokens.stored.accessToken.clear();
  const auto queue = on.open();
  EXPECT_TRUE(queue->upload(kAccount, kBucket, kPath, on.file(QStringLiteral("photo.jpg"), "pixels")));
  on.backend.tokens.stored = {"other", "other", "99999999-9999-4999-8999-999999999999", "x@y.z", std::nullopt};
  queue->process();
  Queue::settle(*queue);
  EXPECT_TRUE(on.backend.server.requests().empty());
  EXPECT_EQ(queue->transfers().size(), 1u);
}

TEST(FileTransferQueueTest, KeepsAListThatItCannotRead) {
  Queue on;
  on.file(QStringLiteral("transfers.json"), R"([{"id":"11111111-1111-4111-8111-111111111111","bucket":7}])");
  const auto queue = on.open();
  EXPECT_TRUE(queue->transfers().empty());
  EXPECT_EQ(QDir(on.folder.path()).entryList({QStringLiteral("transfers.json.unreadable-*")}).size(), 1);
}

}  // namespace
}  // namespace thalvorn
