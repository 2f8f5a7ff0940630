#include "platform/user_folders.h"

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

constexpr QFile::Permissions kOwnerFile = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions kOwnerFolder = kOwnerFile | QFile::ExeOwner;

/// A folder that is ours, is not a link, and is closed to others.
bool isOwnFolder(const QString& path) {
  struct stat status{};
  return ::lstat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
         status.st_uid == ::geteuid() && (status.st_mode & 077) == 0;
}

bool leavesRoomFor(const QString& folder, qsizetype longestName) {
  return QFile::encodeName(folder).size() + 1 + longestName < qsizetype(sizeof(sockaddr_un::sun_path));
}

}  // namespace

std::expected<QString, QString> dataFolder() {
  QString path = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/thalvorn"_L1;
  if (auto made = ensurePrivateFolder(path); !made) return std::unexpected(made.error());
  return path;
}

std::expected<QString, QString> userStoreFile() {
  const auto folder = dataFolder();
  if (!folder) return std::unexpected(folder.error());
  return canonicalStorePath(*folder + "/thalvorn.db"_L1);
}

std::expected<QString, QString> runtimeFolder(qsizetype longestName) {
  const QString user = QString::number(::geteuid());
  for (const QString& base : {qEnvironmentVariable("XDG_RUNTIME_DIR"), "/run/user/"_L1 + user}) {
    QString path = base + "/thalvorn"_L1;
    if (!QDir::isAbsolutePath(base) || !isOwnFolder(base) || !leavesRoomFor(path, longestName)) continue;
    if (ensurePrivateFolder(path) && isOwnFolder(path)) return path;
  }
  QString path = "/tmp/thalvorn-"_L1 + user;
  if (::mkdir(QFile::encodeName(path).constData(), 0700) == 0 || isOwnFolder(path)) return path;
  return std::unexpected(
      u"The folder %1 belongs to another user or is open to others, so it cannot be used. "
      "Remove it and try again."_s.arg(path));
}

std::expected<void, QString> ensurePrivateFolder(const QString& path) {
  const QFileInfo info(path);
  if (info.isDir()) {
    if (isPrivate(path) || QFile::setPermissions(path, kOwnerFolder)) return {};
    return std::unexpected(
        u"The folder %1 is open to other users of this computer and cannot be closed to them. "
        "Change its owner or its permissions."_s.arg(path));
  }
  QDir parent = info.absoluteDir();
  if (parent.mkpath(u"."_s) && (parent.mkdir(info.fileName(), kOwnerFolder) || info.absoluteDir().exists(path)))
    return {};
  return std::unexpected(
      u"The folder %1 cannot be created. Check that %2 can be written and that the disk is not full."_s.arg(
          path, parent.path()));
}

std::expected<void, QString> restrictToOwner(const QString& path) {
  if (QFile::setPermissions(path, kOwnerFile)) return {};
  return std::unexpected(u"The permissions of %1 cannot be changed. Check who owns the file."_s.arg(path));
}

bool isPrivate(const QString& path) {
  struct stat status{};
  return ::stat(QFile::encodeName(path).constData(), &status) == 0 && (status.st_mode & 077) == 0;
}

QString canonicalStorePath(const QString& path) {
  const QFileInfo file(path);
  if (const QString canonical = file.canonicalFilePath(); !canonical.isEmpty()) return canonical;
  const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
  return folder.isEmpty() ? QDir::cleanPath(file.absoluteFilePath()) : QDir(folder).filePath(file.fileName());
}

}  // namespace thalvorn
