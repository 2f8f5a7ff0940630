#pragma once

#include <QCoroTask>
#include <QObject>
#include <QString>
#include <QVariant>

#include "app/app_controller.h"
#include "app/store_session.h"
#include "sync/cloud_session.h"

namespace thalvorn::app {

/// Signing in and out of the fleet server, and the way back in when a session has expired. QML sees it as `Account`.
/// Passwords pass through and are not kept.
class AccountController : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool hasServer READ hasServer CONSTANT)
  Q_PROPERTY(QString serverText READ serverText CONSTANT)
  Q_PROPERTY(QString state READ state NOTIFY changed)
  Q_PROPERTY(QString email READ email NOTIFY changed)
  Q_PROPERTY(QString name READ name NOTIFY changed)
  Q_PROPERTY(QString refusal READ refusal NOTIFY changed)
  Q_PROPERTY(bool awayFromOwn READ awayFromOwn NOTIFY changed)
  Q_PROPERTY(bool readsKeptFleet READ readsKeptFleet NOTIFY changed)
  Q_PROPERTY(QVariantList keptFleets READ keptFleets NOTIFY changed)
  Q_PROPERTY(QString step READ step WRITE setStep NOTIFY stepChanged)
  Q_PROPERTY(QString notice READ notice NOTIFY formChanged)
  Q_PROPERTY(QString work READ work NOTIFY formChanged)
  Q_PROPERTY(QString error READ error NOTIFY formChanged)
  Q_PROPERTY(QString emailError READ emailError NOTIFY formChanged)
  Q_PROPERTY(QString passwordError READ passwordError NOTIFY formChanged)
  Q_PROPERTY(QString againError READ againError NOTIFY formChanged)
  Q_PROPERTY(QString outcome READ outcome NOTIFY formChanged)

 public:
  /// `cloud` is null where no fleet server is set up; `problem` then says why its settings cannot be used, if they are
  /// there.
  AccountController(StoreSession& session, CloudSession* cloud, const QString& problem, AppController& app,
                    QObject* parent = nullptr);

  bool hasServer() const { return cloud_ != nullptr; }
  /// Where the fleet server is; without one, how one is set up.
  QString serverText() const;
  /// Whose fleet is in view: "none" for one of this computer's own, "signedIn", or "expired" for an account's fleet
  /// whose session has ended.
  QString state() const;
  /// The address of the user who is or was signed in; empty when nobody is.
  QString email() const;
  /// What that user is called, for "Work offline as …".
  QString name() const;

  /// Why the server lets the user no longer into his account, in its words; empty while it does.
  QString refusal() const;
  /// A user is known on this computer, and another fleet than his is in view.
  bool awayFromOwn() const;
  /// The fleet in view is that of an account that the user has left: it can be read only.
  bool readsKeptFleet() const { return model().isSetAside(); }
  /// The fleets of accounts that the user has left, as they last were on this computer: {prefix, text, since}.
  QVariantList keptFleets() const;

  /// What the welcome page asks for: "choice", "signIn", "signUp" or "forgot".
  QString step() const { return step_; }
  void setStep(const QString& step);
  /// Why the user is to sign in, when it is not his own wish.
  QString notice() const { return notice_; }
  /// What is being done with the server; empty when nothing is.
  QString work() const { return work_; }
  /// What went wrong: in all, and beside each field.
  QString error() const { return error_; }
  QString emailError() const { return emailError_; }
  QString passwordError() const { return passwordError_; }
  QString againError() const { return againError_; }
  /// What has been done and what the user does next, e.g. look into the mailbox.
  QString outcome() const { return outcome_; }

  Q_INVOKABLE void signIn(const QString& email, const QString& password);
  Q_INVOKABLE void signUp(const QString& email, const QString& password);
  /// Sends the mail by which a new password can be set.
  Q_INVOKABLE void sendReset(const QString& email);
  /// Sets a new password for the user who is signed in; `passwordChanged` tells of its end.
  Q_INVOKABLE void changePassword(const QString& password, const QString& again);
  /// Forgets what the form last said.
  Q_INVOKABLE void clearForm();

  /// Shows the sign-in form; the fleet in view stays open behind it.
  Q_INVOKABLE void showSignIn(const QString& step = QStringLiteral("signIn"));
  /// Goes on with the account's fleet after its session has expired: everything can be done, and what is changed waits.
  Q_INVOKABLE void workOffline();
  /// Asks first when changes have not been sent yet (`signOutQuestion`), else signs out.
  Q_INVOKABLE void requestSignOut();
  /// Ends the session, or leaves the fleet of this computer, and shows the welcome page.
  Q_INVOKABLE void signOut();

  /// Opens one of `keptFleets` to be read, and the user's own fleet again.
  Q_INVOKABLE void openKeptFleet(const QString& prefix);
  Q_INVOKABLE void openOwnFleet();

  /// The fleet in view may not be shown before the user has signed in again or chosen to work offline.
  bool mustSignIn() const;
  /// Takes up the session of the user whose fleet has just been opened, in the background.
  void resume();
  /// Signs in by the link of a password mail.
  void followLink(const QString& link);

 Q_SIGNALS:
  void changed();
  void stepChanged();
  void formChanged();
  /// The session has ended while the user was at work; the window calls `showSignIn` when nothing is being typed.
  void expired();
  void passwordChanged();
  /// The fleet of another of the user's accounts has come into view.
  void accountChanged();
  /// The user is no member any more of the account whose fleet was in view. `text` tells what became of it; `prefix`
  /// opens it.
  void fleetKept(const QString& text, const QString& prefix);
  /// `text` says what would wait until the next sign-in.
  void signOutQuestion(const QString& text);

 private:
  enum class Field { none, email, password };

  AppViewModel& model() const { return session_.model(); }
  bool ownFleetInView() const;
  /// The vessels of a fleet that was set aside, by name.
  QString vesselsOf(const QString& prefix) const;
  bool begin(const QString& work);
  void end();
  void fail(const SBError& error, Field otherwise = Field::none);
  bool acceptsEmail(const QString& email);
  void entered();

  StoreSession& session_;
  CloudSession* cloud_;
  QString problem_;
  AppController& app_;
  QString step_ = QStringLiteral("choice");
  QString notice_;
  QString work_;
  QString error_;
  QString emailError_;
  QString passwordError_;
  QString againError_;
  QString outcome_;
};

}  // namespace thalvorn::app
