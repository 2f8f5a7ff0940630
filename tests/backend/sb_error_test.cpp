#include <gmock/gmock.h>

#include "backend/http_transport.h"

namespace thalvorn {
namespace {

using Remedy = SBError::Remedy;

struct OddReply {
  const char* what;
  qint64 status;
  QByteArray body;
  const char* code;
  const char* reason;
  Remedy remedy;
  QList<QNetworkReply::RawHeaderPair> headers = {};
};

TEST(SBErrorTest, TellsFromOddRepliesWhatHelps) {
  const OddReply replies[] = {
      {"a refusal of the old form", 400, R"({"error":"invalid_grant","error_description":"Invalid login credentials"})",
       "invalid_grant", "Invalid login credentials", Remedy::mendRecord},
      {"a refusal with a numeric code", 400,
       R"({"code":400,"error_code":"invalid_credentials","msg":"Invalid login credentials"})", "invalid_credentials",
       "Invalid login credentials", Remedy::mendRecord},
      {"a refusal of the newest form", 422, R"({"code":"weak_password","message":"Password is too short"})",
       "weak_password", "Password is too short", Remedy::mendRecord},
      {"a code in a header alone",
       400,
       R"({"msg":"Email not confirmed"})",
       "email_not_confirmed",
       "Email not confirmed",
       Remedy::mendRecord,
       {{"X-Sb-Error-Code", "email_not_confirmed"}}},
      {"an expired bearer at the auth service", 403, R"({"code":403,"error_code":"bad_jwt","msg":"token is expired"})",
       "bad_jwt", "token is expired", Remedy::refreshToken},
      {"a session ended elsewhere", 403, R"({"error_code":"session_not_found","msg":"Session not found"})",
       "session_not_found", "Session not found", Remedy::signIn},
      {"a rate limit", 429, R"({"error_code":"over_request_rate_limit","msg":"Request rate limit reached"})",
       "over_request_rate_limit", "Request rate limit reached", Remedy::retryLater},
      {"a lost race between refreshes", 409,
       R"({"error_code":"conflict","msg":"Too many concurrent token refresh requests"})", "conflict",
       "Too many concurrent token refresh requests", Remedy::retryLater},
      {"the edge without a valid key", 401, R"({"message":"No API key found in request","hint":"…"})", "",
       "No API key found in request", Remedy::signIn},
      {"an expired token, older tables", 401, R"({"code":"PGRST301","message":"JWT expired","details":null})",
       "PGRST301", "JWT expired", Remedy::refreshToken},
      {"an expired token, newer tables", 401, R"({"code":"PGRST303","message":"JWT expired"})", "PGRST303",
       "JWT expired", Remedy::refreshToken},
      {"an expired token by header",
       401,
       "",
       "",
       "",
       Remedy::refreshToken,
       {{"WWW-Authenticate", R"(Bearer error="invalid_token", error_description="JWT expired")"}}},
      {"clocks inside the platform", 401, R"({"code":"PGRST303","message":"JWT issued at future"})", "PGRST303",
       "JWT issued at future", Remedy::waitForClock},
      {"anonymous access refused", 401, R"({"code":"42501","message":"permission denied for table vessels"})", "42501",
       "permission denied for table vessels", Remedy::askPermission},
      {"a policy", 403,
       R"({"code":"42501","message":"new row violates row-level security policy for table \"vessels\""})", "42501",
       R"(new row violates row-level security policy for table "vessels")", Remedy::askPermission},
      {"a serialization failure inside a 500", 500, R"({"code":"40001","message":"could not serialize access"})",
       "40001", "could not serialize access", Remedy::retryLater},
      {"an id twice inside a 500", 500, R"({"code":"21000","message":"cannot affect row a second time"})", "21000",
       "cannot affect row a second time", Remedy::mendRecord},
      {"recursion in a policy", 500, R"({"code":"42P17","message":"infinite recursion"})", "42P17",
       "infinite recursion", Remedy::mendRecord},
      {"a statement that took too long", 500,
       R"({"code":"57014","message":"canceling statement due to statement timeout"})", "57014",
       "canceling statement due to statement timeout", Remedy::smallerBatch},
      {"a full connection pool", 503, R"({"code":"53300","message":"too many connections"})", "53300",
       "too many connections", Remedy::retryLater},
      {"a column the server lacks", 400,
       R"({"code":"PGRST204","message":"Could not find the 'extra_json' column of 'vessels' in the schema cache"})",
       "PGRST204", "Could not find the 'extra_json' column of 'vessels' in the schema cache", Remedy::updateSchema},
      {"a table the server lacks", 404, R"({"code":"PGRST205","message":"Could not find the table"})", "PGRST205",
       "Could not find the table", Remedy::updateSchema},
      {"rows with other keys", 400, R"({"code":"PGRST102","message":"All object keys must match"})", "PGRST102",
       "All object keys must match", Remedy::mendRecord},
      {"a missing value", 400,
       R"({"code":"23502","message":"null value in column \"name\"","details":"Failing row contains (P123)."})",
       "23502", R"(null value in column "name")", Remedy::mendRecord},
      {"a parent deleted elsewhere", 409,
       R"({"code":"23503","message":"violates foreign key constraint \"tasks_vessel_fkey\""})", "23503",
       R"(violates foreign key constraint "tasks_vessel_fkey")", Remedy::mendRecord},
      {"a procedure's own refusal", 400, R"({"code":"P0001","message":"no seat is free"})", "P0001", "no seat is free",
       Remedy::mendRecord},
      {"an HTML page of the edge", 520, "<html><body>Web server is returning an unknown error</body></html>", "", "",
       Remedy::retryLater},
      {"a marina's sign-in page", 302, "<html>", "", "", Remedy::retryLater},
      {"a paused project", 540, "", "", "", Remedy::retryLater},
      {"too large a request", 413, "", "", "", Remedy::smallerBatch},
      {"a missing object", 400, R"({"statusCode":"404","error":"not_found","message":"Object not found"})", "not_found",
       "Object not found", Remedy::mendRecord},
      {"an expired token at object storage", 400,
       R"({"statusCode":"403","error":"Unauthorized","message":"\"exp\" claim timestamp check failed"})",
       "Unauthorized", R"("exp" claim timestamp check failed)", Remedy::refreshToken},
      {"the same from an older service", 400, R"({"statusCode":"400","error":"Unauthorized","message":"jwt expired"})",
       "Unauthorized", "jwt expired", Remedy::refreshToken},
      {"an object someone else is writing", 400,
       R"({"statusCode":"423","error":"locked","message":"Resource locked","code":"ResourceLocked"})", "ResourceLocked",
       "Resource locked", Remedy::retryLater},
  };
  for (const OddReply& odd : replies) {
    SCOPED_TRACE(odd.what);
    const SBError error = SBError::fromReply({static_cast<int>(odd.status), odd.body, odd.headers});
    EXPECT_EQ(error.code, QLatin1String(odd.code));
    EXPECT_EQ(error.reason, QLatin1String(odd.reason));
    EXPECT_EQ(static_cast<int>(error.remedy), static_cast<int>(odd.remedy));
    EXPECT_FALSE(error.text.isEmpty());
    EXPECT_FALSE(error.text.contains(u'<') || error.text.contains(u'{')) << error.text.toStdString();
    EXPECT_FALSE(error.logLine().contains(QLatin1String("P123")));
  }
}

