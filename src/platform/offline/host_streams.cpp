#include "platform/offline/host_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/offline/host_file.h"
#include "text/error.h"

namespace quillbox {

namespace {

/// Runs `work`; what the host refuses becomes an Error about the file `name`.
template <class Work>
auto Named(const char* doing, const std::string& name, const Work& work) {
  try {
    return work();
  } catch (const std::system_error& failure) {
    throw Error(doing, {name, {}, {}}, ReasonOf(failure.code()));
  }
}

class HostReader : public FileReader {
 public:
  HostReader(const HostPlace& file, std::string name)
      : name_(std::move(name)), fd_(Named(kReading, name_, [&] { return OpenForReading(file); })) {}

  std::size_t Read(std::span<char> buffer) override {
    std::size_t length = 0;
    while (length < buffer.size()) {
      const ssize_t got = read(fd_.Get(), buffer.data() + length, buffer.size() - length);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) throw Error(kReading, {name_, {}, {}}, SystemReason(errno));
      if (got == 0) break;
      length += static_cast<std::size_t>(got);
    }
    return length;
  }
  void GoTo(std::uint64_t offset) override {
    if (lseek(fd_.Get(), static_cast<off_t>(offset), SEEK_SET) >= 0) return;
    throw Error(kReading, {name_, {}, {}}, SystemReason(errno));
  }

 private:
  std::string name_;
  HostFd fd_;
};

class HostWriter : public FileWriter {
 public:
  HostWriter(const HostPlace& file, std::string name) : name_(std::move(name)), file_(file) {}
  void Write(std::string_view bytes) override {
    Named(kWriting, name_, [&] { file_.Write(bytes); });
  }
  void Commit() override {
    Named(kWriting, name_, [&] { file_.Commit(); });
  }

 private:
  std::string name_;
  NewFile file_;
};

class StreamWriter : public FileWriter {
 public:
  StreamWriter(const HostPlace& file, std::string name)
      : name_(std::move(name)), fd_(open(file.Path().c_str(), O_WRONLY | O_CLOEXEC)) {
    if (!fd_) ThrowErrno(errno);
  }
  void Write(std::string_view bytes) override {
    Named(kWriting, name_, [&] { WriteAll(fd_.Get(), bytes); });
  }
  void Commit() override {}

 private:
  std::string name_;
  HostFd fd_;
};

}  // namespace

std::unique_ptr<FileReader> OpenHostFile(const HostPlace& file, std::string name) {
  return std::make_unique<HostReader>(file, std::move(name));
}

std::unique_ptr<FileWriter> StartHostFile(const HostPlace& file, std::string name) {
  return Named(kWriting, name, [&]() -> std::unique_ptr<FileWriter> {
    if (IsStream(file)) return std::make_unique<StreamWriter>(file, name);
    return std::make_unique<HostWriter>(file, name);
  });
}

}  // namespace quillbox
