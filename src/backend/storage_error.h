#pragma once

#include <QString>
#include <cstdint>

#include "backend/sb_error.h"

namespace thalvorn {

/// Why a file could not be moved to or from object storage.
struct StorageError {
  enum class Case : std::uint8_t {
    uploadFailed,  ///< also of a deletion
    downloadFailed,
    notAuthenticated,  ///< no token is stored; nothing was sent
    badURL             ///< bucket or path cannot be an address
  };

  Case kind = Case::uploadFailed;
  int status = 0;  ///< "statusCode" of the reply's body where there is one, else the HTTP status; 0 without a reply
  QString body;    ///< of the refused upload
  SBError cause;   ///< what helps, and the text for the user

  /// The object is not there, or this user may not see it: the server does not tell which. Act on it only after asking
  /// with a fresh token, and never throw the only copy away for it.
  bool isMissing() const;
};

}  // namespace thalvorn
