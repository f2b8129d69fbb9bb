// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/log_file.h"

#include "host/host_handle.h"
#include "host/win32/open_entry.h"
#include "host/win32/private_security.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

void AppendToFile(const HostPath& file, const std::string& line) {
  PrivateSecurity security;
  const HostHandle handle = Owned(CreateFileW(SystemPath(file).c_str(), FILE_APPEND_DATA, kShareAll,
                                              security.Attributes(), OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  if (handle) WriteFile(Raw(handle), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

void WriteToStandardError(const std::string& line) {
  HANDLE out = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  DWORD written = 0;
  if (GetConsoleMode(out, &mode)) {
    const std::wstring wide = Wide(line);
    WriteConsoleW(out, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
  } else {
    WriteFile(out, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  }
}

}  // namespace quillbox
