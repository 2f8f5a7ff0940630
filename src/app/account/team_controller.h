#pragma once

#include <QObject>
#include <QVariant>

#include "app/app_controller.h"
#include "app/store_session.h"
#include "sync/cloud_session.h"

namespace thalvorn::app {

/// The account in view and the people in it. QML sees it as `Team`.
class TeamController : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool mayManage READ mayManage NOTIFY changed)
  Q_PROPERTY(QString plan READ plan NOTIFY changed)
  Q_PROPERTY(QString seatsText READ seatsText NOTIFY changed)
  Q_PROPERTY(QString role READ role NOTIFY changed)
  Q_PROPERTY(QVariantList members READ members NOTIFY changed)
  Q_PROPERTY(QVariantList accounts READ accounts NOTIFY changed)
  Q_PROPERTY(QString accountId READ accountId NOTIFY changed)
  Q_PROPERTY(QVariantList roles READ roles CONSTANT)
  Q_PROPERTY(QVariantList accesses READ accesses CONSTANT)
  Q_PROPERTY(bool hasLocalFleet READ hasLocalFleet NOTIFY changed)
  Q_PROPERTY(bool busy READ busy NOTIFY workChanged)
  Q_PROPERTY(QString error READ error NOTIFY workChanged)
  Q_PROPERTY(QString emailError READ emailError NOTIFY workChanged)
  Q_PROPERTY(QString nameError READ nameError NOTIFY workChanged)

 public:
  /// `cloud` is null where no fleet server is set up.
  TeamController(StoreSession& session, CloudSession* cloud, AppController& app, QObject* parent = nullptr);

  /// Whether the user sees the team and may change it.
  bool mayManage() const;
  QString plan() const;
  /// E.g. "3 of 10 seats used on your Fleet plan".
  QString seatsText() const;
  /// The user's own role, e.g. "Editor"; "Owner" for the account's owner.
  QString role() const;
  /// The owner first, then by name: {id, name, email, role, roleText, state, tone, isOwner, isSelf, invited, active,
  /// exceptions}.
  QVariantList members() const;
  /// The accounts that the user is a member of, his own first: {value, text}.
  QVariantList accounts() const;
  /// The one in view.
  QString accountId() const;
  /// What each role may do: {value, text, detail}.
  QVariantList roles() const;
  /// What an exception can be: {value, text}.
  QVariantList accesses() const;
  /// A fleet kept on this computer could be taken into the account.
  bool hasLocalFleet() const;

  bool busy() const { return busy_; }
  QString error() const { return error_; }
  QString emailError() const { return emailError_; }
  QString nameError() const { return nameError_; }

  /// One member as `members` has it; empty when it is gone.
  Q_INVOKABLE QVariantMap member(const QString& id) const;
  /// The member's access to every module that can be set, in order: {key, text, access}.
  Q_INVOKABLE QVariantList modules(const QString& id) const;
  /// Asks the server for the team as it is now.
  Q_INVOKABLE void refresh();
  Q_INVOKABLE void clearErrors();
  /// Each ends with `done`, or with an error that stays on the form.
  Q_INVOKABLE void invite(const QString& email, const QString& name, const QString& role);
  /// `overrides` holds the access by module key; "inherit" is left out.
  Q_INVOKABLE void save(const QString& id, const QString& name, const QString& role, bool active,
                        const QVariantMap& overrides);
  Q_INVOKABLE void remove(const QString& id);
  /// Brings another of the user's accounts into view.
  Q_INVOKABLE void openAccount(const QString& id);
  /// Takes the fleet kept on this computer into the account.
  Q_INVOKABLE void adoptLocalFleet();

 Q_SIGNALS:
  void changed();
  void workChanged();
  void done();

 private:
  AppViewModel& model() const { return session_.model(); }
  bool open() const;
  const AccountMember* find(const QString& id) const;
  QVariantMap describe(const AccountMember& member) const;
  bool begin();
  void settle(const CloudSession::Done& result, const QString& told);

  StoreSession& session_;
  CloudSession* cloud_;
  AppController& app_;
  bool busy_ = false;
  QString error_;
  QString emailError_;
  QString nameError_;
};

}  // namespace thalvorn::app
