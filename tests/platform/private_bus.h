#pragma once

#include <QDBusConnection>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <stdexcept>

#include "platform/await.h"

namespace thalvorn::test {

/// A message bus of the test's own: nothing of the computer's desktop is on it, and nothing is started by it.
class PrivateBus {
 public:
  PrivateBus() {
    using namespace Qt::StringLiterals;
    QFile config(folder_.filePath(u"bus.conf"_s));
    const bool written = config.open(QIODevice::WriteOnly) &&
                         config.write("<busconfig><type>session</type><listen>unix:dir=" + folder_.path().toUtf8() +
                                      "</listen><policy context=\"default\"><allow send_destination=\"*\" "
                                      "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
                                      "<allow own=\"*\"/></policy></busconfig>") > 0;
    config.close();
    daemon_.start(u"dbus-daemon"_s, {u"--nofork"_s, u"--print-address"_s, u"--config-file="_s + config.fileName()});
    if (!written || !eventually([this] { return daemon_.canReadLine(); })) {
      throw std::runtime_error("no message bus: " + daemon_.readAllStandardError().toStdString());
    }
    address_ = QString::fromUtf8(daemon_.readLine().trimmed());
  }

  ~PrivateBus() {
    for (const QString& name : names_) QDBusConnection::disconnectFromBus(name);
    daemon_.kill();
    daemon_.waitForFinished();
  }

  /// A connection of its own, as another process would have.
  QDBusConnection connect() {
    names_ << QString::number(++count_) + address_;
    return QDBusConnection::connectToBus(address_, names_.last());
  }

 private:
  static inline int count_ = 0;

  QTemporaryDir folder_;
  QProcess daemon_;
  QString address_;
  QStringList names_;
};

}  // namespace thalvorn::test
