#pragma once

#include <QCoro/QCoroTask>
#include <functional>
#include <memory>
#include <vector>

#include "backend/fake_server.h"
#include "backend/supabase_client.h"

namespace thalvorn {

/// Time that moves only by hand; waits end at once and are written down.
class ManualTiming : public Timing {
 public:
  std::chrono::milliseconds elapsed() const override { return now; }
  QCoro::Task<void> wait(std::chrono::milliseconds duration) override {
    waits.push_back(duration);
    now += duration;
    if (onWait) onWait();
    co_return;
  }

  std::chrono::milliseconds now{1'000'000};
  std::vector<std::chrono::milliseconds> waits;
  std::function<void()> onWait;
};

class MemoryTokens : public TokenStore {
 public:
  StoredSession session() const override { return stored; }
  QCoro::Task<bool> keep(StoredSession session) override {
    stored = std::move(session);
    ++kept;
    if (const auto meanwhile = std::exchange(onKeep, nullptr)) meanwhile();
    co_return true;
  }
  QString lockFile() const override { return lock; }

  StoredSession stored;
  QString lock;
  int kept = 0;
  std::function<void()> onKeep;  ///< what happens while the next session is put on disk
};

/// A client, the server that it talks to, and everything else that it is given.
struct Backend {
  explicit Backend(StoredSession session = {}, const QString& key = QStringLiteral("anon-key")) {
    tokens.stored = std::move(session);
    client = std::make_unique<SupabaseClient>(*BackendConfig::from(server.url(), key), tokens, clock, timing);
  }
  static StoredSession signedIn() {
    return {"old-access", "old-refresh", "11111111-1111-4111-8111-111111111111", "mate@example.com", std::nullopt};
  }

  FakeServer server;
  FixedClock clock{Timestamp(std::chrono::seconds(1'800'000'000))};
  ManualTiming timing;
  MemoryTokens tokens;
  std::unique_ptr<SupabaseClient> client;
};

inline QByteArray tokenReply(const QByteArray& name, int expires_in = 3600) {
  return R"({"access_token":")" + name + R"(-access","token_type":"bearer","expires_in":)" +
         QByteArray::number(expires_in) + R"(,"refresh_token":")" + name +
         R"(-refresh","user":{"id":"22222222-2222-4222-8222-222222222222","email":"Skipper@Example.com","aud":"authenticated"}})";
}

}  // namespace thalvorn
