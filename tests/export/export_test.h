// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of the export share: stores on a disk, a person who waits, and what independent readers find afterwards.
#pragma once

#include <functional>
#include <map>

#include "export/mail_export.h"
#include "sample/sample_mail.h"
#include "sample/sample_store.h"
#include "support/host_calls.h"
#include "support/host_tricks.h"
#include "support/matchers.h"
#include "support/sample_platform.h"

namespace quillbox {

/// Shows progress to nobody; `onUpdate` may cancel.
struct QuietProgress : Progress {
  bool Update(const std::string& text, std::uint64_t done, std::uint64_t total) override {
    texts.push_back(text);
    EXPECT_LE(done, total);
    return !onUpdate || onUpdate();
  }
  std::vector<std::string> texts;
  std::function<bool()> onUpdate;
};

/// A message as a reader found it.
struct ReadMessage {
  std::string folder, subject, flags, bytes;
};

class ExportTest : public SamplePlatform {
 protected:
  static std::string Text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
  static std::vector<DbxMessage> Mail(MailTopic topic, std::size_t count) { return SampleMail(topic, count); }

  FileSystem& Files() { return platform->GetFiles(); }
  /// Puts a file into the folder that is exported.
  void Put(const std::string& name, const Bytes& bytes) { onDisk.File("D/Stores/" + name, Text(bytes)); }
  void Put(const std::string& name, std::span<const DbxMessage> messages) { Put(name, MessageStore(messages)); }
  /// The stores of the sample's first identity.
  void PutSample() {
    for (const NamedFile& file : StoreFiles(0, false)) Put(file.name, file.bytes);
  }

  FoundFolders Found(std::vector<WinPath> copies = {}) {
    FoundFolders folders(Files(), {"Ann", WinPath("D:\\Stores"), std::move(copies)}, CodePage());
    while (folders.Step()) {
    }
    return folders;
  }
  /// Exports all folders, or those that `request` has.
  ExportResult Export(ExportRequest request = {}, std::vector<WinPath> copies = {}) {
    const FoundFolders folders = Found(std::move(copies));
    if (request.chosen.empty()) {
      for (std::size_t at = 0; at < folders.All().size(); ++at) request.chosen.push_back(at);
    }
    if (request.target.Empty()) request.target = WinPath("D:\\Out");
    return ExportMail(Files(), folders, CodePage(), request, progress);
  }
  /// "Inbox: 3 in the list, 3 in the index, 3 written, 0 before, 3 read back"
  static std::string Numbers(const FolderResult& folder) {
    return folder.name + ": " + (folder.inFolderList ? std::to_string(*folder.inFolderList) : "?") + " in the list, " +
           std::to_string(folder.InIndex()) + " in the index, " + std::to_string(folder.box.written) + " written, " +
           std::to_string(folder.box.alreadyThere) + " before, " + std::to_string(folder.box.readBack) + " read back";
  }

  std::filesystem::path Out() const { return sample.driveD / "Out"; }
  /// Every file and folder below the target, with its time and size.
  std::map<std::string, std::string> Everything() const {
    std::map<std::string, std::string> all;
    if (!std::filesystem::exists(Out())) return all;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Out())) {
      std::string what = "folder";
      if (entry.is_regular_file()) {
        what = std::to_string(entry.file_size()) + " " +
               std::to_string(entry.last_write_time().time_since_epoch().count());
      }
      all[NameOf(std::filesystem::relative(entry.path(), Out()))] = what;
    }
    return all;
  }

  static constexpr const char* kReaders[] = {"mbox", "files", "maildir"};
  /// What Python's own readers find at the target.
  std::vector<ReadMessage> ReadAll(MailFormat format) {
    const std::string script = QUILLBOX_TESTS_DIR "/export/read_mail.py";
    const ProgramRun run = RunProgram("/usr/bin/python3",
                                      {script, kReaders[static_cast<std::size_t>(format)], NameOf(Out())}, temp.Path());
    EXPECT_EQ(run.code, 0) << run.err;
    std::vector<ReadMessage> messages;
    for (std::size_t at = 0; at < run.out.size();) {
      const std::size_t end = run.out.find('\n', at);
      std::vector<std::string> parts(1);
      for (const char c : run.out.substr(at, end - at)) {
        c == '|' ? parts.emplace_back() : static_cast<std::string&>(parts.back() += c);
      }
      const std::size_t length = std::stoul(parts.at(3));
      messages.push_back({parts[0], parts[1], parts[2], run.out.substr(end + 1, length)});
      at = end + 1 + length;
    }
    return messages;
  }

  QuietProgress progress;

 private:
  /// Waiting for the disk is not what these tests are about.
  const HostCallGuard notFlushed_{[](HostCall, const std::string&) { return 0; }};
};

}  // namespace quillbox
