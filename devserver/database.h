#pragma once

#include <libpq-fe.h>

#include <condition_variable>
#include <expected>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace thalvorn::devserver {

/// What PostgreSQL said when it refused a statement; a lost connection has SQLSTATE 08006.
struct DatabaseError {
  std::string sqlstate;
  std::string message;
  std::optional<std::string> detail;
  std::optional<std::string> hint;
};

/// The rows of a reply, in text form.
class Rows {
 public:
  explicit Rows(PGresult* result) : result_(result, &PQclear) {}

  int size() const { return PQntuples(result_.get()); }
  bool isNull(int row, int column) const { return PQgetisnull(result_.get(), row, column) != 0; }
  std::string_view text(int row, int column) const;
  long long number(int row, int column) const;
  /// How many rows an INSERT, UPDATE or DELETE changed.
  long long changed() const;

 private:
  std::unique_ptr<PGresult, decltype(&PQclear)> result_;
};

using Parameter = std::optional<std::string>;
using Parameters = std::vector<Parameter>;

template <class T>
using Answer = std::expected<T, DatabaseError>;

class Pool;

/// A connection on loan from a pool, normally in a transaction. What has not been committed when it is given back is
/// rolled back.
class Session {
 public:
  ~Session();
  Session(Session&&) noexcept = default;
  Session& operator=(Session&&) = delete;

  /// One statement with parameters $1, $2, … whose types PostgreSQL infers.
  Answer<Rows> query(const std::string& sql, const Parameters& parameters = {});
  /// Statements without parameters, separated by ';'; the answer is the last one's.
  Answer<Rows> run(const std::string& sql);
  Answer<Rows> commit() { return run("commit"); }
  /// `text` as an SQL literal.
  std::string quoted(std::string_view text) const;

 private:
  friend class Pool;
  Session(Pool& pool, PGconn* connection) : pool_(&pool), connection_(connection, &PQfinish) {}
  Answer<Rows> answer(PGresult* result);

  Pool* pool_;
  std::unique_ptr<PGconn, decltype(&PQfinish)> connection_;
};

/// Connections to one database, opened when needed and kept. Safe to use from every thread.
class Pool {
 public:
  /// `url` is a libpq connection address; at most `limit` connections are open at once.
  Pool(std::string url, int limit) : url_(std::move(url)), free_(limit) {}

  /// Waits for a connection and borrows it.
  Answer<Session> borrow();

 private:
  friend class Session;
  void giveBack(std::unique_ptr<PGconn, decltype(&PQfinish)> connection);

  const std::string url_;
  std::mutex mutex_;
  std::condition_variable returned_;
  int free_;
  std::vector<std::unique_ptr<PGconn, decltype(&PQfinish)>> idle_;
};

/// `name` as an SQL identifier.
std::string identifier(std::string_view name);

/// `text` as an SQL literal in a statement that takes parameters for everything else.
std::string textLiteral(std::string_view text);

}  // namespace thalvorn::devserver
