#include "platform/link_registration.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QStringList>

#include "platform/desktop_identity.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView kDefaultsGroup = "[Default Applications]"_L1;

/// A name of its own, so that it never stands before the desktop file of an installed program.
QString desktopId() { return kApplicationId + ".Links.desktop"_L1; }

QString mimeType() { return "x-scheme-handler/"_L1 + kLinkScheme; }

QString desktopFileText(const QString& programPath) {
  return u"[Desktop Entry]\n"
         "Type=Application\n"
         "Name=%1\n"
         "Icon=%2\n"
         "Exec=%3\n"
         "MimeType=%4;\n"
         "NoDisplay=true\n"
         "Terminal=false\n"_s.arg(QString(kProductName), QString(kApplicationId), execLine(programPath), mimeType());
}

/// A file that does not exist reads as empty; one that cannot be read is an error, lest it be overwritten.
std::expected<QString, QString> readText(const QString& path) {
  QFile file(path);
  if (!file.exists()) return QString();
  if (file.open(QIODevice::ReadOnly)) return QString::fromUtf8(file.readAll());
  return std::unexpected(u"%1 cannot be read: %2"_s.arg(path, file.errorString()));
}

std::expected<void, QString> replaceText(const QString& path, const QString& text) {
  QDir().mkpath(QFileInfo(path).path());
  QSaveFile file(path);
  if (file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.commit()) return {};
  return std::unexpected(u"%1 cannot be written: %2"_s.arg(path, file.errorString()));
}

std::expected<void, QString> setDefault(const QString& path, const QString& application) {
  const auto list = readText(path);
  if (!list) return std::unexpected(list.error());
  const QString changed = withDefaultApplication(*list, mimeType(), application);
  if (changed == *list) return {};
  return replaceText(path, changed);
}

QString defaultApplication(const QString& list, const QString& type) {
  bool inGroup = false;
  for (const QString& line : list.split(u'\n')) {
    if (line.startsWith(u'[')) inGroup = line.trimmed() == kDefaultsGroup;
    if (inGroup && line.section(u'=', 0, 0).trimmed() == type) {
      return line.section(u'=', 1).section(u';', 0, 0).trimmed();
    }
  }
  return {};
}

}  // namespace

LinkRegistrationFiles LinkRegistrationFiles::ofUser() {
  return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/applications/"_L1 + desktopId(),
          QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/mimeapps.list"_L1};
}

QString execLine(const QString& programPath) {
  // Quoted first for the command line, then for the file, where a backslash is written as two.
  QString quoted;
  for (const QChar c : programPath) {
    if (c == u'"' || c == u'`' || c == u'$' || c == u'\\') quoted += u'\\';
    quoted += c;
    if (c == u'%') quoted += c;
  }
  return u'"' + quoted.replace(u'\\', "\\\\"_L1) + "\" %u"_L1;
}

QString withDefaultApplication(const QString& list, const QString& mimeType, const QString& desktopId) {
  QStringList lines;
  bool inGroup = false;
  bool placed = desktopId.isEmpty();
  for (const QString& line : list.split(u'\n')) {
    if (line.startsWith(u'[')) inGroup = line.trimmed() == kDefaultsGroup;
    if (inGroup && line.section(u'=', 0, 0).trimmed() == mimeType) continue;
    lines << line;
    if (!placed && line.startsWith(u'[') && inGroup) {
      lines << mimeType + u'=' + desktopId;
      placed = true;
    }
  }
  if (!placed) {
    if (!lines.last().isEmpty()) lines << QString();
    lines.last() = kDefaultsGroup;
    lines << mimeType + u'=' + desktopId << QString();
  }
  return lines.join(u'\n');
}

std::expected<void, QString> registerLinks(const QString& programPath, const LinkRegistrationFiles& files) {
  if (const auto written = replaceText(files.desktopFile, desktopFileText(programPath)); !written) return written;
  return setDefault(files.mimeAppsList, desktopId());
}

std::expected<void, QString> unregisterLinks(const LinkRegistrationFiles& files) {
  const auto list = readText(files.mimeAppsList);
  if (!list) return std::unexpected(list.error());
  if (defaultApplication(*list, mimeType()) == desktopId()) {
    if (const auto taken = setDefault(files.mimeAppsList, {}); !taken) return taken;
  }
  QFile file(files.desktopFile);
  if (!file.exists() || file.remove()) return {};
  return std::unexpected(u"%1 cannot be removed: %2"_s.arg(files.desktopFile, file.errorString()));
}

bool linksRegistered(const QString& programPath, const LinkRegistrationFiles& files) {
  const auto desktopFile = readText(files.desktopFile);
  const auto list = readText(files.mimeAppsList);
  return desktopFile && list && *desktopFile == desktopFileText(programPath) &&
         defaultApplication(*list, mimeType()) == desktopId();
}

}  // namespace thalvorn
