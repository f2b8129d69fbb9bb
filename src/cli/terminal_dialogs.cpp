// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/terminal_dialogs.h"

#include <chrono>
#include <istream>
#include <ostream>
#include <utility>

#include "platform/hosted/copy_command.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

using namespace std::chrono_literals;
using Time = std::chrono::steady_clock;

/// How often progress is a line of its own where it is not on a terminal.
constexpr auto kLineEvery = 10s;
constexpr auto kFirstAfter = 500ms;

class TerminalProgress : public Progress {
 public:
  explicit TerminalProgress(Console& console) : console_(console) {}
  ~TerminalProgress() override { console_.EndProgress(); }
  TerminalProgress(const TerminalProgress&) = delete;
  TerminalProgress& operator=(const TerminalProgress&) = delete;

  bool Update(const std::string& text, std::uint64_t done, std::uint64_t total) override {
    const auto now = Time::now();
    if (now < next_) return true;
    next_ = now + (console_.isTerminal ? Time::duration(100ms) : Time::duration(kLineEvery));
    const std::string part = total == 0 ? "" : std::to_string(done * 100 / total) + " %  ";
    console_.Progress(part + text);
    return true;
  }

 private:
  Console& console_;
  Time::time_point next_ = Time::now() + kFirstAfter;
};

}  // namespace

bool TerminalDialogs::AsksYes(const std::string& question) {
  console_.EndProgress();
  console_.err << SeveralLines(question) << " [y/N] " << std::flush;
  std::string answer;
  return std::getline(console_.in, answer) && !answer.empty() && (answer[0] == 'y' || answer[0] == 'Y');
}

MessageAnswer TerminalDialogs::Show(const Message& message) {
  if (message.buttons == MessageButtons::Ok) {
    const bool isFault = message.icon == MessageIcon::Exclamation || message.icon == MessageIcon::Error;
    isFault ? console_.NotDone(message.text) : console_.Note(message.text);
    return MessageAnswer::Ok;
  }
  const MessageAnswer no = message.buttons == MessageButtons::OkCancel ? MessageAnswer::Cancel : MessageAnswer::No;
  if (message.words && message.words->yes == kGoOnCopying) {
    console_.NotDone(message.text.substr(0, message.text.rfind("\n\n")));
    return MessageAnswer::Yes;
  }
  if (message.buttons == MessageButtons::YesNoCancel) {
    console_.NotDone(message.text.substr(0, message.text.find("\n\n")));
    return keepsDamaged_ ? MessageAnswer::Yes : MessageAnswer::No;
  }
  // A folder cannot be chosen here; --drive names it.
  const bool isAsked = console_.canAsk && !message.words && message.buttons == MessageButtons::YesNo;
  if (isAsked) return AsksYes(message.text) ? MessageAnswer::Yes : no;
  // What can be said to such a question beforehand is an option; the first part of the text is the reason.
  const std::string reason = message.text.substr(0, message.text.find("\n\n"));
  console_.NotDone(message.words ? reason + " --drive names its folder." : reason);
  return no;
}

std::optional<std::string> TerminalDialogs::Input(const std::string& prompt, const std::string& /*title*/,
                                                  const std::string& /*proposed*/) {
  console_.NotDone(prompt);
  return std::nullopt;
}

std::optional<WinPath> TerminalDialogs::OpenFile(const FileDialog& /*dialog*/) {
  return std::nullopt;
}

std::optional<WinPath> TerminalDialogs::SaveFile(const FileDialog& /*dialog*/) {
  return std::nullopt;
}

std::optional<WinPath> TerminalDialogs::BrowseForFolder(const FolderDialog& /*dialog*/) {
  return std::nullopt;
}

OverwriteAnswer TerminalDialogs::AskOverwrite(const OverwriteQuestion& question) {
  const std::string there = OneLine(question.target.Text()) + " is there already";
  if (console_.canAsk && AsksYes(there + ". Replace it?")) return OverwriteAnswer::Yes;
  console_.NotDone(there + " and stays as it is");
  return OverwriteAnswer::No;
}

std::unique_ptr<Progress> TerminalDialogs::ShowProgress(const std::string& /*title*/) {
  return std::make_unique<TerminalProgress>(console_);
}

}  // namespace quillbox
