#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "devserver/settings.h"

namespace thalvorn::devserver {

/// A mail the sign-in service would have sent.
struct Mail {
  std::string to;
  std::string kind;  ///< signup, recovery, email_change
  std::string code;  ///< six digits to type
  std::string tokenHash;
  std::string link;
};

/// The mails of this run, in their order. Safe to use from every thread.
class Mailbox {
 public:
  void add(Mail mail) {
    const std::lock_guard lock(mutex_);
    mails_.push_back(std::move(mail));
  }
  std::vector<Mail> all() const {
    const std::lock_guard lock(mutex_);
    return mails_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Mail> mails_;
};

/// What the services of one run share.
struct Site {
  std::string url;             ///< without a slash at its end
  std::string secret;          ///< signs the tokens
  std::string anonKey;         ///< a token of the role `anon`
  std::string serviceKey;      ///< a token of the role `service_role`
  std::string publishableKey;  ///< the newer form of `anonKey`: no token
  std::string databaseFolder;  ///< for `scripts/database migrate`
  SharedSettings settings;
  Mailbox mailbox;
};

}  // namespace thalvorn::devserver
