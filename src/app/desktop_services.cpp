#include "app/desktop_services.h"

#include "app/app_controller.h"
#include "app/record_search.h"
#include "platform/desktop_notifications.h"
#include "store/app_view_model.h"

namespace thalvorn::app {

DesktopServices::DesktopServices(AppViewModel& model, AppController& app, QObject* parent)
    : QObject(parent),
      model_(model),
      app_(app),
      reminders_(model, makeDesktopNotifications()),
      search_(recordSearch(model)),
      provider_(search_, QDBusConnection::sessionBus()) {
  connect(&reminders_, &Reminders::openRequested, this, [this](const QString& taskId, const QString& token) {
    QVariantMap arguments;
    if (!taskId.isEmpty()) arguments.insert(QStringLiteral("highlight"), taskId);
    app_.open(QStringLiteral("maintenance"), arguments);
    Q_EMIT raiseRequested(token);
  });
  connect(&provider_, &SearchProvider::activated, this, [this](const QString& id) {
    openHit(id);
    Q_EMIT raiseRequested({});
  });
  connect(&provider_, &SearchProvider::searchRequested, this, [this](const QStringList& terms) {
    app_.post(QStringLiteral("openSearch"));
    Q_EMIT searchWords(terms.join(u' '));
    Q_EMIT raiseRequested({});
  });
}

void DesktopServices::openHit(const QString& id) {
  const SearchHit* hit = search_.hit(id);
  if (!hit) return;
  const QString record = hit->arguments.value(QStringLiteral("highlight")).toString();
  model_.setSpotlightHighlightID(Uuid::parse(record.toStdString()));
  app_.open(hit->page, hit->arguments);
}

}  // namespace thalvorn::app
