// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/missing_drives.h"

#include "text/message_text.h"

namespace quillbox {

std::optional<HostPath> MissingDrives::FolderFor(const WinPath& path) {
  const char letter = path.Drive();
  if (declined_.count(letter) > 0) return std::nullopt;
  std::optional<HostPath> folder = Ask(path);
  if (folder) {
    onNamed(letter, *folder);
  } else {
    declined_.insert(letter);
  }
  return folder;
}

std::optional<HostPath> MissingDrives::Ask(const WinPath& path) {
  const std::string drive = {path.Drive(), ':'};
  const Message question{.text = "The disk's registry names \"" + OneLine(path.Text()) + "\", but drive " + drive +
                                 " is not attached.\n\nIf this computer has a folder that is drive " + drive +
                                 " of that Windows, choose it now.",
                         .buttons = MessageButtons::YesNo,
                         .icon = MessageIcon::Question,
                         .words = ButtonWords{"&Choose Its Folder...", "&Go On Without It"}};
  while (dialogs_.Show(question) == MessageAnswer::Yes) {
    const auto chosen = dialogs_.BrowseForFolder({.title = "Choose the folder that is drive " + drive});
    if (!chosen) continue;
    HostPath folder = paths_.HostPathOf(*chosen);
    if (!folder.Empty() && !folder.IsRoot()) return folder;
    dialogs_.Show({.text = "This folder cannot be drive " + drive + ": it is the root folder of this computer.",
                   .icon = MessageIcon::Exclamation});
  }
  return std::nullopt;
}

}  // namespace quillbox
