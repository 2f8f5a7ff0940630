#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace thalvorn::devserver {

using Headers = std::vector<std::pair<std::string, std::string>>;

/// A received HTTP request. `path` and `query` are as sent, still percent-encoded; `query` is without its '?'.
struct Request {
  std::string method;
  std::string path;
  std::string query;
  Headers headers;
  std::string body;
  /// The announced or received body is larger than the server reads; `body` is then empty.
  bool bodyTooLarge = false;

  /// The first header of that name, in any case of letters.
  std::optional<std::string_view> header(std::string_view name) const;
  /// The value without blanks around it, or `otherwise` when the header is missing.
  std::string_view headerOr(std::string_view name, std::string_view otherwise) const;
  bool isHead() const { return method == "HEAD"; }
};

/// What becomes of a reply on its way to the client.
enum class Delivery {
  whole,
  cut,      ///< the connection closes after half of the body
  dropped,  ///< the connection closes without a byte of reply
};

/// A reply. Date, Content-Length and Connection are added when it is sent; a reply to HEAD, 204 and 304 is sent without
/// its body.
struct Response {
  int status = 200;
  Headers headers;
  std::string body;
  Delivery delivery = Delivery::whole;
  std::chrono::milliseconds delay{0};
  bool close = false;

  Response& with(std::string name, std::string value);
};

/// A reply with a JSON body and the content type `type`.
Response jsonResponse(int status, std::string body, std::string type = "application/json");

/// Compares header names and tokens, ASCII letters in either case.
bool sameToken(std::string_view a, std::string_view b);

std::string_view trimmed(std::string_view text);

/// Splits at every `separator`; an empty text is no part.
std::vector<std::string_view> split(std::string_view text, char separator);

/// Resolves %XX and, when `plusIsSpace`, '+'; a '%' without two hexadecimal digits stays as it is.
std::string percentDecoded(std::string_view text, bool plusIsSpace);

/// Encodes everything but unreserved characters (RFC 3986), and `keep`.
std::string percentEncoded(std::string_view text, std::string_view keep = {});

/// The name-value pairs of a query in their order, decoded.
std::vector<std::pair<std::string, std::string>> queryPairs(std::string_view query);

/// The first value of `name` in a query.
std::optional<std::string> queryValue(std::string_view query, std::string_view name);

}  // namespace thalvorn::devserver
