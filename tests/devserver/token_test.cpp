#include "devserver/token.h"

#include <gtest/gtest.h>

namespace thalvorn::devserver {
namespace {

constexpr std::string_view kSecret = "a secret of this run";
constexpr std::int64_t kNow = 1'800'000'000;

std::optional<TokenFault> faultOf(const json::object& claims, std::chrono::seconds leeway = {}) {
  const auto verified = verifyToken(signToken(claims, kSecret), kSecret, kNow, leeway);
  if (verified) return std::nullopt;
  return verified.error();
}

TEST(Token, HoldsWithinItsTimes) {
  using std::chrono_literals::operator""s;
  EXPECT_EQ(faultOf({{"sub", "x"}}), std::nullopt);
  EXPECT_EQ(faultOf({{"exp", kNow}}), std::nullopt);
  EXPECT_EQ(faultOf({{"exp", kNow - 1}}), TokenFault::expired);
  EXPECT_EQ(faultOf({{"exp", kNow - 30}}, 30s), std::nullopt);
  EXPECT_EQ(faultOf({{"exp", kNow - 31}}, 30s), TokenFault::expired);
  EXPECT_EQ(faultOf({{"nbf", kNow + 1}}), TokenFault::notYetValid);
  EXPECT_EQ(faultOf({{"iat", kNow + 31}}, 30s), TokenFault::issuedInFuture);
}

TEST(Token, IsOursOnlyWithOurSignature) {
  const auto token = signToken({{"role", "anon"}, {"text", "snowman \u2603"}}, kSecret);
  const auto claims = verifyToken(token, kSecret, kNow, {});
  ASSERT_TRUE(claims.has_value());
  EXPECT_EQ(textMember(*claims, "text"), "snowman \u2603");
  EXPECT_EQ(verifyToken(token, "another", kNow, {}).error(), TokenFault::wrongKey);

  const auto payload = token.substr(token.find('.'), token.rfind('.') - token.find('.'));
  const std::string unsignedToken = "eyJhbGciOiJub25lIn0" + payload + ".";
  EXPECT_EQ(verifyToken(unsignedToken, kSecret, kNow, {}).error(), TokenFault::wrongKey);
  for (const auto* text : {"", "a", "a.b", "..", "a.b.c.d", "%.%.%"}) {
    EXPECT_EQ(verifyToken(text, kSecret, kNow, {}).error(), TokenFault::malformed) << text;
  }
}

TEST(Token, PasswordsMatchTheirHashOnly) {
  const auto hash = hashPassword("correct horse");
  EXPECT_NE(hash, hashPassword("correct horse")) << "salted";
  EXPECT_TRUE(passwordMatches("correct horse", hash));
  EXPECT_FALSE(passwordMatches("correct Horse", hash));
  EXPECT_FALSE(passwordMatches("", ""));
  EXPECT_NE(randomText(9), randomText(9));
  EXPECT_EQ(randomText(9).size(), 12U);
}

}  // namespace
}  // namespace thalvorn::devserver
