#pragma once

#include <expected>
#include <string>
#include <vector>

#include "devserver/rest_error.h"

namespace thalvorn::devserver {

/// What the table interface looks at in a JSON body before PostgreSQL reads it.
struct Payload {
  bool isArray = false;
  std::vector<std::string> keys;  ///< of the object, or of every object of the array
};

/// PGRST102 when `body` is no JSON object or array of objects, or when `sameKeys` and the objects have different keys.
std::expected<Payload, RestError> readPayload(const std::string& body, bool sameKeys);

}  // namespace thalvorn::devserver
