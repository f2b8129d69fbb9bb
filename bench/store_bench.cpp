// SPDX-License-Identifier: GPL-3.0-or-later
// Times what is done with message stores: counting the messages of all folders, and their export as .eml files beside
// `undbx` and as a mailbox file beside `cp` of the same bytes, in turns, with the store in the host's memory. An export
// is the whole of it as the window does it: every byte of the store accounted for, every message read back, and all of
// it on the disk. So the times of the other programs include a `sync` of what they wrote.
// The stores are made by code: 1 GB in 50,000 messages, and 200 MB in 200,000 small ones.
//
//   store_bench [FOLDER [ROUNDS]]    FOLDER is where the files are made (5 GB); a folder for temporary files without it
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "export/mail_export.h"
#include "peer.h"
#include "platform/hosted/hosted_files.h"
#include "platform/offline/offline_drives.h"
#include "sample/dbx_writer.h"

namespace {

namespace fs = std::filesystem;
using namespace quillbox;

constexpr int kRounds = 5;

struct StoreForm {
  const char* name;
  std::size_t messages;
  std::size_t textSize;  ///< of every other one, in bytes
  std::size_t more;      ///< bytes that the rest has besides
};
constexpr std::array<StoreForm, 2> kForms = {
    {{"1 GB in 50,000 messages", 50'000, 19'150, 0}, {"200 MB in 200,000 messages", 200'000, 490, 300}}};

/// Lines as mail has them: sentences, answers with ">" before each line, a "From " now and then, and attachments.
std::string Lines() {
  std::string lines;
  for (std::size_t number = 0; lines.size() < 100'000; ++number) {
    const std::string sentence = "the quick brown fox jumps over the lazy dog and " + std::to_string(number) + " more";
    if (number % 100 < 60) lines += sentence.substr(number % 17);
    if (number % 100 >= 60 && number % 100 < 75) lines += "> " + sentence;
    if (number % 100 == 75) lines += "From then on " + sentence;
    if (number % 100 > 75) lines += std::string(76, static_cast<char>('A' + number % 26));
    lines += "\r\n";
  }
  return lines;
}

void MakeStore(const fs::path& file, const StoreForm& form) {
  const std::string lines = Lines();
  std::vector<DbxMessage> messages(form.messages);
  for (std::size_t i = 0; i < messages.size(); ++i) {
    DbxMessage& message = messages[i];
    const std::string number = std::to_string(i);
    message.subject = "Subject " + number;
    message.senderName = "Ann Miller";
    message.senderAddress = "ann@example.org";
    message.messageId = "<" + number + "@example.org>";
    message.sent = 127'000'000'000'000'000 + i * 600'000'000;
    message.text =
        "From: Ann Miller <ann@example.org>\r\nTo: Ben Okafor <ben@example.org>\r\nSubject: " + message.subject +
        "\r\nDate: Wed, 17 Mar 2004 10:11:12 +0100\r\nMessage-ID: " + message.messageId +
        "\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=us-ascii\r\n\r\n";
    message.text += lines.substr(lines.find('\n', i * 71 % (lines.size() / 2)) + 1,
                                 form.textSize + i % 2 * form.more - message.text.size() - 2);
    message.text += "\r\n";
  }
  const Bytes bytes = MessageStore(messages);
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error("the store could not be made: " + file.string());
}

class NoProgress final : public Progress {
 public:
  bool Update(const std::string&, std::uint64_t, std::uint64_t) override { return true; }
};

/// The drive C: of a disk: the stores are in `in`.
struct Disk {
  explicit Disk(const fs::path& folder) : drives(DriveMap{HostPath(folder.string())}) {}
  OfflineDrives drives;
  HostedFiles files{drives};
  FoundFolders found{files, {"Bench", WinPath("C:\\in")}, CodePage()};
};

/// The messages of all folders, as the window counts them.
std::uint64_t Count(const fs::path& folder) {
  Disk disk(folder);
  while (disk.found.Step()) {
  }
  std::uint64_t messages = 0;
  for (const FoundFolder& one : disk.found.All()) messages += one.messages;
  return messages;
}

/// Exports all folders to `out`.
void Export(const fs::path& folder, MailFormat format) {
  Disk disk(folder);
  while (disk.found.Step()) {
  }
  ExportRequest request{.format = format, .target = WinPath("C:\\out\\ours")};
  for (std::size_t at = 0; at < disk.found.All().size(); ++at) request.chosen.push_back(at);
  NoProgress progress;
  const ExportResult result = ExportMail(disk.files, disk.found, CodePage(), request, progress);
  for (const FolderResult& one : result.folders) {
    if (!one.fault.empty()) throw std::runtime_error(one.fault);
  }
}

/// An empty folder for what is written, and a disk with nothing left to write.
fs::path EmptyFolder(const fs::path& folder) {
  fs::remove_all(folder);
  fs::create_directories(folder);
  sync();
  return folder;
}

struct Place {
  fs::path folder;  ///< drive C: of the disk
  fs::path out;
  int rounds = 0;
};

void Compare(const char* form, const char* to, MailFormat format, const std::vector<std::string>& peer,
             const Place& place) {
  const std::string theirs = (place.out / "theirs").string();
  std::vector<std::string> words = peer;
  words.push_back(theirs);
  Measured measured;
  for (int round = 0; round < place.rounds; ++round) {
    EmptyFolder(place.out / "ours");
    measured.ours.push_back(Milliseconds([&] { Export(place.folder, format); }));
    EmptyFolder(theirs);
    measured.theirs.push_back(Milliseconds([&] {
      Run(words);
      Run({"sync", "-f", theirs});
    }));
  }
  PrintRow("Export " + std::string(form) + " to " + to, measured, "`" + peer[0] + "` and `sync`");
}

void Measure(const fs::path& folder, int rounds) {
  for (const StoreForm& form : kForms) {
    const fs::path in = EmptyFolder(folder / "in");
    const fs::path out = EmptyFolder(folder / "out");
    MakeStore(in / "Inbox.dbx", form);
    Export(folder, MailFormat::Mbox);
    const fs::path mbox = folder / "Inbox";
    fs::rename(out / "ours" / "Bench.sbd" / "Inbox", mbox);
    const Place place{folder, out, rounds};
    Compare(form.name, "a mailbox file", MailFormat::Mbox, {"cp", mbox.string()}, place);
    fs::remove(mbox);
    Compare(form.name, "`.eml` files", MailFormat::Files, {"undbx", in.string()}, place);
    Compare(form.name, "Maildir", MailFormat::Maildir, {"undbx", in.string()}, place);
    fs::remove_all(out);
    // As many stores as make 2 GB.
    const auto size = fs::file_size(in / "Inbox.dbx");
    for (std::uint64_t all = size, number = 1; all < 2'000'000'000; all += size, ++number) {
      fs::copy_file(in / "Inbox.dbx", in / ("Copy " + std::to_string(number) + ".dbx"));
    }
    const std::uint64_t messages = Count(folder);
    Measured counting;
    for (int round = 0; round < rounds; ++round) counting.ours.push_back(Milliseconds([&] { Count(folder); }));
    PrintRow("Count " + std::to_string(messages) + " messages in stores of 2 GB", counting);
  }
}

}  // namespace

int main(int argc, char** argv) {
  return RunBench("store_bench", argc, argv, kRounds, Measure);
}
