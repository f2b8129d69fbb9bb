// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_folder.h"

#include "host/host_fault.h"
#include "host/host_names.h"
#include "host/win32/host_io.h"
#include "host/win32/open_entry.h"
#include "host/win32/system_path.h"
#include "host/win32/win32.h"

namespace quillbox {

HostHandle NewFolder::MakeFile(const std::string& name) const {
  // Behind a colon the system would look for a part of a file.
  if (HostName(WindowsName(name)) != name || name.find_first_of("<>:\"/\\|?*") != std::string::npos) {
    ThrowFault(SystemCode(std::errc::invalid_argument));
  }
  HostHandle file = Owned(CreateFileW(SystemPath(made_.Path().Join(name)).c_str(), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) ThrowLast();
  return file;
}

void NewFolder::Write(std::string_view bytes) {
  WriteAll(file_, bytes, WriteAt::End);
}

void NewFolder::EndFile(const std::optional<HostTime>& modified) {
  if (modified) {
    const FILETIME time = FileTimeOf(*modified);
    SetFileTime(Raw(file_), nullptr, nullptr, &time);
  }
  file_.Close();
}

// Open folders cannot be removed.
void NewFolder::MarkInUse() const {}

bool IsBeingMade(const HostFolder& folder, const std::string& name) {
  return static_cast<bool>(
      OpenThere(folder.Path().Join(name), {.access = DELETE | FILE_READ_ATTRIBUTES, .share = 0}, Links::Keep).fault);
}

}  // namespace quillbox
