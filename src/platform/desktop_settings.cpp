#include "platform/desktop_settings.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

const QString kPortal = u"org.freedesktop.portal.Desktop"_s;
const QString kPortalPath = u"/org/freedesktop/portal/desktop"_s;
const QString kPortalSettings = u"org.freedesktop.portal.Settings"_s;

const QString kNetwork = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkPath = u"/org/freedesktop/NetworkManager"_s;
const QString kProperties = u"org.freedesktop.DBus.Properties"_s;

const QString kAppearance = u"org.freedesktop.appearance"_s;
const QString kColorScheme = u"color-scheme"_s;
const QString kInterface = u"org.gnome.desktop.interface"_s;
const QString kAnimations = u"enable-animations"_s;
const QString kMetered = u"Metered"_s;

/// The portal's Read wraps its answer twice.
QVariant unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value;
}

}  // namespace

DesktopSettings::DesktopSettings(const QDBusConnection& session, const QDBusConnection& system, QObject* parent)
    : QObject(parent), session_(session), system_(system) {
  if (session_.isConnected()) {
    session_.connect(kPortal, kPortalPath, kPortalSettings, u"SettingChanged"_s, this,
                     SLOT(onSettingChanged(QString, QString, QDBusVariant)));
    readSetting(kAppearance, kColorScheme);
    readSetting(kInterface, kAnimations);
  }
  if (system_.isConnected()) {
    system_.connect(kNetwork, kNetworkPath, kProperties, u"PropertiesChanged"_s, this,
                    SLOT(onNetworkChanged(QString, QVariantMap, QStringList)));
    readMetered();
  }
}

void DesktopSettings::readSetting(const QString& group, const QString& key) {
  QDBusMessage call = QDBusMessage::createMethodCall(kPortal, kPortalPath, kPortalSettings, u"Read"_s);
  call.setArguments({group, key});
  auto* watcher = new QDBusPendingCallWatcher(session_.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
    watcher->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (reply.isValid()) take(group, key, unwrapped(reply.value().variant()));
  });
}

void DesktopSettings::readMetered() {
  QDBusMessage call = QDBusMessage::createMethodCall(kNetwork, kNetworkPath, kProperties, u"Get"_s);
  call.setArguments({kNetwork, kMetered});
  auto* watcher = new QDBusPendingCallWatcher(system_.asyncCall(call), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
    watcher->deleteLater();
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    if (reply.isValid()) takeMetered(reply.value().variant());
  });
}

void DesktopSettings::onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
  take(group, key, unwrapped(value.variant()));
}

void DesktopSettings::onNetworkChanged(const QString& interface, const QVariantMap& changed, const QStringList&) {
  if (interface == kNetwork && changed.contains(kMetered)) takeMetered(changed.value(kMetered));
}

void DesktopSettings::take(const QString& group, const QString& key, const QVariant& value) {
  if (group == kAppearance && key == kColorScheme) {
    const uint number = value.toUInt();
    const ColorScheme scheme = number == 1   ? ColorScheme::dark
                               : number == 2 ? ColorScheme::light
                                             : ColorScheme::noPreference;
    if (std::exchange(colorScheme_, scheme) != scheme) Q_EMIT colorSchemeChanged();
  } else if (group == kInterface && key == kAnimations && value.typeId() == QMetaType::Bool) {
    const bool reduced = !value.toBool();
    if (std::exchange(reducedMotion_, reduced) != reduced) Q_EMIT reducedMotionChanged();
  }
}

void DesktopSettings::takeMetered(const QVariant& value) {
  // NetworkManager: 0 unknown, 1 yes, 2 no, 3 guessed yes, 4 guessed no.
  static constexpr Metered kMeanings[] = {Metered::unknown, Metered::yes, Metered::no, Metered::yes, Metered::no};
  const uint number = value.toUInt();
  const Metered metered = number < std::size(kMeanings) ? kMeanings[number] : Metered::unknown;
  if (std::exchange(metered_, metered) != metered) Q_EMIT meteredChanged();
}

}  // namespace thalvorn
