// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/hosted/host_streams.h"

#include <utility>

#include "host/new_folder.h"
#include "host/temporary_name.h"
#include "platform/hosted/host_open.h"
#include "text/error.h"
#include "text/file_time.h"

namespace quillbox {

namespace {

class HostReader : public FileReader {
 public:
  HostReader(HostFile file, std::string name) : name_(std::move(name)), file_(std::move(file)) {}
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
    written_ += bytes.size();
    if (written_ - writtenBack_ < NewFile::kWriteBackPiece) return;
    file_->BeginWriteBack({.offset = writtenBack_, .size = static_cast<std::size_t>(written_ - writtenBack_)});
    writtenBack_ = written_;
  }
  std::size_t ReadAt(std::uint64_t offset, std::span<char> buffer) override {
    return WithName(kReading, name_, [&] { return file_->ReadAt(offset, buffer); });
  }
  void Commit() override {
    WithName(kWriting, name_, [&] { file_->Commit(); });
  }

 private:
  std::string name_;
  std::unique_ptr<NewFile> file_;
  std::uint64_t written_ = 0;      ///< bytes
  std::uint64_t writtenBack_ = 0;  ///< of them
};

class StreamWriter : public FileWriter {
 public:
  StreamWriter(const HostPlace& file, std::string name) : name_(std::move(name)), stream_(file.Path()) {}
  void Write(std::string_view bytes) override {
    WithName(kWriting, name_, [&] { stream_.Write(bytes); });
  }
  std::size_t ReadAt(std::uint64_t, std::span<char>) override {
    throw Error(kReading, {name_, {}, {}}, ReasonOf(HostFault::NotOrdinary));
  }
  void Commit() override {}

 private:
  std::string name_;
  HostStream stream_;
};

class HostFolderWriter : public FolderWriter {
 public:
  HostFolderWriter(const HostPlace& folder, std::string name) : name_(std::move(name)) {
    WithName(kWriting, name_, [&] {
      OpenPlace place = OpenFolderOf(folder);
      folder_ = std::make_unique<NewFolder>(std::move(place.folder), std::move(place.name));
    });
  }

  std::vector<HostFileName> NamesThere() override {
    std::vector<HostFileName> names;
    if (!folder_->There()) return names;
    const bool isRead = folder_->There()->EachName([&](const std::string& name) {
      if (!IsTemporaryName(name)) names.push_back({name});
      return false;
    });
    if (!isRead) throw Error(kReading, {name_, {}, {}}, "the names in the folder cannot be read");
    return names;
  }
  std::unique_ptr<FileReader> OpenThere(const HostFileName& name) override {
    return Reader(name, [&] { return folder_->There()->OpenFile(name.text); });
  }
  bool Takes(const HostFileName& name) override { return folder_->Takes(name.text); }

  void StartFile(const HostFileName& name) override {
    file_ = PathOf(name);
    WithName(kWriting, file_, [&] { folder_->StartFile(name.text); });
  }
  void Write(std::string_view bytes) override {
    WithName(kWriting, file_, [&] { folder_->Write(bytes); });
  }
  void EndFile(std::optional<std::uint64_t> modified) override {
    std::optional<HostTime> time;
    if (modified) {
      time = HostTime{static_cast<std::int64_t>(*modified / kFileTimePerSecond) - kSecondsFrom1601To1970,
                      static_cast<std::uint32_t>(*modified % kFileTimePerSecond * 100)};
    }
    WithName(kWriting, file_, [&] { folder_->EndFile(time); });
  }
  std::unique_ptr<FileReader> Open(const HostFileName& name) override {
    return Reader(name, [&] { return folder_->Open(name.text); });
  }
  void Commit() override {
    WithName(kWriting, name_, [&] { folder_->Commit(); });
  }

 private:
  std::string PathOf(const HostFileName& name) const { return WithBackslash(name_) + name.text; }
  template <class Opener>
  std::unique_ptr<FileReader> Reader(const HostFileName& name, const Opener& open) {
    std::string path = PathOf(name);
    return std::make_unique<HostReader>(WithName(kReading, path, open), path);
  }

  std::string name_;
  std::string file_;  ///< the path of the one that was begun last
  std::unique_ptr<NewFolder> folder_;
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

std::unique_ptr<FolderWriter> StartHostFolder(const HostPlace& folder, std::string name) {
  return std::make_unique<HostFolderWriter>(folder, std::move(name));
}

}  // namespace quillbox
