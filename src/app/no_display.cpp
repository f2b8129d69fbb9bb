// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/no_display.h"

#include "app/start_window.h"
#include "platform/offline/windows_disk.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

constexpr const char* kWhatToDo =
    "To open a disk, start the program on a desktop, through \"ssh -X\", or on a virtual display (xvfb-run, Xvnc).\n"
    "Without a window, regedit exports and merges registry files:\n"
    "  regedit --disk FOLDER --profile NAME /e:A out.reg \"HKEY_CURRENT_USER\\Identities\"\n";

}  // namespace

std::string TextWithoutDisplay(const DiskChoice& disk) {
  std::string text;
  try {
    if (!disk.folder.Empty()) {
      const WindowsDisk found = FindWindowsDisk(disk.folder, disk.drives);
      text = "The profiles on " + OneLine(found.folder.Text()) + ":\n";
      for (const ProfileFolder& profile : found.profiles) text += "  " + OneLine(ProfileLine(profile)) + "\n";
    }
  } catch (const Error& error) {
    text = Describe(error) + "\n";
  }
  return text + kWhatToDo;
}

}  // namespace quillbox
