// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/console_dialogs.h"

#include <iostream>

namespace quillbox {
namespace {

class SilentProgress : public Progress {
 public:
  bool Update(const std::string& /*text*/, std::uint64_t /*done*/, std::uint64_t /*total*/) override { return true; }
};

}  // namespace

MessageAnswer ConsoleDialogs::Show(const Message& message) {
  std::cerr << message.title << ": " << message.text << '\n';
  switch (message.buttons) {
    case MessageButtons::Ok:
      return MessageAnswer::Ok;
    case MessageButtons::YesNo:
      return MessageAnswer::No;
    case MessageButtons::OkCancel:
    case MessageButtons::YesNoCancel:
      break;
  }
  return MessageAnswer::Cancel;
}

std::optional<std::string> ConsoleDialogs::Input(const std::string& prompt, const std::string& title,
                                                 const std::string& /*proposed*/) {
  std::cerr << title << ": " << prompt << '\n';
  return std::nullopt;
}

std::optional<WinPath> ConsoleDialogs::OpenFile(const FileDialog& /*dialog*/) {
  return std::nullopt;
}

std::optional<WinPath> ConsoleDialogs::SaveFile(const FileDialog& /*dialog*/) {
  return std::nullopt;
}

std::optional<WinPath> ConsoleDialogs::BrowseForFolder(const FolderDialog& /*dialog*/) {
  return std::nullopt;
}

OverwriteAnswer ConsoleDialogs::AskOverwrite(const OverwriteQuestion& question) {
  std::cerr << question.target.Text() << " is there already and stays as it is\n";
  return OverwriteAnswer::No;
}

std::unique_ptr<Progress> ConsoleDialogs::ShowProgress(const std::string& /*title*/) {
  return std::make_unique<SilentProgress>();
}

}  // namespace quillbox
