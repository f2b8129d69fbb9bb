// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/windows_platform.h"

#include <windows.h>
// After it.
#include <lmcons.h>

#include <array>

#include "platform/windows/system_text.h"

namespace quillbox {
namespace {

template <std::size_t size, typename Call>
std::string NameBy(Call call) {
  std::array<wchar_t, size> name = {};
  auto room = static_cast<DWORD>(name.size());
  return call(name.data(), &room) ? InnerText(name.data()) : std::string();
}

}  // namespace

WindowsPlatform::WindowsPlatform(const HostPath& stateFolder, Dialogs& dialogs, Clipboard* clipboard)
    : log_(stateFolder),
      dialogs_(dialogs),
      clipboard_(clipboard),
      files_(drives_),
      registry_(drives_),
      elevation_(dialogs),
      shell_(files_, facts_, dialogs, log_),
      processes_(drives_, elevation_, log_) {
  // A drive without a medium answers the call instead of asking for one.
  SetErrorMode(SEM_FAILCRITICALERRORS);
}

void WindowsPlatform::EndCommand() {
  shell_.EndCommand();
  files_.EndCommand();
}

std::string WindowsPlatform::SystemDescription() {
  return "This computer (" + NameBy<MAX_COMPUTERNAME_LENGTH + 1>(GetComputerNameW) + ", " +
         NameBy<UNLEN + 1>(GetUserNameW) + ")";
}

}  // namespace quillbox
