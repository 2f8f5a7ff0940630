#pragma once

#include <QObject>
#include <memory>

#include "backend/supabase_client.h"
#include "store/app_view_model.h"
#include "store/session_store.h"
#include "sync/account_resolver.h"
#include "sync/file_sync.h"
#include "sync/sync_log.h"
#include "sync/sync_manager.h"

namespace thalvorn {

/// A fleet that is shared through the fleet server: signing in and out, the account and its team, and the exchange of
/// records. Without a connection everything that was here stays usable; what is changed waits.
class CloudSession : public QObject {
  Q_OBJECT

 public:
  CloudSession(AppViewModel& model, BackendConfig config, const Clock& clock, Timing& timing,
               SyncManager::Options options = {}, QObject* parent = nullptr);
  ~CloudSession() override;

  SupabaseClient& client() { return *client_; }
  SyncManager& sync() { return *sync_; }
  const AccountResolver& account() const { return *resolver_; }
  SyncLog& log() { return log_; }
  FileSync& files() { return *files_; }

  /// The user whose fleet is shared on this computer; empty when nobody is signed in. He stays known when his session
  /// has expired and the fleet goes on without the server.
  QString userID() const { return client_->userID(); }
  QString userEmail() const { return client_->userEmail(); }
  /// The session has expired or was never there: nothing is sent until the user signs in again.
  bool needsSignIn() const { return !client_->isAuthenticated(); }

  // ---- in and out. The fleet of the user is opened in the store, its account found, and a full run started.
  /// Puts in place what is known of the signed-in user, whose fleet is open, without asking the server.
  void restore();
  /// Opens the fleet of the user who is signed in, as at the start of the program. False when nobody is.
  QCoro::Task<bool> resume();
  SBTask<SignedIn> signIn(QString email, QString password);
  SBTask<SignUpOutcome> signUp(QString email, QString password);
  /// Signs in by the link of a password mail; a new password is to be asked for.
  SBTask<SignedIn> openLink(QString link);
  /// Ends the session and closes the fleet; what is here stays for the next time.
  QCoro::Task<void> signOut();
  /// The way to the server may be open again, after a time without a network or after sleep: what waits goes on now.
  void networkReturned();
  /// How much of the open fleet would wait for the next sign-in: records, settings and files.
  int unsentCount() const;

  // ---- the team. All of it needs a connection. The errors are for the user.
  using Done = std::expected<void, QString>;
  /// The prefix of the fleet that was set aside since the program began, because its user is no member any more of the
  /// account; empty: none was.
  const QString& setAsideFleet() const { return setAside_; }
  /// Asks for the account and its members now.
  QCoro::Task<bool> refreshAccount();
  /// Opens another of the user's accounts (`AccountResolver::accounts`) and fetches its records. Refuses while changes
  /// wait, which belong to the account in view.
  QCoro::Task<Done> openAccount(std::string account);
  /// How many of the seats are used, e.g. "3 of 10 seats used on your Fleet plan"; empty for who does not see them all.
  QString seatsText() const;
  int seatsUsed() const;
  QCoro::Task<Done> inviteTeamMember(QString email, QString name, TeamRole role);
  /// Writes the name, role, active flag and exceptions of a member.
  QCoro::Task<Done> updateMember(AccountMember member);
  QCoro::Task<Done> removeMember(Uuid id);

  /// Copies the fleet kept on this computer into the open account; a record that is there already is left as it is.
  /// Gives how many were copied.
  QCoro::Task<std::expected<int, QString>> adoptLocalFleet();

 Q_SIGNALS:
  /// Signed in, out, or known to be expired.
  void changed();
  /// The server no longer takes the session; `text` is for the user.
  void sessionExpired(const QString& text);
  /// The user has to choose a new password before anything else.
  void passwordChangeRequired();
  /// The user has left an account, or was removed from it; its fleet is kept under this prefix, to be read.
  void fleetSetAside(const QString& prefix);

 private:
  QCoro::Task<void> opened(bool passwordChangeRequired);
  /// Whether all members of the account are told to the user.
  bool seesTeam() const;

  AppViewModel& model_;
  SessionStore tokens_;
  SyncLog log_;
  QString setAside_;
  std::unique_ptr<SupabaseClient> client_;
  std::unique_ptr<AccountResolver> resolver_;
  std::unique_ptr<SyncManager> sync_;
  std::unique_ptr<FileSync> files_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace thalvorn
