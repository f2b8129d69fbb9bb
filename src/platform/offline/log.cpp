#include "platform/offline/log.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <system_error>

#include "platform/offline/host_file.h"
#include "platform/offline/state_folder.h"
#include "text/message_text.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

std::string LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  std::array<char, 40> text = {};
  if (localtime_r(&now, &local) == nullptr) return {};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S %z", &local)};
}

/// In one call, so that lines of several programs do not mix; what does not fit on a full disk is lost.
void WriteLine(int fd, const std::string& line) {
  static_cast<void>(!write(fd, line.data(), line.size()));
}

}  // namespace

FileLog::FileLog(const fs::path& stateFolder) {
  if (!MakePrivateFolder(stateFolder)) return;
  file_ = stateFolder / "quillbox.log";
  std::error_code code;
  const std::uintmax_t size = fs::file_size(file_, code);
  if (!code && size > kMaxBytes) fs::rename(file_, stateFolder / "quillbox.log.old", code);
}

void FileLog::Write(std::string_view text) try {
  // Several lines become one: signs for line ends would be hard to read.
  std::string line = LocalTime() + "  " + std::string(text);
  std::replace(line.begin(), line.end(), '\n', ' ');
  line = OneLine(line) + '\n';
  WriteLine(STDERR_FILENO, line);
  if (file_.empty()) return;
  const HostFd fd(open(file_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600));
  if (fd) WriteLine(fd.Get(), line);
} catch (...) {  // NOLINT(bugprone-empty-catch): there is nowhere left to say so
}

}  // namespace quillbox
