#include "devserver/http.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <array>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <thread>

namespace thalvorn::devserver {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using boost::system::error_code;

constexpr std::size_t kLargestHeader = 16U << 10U;
constexpr std::chrono::seconds kIdle{120};

Request received(const http::request<http::string_body>& message, bool bodyTooLarge) {
  Request out;
  out.method = message.method_string();
  const std::string_view target(message.target().data(), message.target().size());
  const auto question = target.find('?');
  out.path = target.substr(0, question);
  if (question != std::string_view::npos) out.query = target.substr(question + 1);
  for (const auto& field : message) out.headers.emplace_back(field.name_string(), field.value());
  out.body = message.body();
  out.bodyTooLarge = bodyTooLarge;
  return out;
}

std::string httpDate(std::int64_t seconds) {
  const std::time_t time = seconds;
  std::tm parts{};
  gmtime_r(&time, &parts);
  return fmt::format("{:%a, %d %b %Y %H:%M:%S} GMT", parts);
}

/// The reply as bytes. Written by hand, because Beast insists on a reason and a body length of its own, while a reply
/// to HEAD tells the length of the body it leaves out.
std::string serialized(const Response& response, const Request& request, bool keepAlive, std::int64_t now) {
  const auto reason = http::obsolete_reason(static_cast<http::status>(response.status));
  std::string out = fmt::format("HTTP/1.1 {} {}\r\nDate: {}\r\n", response.status,
                                std::string_view(reason.data(), reason.size()), httpDate(now));
  for (const auto& [name, value] : response.headers) out += fmt::format("{}: {}\r\n", name, value);
  const bool bodiless = response.status == 204 || response.status == 304;
  if (!bodiless) out += fmt::format("Content-Length: {}\r\n", response.body.size());
  out += keepAlive ? "Connection: keep-alive\r\n\r\n" : "Connection: close\r\n\r\n";
  if (!bodiless && !request.isHead()) out += response.body;
  if (response.delivery == Delivery::cut) {
    const auto body = bodiless || request.isHead() ? 0 : response.body.size();
    out.resize(out.size() - (body + 1) / 2);
  }
  return out;
}

struct Service {
  HttpServer::Options options;
  HttpServer::Handler handler;
  HttpServer::Clock clock;
};

Response answer(const Service& service, Request request) {
  try {
    return service.handler(std::move(request));
  } catch (const std::exception& error) {
    fmt::print(stderr, "thalvorn-devserver: {}\n", error.what());
    return jsonResponse(500, R"({"message":"An unexpected error occurred"})");
  }
}

/// What is said before hanging up on bytes that are no request; nothing when there is nobody to say it to.
std::string_view refusalOf(const error_code& error) {
  if (error == http::error::header_limit) {
    return "HTTP/1.1 431 Request Header Fields Too Large\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
  }
  if (error.category() != make_error_code(http::error::bad_method).category()) return {};
  if (error == http::error::end_of_stream || error == http::error::partial_message) return {};
  return "HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
}

asio::awaitable<void> serveConnection(beast::tcp_stream stream, const Service* service) {
  beast::flat_buffer buffer;
  error_code error;
  auto token = asio::redirect_error(asio::use_awaitable, error);
  for (bool keepAlive = true; keepAlive;) {
    stream.expires_after(kIdle);
    http::request_parser<http::string_body> parser;
    parser.header_limit(kLargestHeader);
    parser.body_limit(service->options.largestBody);
    co_await http::async_read_header(stream, buffer, parser, token);
    bool bodyTooLarge = error == http::error::body_limit;
    if (error && !bodyTooLarge) {
      if (const auto refusal = refusalOf(error); !refusal.empty()) {
        co_await asio::async_write(stream, asio::buffer(refusal), token);
      }
      break;
    }
    if (!bodyTooLarge && parser.get()[http::field::expect] == "100-continue") {
      static constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";
      co_await asio::async_write(stream, asio::buffer(kContinue), token);
      if (error) break;
    }
    if (!bodyTooLarge) {
      co_await http::async_read(stream, buffer, parser, token);
      bodyTooLarge = error == http::error::body_limit;
      if (error && !bodyTooLarge) break;
    }
    stream.expires_never();
    Request request = received(parser.get(), bodyTooLarge);
    Request heading{.method = request.method, .path = {}, .query = {}, .headers = {}, .body = {}};
    const Response response = answer(*service, std::move(request));
    if (response.delay.count() > 0) {
      asio::steady_timer timer(stream.get_executor(), response.delay);
      co_await timer.async_wait(token);
    }
    if (response.delivery == Delivery::dropped) break;
    keepAlive = parser.get().keep_alive() && !bodyTooLarge && !response.close && response.delivery == Delivery::whole;
    const auto bytes = serialized(response, heading, keepAlive, service->clock());
    co_await asio::async_write(stream, asio::buffer(bytes), token);
    if (error) break;
  }
  stream.socket().shutdown(tcp::socket::shutdown_both, error);
}

asio::awaitable<void> acceptConnections(tcp::acceptor* acceptor, asio::io_context* context, const Service* service) {
  for (;;) {
    error_code error;
    auto socket =
        co_await acceptor->async_accept(asio::make_strand(*context), asio::redirect_error(asio::use_awaitable, error));
    if (error == asio::error::operation_aborted) co_return;
    if (error) continue;
    socket.set_option(tcp::no_delay(true), error);
    const auto executor = socket.get_executor();
    asio::co_spawn(executor, serveConnection(beast::tcp_stream(std::move(socket)), service), asio::detached);
  }
}

}  // namespace

struct HttpServer::Internals {
  Internals(const Options& options, Handler handler, Clock clock)
      : service{options, std::move(handler), std::move(clock)},
        context(options.threads),
        acceptor(context, tcp::endpoint(asio::ip::address_v4::loopback(), options.port)),
        signals(context, SIGTERM, SIGINT, SIGHUP),
        lifeline(context) {
    if (options.lifeline >= 0) lifeline.assign(options.lifeline);
  }

  Service service;
  asio::io_context context;
  tcp::acceptor acceptor;
  asio::signal_set signals;
  asio::posix::stream_descriptor lifeline;
};

HttpServer::HttpServer(const Options& options, Handler handler, Clock clock)
    : internals_(std::make_unique<Internals>(options, std::move(handler), std::move(clock))) {}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::port() const { return internals_->acceptor.local_endpoint().port(); }

void HttpServer::run() {
  auto& context = internals_->context;
  const auto stop = [&context](const error_code& error, auto...) {
    if (!error) context.stop();
  };
  internals_->signals.async_wait(stop);
  if (internals_->lifeline.is_open()) {
    internals_->lifeline.async_wait(asio::posix::stream_descriptor::wait_read, stop);
  }
  asio::co_spawn(context, acceptConnections(&internals_->acceptor, &context, &internals_->service), asio::detached);
  std::vector<std::jthread> threads;
  for (int i = 1; i < internals_->service.options.threads; ++i) threads.emplace_back([&context] { context.run(); });
  context.run();
}

}  // namespace thalvorn::devserver
