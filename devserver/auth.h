#pragma once

#include "devserver/database.h"
#include "devserver/message.h"
#include "devserver/site.h"

namespace thalvorn::devserver {

/// The sign-in service.
class AuthService {
 public:
  /// `pool` connects as the owner of the schema `auth`.
  AuthService(Pool& pool, Site& site) : pool_(pool), site_(site) {}

  /// `request.path` is below the service's own path: "/token", "/user".
  Response handle(const Request& request);

 private:
  Pool& pool_;
  Site& site_;
};

}  // namespace thalvorn::devserver
