#include "app/account/account_controller.h"

#include <QRegularExpression>
#include <algorithm>

#include "app/format.h"
#include "app/text.h"
#include "store/preferences.h"

namespace thalvorn::app {

namespace {

/// The user who has chosen to go on without signing in again; kept, so that the next start does not ask.
constexpr std::string_view kWorksOffline = "thalvorn.worksOffline";
/// The user who has to choose a new password; kept, so that a restart does not evade it.
constexpr std::string_view kPasswordDue = "thalvorn.passwordDue";

constexpr int kShortestPassword = 8;
constexpr int kLongestPassword = 72;  ///< bytes that the server looks at

QString expiredText() {
  return QStringLiteral("Your session has expired for security. Please sign in again to continue syncing your data.");
}

/// What is wrong with a new password; empty when it will do.
QString faultOf(const QString& password) {
  if (password.size() < kShortestPassword) return QStringLiteral("Use at least %1 characters.").arg(kShortestPassword);
  if (password.toUtf8().size() > kLongestPassword)
    return QStringLiteral("Use at most %1 characters.").arg(kLongestPassword);
  return {};
}

}  // namespace

AccountController::AccountController(StoreSession& session, CloudSession* cloud, const QString& problem,
                                     AppController& app, QObject* parent)
    : QObject(parent), session_(session), cloud_(cloud), problem_(problem), app_(app) {
  for (const auto signal : {&AppViewModel::prefixChanged, &AppViewModel::membershipChanged,
                            &AppViewModel::displayNameChanged, &AppViewModel::isAuthenticatedChanged}) {
    connect(&model(), signal, this, &AccountController::changed);
  }
  if (!cloud_) return;
  connect(&model(), &AppViewModel::reloaded, this, [this, user = std::string(), account = std::string()]() mutable {
    const std::string userBefore = std::exchange(user, model().prefix());
    const std::string accountBefore = std::exchange(account, model().fleetAccount());
    if (userBefore == user && !accountBefore.empty() && accountBefore != account) Q_EMIT accountChanged();
  });
  connect(cloud_, &CloudSession::changed, this, [this] {
    // Signed out by the command line, the window has no fleet any more.
    if (app_.phase() == u"ready" && model().prefix().empty()) app_.setPhase(QStringLiteral("welcome"));
    Q_EMIT changed();
  });
  connect(cloud_, &CloudSession::sessionExpired, this, [this](const QString& text) {
    notice_ = text;
    Q_EMIT formChanged();
    Q_EMIT changed();
    if (ownFleetInView()) Q_EMIT expired();
  });
  connect(cloud_, &CloudSession::fleetSetAside, this, [this](const QString& prefix) {
    const QString vessels = vesselsOf(prefix);
    Q_EMIT changed();
    Q_EMIT fleetKept(
        QStringLiteral(
            "You have left the account that the fleet%1 belongs to, or were removed from it. The fleet stays "
            "on this computer as it last was here, with what had not been sent: it can be read, printed and "
            "exported, is not changed any more and goes to nobody. “Account” opens it again. The fleet in "
            "view is that of the account you are in now.")
            .arg(vessels.isEmpty() ? QString() : QStringLiteral(" of ") + vessels),
        prefix);
  });
  connect(cloud_, &CloudSession::passwordChangeRequired, this, [this] {
    Preferences(session_.cache()).setText(kPasswordDue, cloud_->userID().toStdString());
    app_.post(QStringLiteral("thalvornPromptChangePassword"));
  });
}

// ---- who ----

QString AccountController::serverText() const {
  if (cloud_) return cloud_->client().config().address("/").host();
  if (!problem_.isEmpty()) return problem_;
  return QStringLiteral(
      "No fleet server is set up on this computer. Whoever runs yours gives you its address and key: put them into the "
      "file thalvorn/backend.json of your configuration folder as {\"url\": …, \"anonKey\": …}, or start the program "
      "with --backend URL --key KEY. A fleet kept on this computer needs no account.");
}

bool AccountController::ownFleetInView() const {
  return cloud_ && !cloud_->userID().isEmpty() && model().prefix() == cloud_->userID().toStdString();
}

QString AccountController::state() const {
  if (!ownFleetInView()) return QStringLiteral("none");
  return cloud_->needsSignIn() ? QStringLiteral("expired") : QStringLiteral("signedIn");
}

QString AccountController::email() const { return cloud_ ? cloud_->userEmail() : QString(); }

QString AccountController::name() const {
  if (ownFleetInView()) {
    if (const auto& own = model().membership(); own && !own->name.empty()) return toQt(own->name);
    if (const std::string name = model().displayName(); !name.empty()) return toQt(name);
  }
  return email();
}

QString AccountController::refusal() const { return ownFleetInView() ? toQt(model().accessRefusal()) : QString(); }

// ---- fleets of accounts that were left ----

QString AccountController::vesselsOf(const QString& prefix) const {
  return toQt(
      session_.cache().preference(prefix.toStdString() + std::string(AppViewModel::setAsideVessels)).value_or(""));
}

bool AccountController::awayFromOwn() const {
  return cloud_ && !cloud_->userID().isEmpty() && !model().prefix().empty() && !ownFleetInView();
}

QVariantList AccountController::keptFleets() const {
  QVariantList list;
  if (!cloud_ || cloud_->userID().isEmpty()) return list;
  const std::string own = AppViewModel::setAsidePrefix(cloud_->userID().toStdString(), {});
  for (const std::string& prefix : session_.cache().prefixes()) {
    if (!prefix.starts_with(own)) continue;
    // One that he can change over to is not left.
    const auto& accounts = cloud_->account().accounts();
    if (std::ranges::find(accounts, prefix.substr(own.size()), &OwnAccount::id) != accounts.end()) continue;
    const QString vessels = vesselsOf(toQt(prefix));
    const auto since =
        parseTimestamp(session_.cache().preference(prefix + std::string(AppViewModel::setAsideSince)).value_or(""));
    list.append(
        QVariantMap{{QStringLiteral("prefix"), toQt(prefix)},
                    {QStringLiteral("text"), vessels.isEmpty() ? QStringLiteral("A fleet without vessels") : vessels},
                    {QStringLiteral("since"), since ? QVariant(Format::toQml(*since)) : QVariant()}});
  }
  return list;
}

void AccountController::openKeptFleet(const QString& prefix) {
  if (!AppViewModel::isSetAside(prefix.toStdString())) return;
  app_.setPhase(QStringLiteral("loading"));
  session_.openFleet(prefix.toStdString());
}

void AccountController::openOwnFleet() {
  if (!awayFromOwn()) return;
  app_.setPhase(QStringLiteral("loading"));
  QCoro::connect(cloud_->resume(), this, [](bool) {});
}

// ---- the form ----

void AccountController::setStep(const QString& step) {
  if (step == step_) return;
  step_ = step;
  clearForm();
  Q_EMIT stepChanged();
}

void AccountController::clearForm() {
  for (QString* text : {&error_, &emailError_, &passwordError_, &againError_, &outcome_}) text->clear();
  Q_EMIT formChanged();
}

bool AccountController::begin(const QString& work) {
  if (!work_.isEmpty() || !cloud_) return false;
  clearForm();
  work_ = work;
  Q_EMIT formChanged();
  return true;
}

void AccountController::end() {
  work_.clear();
  Q_EMIT formChanged();
}

void AccountController::fail(const SBError& error, Field otherwise) {
  const bool unreachable = error.kind == SBError::Case::networkError;
  const QString text =
      unreachable ? QStringLiteral("%1 cannot be reached. Check the connection and try again.").arg(serverText())
                  : error.text;
  Field field = unreachable ? Field::none : otherwise;
  if (error.code == u"weak_password" || error.code == u"same_password") field = Field::password;
  if (error.code == u"email_address_invalid" || error.code == u"email_exists" || error.code == u"user_already_exists")
    field = Field::email;
  (field == Field::email ? emailError_ : field == Field::password ? passwordError_ : error_) = text;
  end();
}

bool AccountController::acceptsEmail(const QString& email) {
  static const QRegularExpression form(QStringLiteral("^[^@\\s]+@[^@\\s]+$"));
  if (form.match(email.trimmed()).hasMatch()) return true;
  emailError_ = QStringLiteral("Enter your e-mail address, such as name@yacht.com.");
  Q_EMIT formChanged();
  return false;
}

void AccountController::entered() {
  Preferences(session_.cache()).remove(kWorksOffline);
  notice_.clear();
  setStep(QStringLiteral("choice"));
  end();
}

void AccountController::signIn(const QString& email, const QString& password) {
  if (!work_.isEmpty()) return;
  clearForm();
  if (password.isEmpty()) passwordError_ = QStringLiteral("Enter your password.");
  if (!acceptsEmail(email) || password.isEmpty()) {
    Q_EMIT formChanged();
    return;
  }
  if (!begin(QStringLiteral("Signing in…"))) return;
  QCoro::connect(
      cloud_->signIn(email.trimmed(), password), this, [this](const std::expected<SignedIn, SBError>& signedIn) {
        if (signedIn) {
          entered();
        } else {
          fail(signedIn.error(), signedIn.error().code == u"invalid_credentials" ? Field::password : Field::none);
        }
      });
}

void AccountController::signUp(const QString& email, const QString& password) {
  if (!work_.isEmpty()) return;
  clearForm();
  passwordError_ = faultOf(password);
  if (!acceptsEmail(email) || !passwordError_.isEmpty()) {
    Q_EMIT formChanged();
    return;
  }
  if (!begin(QStringLiteral("Creating the account…"))) return;
  QCoro::connect(cloud_->signUp(email.trimmed(), password), this,
                 [this, email](const std::expected<SignUpOutcome, SBError>& outcome) {
                   if (!outcome) {
                     fail(outcome.error());
                   } else if (*outcome == SignUpOutcome::signedIn) {
                     entered();
                   } else {
                     end();
                     setStep(QStringLiteral("signIn"));
                     outcome_ = QStringLiteral(
                                    "Check your e-mail: a message was sent to %1. Follow its link to "
                                    "confirm the address, then sign in here.")
                                    .arg(email.trimmed());
                     Q_EMIT formChanged();
                   }
                 });
}

void AccountController::sendReset(const QString& email) {
  if (!work_.isEmpty()) return;
  clearForm();
  if (!acceptsEmail(email) || !begin(QStringLiteral("Asking for the mail…"))) return;
  QCoro::connect(cloud_->client().resetPassword(email.trimmed()), this,
                 [this, email](const std::expected<void, SBError>& sent) {
                   if (!sent) {
                     fail(sent.error());
                     return;
                   }
                   end();
                   outcome_ = QStringLiteral(
                                  "Check your e-mail: if %1 belongs to a user, a message with a link is on "
                                  "its way. Open the link on this computer and choose a new password.")
                                  .arg(email.trimmed());
                   Q_EMIT formChanged();
                 });
}

void AccountController::changePassword(const QString& password, const QString& again) {
  if (!work_.isEmpty()) return;
  clearForm();
  passwordError_ = faultOf(password);
  if (passwordError_.isEmpty() && password != again) againError_ = QStringLiteral("The two do not match.");
  if (!passwordError_.isEmpty() || !againError_.isEmpty()) {
    Q_EMIT formChanged();
    return;
  }
  if (!begin(QStringLiteral("Changing the password…"))) return;
  // A login that an administrator made is set as a whole.
  Preferences preferences(session_.cache());
  const bool due = preferences.text(kPasswordDue) == cloud_->userID().toStdString();
  SupabaseClient& client = cloud_->client();
  QCoro::connect(due ? client.setCredentials(client.userEmail(), password) : client.changePassword(password), this,
                 [this](const std::expected<void, SBError>& changed) {
                   if (!changed) {
                     fail(changed.error());
                     return;
                   }
                   Preferences(session_.cache()).remove(kPasswordDue);
                   end();
                   app_.toast(QStringLiteral("Your password is changed. Other devices have to sign in again."),
                              QStringLiteral("ok"));
                   Q_EMIT passwordChanged();
                 });
}

// ---- in and out ----

void AccountController::showSignIn(const QString& step) {
  if (state() == u"expired" && notice_.isEmpty()) notice_ = expiredText();
  if (state() != u"expired") notice_.clear();
  setStep(cloud_ ? step : QStringLiteral("choice"));
  if (!cloud_) error_ = serverText();
  Q_EMIT formChanged();
  app_.setPhase(QStringLiteral("welcome"));
}

void AccountController::workOffline() {
  if (!ownFleetInView()) return;
  Preferences(session_.cache()).setText(kWorksOffline, cloud_->userID().toStdString());
  setStep(QStringLiteral("choice"));
  app_.setPhase(QStringLiteral("ready"));
  Q_EMIT changed();
}

bool AccountController::mustSignIn() const {
  return state() == u"expired" && Preferences(session_.cache()).text(kWorksOffline) != model().prefix();
}

void AccountController::resume() {
  if (!ownFleetInView()) return;
  QCoro::connect(cloud_->resume(), this, [](bool) {});
  if (mustSignIn()) showSignIn();
  if (!cloud_->needsSignIn() && Preferences(session_.cache()).text(kPasswordDue) == model().prefix())
    app_.post(QStringLiteral("thalvornPromptChangePassword"));
}

void AccountController::followLink(const QString& link) {
  if (!cloud_) {
    app_.toast(serverText(), QStringLiteral("soon"));
    return;
  }
  if (!begin(QStringLiteral("Opening the link…"))) return;
  QCoro::connect(cloud_->openLink(link), this, [this](const std::expected<SignedIn, SBError>& signedIn) {
    if (signedIn) {
      entered();
      return;
    }
    if (app_.phase() == u"welcome") {
      setStep(QStringLiteral("forgot"));
    } else {
      app_.toast(signedIn.error().text, QStringLiteral("overdue"));
    }
    fail(signedIn.error());
  });
}

void AccountController::requestSignOut() {
  const int waiting = ownFleetInView() ? cloud_->unsentCount() : 0;
  if (waiting == 0) {
    signOut();
    return;
  }
  Q_EMIT signOutQuestion(
      waiting == 1
          ? QStringLiteral("1 change has not been sent to the fleet server yet. It stays on this computer and is sent "
                           "when %1 signs in here again; until then nobody else sees it.")
                .arg(name())
          : QStringLiteral("%1 changes have not been sent to the fleet server yet. They stay on this computer and are "
                           "sent when %2 signs in here again; until then nobody else sees them.")
                .arg(waiting)
                .arg(name()));
}

void AccountController::signOut() {
  Preferences preferences(session_.cache());
  preferences.remove(kWorksOffline);
  notice_.clear();
  if (ownFleetInView()) {
    QCoro::connect(cloud_->signOut(), this, [] {});
  } else {
    model().clear();
  }
  session_.forgetChoice();
  setStep(QStringLiteral("choice"));
  clearForm();
  app_.setPhase(QStringLiteral("welcome"));
  Q_EMIT changed();
}

}  // namespace thalvorn::app
