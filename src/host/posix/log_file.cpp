// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/posix/posix.h"

namespace quillbox {

void AppendToFile(const HostPath& file, const std::string& line) {
  const HostHandle handle(open(NativePath(file).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (handle) static_cast<void>(!write(Fd(handle), line.data(), line.size()));
}

void WriteToStandardError(const std::string& line) {
  static_cast<void>(!write(STDERR_FILENO, line.data(), line.size()));
}

}  // namespace quillbox
