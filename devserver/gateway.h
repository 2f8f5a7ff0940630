#pragma once

#include <expected>
#include <filesystem>
#include <string>

#include "devserver/auth.h"
#include "devserver/faults.h"
#include "devserver/rest.h"
#include "devserver/site.h"
#include "devserver/storage.h"

namespace thalvorn::devserver {

/// libpq addresses of one cluster, by the role they connect as.
struct DatabaseAddresses {
  std::string authenticator;
  std::string authAdmin;
  std::string storageAdmin;
  std::string superuser;

  /// Reads what `scripts/database start` wrote into its folder.
  static std::expected<DatabaseAddresses, std::string> read(const std::filesystem::path& file);
};

/// Everything behind one address: keys, faults, and the services by their paths. Safe to use from every thread.
class Gateway {
 public:
  /// Uses up to `connections` connections for each service; `files` holds the bytes of stored files.
  Gateway(Site& site, const DatabaseAddresses& database, int connections, std::filesystem::path files);

  Response handle(Request request);

  /// Replaces the faults in force.
  void setFaults(std::vector<Fault> faults) { faults_.set(std::move(faults)); }

 private:
  Response serve(Request request);
  Response serveDevelopment(const Request& request);
  Response changeSettings(const json::object& changes);

  Site& site_;
  Faults faults_;
  Pool authPool_;
  Pool restPool_;
  Pool storagePool_;
  AuthService auth_;
  RestService rest_;
  StorageService storage_;
};

}  // namespace thalvorn::devserver
