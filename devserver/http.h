#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "devserver/message.h"

namespace thalvorn::devserver {

/// An HTTP/1.1 server on loopback with keep-alive.
class HttpServer {
 public:
  struct Options {
    std::uint16_t port = 0;  ///< 0: any that is free
    int threads = 8;
    std::size_t largestBody = 256U << 20U;  ///< bytes; beyond it requests come with `bodyTooLarge`
    int lifeline = -1;                      ///< a descriptor; when it becomes readable the server stops
  };
  /// Called from several threads at once.
  using Handler = std::function<Response(Request)>;
  /// Seconds since 1970 for the header Date.
  using Clock = std::function<std::int64_t()>;

  /// Listens from now on. Throws when the port is taken.
  HttpServer(const Options& options, Handler handler, Clock clock);
  ~HttpServer();

  std::uint16_t port() const;
  /// Serves until SIGTERM, SIGINT, SIGHUP or the lifeline ends it.
  void run();

 private:
  struct Internals;
  std::unique_ptr<Internals> internals_;
};

}  // namespace thalvorn::devserver
