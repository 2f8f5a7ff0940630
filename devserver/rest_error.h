#pragma once

#include <optional>
#include <string>

#include "devserver/database.h"
#include "devserver/message.h"
#include "devserver/token.h"

namespace thalvorn::devserver {

/// A refusal by the table interface.
struct RestError {
  int status = 400;
  std::string code;
  std::string message;
  std::optional<std::string> details;
  std::optional<std::string> hint;
  Headers headers;
};

/// The HTTP status that stands for a SQLSTATE. Missing rights are 401 for who has not signed in, 403 for others.
int statusOfSqlState(std::string_view sqlstate, std::string_view message, bool signedIn);

/// Also resolves `raise sqlstate 'PT…'` and `raise sqlstate 'PGRST'`, by which a function chooses its own reply.
RestError restError(const DatabaseError& error, bool signedIn);

/// `olderForm`: an expired token has the code that servers used up to version 12.
RestError restError(TokenFault fault, bool olderForm);

Response restResponse(const RestError& error);

}  // namespace thalvorn::devserver
