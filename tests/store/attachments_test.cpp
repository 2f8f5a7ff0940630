#include "store/attachments.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "store/cache_testing.h"

namespace thalvorn {
namespace {

using namespace testing_tools;
namespace fs = std::filesystem;
using Kind = AttachmentError::Kind;

std::vector<std::uint8_t> bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

int modeOf(const fs::path& file) {
  struct stat status{};
  return ::stat(file.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 0777) : -1;
}

std::size_t filesBelow(const fs::path& folder) {
  std::size_t count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) count += entry.is_regular_file() ? 1 : 0;
  return count;
}

TEST(Attachments, KeepContentOnceForTheUserAlone) {
  const ScratchFolder folder;
  const AttachmentStore files(folder / "data/files");
  const std::string pdf = "%PDF-1.4\n%%EOF\n";
  const auto path = files.put("ship_documents", bytesOf(pdf));
  ASSERT_TRUE(path) << path.error().message;
  EXPECT_THAT(*path, testing::MatchesRegex("ship_documents/[0-9a-f-]+\\.pdf"));
  EXPECT_EQ(contentOf(*files.absolute(*path)), pdf);
  EXPECT_EQ(modeOf(*files.absolute(*path)), 0600);
  EXPECT_EQ(modeOf(folder / "data/files/ship_documents"), 0700);

  EXPECT_EQ(files.put("ship_documents", bytesOf(pdf)), *path);
  std::ofstream(folder / "Certificate of Registry.PDF") << pdf;
  EXPECT_EQ(files.putFile("ship_documents", folder / "Certificate of Registry.PDF"), *path);
  EXPECT_EQ(filesBelow(files.root()), 1U);
  EXPECT_NE(files.put("ship_documents", bytesOf("%PDF-1.5\n")), *path);
  EXPECT_THAT(files.put("task_photos", bytesOf("\xff\xd8\xff\xe0JFIF"))->substr(48), ".jpg");

  ASSERT_TRUE(files.remove(*path));
  EXPECT_EQ(files.absolute(*path).error().kind, Kind::notFound);
}

TEST(Attachments, FollowNoPathOutOfTheirFolder) {
  const ScratchFolder folder;
  const AttachmentStore files(folder / "files");
  const auto stored = files.put("guest_photos", bytesOf("photo"), "jpg");
  ASSERT_TRUE(stored);
  std::ofstream(folder / "secret.txt") << "secret";
  fs::create_symlink(folder / "secret.txt", folder / "files/guest_photos/link.txt");
  fs::create_directory_symlink(folder.path(), folder / "files/outside");
  using namespace std::string_literals;
  const std::vector<std::string> elsewhere{"../secret.txt",        "guest_photos/../../secret.txt",
                                           "/etc/passwd",          "",
                                           "guest_photos",         "guest_photos/",
                                           "guest_photos/.hidden", "guest_photos/link.txt",
                                           "outside/secret.txt",   "guest_photos/a/b.jpg",
                                           "guest_photos/\0.jpg"s};
  for (const std::string& path : elsewhere) {
    EXPECT_FALSE(files.absolute(path)) << path;
    EXPECT_FALSE(files.remove(path)) << path;
  }
  EXPECT_FALSE(files.put("../files", bytesOf("x")));
  // An extension that is none is told from the content instead.
  EXPECT_THAT(files.put("guest_photos", bytesOf("text"), "../x"), testing::Optional(testing::EndsWith(".txt")));
  EXPECT_EQ(contentOf(folder / "secret.txt"), "secret");
}

TEST(Attachments, RefuseWhatIsTooLargeOrNoFile) {
  const ScratchFolder folder;
  const AttachmentStore files(folder / "files", 1000);
  std::ofstream(folder / "large.bin") << std::string(1001, 'x');
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(files.putFile("yard_docs", folder / "large.bin").error().kind, Kind::tooLarge);
  EXPECT_EQ(files.put("yard_docs", std::vector<std::uint8_t>(1001)).error().kind, Kind::tooLarge);
  EXPECT_EQ(files.putFile("yard_docs", folder / "pipe").error().kind, Kind::other);
  EXPECT_EQ(files.putFile("yard_docs", folder.path()).error().kind, Kind::other);
  EXPECT_EQ(files.putFile("yard_docs", folder / "missing").error().kind, Kind::notFound);
  EXPECT_TRUE(files.put("yard_docs", std::vector<std::uint8_t>(1000)));
  std::ofstream(folder / "taken") << "a file where the folder should be";
  EXPECT_FALSE(AttachmentStore(folder / "taken").put("yard_docs", bytesOf("x")));
}

TEST(Attachments, RemoveWhatInterruptedWritingLeft) {
  const ScratchFolder folder;
  const AttachmentStore files(folder / "files");
  const auto stored = files.put("task_photos", bytesOf("stored"));
  for (const char* const name : {"interrupted", "arriving"}) std::ofstream(folder / "files/.incoming" / name) << "half";
  const auto old = fs::file_time_type::clock::now() - std::chrono::hours(48);
  for (const std::string& path : {*stored, std::string(".incoming/interrupted")})
    fs::last_write_time(files.root() / path, old);
  EXPECT_EQ(files.removeInterrupted(), 1U);
  EXPECT_TRUE(files.absolute(*stored));
  EXPECT_TRUE(fs::exists(files.root() / ".incoming/arriving"));
  EXPECT_EQ(AttachmentStore(folder / "never made").removeInterrupted(), 0U);
}

}  // namespace
}  // namespace thalvorn
