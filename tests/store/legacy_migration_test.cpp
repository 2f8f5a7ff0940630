#include "store/legacy_migration.h"

#include <gmock/gmock.h>

#include <QtCore/QSettings>
#include <fstream>

#include "store/cache_testing.h"

namespace thalvorn {
namespace {

using namespace testing_tools;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
namespace fs = std::filesystem;

/// What the program logs while it lives.
class LogLines {
 public:
  LogLines() {
    lines().clear();
    before_ = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { lines().push_back(text.toStdString()); });
  }
  ~LogLines() { qInstallMessageHandler(before_); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;
  static std::vector<std::string>& lines() {
    static std::vector<std::string> all;
    return all;
  }

 private:
  QtMessageHandler before_;
};

Bytes bytesOf(std::string_view text) { return {{text.begin(), text.end()}}; }

std::string contentOf(const AttachmentStore& files, const std::string& path) {
  const auto file = files.absolute(path);
  std::ifstream stream(file ? *file : fs::path(), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(InlineContent, BecomesFilesOnceForEveryKindOfRecord) {
  const ScratchFolder folder;
  const AttachmentStore files(folder / "files");

  MaintenanceTask task{.id = numbered(1), .photoPaths = {"task_photos/there.jpg"}};
  task.photoData = {bytesOf("first"), bytesOf(""), bytesOf("second")};
  const auto tasks = moveInlineContent({task, MaintenanceTask{.id = numbered(2)}}, files);
  ASSERT_THAT(tasks.records, SizeIs(1));
  EXPECT_EQ(tasks.records[0].first, task);
  EXPECT_EQ(tasks.bytes, 11U);
  const MaintenanceTask& moved = tasks.records[0].second;
  EXPECT_THAT(moved.photoData, IsEmpty());
  ASSERT_THAT(moved.photoPaths, SizeIs(3));
  EXPECT_EQ(moved.photoPaths[0], "task_photos/there.jpg");
  EXPECT_EQ(contentOf(files, moved.photoPaths[1]), "first");
  EXPECT_EQ(contentOf(files, moved.photoPaths[2]), "second");
  // Interrupted before the records were saved, it runs again with the same outcome.
  EXPECT_EQ(moveInlineContent(std::vector{task}, files).records, tasks.records);
  EXPECT_THAT(moveInlineContent(std::vector{moved}, files).records, IsEmpty());

  ShipDocument document{.id = numbered(3)};
  document.fileName = "Survey 2024.PDF";
  document.fileData = bytesOf("scan");
  const auto documents = moveInlineContent(std::vector{document}, files);
  EXPECT_EQ(documents.records.at(0).second.fileData, std::nullopt);
  EXPECT_THAT(documents.records[0].second.filePath, testing::MatchesRegex("ship_documents/.*\\.pdf"));
  // A path that is there names the newer file.
  document.filePath = "ship_documents/newer.pdf";
  EXPECT_EQ(moveInlineContent(std::vector{document}, files).records.at(0).second.filePath, document.filePath);

  GuestProfile guest{.id = numbered(4)};
  guest.photoData = bytesOf("portrait");
  guest.documents = {GuestDocument{.id = numbered(5)}};
  guest.documents[0].documentData = bytesOf("passport");
  const auto guests = moveInlineContent(std::vector{guest}, files);
  EXPECT_EQ(contentOf(files, guests.records.at(0).second.photoPath), "portrait");
  EXPECT_EQ(contentOf(files, guests.records[0].second.documents[0].documentPath), "passport");

  CrewMember member;
  member.certifications = {CrewCertification{.id = numbered(6)}};
  member.certifications[0].documentData = bytesOf("STCW");
  const auto crew = moveInlineContent(std::vector{member}, files);
  EXPECT_EQ(contentOf(files, crew.records.at(0).second.certifications[0].documentPath), "STCW");

  ShipContact contact{.id = numbered(7)};
  contact.complianceDocuments = {VendorComplianceDocument{.id = numbered(8)}};
  contact.complianceDocuments[0].documentData = bytesOf("insurance");
  const auto contacts = moveInlineContent(std::vector{contact}, files);
  EXPECT_EQ(contentOf(files, contacts.records.at(0).second.complianceDocuments[0].documentPath), "insurance");
}

TEST(InlineContent, StaysInTheRecordWhenItCannotBeWritten) {
  const ScratchFolder folder;
  std::ofstream(folder / "files") << "not a folder";
  const AttachmentStore files(folder / "files");
  GuestProfile guest{.id = numbered(4)};
  guest.photoData = bytesOf("portrait");
  MaintenanceTask task{.id = numbered(1), .photoData = {bytesOf("photo")}};
  EXPECT_THAT(moveInlineContent(std::vector{guest}, files).records, IsEmpty());
  const auto tasks = moveInlineContent(std::vector{task}, files);
  EXPECT_THAT(tasks.records, IsEmpty());
  EXPECT_THAT(tasks.failures, SizeIs(1));
}

TEST(InlineContent, IsLoggedByCollection) {
  const LogLines log;
  logMovedContent("_guests", "user_guests", 8);
  logMovedContent("_documents", "user_documents", 4);
  logMovedContent("_crew", "user_crew", 0);
  logMovedContent("_contacts", "user_contacts", 9);
  EXPECT_THAT(
      LogLines::lines(),
      ElementsAre("📦 migrated legacy guest photos to disk", "🧹 purged guests blob: user_guests → 8 bytes",
                  "📦 migrated legacy ship documents to disk", "🧹 purged documents blob: user_documents → 4 bytes"));
}

TEST(PreviousPreferences, AreCopiedOnce) {
  const ScratchFolder folder;
  QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(folder.path().string()));
  const std::string domain = "com.example.yachts";
  {
    QSettings old(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(domain));
    old.setValue(QStringLiteral("thalvorn.appearance"), QStringLiteral("dark"));
    old.setValue(QStringLiteral("onboardingComplete_7"), true);
    old.setValue(QStringLiteral("thalvorn.hiddenModulesRaw"),
                 QStringList{QStringLiteral("ism"), QStringLiteral("crew")});
    old.setValue(QStringLiteral("user_tasks"), QByteArray("[]"));
  }
  const auto cache = opened(folder / "store.db");
  const LogLines log;
  migratePreferences(*cache, "");
  EXPECT_THAT(cache->preferences(), IsEmpty());
  migratePreferences(*cache, domain);
  EXPECT_EQ(cache->preference("thalvorn.appearance"), "dark");
  EXPECT_EQ(cache->preference("onboardingComplete_7"), "true");
  EXPECT_EQ(cache->preference("thalvorn.hiddenModulesRaw"), "ism,crew");
  EXPECT_EQ(cache->preference("user_tasks"), "[]");
  cache->setPreference("thalvorn.appearance", "light");
  migratePreferences(*cache, domain);
  EXPECT_EQ(cache->preference("thalvorn.appearance"), "light");
  EXPECT_THAT(LogLines::lines(), ElementsAre("✅ Migrated UserDefaults from " + domain));
}

TEST(LegacyEntries, BecomeEntriesAndThePreferencesGo) {
  const ScratchFolder folder;
  const auto cache = opened(folder / "store.db");
  const std::string blob = "[" + record(1, "Oil") + ", " + record(2, "Belts") + ", {\"title\":\"nameless\"}]";
  append(*cache, {added(2, "V-belts")});
  cache->setPreference("user_tasks", blob);
  cache->setPreference("user_logs", "[" + record(5, "Log") + "]");
  cache->setPreference("user_crew", "{not a list");
  cache->setPreference("other_tasks", "[]");
  constexpr std::array<std::string_view, 4> suffixes{"_vessels", "_tasks", "_logs", "_crew"};
  {
    const LogLines log;
    adoptLegacyEntries(*cache, "user", suffixes, Timestamp{});
    EXPECT_THAT(LogLines::lines(),
                ElementsAre("🧹 purged tasks blob: user_tasks → " + std::to_string(blob.size()) + " bytes",
                            "❌ decode failed for _crew, key=user_crew, bytes=11",
                            "🧹 purged crew blob: user_crew → 11 bytes"));
  }
  EXPECT_THAT(entryOf(*cache), ElementsAre(record(2, "V-belts"), record(1, "Oil")));
  EXPECT_THAT(entryOf(*cache, "user", "_logs"), ElementsAre(record(5, "Log")));
  EXPECT_THAT(cache->preferences(), ElementsAre(testing::Pair("other_tasks", "[]")));
  EXPECT_THAT(cache->check().findings, testing::Contains("2 texts that could not be read, set aside for support"));
  adoptLegacyEntries(*cache, "user", suffixes, Timestamp{});
  EXPECT_THAT(entryOf(*cache), SizeIs(2));
}

}  // namespace
}  // namespace thalvorn
