// A full disk for a test: writes beyond a size fail while an object of this class lives.
#pragma once

#include <sys/resource.h>

#include <csignal>

namespace quillbox {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limited = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*signal_)(int);
  rlimit before_ = {};
};

}  // namespace quillbox
