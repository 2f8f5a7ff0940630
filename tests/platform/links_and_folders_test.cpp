#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "platform/deep_link.h"
#include "platform/link_registration.h"
#include "platform/user_folders.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

void write(const QString& path, const QByteArray& text) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(text);
}

QByteArray read(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(DeepLinkTest, ResetLinksAreReadAndNeverTold) {
  const auto granted = parseDeepLink(
      u"thalvorn://reset-password#access_token=ey.J-_9%2B&expires_at=1753000000&refresh_token=r1&sb=&type=recovery"_s);
  ASSERT_TRUE(granted.has_value());
  const auto& link = std::get<ResetPasswordLink>(*granted);
  EXPECT_TRUE(link.grants());
  EXPECT_EQ(link.accessToken, u"ey.J-_9+"_s);
  EXPECT_EQ(link.refreshToken, u"r1"_s);
  EXPECT_EQ(link.expires, std::chrono::sys_seconds(std::chrono::seconds(1753000000)));
  QString told = forLog(*granted);
  QDebug(&told) << link;
  EXPECT_FALSE(told.contains(u"ey"_s) || told.contains(u"r1"_s)) << told.toStdString();

  const auto code = parseDeepLink(u"thalvorn://reset-password/?code=abc"_s);
  ASSERT_TRUE(code.has_value());
  EXPECT_EQ(std::get<ResetPasswordLink>(*code).code, u"abc"_s);

  const auto refused = parseDeepLink(
      u"thalvorn://reset-password#error=access_denied&error_code=otp_expired&error_description=Link+is+too+old%2C+sorry"_s);
  ASSERT_TRUE(refused.has_value());
  EXPECT_FALSE(std::get<ResetPasswordLink>(*refused).grants());
  EXPECT_EQ(std::get<ResetPasswordLink>(*refused).errorCode, u"otp_expired"_s);
  EXPECT_EQ(std::get<ResetPasswordLink>(*refused).errorDescription, u"Link is too old, sorry"_s);
}

TEST(DeepLinkTest, RecordLinksSurviveTheRoundTripAndOthersAreRefusedWithoutRepeatingThem) {
  const OpenRecordLink link{u"shipsLog"_s, QUuid::fromString(u"0f8fad5b-d9cb-469f-a165-70867728950e"_s)};
  const auto parsed = parseDeepLink(recordAddress(link));
  ASSERT_TRUE(parsed.has_value());
  EXPECT_EQ(std::get<OpenRecordLink>(*parsed), link);

  for (const QString& address :
       {u""_s, u"https://open/tasks/0f8fad5b-d9cb-469f-a165-70867728950e"_s, u"thalvorn://open/tasks"_s,
        u"thalvorn://open/tasks/secret"_s, u"thalvorn://open/../0f8fad5b-d9cb-469f-a165-70867728950e"_s,
        u"thalvorn://open/tasks/0f8fad5b-d9cb-469f-a165-70867728950e/secret"_s, u"thalvorn://secret/x"_s,
        u"thalvorn:reset-password#access_token=secret"_s, u"thalvorn://reset-password#"_s + QString(20000, u'x')}) {
    const auto refused = parseDeepLink(address);
    ASSERT_FALSE(refused.has_value()) << address.left(80).toStdString();
    EXPECT_FALSE(refused.error().contains(u"secret"_s));
  }
}

TEST(LinkRegistrationTest, TheUsersListKeepsEverythingElse) {
  const QString type = u"x-scheme-handler/thalvorn"_s;
  const struct {
    QString before, with, without;
  } cases[] = {
      {u""_s, u"[Default Applications]\nx-scheme-handler/thalvorn=a.desktop\n"_s, u"[Default Applications]\n"_s},
      {u"# mine\n[Added Associations]\nx-scheme-handler/thalvorn=z.desktop;\n"_s,
       u"# mine\n[Added Associations]\nx-scheme-handler/thalvorn=z.desktop;\n[Default Applications]\nx-scheme-handler/"
       "thalvorn=a.desktop\n"_s,
       u"# mine\n[Added Associations]\nx-scheme-handler/thalvorn=z.desktop;\n[Default Applications]\n"_s},
      {u"[Default Applications]\ntext/csv=calc.desktop\nx-scheme-handler/thalvorn=old.desktop\n\n[Other]\nk=v"_s,
       u"[Default Applications]\nx-scheme-handler/thalvorn=a.desktop\ntext/csv=calc.desktop\n\n[Other]\nk=v"_s,
       u"[Default Applications]\ntext/csv=calc.desktop\n\n[Other]\nk=v"_s},
  };
  for (const auto& [before, with, without] : cases) {
    EXPECT_EQ(withDefaultApplication(before, type, u"a.desktop"_s), with);
    EXPECT_EQ(withDefaultApplication(with, type, u"a.desktop"_s), with);
    EXPECT_EQ(withDefaultApplication(with, type, {}), without);
  }
}

TEST(LinkRegistrationTest, RegisteringIsUndoneWithoutATrace) {
  const QTemporaryDir folder;
  const LinkRegistrationFiles files{folder.filePath(u"data/applications/links.desktop"_s),
                                    folder.filePath(u"config/mimeapps.list"_s)};
  ASSERT_TRUE(QDir(folder.path()).mkpath(u"config"_s));
  const QByteArray mine = "[Default Applications]\ntext/csv=calc.desktop\n";
  write(files.mimeAppsList, mine);

  const QString program = u"/opt/my \"$boat\" 100%/bin/thalvorn"_s;
  EXPECT_FALSE(linksRegistered(program, files));
  ASSERT_TRUE(registerLinks(program, files).has_value());
  EXPECT_TRUE(linksRegistered(program, files));
  EXPECT_FALSE(linksRegistered(u"/usr/bin/thalvorn"_s, files));
  EXPECT_TRUE(read(files.desktopFile).contains("\nExec=\"/opt/my \\\\\"\\\\$boat\\\\\" 100%%/bin/thalvorn\" %u\n"))
      << read(files.desktopFile).toStdString();
  EXPECT_TRUE(read(files.mimeAppsList).contains("x-scheme-handler/thalvorn=org.thalvorn.Thalvorn.Links.desktop"));

  ASSERT_TRUE(unregisterLinks(files).has_value());
  EXPECT_FALSE(linksRegistered(program, files));
  EXPECT_FALSE(QFile::exists(files.desktopFile));
  EXPECT_EQ(read(files.mimeAppsList), mine);

  // The user has chosen another program since: that choice stays.
  ASSERT_TRUE(registerLinks(program, files).has_value());
  const QByteArray other = "[Default Applications]\nx-scheme-handler/thalvorn=other.desktop\n";
  write(files.mimeAppsList, other);
  ASSERT_TRUE(unregisterLinks(files).has_value());
  EXPECT_EQ(read(files.mimeAppsList), other);

  const LinkRegistrationFiles blocked{folder.filePath(u"config/mimeapps.list/x.desktop"_s), files.mimeAppsList};
  EXPECT_FALSE(registerLinks(program, blocked).has_value());
  EXPECT_EQ(read(files.mimeAppsList), other);
}

TEST(UserFoldersTest, FoldersAreMadeForTheirOwnerAlone) {
  const QTemporaryDir folder;
  qputenv("XDG_DATA_HOME", folder.filePath(u"share"_s).toUtf8());
  const auto data = dataFolder();
  qunsetenv("XDG_DATA_HOME");
  ASSERT_TRUE(data.has_value()) << data.error().toStdString();
  EXPECT_EQ(*data, folder.filePath(u"share/thalvorn"_s));
  EXPECT_TRUE(isPrivate(*data));

  ASSERT_TRUE(QFile::setPermissions(*data, QFile::Permissions(0x7755)));
  EXPECT_FALSE(isPrivate(*data));
  EXPECT_TRUE(ensurePrivateFolder(*data).has_value());
  EXPECT_TRUE(isPrivate(*data));

  const QString file = *data + u"/a.store"_s;
  write(file, "x");
  ASSERT_TRUE(restrictToOwner(file).has_value());
  EXPECT_TRUE(isPrivate(file));
  EXPECT_FALSE(restrictToOwner(file + u"x"_s).has_value());
  EXPECT_FALSE(ensurePrivateFolder(file + u"/below"_s).has_value());
}

TEST(UserFoldersTest, ASharedRuntimeFolderIsNotUsed) {
  const QTemporaryDir folder;
  const auto runtimeIn = [](const QString& path, qsizetype name = 0) {
    qputenv("XDG_RUNTIME_DIR", path.toUtf8());
    const auto made = runtimeFolder(name);
    qunsetenv("XDG_RUNTIME_DIR");
    return made.value_or(u"none"_s);
  };
  EXPECT_EQ(runtimeIn(folder.path()), folder.filePath(u"thalvorn"_s));
  EXPECT_FALSE(runtimeIn(folder.path(), 90).startsWith(folder.path())) << "no room for a socket's address";
  ASSERT_TRUE(QFile::setPermissions(folder.path(), QFile::Permissions(0x7755)));
  EXPECT_FALSE(runtimeIn(folder.path()).startsWith(folder.path()));
  EXPECT_TRUE(isPrivate(runtimeIn(u"relative"_s)));
}

TEST(UserFoldersTest, OneStoreHasOneName) {
  const QTemporaryDir folder;
  ASSERT_TRUE(QDir(folder.path()).mkdir(u"real"_s));
  ASSERT_TRUE(QFile::link(folder.filePath(u"real"_s), folder.filePath(u"alias"_s)));
  const QString expected = QFileInfo(folder.filePath(u"real"_s)).canonicalFilePath() + u"/fleet"_s;
  EXPECT_EQ(canonicalStorePath(folder.filePath(u"alias/./fleet"_s)), expected);
  write(expected, "x");
  EXPECT_EQ(canonicalStorePath(folder.filePath(u"alias/fleet"_s)), expected);
}

}  // namespace
}  // namespace thalvorn
