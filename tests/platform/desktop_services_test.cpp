#include <gtest/gtest.h>

#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusReply>
#include <QSignalSpy>

#include "platform/await.h"
#include "platform/desktop_notifications.h"
#include "platform/desktop_settings.h"
#include "platform/fake_services.h"
#include "platform/private_bus.h"
#include "platform/search_provider.h"

namespace thalvorn {
namespace {

using namespace Qt::StringLiterals;
using test::eventually;
using test::FakeNotificationService;

class DesktopServicesTest : public testing::Test {
 protected:
  static Notification due(const QString& body = u"Vessel: Aurelia"_s) {
    return {u"task-1"_s,
            u"Maintenance due: Oil & filter"_s,
            body,
            u"x-thalvorn.maintenance"_s,
            NotificationUrgency::critical,
            {{u"open"_s, u"Open"_s}, {u"snooze"_s, u"Snooze"_s}}};
  }

  test::PrivateBus bus_;
};

TEST_F(DesktopServicesTest, ANotificationCarriesEverythingAndItsButtonsComeBack) {
  FakeNotificationService service(bus_.connect(), {u"actions"_s, u"body"_s, u"body-markup"_s});
  const auto notifications = makeDesktopNotifications(bus_.connect());
  QSignalSpy invoked(notifications.get(), &DesktopNotifications::actionInvoked);
  QSignalSpy ended(notifications.get(), &DesktopNotifications::ended);

  notifications->show(due(u"Vessel: <b>A & B</b>"_s));
  ASSERT_TRUE(eventually([&] { return service.shown.size() == 1; }));
  const FakeNotificationService::Shown first = service.shown[0];
  EXPECT_EQ(first.application, u"Thalvorn Yacht Systems"_s);
  EXPECT_EQ(first.icon, u"org.thalvorn.Thalvorn"_s);
  EXPECT_EQ(first.summary, u"Maintenance due: Oil & filter"_s);
  EXPECT_EQ(first.body, u"Vessel: &lt;b&gt;A &amp; B&lt;/b&gt;"_s);
  EXPECT_EQ(first.actions, (QStringList{u"default"_s, u"Open"_s, u"open"_s, u"Open"_s, u"snooze"_s, u"Snooze"_s}));
  EXPECT_EQ(first.hints.value(u"desktop-entry"_s).toString(), u"org.thalvorn.Thalvorn"_s);
  EXPECT_EQ(first.hints.value(u"category"_s).toString(), u"x-thalvorn.maintenance"_s);
  EXPECT_EQ(first.hints.value(u"urgency"_s).typeId(), int(QMetaType::UChar));
  EXPECT_EQ(first.hints.value(u"urgency"_s).toInt(), 2);
  EXPECT_TRUE(notifications->available());

  Q_EMIT service.ActionInvoked(first.number + 1, u"open"_s);  // another program's
  Q_EMIT service.ActivationToken(first.number, u"token"_s);
  Q_EMIT service.ActionInvoked(first.number, u"snooze"_s);
  Q_EMIT service.ActionInvoked(first.number, u"default"_s);
  Q_EMIT service.NotificationClosed(first.number, 2);
  Q_EMIT service.ActionInvoked(first.number, u"open"_s);  // gone
  Q_EMIT service.NotificationClosed(first.number, 2);
  ASSERT_TRUE(eventually([&] { return ended.size() == 1; }));
  notifications->show(due());
  ASSERT_TRUE(eventually([&] { return service.shown.size() == 2; }));
  EXPECT_EQ(service.shown[1].replaces, 0U) << "a dismissed one is shown anew";
  Q_EMIT service.ActionInvoked(service.shown[1].number, u"open"_s);
  ASSERT_TRUE(eventually([&] { return invoked.size() == 3; }));
  EXPECT_EQ(invoked[0], (QVariantList{u"task-1"_s, u"snooze"_s, u"token"_s}));
  EXPECT_EQ(invoked[1], (QVariantList{u"task-1"_s, u"open"_s, QString()}));
  ASSERT_EQ(ended.size(), 1);
  EXPECT_EQ(ended[0][1].value<NotificationEnd>(), NotificationEnd::dismissed);
}

TEST_F(DesktopServicesTest, UpdatesReplaceAndNeverStandBesideEachOther) {
  FakeNotificationService service(bus_.connect(), {u"body"_s});
  const auto notifications = makeDesktopNotifications(bus_.connect());
  QSignalSpy ended(notifications.get(), &DesktopNotifications::ended);
  for (int i = 0; i < 5; ++i) notifications->show(due(u"<%1>"_s.arg(i)));
  ASSERT_TRUE(eventually([&] { return !service.shown.empty() && service.shown.back().body == u"<4>"_s; }));
  notifications->show(due(u"<5>"_s));
  notifications->show(due(u"<6>"_s));
  ASSERT_TRUE(eventually([&] { return service.shown.back().body == u"<6>"_s; }));
  for (const auto& shown : service.shown) {
    EXPECT_EQ(shown.number, service.shown[0].number);
    EXPECT_TRUE(shown.actions.isEmpty()) << "the service offers no actions";
  }

  notifications->withdraw(u"another"_s);
  notifications->show(due(u"<7>"_s));
  notifications->withdraw(u"task-1"_s);
  ASSERT_TRUE(eventually([&] { return ended.size() == 1; }));
  EXPECT_EQ(ended[0][1].value<NotificationEnd>(), NotificationEnd::withdrawn);
  EXPECT_EQ(service.closed, std::vector{service.shown[0].number});
}

TEST_F(DesktopServicesTest, AMissingRefusingOrReturningServiceDoesNoHarm) {
  const auto notifications = makeDesktopNotifications(bus_.connect());
  QSignalSpy failed(notifications.get(), &DesktopNotifications::failed);
  QSignalSpy ended(notifications.get(), &DesktopNotifications::ended);
  notifications->show(due());
  ASSERT_TRUE(eventually([&] { return failed.size() == 1; }));
  EXPECT_FALSE(notifications->available());
  {
    FakeNotificationService service(bus_.connect(), {u"body"_s});
    ASSERT_TRUE(eventually([&] { return notifications->available(); }));
    service.refuses = true;
    notifications->show(due());
    ASSERT_TRUE(eventually([&] { return failed.size() == 2; }));
    EXPECT_EQ(failed[1], (QVariantList{u"task-1"_s, u"too many"_s}));
    service.refuses = false;
    notifications->show(due());
    ASSERT_TRUE(eventually([&] { return service.shown.size() == 1; }));
  }
  ASSERT_TRUE(eventually([&] { return ended.size() == 1 && !notifications->available(); }));
  EXPECT_EQ(ended[0][1].value<NotificationEnd>(), NotificationEnd::unknown);

  const auto none = makeDesktopNotifications(QDBusConnection(u"no such connection"_s));
  QSignalSpy noneFailed(none.get(), &DesktopNotifications::failed);
  none->show(due());
  EXPECT_TRUE(eventually([&] { return noneFailed.size() == 1; }));
}

class FakeIndex : public DesktopSearchIndex {
 public:
  QStringList find(const QStringList& terms, qsizetype) const override {
    QStringList ids;
    for (int i = 0; i < 80; ++i) {
      if (u"impeller %1"_s.arg(i).contains(terms.join(u' '))) ids << QString::number(i);
    }
    return ids;
  }
  SearchMeta meta(const QString& id) const override {
    if (id == "9"_L1) return {u"Raw water impeller"_s, u"Aurelia"_s, u"org.thalvorn.Thalvorn"_s, {}};
    return id == "8"_L1 ? SearchMeta{u"Sea strainer"_s, {}, {}, u"copy me"_s} : SearchMeta{};
  }
};

TEST_F(DesktopServicesTest, TheDesktopSearchFindsAndOpensRecords) {
  const FakeIndex index;
  SearchProvider provider(index, bus_.connect());
  QSignalSpy activated(&provider, &SearchProvider::activated);
  QSignalSpy searched(&provider, &SearchProvider::searchRequested);
  QDBusConnection shell = bus_.connect();
  // The reply arrives while the event loop runs, for the provider lives in this thread too.
  const auto ask = [&shell](const QString& method, const QVariantList& arguments) {
    QDBusMessage message =
        QDBusMessage::createMethodCall(u"org.thalvorn.Thalvorn"_s, u"/org/thalvorn/Thalvorn/SearchProvider"_s,
                                       u"org.gnome.Shell.SearchProvider2"_s, method);
    message.setArguments(arguments);
    const QDBusPendingCallWatcher call(shell.asyncCall(message));
    EXPECT_TRUE(eventually([&] { return call.isFinished(); }));
    return call.reply();
  };
  const auto nameTaken = [&] {
    return ask(u"GetInitialResultSet"_s, {QStringList{}}).type() == QDBusMessage::ReplyMessage;
  };
  ASSERT_TRUE(eventually(nameTaken));

  QDBusMessage reply = ask(u"GetInitialResultSet"_s, {QStringList{u"impeller"_s}});
  EXPECT_EQ(reply.signature(), u"as"_s);
  EXPECT_EQ(reply.arguments().value(0).toStringList().size(), SearchProvider::kMostResults);
  reply = ask(u"GetSubsearchResultSet"_s, {QStringList{u"1"_s}, QStringList{u"impeller"_s, u"79"_s}});
  EXPECT_EQ(reply.arguments().value(0).toStringList(), QStringList{u"79"_s});

  const QDBusPendingReply<QList<QVariantMap>> metas =
      ask(u"GetResultMetas"_s, {QStringList{u"9"_s, u"gone"_s, u"8"_s}});
  ASSERT_FALSE(metas.isError()) << metas.error().message().toStdString();
  ASSERT_EQ(metas.value().size(), 2);
  EXPECT_EQ(metas.value()[0], (QVariantMap{{u"id"_s, u"9"_s},
                                           {u"name"_s, u"Raw water impeller"_s},
                                           {u"description"_s, u"Aurelia"_s},
                                           {u"gicon"_s, u"org.thalvorn.Thalvorn"_s}}));
  EXPECT_EQ(metas.value()[1].value(u"clipboardText"_s).toString(), u"copy me"_s);

  EXPECT_EQ(ask(u"ActivateResult"_s, {u"9"_s, QStringList{u"impeller"_s}, 77U}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(activated.takeFirst(), (QVariantList{u"9"_s, 77U}));
  EXPECT_EQ(ask(u"LaunchSearch"_s, {QStringList{u"oil"_s}, 78U}).type(), QDBusMessage::ReplyMessage);
  EXPECT_EQ(searched.takeFirst(), (QVariantList{QStringList{u"oil"_s}, 78U}));
}

TEST_F(DesktopServicesTest, ASecondWindowTakesTheSearchOverWhenTheFirstCloses) {
  const FakeIndex index;
  QDBusConnection secondBus = bus_.connect();
  auto first = std::make_unique<SearchProvider>(index, bus_.connect());
  const QDBusConnection watcher = bus_.connect();
  const auto owner = [&] { return watcher.interface()->serviceOwner(u"org.thalvorn.Thalvorn"_s).value(); };
  ASSERT_TRUE(eventually([&] { return !owner().isEmpty(); }));
  const SearchProvider second(index, secondBus);
  EXPECT_NE(owner(), secondBus.baseService());
  first.reset();
  EXPECT_TRUE(eventually([&] { return owner() == secondBus.baseService(); }));
  const SearchProvider nowhere(index, QDBusConnection(u"no such connection"_s));
}

TEST_F(DesktopServicesTest, SettingsAreReadAndFollowed) {
  test::FakePortal portal(bus_.connect());
  test::FakeNetworkManager network(bus_.connect());
  DesktopSettings settings(bus_.connect(), bus_.connect());
  using Scheme = DesktopSettings::ColorScheme;
  using Metered = DesktopSettings::Metered;
  EXPECT_EQ(settings.colorScheme(), Scheme::noPreference) << "nothing is waited for";
  EXPECT_TRUE(eventually([&] {
    return settings.colorScheme() == Scheme::dark && settings.reducedMotion() && settings.metered() == Metered::yes;
  }));

  QSignalSpy schemeChanged(&settings, &DesktopSettings::colorSchemeChanged);
  const auto appearance = u"org.freedesktop.appearance"_s;
  Q_EMIT portal.SettingChanged(appearance, u"accent-color"_s, QDBusVariant(7U));
  Q_EMIT portal.SettingChanged(appearance, u"color-scheme"_s, QDBusVariant(1U));
  Q_EMIT portal.SettingChanged(appearance, u"color-scheme"_s, QDBusVariant(2U));
  Q_EMIT portal.SettingChanged(u"org.gnome.desktop.interface"_s, u"enable-animations"_s, QDBusVariant(true));
  network.change(4);
  EXPECT_TRUE(eventually([&] {
    return settings.colorScheme() == Scheme::light && !settings.reducedMotion() && settings.metered() == Metered::no;
  }));
  EXPECT_EQ(schemeChanged.size(), 1);
  Q_EMIT portal.SettingChanged(appearance, u"color-scheme"_s, QDBusVariant(9U));
  network.change(9);
  EXPECT_TRUE(eventually(
      [&] { return settings.colorScheme() == Scheme::noPreference && settings.metered() == Metered::unknown; }));

  const QDBusConnection none(u"no such connection"_s);
  const DesktopSettings alone(none, none);
  EXPECT_EQ(alone.colorScheme(), Scheme::noPreference);
}

TEST_F(DesktopServicesTest, TheNetworksReturnAndWakingUpAreTold) {
  test::FakeNetworkManager network(bus_.connect());
  test::FakeLoginManager login(bus_.connect());
  const DesktopSettings settings(bus_.connect(), bus_.connect());
  QSignalSpy returned(&settings, &DesktopSettings::networkReturned);
  ASSERT_TRUE(eventually([&] { return settings.metered() == DesktopSettings::Metered::yes; }));
  network.changeState(20);  // disconnected
  network.changeState(40);  // connecting
  network.changeState(70);
  ASSERT_TRUE(eventually([&] { return returned.size() == 1; }));
  network.changeState(60);  // the internet is gone, the network is not
  network.changeState(70);
  login.prepareForSleep(true);
  login.prepareForSleep(false);
  ASSERT_TRUE(eventually([&] { return returned.size() == 2; }));
  login.prepareForSleep(false);
  EXPECT_TRUE(eventually([&] { return returned.size() == 3; })) << "and none in between";
}

}  // namespace
}  // namespace thalvorn
