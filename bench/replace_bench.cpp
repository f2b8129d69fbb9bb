// SPDX-License-Identifier: GPL-3.0-or-later
// Compares the replacement of a {USER_ID} with `sed s/OLD/NEW/g` on the same registry file of 200 MB, in turns, and
// prints the memory that this program took.
//
//   replace_bench [FOLDER [ROUNDS]]    FOLDER is where the files are made; a folder for temporary files without it
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "identities/replace_user_id.h"
#include "peer.h"
#include "platform/hosted/hosted_files.h"
#include "platform/offline/offline_drives.h"
#include "platform/offline/system_services.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kFileSize = std::size_t{200} * 1000 * 1000;
constexpr int kRounds = 11;
constexpr const char* kOld = "{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}";
constexpr const char* kNew = "{C65A0B97-2E18-4D03-B7F4-90AC61D85E3C}";

/// An identity's export: keys that name it, each with numbers, texts and bytes in several lines.
void MakeFile(const fs::path& file) {
  std::ofstream out(file, std::ios::binary);
  out << "REGEDIT4\r\n";
  for (int number = 0; out.tellp() < static_cast<std::streamoff>(kFileSize); ++number) {
    out << "\r\n[HKEY_CURRENT_USER\\Identities\\" << kOld
        << "\\Software\\Microsoft\\Outlook Express\\5.0\\Rules\\Mail\\" << number << "]\r\n";
    for (int value = 0; value < 8; ++value) {
      out << "\"Value " << value << "\"=dword:000000ff\r\n\"Name " << value << "\"=\"Some folder or other\"\r\n";
    }
    out << "\"Version\"=hex:";
    for (int line = 0; line < 20; ++line) {
      for (int byte = 0; byte < 25; ++byte) out << "8f,";
      out << "\\\r\n  ";
    }
    out << "00\r\n";
  }
  if (!out.flush()) throw std::runtime_error("the file could not be made: " + file.string());
}

void Replace(const fs::path& folder) {
  quillbox::OfflineDrives drives(quillbox::DriveMap{folder});
  quillbox::HostedFiles files(drives);
  quillbox::RegistryFacts facts;
  quillbox::ReplaceUserId(files, facts, {quillbox::WinPath("C:\\in.reg"), quillbox::WinPath("C:\\ours.reg"), kNew});
}

void Measure(const fs::path& folder, int rounds) {
  MakeFile(folder / "in.reg");
  const std::string command = std::string("s/") + kOld + "/" + kNew + "/g";
  const auto replace = [&] { Replace(folder); };
  const auto sed = [&] { quillbox::Run({"sed", command, (folder / "in.reg").string()}, folder / "sed.reg"); };
  replace();
  sed();
  quillbox::Run({"cmp", (folder / "ours.reg").string(), (folder / "sed.reg").string()});
  const auto measured = quillbox::Alternate(rounds, replace, sed);
  struct rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  quillbox::PrintRow("Replace a {USER_ID} in a `.reg` file of 200 MB, with " + std::to_string(usage.ru_maxrss / 1024) +
                         " MB of memory",
                     measured, "`sed s/OLD/NEW/g`");
}

}  // namespace

int main(int argc, char** argv) {
  return quillbox::RunBench("replace_bench", argc, argv, kRounds, Measure);
}
