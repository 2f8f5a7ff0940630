#include "devserver/token.h"

#include <crypt.h>
#include <fmt/format.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <vector>

#include "base/bytes.h"

namespace thalvorn::devserver {
namespace {

std::string base64Url(std::span<const unsigned char> bytes) {
  std::string text;
  appendBase64(text, Bytes{{bytes.begin(), bytes.end()}});
  while (text.ends_with('=')) text.pop_back();
  for (char& c : text) c = c == '+' ? '-' : c == '/' ? '_' : c;
  return text;
}

std::string base64Url(std::string_view text) {
  const auto bytes = std::as_bytes(std::span(text));
  return base64Url(std::span(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
}

std::optional<std::string> fromBase64Url(std::string_view text) {
  std::string plain(text);
  for (char& c : plain) c = c == '-' ? '+' : c == '_' ? '/' : c;
  const auto bytes = parseBase64(plain);
  if (!bytes) return std::nullopt;
  return std::string(bytes->data.begin(), bytes->data.end());
}

std::string signature(std::string_view text, std::string_view secret) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  HMAC(EVP_sha256(), secret.data(), static_cast<int>(secret.size()),
       reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data(), &size);
  return base64Url(std::span(digest.data(), size));
}

std::vector<unsigned char> randomBytes(std::size_t count) {
  std::vector<unsigned char> bytes(count);
  if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1) throw std::runtime_error("no random numbers");
  return bytes;
}

std::string bcrypt(const std::string& password, const char* setting) {
  const auto data = std::make_unique<crypt_data>();
  const char* hash = crypt_r(password.c_str(), setting, data.get());
  return hash ? hash : "";
}

std::optional<double> time(const json::object& claims, std::string_view name) {
  const auto* value = claims.if_contains(name);
  if (!value || !value->is_number()) return std::nullopt;
  return value->to_number<double>();
}

}  // namespace

std::string signToken(const json::object& claims, std::string_view secret) {
  const std::string text = base64Url(R"({"alg":"HS256","typ":"JWT"})") + "." + base64Url(json::serialize(claims));
  return text + "." + signature(text, secret);
}

std::expected<json::object, TokenFault> verifyToken(std::string_view token, std::string_view secret, std::int64_t now,
                                                    std::chrono::seconds leeway) {
  const auto first = token.find('.');
  const auto last = token.rfind('.');
  if (first == std::string_view::npos || last == first) return std::unexpected(TokenFault::malformed);
  if (token.find('.', first + 1) != last) return std::unexpected(TokenFault::malformed);
  const auto header = fromBase64Url(token.substr(0, first));
  const auto payload = fromBase64Url(token.substr(first + 1, last - first - 1));
  if (!header || !payload) return std::unexpected(TokenFault::malformed);
  boost::system::error_code error;
  const auto algorithm = json::parse(*header, error);
  if (error || !algorithm.is_object()) return std::unexpected(TokenFault::malformed);
  const auto expected = signature(token.substr(0, last), secret);
  const auto given = token.substr(last + 1);
  if (textMember(algorithm.get_object(), "alg") != "HS256" || expected.size() != given.size() ||
      CRYPTO_memcmp(expected.data(), given.data(), given.size()) != 0) {
    return std::unexpected(TokenFault::wrongKey);
  }
  auto claims = json::parse(*payload, error);
  if (error || !claims.is_object()) return std::unexpected(TokenFault::unreadableClaims);
  auto& object = claims.get_object();
  const auto margin = static_cast<double>(leeway.count());
  const auto at = static_cast<double>(now);
  if (const auto expiry = time(object, "exp"); expiry && at - margin > *expiry) {
    return std::unexpected(TokenFault::expired);
  }
  if (const auto begin = time(object, "nbf"); begin && at + margin < *begin) {
    return std::unexpected(TokenFault::notYetValid);
  }
  if (const auto issued = time(object, "iat"); issued && at + margin < *issued) {
    return std::unexpected(TokenFault::issuedInFuture);
  }
  return std::move(object);
}

std::string randomText(std::size_t bytes) { return base64Url(randomBytes(bytes)); }

std::string randomDigits() {
  const auto bytes = randomBytes(4);
  const unsigned number = (bytes[0] << 24U) | (bytes[1] << 16U) | (bytes[2] << 8U) | bytes[3];
  return fmt::format("{:06}", number % 1'000'000);
}

std::string sha224(std::string_view text) {
  std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  EVP_Digest(text.data(), text.size(), digest.data(), &size, EVP_sha224(), nullptr);
  std::string out;
  for (const auto byte : std::span(digest.data(), size)) out += fmt::format("{:02x}", byte);
  return out;
}

std::string hashPassword(const std::string& password) {
  const auto entropy = randomBytes(16);
  std::array<char, CRYPT_GENSALT_OUTPUT_SIZE> setting{};
  if (!crypt_gensalt_rn("$2a$", 5, reinterpret_cast<const char*>(entropy.data()), static_cast<int>(entropy.size()),
                        setting.data(), static_cast<int>(setting.size()))) {
    throw std::runtime_error("this system's crypt has no bcrypt");
  }
  return bcrypt(password, setting.data());
}

bool passwordMatches(const std::string& password, const std::string& hash) {
  const auto computed = bcrypt(password, hash.c_str());
  return !hash.empty() && computed.size() == hash.size() &&
         CRYPTO_memcmp(computed.data(), hash.data(), hash.size()) == 0;
}

std::string textMember(const json::object& object, std::string_view name) {
  const auto* value = object.if_contains(name);
  return value && value->is_string() ? std::string(value->get_string()) : std::string();
}

}  // namespace thalvorn::devserver
