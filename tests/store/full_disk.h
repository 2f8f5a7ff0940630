#pragma once

#include <signal.h>
#include <sys/resource.h>

namespace thalvorn {

/// No file may grow beyond `bytes` while it lives.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) : handler_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{.rlim_cur = bytes, .rlim_max = before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    ::signal(SIGXFSZ, handler_);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  sighandler_t handler_;
  rlimit before_{};
};

}  // namespace thalvorn
