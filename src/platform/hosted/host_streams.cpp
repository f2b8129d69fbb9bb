#include "platform/hosted/host_streams.h"

#include <utility>

#include "platform/hosted/host_open.h"
#include "text/error.h"

namespace quillbox {

namespace {

class HostReader : public FileReader {
 public:
  HostReader(const HostPlace& file, std::string name)
      : name_(std::move(name)), file_(WithName(kReading, name_, [&] { return OpenForReading(file); })) {}

  std::size_t Read(std::span<char> buffer) override {
    return WithName(kReading, name_, [&] { return file_.Read(buffer); });
  }
  void GoTo(std::uint64_t offset) override {
    WithName(kReading, name_, [&] { file_.GoTo(offset); });
  }

 private:
  std::string name_;
  HostFile file_;
};

class HostWriter : public FileWriter {
 public:
  HostWriter(const HostPlace& file, std::string name) : name_(std::move(name)), file_(StartNewFile(file)) {}
  void Write(std::string_view bytes) override {
    WithName(kWriting, name_, [&] { file_->Write(bytes); });
  }
  void Commit() override {
    WithName(kWriting, name_, [&] { file_->Commit(); });
  }

 private:
  std::string name_;
  std::unique_ptr<NewFile> file_;
};

class StreamWriter : public FileWriter {
 public:
  StreamWriter(const HostPlace& file, std::string name) : name_(std::move(name)), stream_(file.Path()) {}
  void Write(std::string_view bytes) override {
    WithName(kWriting, name_, [&] { stream_.Write(bytes); });
  }
  void Commit() override {}

 private:
  std::string name_;
  HostStream stream_;
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
