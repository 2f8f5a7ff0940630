// Photos and papers on their way between two computers, beside the records that name them.

#include "sync/file_sync.h"

#include <gmock/gmock.h>

#include "backend/supabase_storage.h"
#include "computer.h"

namespace thalvorn {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::string_view kBucket = "task_photos";

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

QCoro::Task<void> untilFilesRest(FileSync* files) {
  while (files->isMoving()) co_await nextEmission(files, &FileSync::changed, std::chrono::seconds(60));
}

struct Fleet {
  Fleet() {
    if (!captain.signUp("captain") || !captain.add(Vessel{.id = vessel, .name = "M/Y Meridian"})) return;
    ready = captain.sync() == SyncOutcome::complete && mate.signIn(captain.email, Computer::kPassword);
  }
  static void rest(Computer& computer) { finished(untilFilesRest(&computer.cloud->files())); }
  MaintenanceTask task(std::string photo) const {
    MaintenanceTask made{.id = Uuid::random(), .vesselID = vessel, .title = "Impeller"};
    made.photoPaths = {std::move(photo)};
    return made;
  }

  Uuid vessel = Uuid::random();
  Computer captain;
  Computer mate;
  bool ready = false;
};

TEST(FilesOfRecords, ArriveOnTheOtherComputer) {
  Fleet fleet;
  ASSERT_TRUE(fleet.ready);
  const std::string photo = fleet.captain.model->attachments().put(kBucket, bytesOf("pixels"), "jpg").value();
  ASSERT_TRUE(fleet.captain.add(fleet.task(photo)));
  ASSERT_EQ(fleet.captain.sync(), SyncOutcome::complete) << fleet.captain.problems();
  Fleet::rest(fleet.captain);
  EXPECT_EQ(fleet.captain.cloud->files().transfers().size(), 0u);
  EXPECT_THAT(fleet.captain.said(), Contains(StartsWith("📎 uploaded task photo: ")));
  ASSERT_EQ(fleet.mate.sync(), SyncOutcome::complete) << fleet.mate.problems();
  Fleet::rest(fleet.mate);
  EXPECT_TRUE(fleet.mate.model->attachments().absolute(photo));
  EXPECT_THAT(fleet.mate.said(), Contains(StartsWith("⬇️ downloaded file: ")));
  EXPECT_EQ(fleet.mate.cloud->files().transfers().size(), 0u) << "what came down need not go up";
}

TEST(FilesOfRecords, AreFetchedOnceWhoeverAddedThemHasSentThem) {
  Fleet fleet;
  ASSERT_TRUE(fleet.ready);
  // The record comes before its photo, which is still at sea.
  const Computer elsewhere;
  const std::string photo = elsewhere.model->attachments().put(kBucket, bytesOf("late pixels"), "jpg").value();
  ASSERT_TRUE(fleet.captain.add(fleet.task(photo)));
  ASSERT_EQ(fleet.captain.sync(), SyncOutcome::complete) << fleet.captain.problems();
  fleet.mate.sync();
  Fleet::rest(fleet.mate);
  EXPECT_FALSE(fleet.mate.model->attachments().absolute(photo));
  EXPECT_THAT(fleet.mate.said(), Contains(StartsWith("⚠️ download failed for task_photos: ")));

  DownloadCache cache(fleet.captain.folder.filePath(QStringLiteral("cache")));
  SupabaseStorage storage(fleet.captain.cloud->client(), cache);
  const std::string object = fleet.captain.model->accountID() + photo.substr(kBucket.size());
  ASSERT_TRUE(finished(storage.upload(QString::fromUtf8(kBucket.data()), QString::fromStdString(object), "late pixels",
                                      QStringLiteral("image/jpeg"))));
  finished(fleet.mate.timing.wait(std::chrono::minutes(2)));
  fleet.mate.sync();
  Fleet::rest(fleet.mate);
  EXPECT_TRUE(fleet.mate.model->attachments().absolute(photo));
}

TEST(FilesOfRecords, ThatCannotGoAreToldByNameAndTriedOrGivenUp) {
  Fleet fleet;
  ASSERT_TRUE(fleet.ready);
  FileSync& files = fleet.captain.cloud->files();
  const AttachmentStore& attachments = fleet.captain.model->attachments();
  std::map<std::string, std::string_view> pixels;
  for (const std::string_view each : {"red", "green", "blue"})
    pixels[attachments.put(kBucket, bytesOf(each), "jpg").value()] = each;
  MaintenanceTask task = fleet.task({});
  task.photoPaths.clear();
  for (const auto& entry : pixels) task.photoPaths.push_back(entry.first);
  fleet.captain.model->add(task);
  // The first is on its way by now; the others are gone before their turn.
  for (const std::string& path : task.photoPaths) ASSERT_TRUE(attachments.remove(path));
  Fleet::rest(fleet.captain);
  const std::vector<FileTransfer> failed = files.transfers();
  ASSERT_EQ(failed.size(), 2u);
  EXPECT_EQ(files.failedCount(), 2);
  for (const FileTransfer& transfer : failed) {
    EXPECT_EQ(transfer.name, "Impeller");
    EXPECT_THAT(transfer.problem, HasSubstr("not on this computer any more"));
  }
  const auto mended =
      std::ranges::find_if(pixels, [&](const auto& entry) { return failed[0].localFile.ends_with(entry.first); });
  ASSERT_NE(mended, pixels.end());
  ASSERT_TRUE(attachments.put(kBucket, bytesOf(mended->second), "jpg"));
  files.retry(failed[0].id);
  Fleet::rest(fleet.captain);
  EXPECT_TRUE(files.discard(failed[1].id));
  EXPECT_EQ(files.transfers().size(), 0u);
  fleet.captain.sync();
  fleet.mate.sync();
  Fleet::rest(fleet.mate);
  EXPECT_TRUE(fleet.mate.model->attachments().absolute(mended->first));
}

TEST(FilesOfRecords, LeaveTheServerWithTheLastRecordThatNamesThem) {
  Fleet fleet;
  ASSERT_TRUE(fleet.ready);
  Computer& here = fleet.captain;
  const std::string photo = here.model->attachments().put(kBucket, bytesOf("pixels"), "jpg").value();
  const MaintenanceTask first = fleet.task(photo);
  const MaintenanceTask second = fleet.task(photo);
  ASSERT_TRUE(here.add(first) && here.add(second));
  here.sync();
  Fleet::rest(here);
  DownloadCache cache(here.folder.filePath(QStringLiteral("cache")));
  SupabaseStorage storage(here.cloud->client(), cache);
  const auto isThere = [&] {
    return finished(storage.exists(QString::fromUtf8(kBucket.data()),
                                   QString::fromStdString(here.model->accountID() + photo.substr(kBucket.size()))))
        .value();
  };
  ASSERT_TRUE(isThere());

  for (const Uuid& id : {first.id, second.id}) {
    finished(Computer::saved(here.model->remove<MaintenanceTask>(id)));
    ASSERT_EQ(here.sync(), SyncOutcome::complete) << here.problems();
    Fleet::rest(here);
    EXPECT_EQ(isThere(), id == first.id);
  }
}

TEST(FilesOfRecords, AVesselsPhotoThatTheServerLostGoesUpAgain) {
  Fleet fleet;
  ASSERT_TRUE(fleet.ready);
  VesselProfile profile;
  profile.id = Uuid::random();
  profile.vesselID = fleet.vessel;
  profile.photoPath = fleet.captain.model->attachments().put("vessel_photos", bytesOf("her"), "jpg").value();
  ASSERT_TRUE(fleet.captain.add(profile));
  ASSERT_EQ(fleet.captain.sync(), SyncOutcome::complete) << fleet.captain.problems();
  Fleet::rest(fleet.captain);
  const std::string object = fleet.vessel.toString() + "/photo.jpg";
  EXPECT_THAT(fleet.captain.said(), Contains("✅ vessel photo uploaded: " + object));

  DownloadCache cache(fleet.captain.folder.filePath(QStringLiteral("cache")));
  SupabaseStorage storage(fleet.captain.cloud->client(), cache);
  const QString bucket = QStringLiteral("vessel_photos");
  const QString path = QString::fromStdString(object);
  EXPECT_TRUE(finished(storage.exists(bucket, path)).value());
  ASSERT_TRUE(finished(storage.remove(bucket, path)));
  EXPECT_FALSE(finished(storage.exists(bucket, path)).value());
  ASSERT_TRUE(finished(fleet.captain.cloud->resume()));
  finished(untilIdle(fleet.captain.cloud.get()));
  for (int turn = 0; turn < 500 && !finished(storage.exists(bucket, path)).value(); ++turn) Fleet::rest(fleet.captain);
  EXPECT_TRUE(finished(storage.exists(bucket, path)).value());
  EXPECT_THAT(fleet.captain.said(), Contains("📤 uploadVesselPhoto: " + object + " (force re-seed)"));
}

}  // namespace
}  // namespace thalvorn
