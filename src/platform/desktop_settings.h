#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

namespace thalvorn {

/// What the user has told the desktop that concerns the program: light or dark, little motion, a connection that is
/// paid by volume; and when the network comes back. Read from the settings portal, NetworkManager and the login
/// manager, followed while the program runs. Where one of them is missing its values stay at their harmless defaults.
class DesktopSettings : public QObject {
  Q_OBJECT
  Q_PROPERTY(ColorScheme colorScheme READ colorScheme NOTIFY colorSchemeChanged)
  Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)
  Q_PROPERTY(Metered metered READ metered NOTIFY meteredChanged)

 public:
  enum class ColorScheme { noPreference, dark, light };
  Q_ENUM(ColorScheme)

  /// Whether the present connection to the internet is paid by volume, as satellite and harbour SIM cards are.
  enum class Metered { unknown, yes, no };
  Q_ENUM(Metered)

  explicit DesktopSettings(const QDBusConnection& session = QDBusConnection::sessionBus(),
                           const QDBusConnection& system = QDBusConnection::systemBus(), QObject* parent = nullptr);

  ColorScheme colorScheme() const { return colorScheme_; }

  /// True when the user has turned the desktop's animations off.
  bool reducedMotion() const { return reducedMotion_; }

  Metered metered() const { return metered_; }

 Q_SIGNALS:
  void colorSchemeChanged();
  void reducedMotionChanged();
  void meteredChanged();
  /// There is a network again after there was none, or the computer has woken up.
  void networkReturned();

 private Q_SLOTS:
  void onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
  void onNetworkChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);
  void onPrepareForSleep(bool goesToSleep);

 private:
  void readSetting(const QString& group, const QString& key);
  void readNetwork(const QString& property);
  void take(const QString& group, const QString& key, const QVariant& value);
  void takeNetwork(const QString& property, const QVariant& value);
  void takeMetered(const QVariant& value);
  void takeState(const QVariant& value);

  QDBusConnection session_;
  QDBusConnection system_;
  ColorScheme colorScheme_ = ColorScheme::noPreference;
  bool reducedMotion_ = false;
  Metered metered_ = Metered::unknown;
  uint networkState_ = 0;
};

}  // namespace thalvorn
