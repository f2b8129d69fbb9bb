#include "platform/offline/host_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/offline/host_file.h"
#include "platform/offline/host_io.h"
#include "text/error.h"

namespace quillbox {

namespace {

class HostReader : public FileReader {
 public:
  HostReader(const HostPlace& file, std::string name)
      : name_(std::move(name)), fd_(WithName(kReading, name_, [&] { return OpenForReading(file); })) {}

  std::size_t Read(std::span<char> buffer) override {
    return WithName(kReading, name_, [&] { return ReadUpTo(fd_.Get(), buffer); });
  }
  void GoTo(std::uint64_t offset) override {
    WithName(kReading, name_, [&] {
      if (lseek(fd_.Get(), static_cast<off_t>(offset), SEEK_SET) < 0) ThrowErrno(errno);
    });
  }

 private:
  std::string name_;
  HostFd fd_;
};

class HostWriter : public FileWriter {
 public:
  HostWriter(const HostPlace& file, std::string name) : name_(std::move(name)), file_(file) {}
  void Write(std::string_view bytes) override {
    WithName(kWriting, name_, [&] { file_.Write(bytes); });
  }
  void Commit() override {
    WithName(kWriting, name_, [&] { file_.Commit(); });
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
    WithName(kWriting, name_, [&] { WriteAll(fd_.Get(), bytes); });
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
  return WithName(kWriting, name, [&]() -> std::unique_ptr<FileWriter> {
    if (IsStream(file)) return std::make_unique<StreamWriter>(file, name);
    return std::make_unique<HostWriter>(file, name);
  });
}

}  // namespace quillbox
