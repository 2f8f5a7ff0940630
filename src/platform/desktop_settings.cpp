#include "platform/desktop_settings.h"

#include <QDBusMessage>
#include <utility>

#include "platform/bus_call.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;

const QString kPortal = u"org.freedesktop.portal.Desktop"_s;
const QString kPortalPath = u"/org/freedesktop/portal/desktop"_s;
const QString kPortalSettings = u"org.freedesktop.portal.Settings"_s;

const QString kNetwork = u"org.freedesktop.NetworkManager"_s;
const QString kNetworkPath = u"/org/freedesktop/NetworkManager"_s;
const QString kProperties = u"org.freedesktop.DBus.Properties"_s;

const QString kLogin = u"org.freedesktop.login1"_s;
const QString kLoginPath = u"/org/freedesktop/login1"_s;
const QString kLoginManager = u"org.freedesktop.login1.Manager"_s;

const QString kAppearance = u"org.freedesktop.appearance"_s;
const QString kColorScheme = u"color-scheme"_s;
const QString kInterface = u"org.gnome.desktop.interface"_s;
const QString kAnimations = u"enable-animations"_s;
const QString kMetered = u"Metered"_s;
const QString kState = u"State"_s;
constexpr uint kConnected = 60;  ///< NetworkManager: a network beyond the link; 70 with the internet; 0 unknown

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
    for (const QString& property : {kMetered, kState}) readNetwork(property);
    system_.connect(kLogin, kLoginPath, kLoginManager, u"PrepareForSleep"_s, this, SLOT(onPrepareForSleep(bool)));
  }
}

void DesktopSettings::readSetting(const QString& group, const QString& key) {
  callBus(session_, {kPortal, kPortalPath, kPortalSettings, u"Read"_s}, {group, key}, this,
          [this, group, key](const QDBusMessage& reply) {
            if (reply.type() == QDBusMessage::ReplyMessage) take(group, key, unwrapped(reply.arguments().value(0)));
          });
}

void DesktopSettings::readNetwork(const QString& property) {
  callBus(system_, {kNetwork, kNetworkPath, kProperties, u"Get"_s}, {kNetwork, property}, this,
          [this, property](const QDBusMessage& reply) {
            if (reply.type() == QDBusMessage::ReplyMessage)
              takeNetwork(property, unwrapped(reply.arguments().value(0)));
          });
}

void DesktopSettings::onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
  take(group, key, unwrapped(value.variant()));
}

void DesktopSettings::onNetworkChanged(const QString& interface, const QVariantMap& changed, const QStringList&) {
  if (interface != kNetwork) return;
  for (const QString& property : {kMetered, kState})
    if (changed.contains(property)) takeNetwork(property, changed.value(property));
}

void DesktopSettings::onPrepareForSleep(bool goesToSleep) {
  if (!goesToSleep) Q_EMIT networkReturned();
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

void DesktopSettings::takeNetwork(const QString& property, const QVariant& value) {
  property == kMetered ? takeMetered(value) : takeState(value);
}

void DesktopSettings::takeState(const QVariant& value) {
  const uint before = std::exchange(networkState_, value.toUInt());
  if (before > 0 && before < kConnected && networkState_ >= kConnected) Q_EMIT networkReturned();
}

void DesktopSettings::takeMetered(const QVariant& value) {
  // NetworkManager: 0 unknown, 1 yes, 2 no, 3 guessed yes, 4 guessed no.
  static constexpr Metered kMeanings[] = {Metered::unknown, Metered::yes, Metered::no, Metered::yes, Metered::no};
  const uint number = value.toUInt();
  const Metered metered = number < std::size(kMeanings) ? kMeanings[number] : Metered::unknown;
  if (std::exchange(metered_, metered) != metered) Q_EMIT meteredChanged();
}

}  // namespace thalvorn
