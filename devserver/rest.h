#pragma once

#include "devserver/message.h"
#include "devserver/schema_cache.h"
#include "devserver/settings.h"
#include "devserver/token.h"

namespace thalvorn::devserver {

/// The table interface: rows of the schema `public` and calls of its functions, each request in a transaction of its
/// own under the role and claims of its token.
class RestService {
 public:
  /// `pool` connects as the role `authenticator`.
  RestService(Pool& pool, const SharedSettings& settings) : pool_(pool), settings_(settings), schema_(pool) {}

  /// `request.path` is below the interface's own path: "/tasks", "/rpc/claim_pending_invite".
  Response handle(const Request& request, const json::object& claims);

 private:
  Pool& pool_;
  const SharedSettings& settings_;
  SchemaCache schema_;
};

}  // namespace thalvorn::devserver
