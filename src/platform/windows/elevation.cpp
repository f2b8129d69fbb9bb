// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/windows/elevation.h"

#include <windows.h>
// After it.
#include <shellapi.h>

#include <array>
#include <string>

namespace quillbox {
namespace {

constexpr const char* kAtStart =
    "Quillbox runs without administrator's rights. Windows lets only administrators change the registry of this "
    "computer and use its registry editor, so backups and restores of registry keys will fail.";
constexpr const char* kForEditor = "Windows starts its registry editor for administrators only, so nothing was done.";
constexpr const char* kQuestion = "\n\nStart Quillbox again as administrator?";

bool IsLimited() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
  TOKEN_ELEVATION_TYPE type = TokenElevationTypeDefault;
  DWORD size = 0;
  const bool known = GetTokenInformation(token, TokenElevationType, &type, sizeof type, &size);
  CloseHandle(token);
  return known && type == TokenElevationTypeLimited;
}

bool StartAgain() {
  std::array<wchar_t, 32'768> program = {};
  if (GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())) == 0) return false;
  SHELLEXECUTEINFOW info = {};
  info.cbSize = sizeof info;
  info.fMask = SEE_MASK_NOASYNC;
  info.lpVerb = L"runas";
  info.lpFile = program.data();
  info.lpParameters = L"--this-computer";
  info.nShow = SW_SHOWNORMAL;
  return ShellExecuteExW(&info) != FALSE;
}

}  // namespace

ElevationCalls SystemElevation() {
  return {.isLimited = IsLimited, .startAgain = StartAgain};
}

void Elevation::OfferAtStart() {
  if (calls_.isLimited()) Offer(kAtStart);
}

void Elevation::OfferForEditor() {
  Offer(kForEditor);
}

void Elevation::Offer(const char* why) {
  if (wasOffered_) return;
  wasOffered_ = true;
  const Message question{
      .text = std::string(why) + kQuestion, .buttons = MessageButtons::YesNo, .icon = MessageIcon::Exclamation};
  if (dialogs_.Show(question) == MessageAnswer::Yes && calls_.startAgain()) onStartedAgain();
}

}  // namespace quillbox
