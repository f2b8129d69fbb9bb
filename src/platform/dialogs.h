// SPDX-License-Identifier: GPL-3.0-or-later
// Every question and message to the person goes through here: the one seam that tests answer.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "text/win_path.h"

namespace quillbox {

inline constexpr const char* kProgramName = "Quillbox";

enum class MessageButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MessageIcon { None, Exclamation, Question, Error, Information };
enum class MessageAnswer { Ok, Cancel, Yes, No };

/// The words on the buttons of a question that "Yes" and "No" would not answer. "&" marks the key, "&&" is one "&".
struct ButtonWords {
  std::string yes, no;
};

struct Message {
  std::string text;
  std::string title = kProgramName;
  MessageButtons buttons = MessageButtons::Ok;
  MessageIcon icon = MessageIcon::None;
  std::optional<ButtonWords> words = {};  ///< only with YesNo and YesNoCancel
  bool noIsDefault = false;               ///< Enter says No, for a Yes that must not be given by accident
};

struct FileDialog {
  std::string title;
  WinPath folder;             ///< where it opens
  std::string name;           ///< proposed file name
  std::string filter;         ///< "Registration Files (*.reg) | *.reg"; a pattern's case does not matter
  bool askOverwrite = false;  ///< a file that is there already, in whatever case, is replaced only after a question
};

struct FolderDialog {
  std::string title;
  WinPath folder = {};  ///< where it opens; empty for the user's home on this computer
};

/// A file that is there already, as the overwrite question shows it. Times are FILETIMEs, sizes bytes.
struct OverwriteQuestion {
  WinPath source;
  WinPath target;
  std::uint64_t sourceSize = 0, targetSize = 0;
  std::uint64_t sourceModified = 0, targetModified = 0;
};
enum class OverwriteAnswer { Yes, YesToAll, No, Cancel };

/// A running display of progress with a Cancel button; destroying it takes it away. It shows itself when the work has
/// taken longer than half a second.
class Progress {
 public:
  virtual ~Progress() = default;
  /// `total` 0 means that the end is not known. False once the person has cancelled.
  virtual bool Update(const std::string& text, std::uint64_t done, std::uint64_t total) = 0;
};

class Dialogs {
 public:
  virtual ~Dialogs() = default;
  virtual MessageAnswer Show(const Message& message) = 0;
  /// The text typed, or nothing on Cancel.
  virtual std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                           const std::string& proposed) = 0;
  virtual std::optional<WinPath> OpenFile(const FileDialog& dialog) = 0;
  virtual std::optional<WinPath> SaveFile(const FileDialog& dialog) = 0;
  virtual std::optional<WinPath> BrowseForFolder(const FolderDialog& dialog) = 0;
  virtual OverwriteAnswer AskOverwrite(const OverwriteQuestion& question) = 0;
  virtual std::unique_ptr<Progress> ShowProgress(const std::string& title) = 0;
  /// Calls `step` every few milliseconds until it returns false, and it may show a message: for what goes on elsewhere
  /// and must not hold up the windows. Where there are none, this returns only when `step` has ended. `step` must not
  /// use what may be gone by then.
  virtual void Meanwhile(const std::function<bool()>& step);
};

inline constexpr std::chrono::milliseconds kMeanwhile{20};  ///< between two steps

inline void Dialogs::Meanwhile(const std::function<bool()>& step) {
  while (step()) std::this_thread::sleep_for(kMeanwhile);
}

}  // namespace quillbox
