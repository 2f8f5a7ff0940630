#pragma once

#include <boost/json.hpp>
#include <chrono>
#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

namespace thalvorn::devserver {

namespace json = boost::json;

/// Why a bearer token is refused.
enum class TokenFault { malformed, wrongKey, unreadableClaims, expired, notYetValid, issuedInFuture, wrongAudience };

/// A JSON Web Token over `claims`, signed with HMAC-SHA-256.
std::string signToken(const json::object& claims, std::string_view secret);

/// The claims of `token` when it carries our signature and holds at `now` (seconds since 1970), give or take `leeway`.
std::expected<json::object, TokenFault> verifyToken(std::string_view token, std::string_view secret, std::int64_t now,
                                                    std::chrono::seconds leeway);

/// Base64url of that many random bytes, without padding.
std::string randomText(std::size_t bytes);

/// Six random decimal digits, as mails carry them.
std::string randomDigits();

/// SHA-224 in hexadecimal.
std::string sha224(std::string_view text);

/// bcrypt, at a cost meant for tests.
std::string hashPassword(const std::string& password);
bool passwordMatches(const std::string& password, const std::string& hash);

/// The text of member `name`, or an empty one when it is missing or no text.
std::string textMember(const json::object& object, std::string_view name);

}  // namespace thalvorn::devserver
