#pragma once

#include <QFuture>

#include "backend/supabase_client.h"
#include "store/app_view_model.h"
#include "sync/run_token.h"
#include "sync/sync_log.h"

namespace thalvorn {

/// The account as its row and its members tell.
struct AccountFacts {
  std::string plan = "none";  ///< "none", "captain", "fleet", "superyacht"
  std::int64_t additionalSeats = 0;
  /// Seats of the plan and those bought beside them.
  int seats() const;
};

/// One of the accounts that the user is a member of.
struct OwnAccount {
  std::string id;
  std::string name;  ///< as the account is called; may be empty
  bool isOwner = false;
  friend bool operator==(const OwnAccount&, const OwnAccount&) = default;
};

/// The answer of "claim_pending_invite".
struct ClaimResult {
  std::optional<std::string> accountId;  ///< whose membership it was; of several the newest
  bool claimed = false;
};

/// The answer of "bootstrap_own_account".
struct BootstrapResult {
  std::string accountId;
};

/// How many users a plan allows: none 1, captain 3, fleet 10, superyacht 25. A plan of a newer program counts as none.
int seatsOfPlan(std::string_view plan);
/// As a person reads it, e.g. "Captain".
std::string_view planName(std::string_view plan);

/// Finds the account of the signed-in user, and tells the store: the account, its members, the user's own membership.
/// The last answer is kept, so that a start without a connection has everything.
class AccountResolver : public QObject {
  Q_OBJECT

 public:
  AccountResolver(AppViewModel& model, SupabaseClient& client, SyncLog& log, QObject* parent = nullptr);
  ~AccountResolver() override { token_.end(); }

  /// Puts the last answer about this user's account in place, beside what the store itself restores.
  void restore();
  /// Asks the backend. An invitation to the user's address is claimed before an account of his own is made, and once
  /// after `expectInvitations` also when he has one. A member of several accounts works in the one he was invited to
  /// just now, else in the one he worked in last, else in his own, else in the newest. Without a connection the last
  /// answer stays; a user who is no member any more loses the account, and where the server says why, the store is told
  /// (`AppViewModel::accessRefusal`). False when the answer could not be put on disk, for instance because that is
  /// full: it counts until the program ends, and is to be asked again.
  SBTask<bool> resolveAccountAndMembership();
  /// The user has just signed in, or the program started.
  void expectInvitations() { invitationsDue_ = true; }
  /// Makes the next resolution open this account of the user's, instead of the one in view.
  void prefer(std::string account) { preferred_ = std::move(account); }
  /// The account is being determined at this moment.
  bool isResolving() const { return resolving_.isValid() && !resolving_.isFinished(); }

  const AccountFacts& facts() const { return facts_; }
  /// The accounts that the user is a member of, his own first, then by name.
  const std::vector<OwnAccount>& accounts() const { return accounts_; }

 Q_SIGNALS:
  void changed();
  /// The user is no member of his former account any more; its fleet is kept under this prefix.
  void fleetSetAside(const QString& prefix);

 private:
  /// Has the store turn to this account's fleet; false when that could not be put on disk, or the user is another by
  /// then.
  QCoro::Task<bool> enter(std::string user, std::string account);
  /// The account that the user gets by an invitation, or else one of his own.
  SBTask<std::string> claimOrBootstrap();
  SBTask<std::vector<AccountMember>> readMembers(TableQuery query);
  QCoro::Task<bool> takeMembers(std::vector<AccountMember> members);
  /// Claims what the user was invited to; gives the account that is new to him, or nothing.
  SBTask<std::string> claimBeside(std::vector<AccountMember> own);
  /// The user's accounts by name. Where there is but one nothing is asked.
  SBTask<std::vector<OwnAccount>> nameAccounts(std::vector<AccountMember> own);
  void takeAccounts(std::vector<OwnAccount> accounts);
  /// The server tells that the user's access was switched off.
  void loseAccess(const std::string& user, std::string reason);
  bool isStill(const std::string& user) const;
  SBTask<bool> resolveNow();
  std::unexpected<SBError> failed(const SBError& error);
  std::string key(std::string_view suffix) const;

  AppViewModel& model_;
  SupabaseClient& client_;
  SyncLog& log_;
  AccountFacts facts_;
  std::vector<OwnAccount> accounts_;
  std::string preferred_;
  QFuture<void> resolving_;  ///< the last one that was asked for
  bool invitationsDue_ = false;
  RunToken token_;
};

}  // namespace thalvorn
