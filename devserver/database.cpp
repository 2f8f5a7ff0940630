#include "devserver/database.h"

#include <charconv>

namespace thalvorn::devserver {
namespace {

DatabaseError lostConnection(PGconn* connection) {
  std::string message = connection ? PQerrorMessage(connection) : "out of memory";
  while (message.ends_with('\n')) message.pop_back();
  return {.sqlstate = "08006", .message = std::move(message), .detail = {}, .hint = {}};
}

std::optional<std::string> field(const PGresult* result, int code) {
  const char* text = PQresultErrorField(result, code);
  if (!text) return std::nullopt;
  return text;
}

}  // namespace

std::string_view Rows::text(int row, int column) const {
  return {PQgetvalue(result_.get(), row, column), static_cast<std::size_t>(PQgetlength(result_.get(), row, column))};
}

long long Rows::number(int row, int column) const {
  const auto digits = text(row, column);
  long long number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

long long Rows::changed() const {
  const std::string_view digits = PQcmdTuples(result_.get());
  long long number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

Session::~Session() {
  if (!connection_) return;
  if (PQtransactionStatus(connection_.get()) != PQTRANS_IDLE) PQclear(PQexec(connection_.get(), "rollback"));
  pool_->giveBack(std::move(connection_));
}

Answer<Rows> Session::answer(PGresult* result) {
  Rows rows(result);
  const auto status = PQresultStatus(result);
  if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK || status == PGRES_EMPTY_QUERY) return rows;
  auto state = field(result, PG_DIAG_SQLSTATE);
  if (!state) return std::unexpected(lostConnection(connection_.get()));
  return std::unexpected(DatabaseError{.sqlstate = std::move(*state),
                                       .message = field(result, PG_DIAG_MESSAGE_PRIMARY).value_or(""),
                                       .detail = field(result, PG_DIAG_MESSAGE_DETAIL),
                                       .hint = field(result, PG_DIAG_MESSAGE_HINT)});
}

Answer<Rows> Session::query(const std::string& sql, const Parameters& parameters) {
  std::vector<const char*> values;
  values.reserve(parameters.size());
  for (const auto& parameter : parameters) {
    if (parameter && parameter->find('\0') != std::string::npos) {
      return std::unexpected(DatabaseError{.sqlstate = "22021",
                                           .message = "invalid byte sequence for encoding \"UTF8\": 0x00",
                                           .detail = {},
                                           .hint = {}});
    }
    values.push_back(parameter ? parameter->c_str() : nullptr);
  }
  return answer(PQexecParams(connection_.get(), sql.c_str(), static_cast<int>(values.size()), nullptr, values.data(),
                             nullptr, nullptr, 0));
}

Answer<Rows> Session::run(const std::string& sql) { return answer(PQexec(connection_.get(), sql.c_str())); }

std::string Session::quoted(std::string_view text) const {
  char* literal = PQescapeLiteral(connection_.get(), text.data(), text.size());
  if (!literal) return "''";
  std::string out = literal;
  PQfreemem(literal);
  return out;
}

Answer<Session> Pool::borrow() {
  {
    std::unique_lock lock(mutex_);
    returned_.wait(lock, [this] { return free_ > 0; });
    --free_;
    while (!idle_.empty()) {
      Session session(*this, idle_.back().release());
      idle_.pop_back();
      if (PQstatus(session.connection_.get()) == CONNECTION_OK) return session;
      session.connection_.reset();
    }
  }
  Session session(*this, PQconnectdb(url_.c_str()));
  if (PQstatus(session.connection_.get()) != CONNECTION_OK) {
    return std::unexpected(lostConnection(session.connection_.get()));
  }
  PQsetNoticeProcessor(session.connection_.get(), [](void*, const char*) {}, nullptr);
  return session;
}

void Pool::giveBack(std::unique_ptr<PGconn, decltype(&PQfinish)> connection) {
  {
    const std::lock_guard lock(mutex_);
    ++free_;
    if (PQstatus(connection.get()) == CONNECTION_OK) idle_.push_back(std::move(connection));
  }
  returned_.notify_one();
}

namespace {

std::string enclosed(std::string_view text, char mark) {
  std::string out(1, mark);
  for (const char c : text.substr(0, text.find('\0'))) {
    if (c == mark) out += mark;
    out += c;
  }
  return out + mark;
}

}  // namespace

std::string identifier(std::string_view name) { return enclosed(name, '"'); }

std::string textLiteral(std::string_view text) { return enclosed(text, '\''); }

}  // namespace thalvorn::devserver