TEST(SBErrorTest, KeepsTheMessageBesideTheWordsForTheUser) {
  const SBError described =
      SBError::fromReply({400, R"({"error":"invalid_grant","error_description":"Invalid login credentials"})", {}});
  EXPECT_EQ(described.message, QStringLiteral("Invalid login credentials"));
  EXPECT_EQ(SBError::fromReply({500, "raw words", {}}).message, QStringLiteral("raw words"));
  EXPECT_EQ(SBError::fromReply({500, "", {}}).message, QStringLiteral("Unknown error"));
  EXPECT_EQ(SBError::fromReply({400, R"({"statusCode":"404","message":"Object not found"})", {}}).status, 404);

  const SBError gone = SBError::fromReply(
      {409,
       R"({"code":"23503","message":"insert violates foreign key constraint \"tasks_user_id_fkey\"","details":"Key (user_id)=(x) is not present in table \"users\"."})",
       {}});
  EXPECT_TRUE(gone.isUserGone());
  EXPECT_THAT(gone.message.toStdString(), testing::HasSubstr("not present in table"));
  EXPECT_EQ(gone.remedy, Remedy::signIn);
}

TEST(SBErrorTest, ReadsHowLongTheServerWantsToBeLeftAlone) {
  const auto after = [](QByteArray value) {
    return SBError::fromReply({503, "", {{"Date", "Sun, 06 Nov 1994 08:49:37 GMT"}, {"Retry-After", std::move(value)}}})
        .retryAfter;
  };
  EXPECT_EQ(after("17"), std::chrono::seconds(17));
  EXPECT_EQ(after("Sun, 06 Nov 1994 08:50:07 GMT"), std::chrono::seconds(30));
  EXPECT_EQ(after("-5"), std::chrono::seconds(0));
  EXPECT_EQ(after("soon"), std::nullopt);
}

}  // namespace
}  // namespace thalvorn
