// SPDX-License-Identifier: GPL-3.0-or-later
// The person of a test: answers are queued for each kind of dialog before the act that asks. A question that nobody
// queued an answer for fails the test and is cancelled, so that no window appears unnoticed.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/dialogs.h"

namespace quillbox {

struct ScriptedDialogs : Dialogs {
  struct InputShown {
    std::string prompt, title, proposed;
  };
  struct ProgressShown {
    std::string text;
    std::uint64_t done = 0, total = 0;
  };

  // Answers, taken from the front. A message that has only an OK button needs none.
  std::deque<MessageAnswer> messageAnswers;
  std::deque<std::optional<std::string>> inputAnswers;
  std::deque<std::optional<WinPath>> openFileAnswers;
  std::deque<std::optional<WinPath>> saveFileAnswers;
  std::deque<std::optional<WinPath>> folderAnswers;
  std::deque<OverwriteAnswer> overwriteAnswers;
  bool cancelsAll = false;  ///< what no answer was queued for is expected and cancelled
  /// Answers every progress report; false cancels. Without it the work goes on.
  std::function<bool(const ProgressShown&)> onProgress;

  // What was shown, in order.
  std::vector<Message> messages;
  std::vector<InputShown> inputs;
  std::vector<FileDialog> openFileDialogs;
  std::vector<FileDialog> saveFileDialogs;
  std::vector<FolderDialog> folderDialogs;
  std::vector<OverwriteQuestion> overwriteQuestions;
  std::vector<ProgressShown> progress;
  int openProgressDisplays = 0;
  std::set<std::string> looks;  ///< of all dialogs, to hold them against a golden text

  /// Fails the test when an answer was queued that no dialog took.
  ~ScriptedDialogs() override {
    EXPECT_TRUE(messageAnswers.empty() && inputAnswers.empty() && openFileAnswers.empty() && saveFileAnswers.empty() &&
                folderAnswers.empty() && overwriteAnswers.empty())
        << "an expected dialog was not shown";
  }
  ScriptedDialogs() = default;
  ScriptedDialogs(const ScriptedDialogs&) = delete;
  ScriptedDialogs& operator=(const ScriptedDialogs&) = delete;

  /// The texts of all messages shown.
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const Message& message : messages) texts.push_back(message.text);
    return texts;
  }
  /// The text of the message shown last; empty when there was none.
  std::string LastMessage() const { return messages.empty() ? std::string() : messages.back().text; }

  /// "TEXT [Yes No, question]"
  static std::string LookOf(const Message& message) {
    static constexpr const char* kButtons[] = {"OK", "OK Cancel", "Yes No", "Yes No Cancel"};
    static constexpr const char* kIcons[] = {"", ", exclamation", ", question", ", error", ", information"};
    return message.text + " [" + kButtons[static_cast<std::size_t>(message.buttons)] +
           kIcons[static_cast<std::size_t>(message.icon)] + (message.noIsDefault ? ", No is the default" : "") +
           (message.title == kProgramName ? "" : ", " + message.title) +
           (message.words ? ", " + message.words->yes + "/" + message.words->no : "") + "]";
  }
  /// That of the message shown last.
  std::string LastAsked() const { return LookOf(messages.back()); }
  /// "FOLDER|NAME|FILTER" of the dialog shown last.
  static std::string LastFile(const std::vector<FileDialog>& shown) {
    return shown.back().folder.Text() + "|" + shown.back().name + "|" + shown.back().filter;
  }
  /// "TITLE|PROMPT|PROPOSED" of the input box shown last.
  std::string LastInput() const {
    return inputs.back().title + "|" + inputs.back().prompt + "|" + inputs.back().proposed;
  }

  MessageAnswer Show(const Message& message) override {
    EXPECT_EQ(openProgressDisplays, 0) << "shown beside a progress display: " << message.text;
    messages.push_back(message);
    looks.insert(LookOf(message));
    if (message.buttons == MessageButtons::Ok) return MessageAnswer::Ok;
    const MessageAnswer refusal = message.buttons == MessageButtons::YesNo ? MessageAnswer::No : MessageAnswer::Cancel;
    return Take(messageAnswers, refusal, message.text);
  }
  std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                   const std::string& proposed) override {
    inputs.push_back({prompt, title, proposed});
    looks.insert(LastInput() + " [input]");
    return Take(inputAnswers, std::optional<std::string>(), prompt);
  }
  std::optional<WinPath> OpenFile(const FileDialog& dialog) override {
    openFileDialogs.push_back(dialog);
    looks.insert(dialog.title + "|" + LastFile(openFileDialogs) + (dialog.askOverwrite ? " [open, asks]" : " [open]"));
    return Take(openFileAnswers, std::optional<WinPath>(), "open " + dialog.name);
  }
  std::optional<WinPath> SaveFile(const FileDialog& dialog) override {
    saveFileDialogs.push_back(dialog);
    looks.insert(dialog.title + "|" + LastFile(saveFileDialogs) + (dialog.askOverwrite ? " [save, asks]" : " [save]"));
    return Take(saveFileAnswers, std::optional<WinPath>(), "save " + dialog.name);
  }
  std::optional<WinPath> BrowseForFolder(const FolderDialog& dialog) override {
    folderDialogs.push_back(dialog);
    looks.insert(dialog.title + "|" + dialog.folder.Text() + " [folder]");
    return Take(folderAnswers, std::optional<WinPath>(), "folder: " + dialog.title);
  }
  OverwriteAnswer AskOverwrite(const OverwriteQuestion& question) override {
    overwriteQuestions.push_back(question);
    return Take(overwriteAnswers, OverwriteAnswer::Cancel, "overwrite " + question.target.Text());
  }
  std::unique_ptr<Progress> ShowProgress(const std::string& title) override {
    looks.insert(title + " [progress]");
    return std::make_unique<ScriptedProgress>(*this);
  }

 private:
  struct ScriptedProgress : Progress {
    explicit ScriptedProgress(ScriptedDialogs& dialogs) : owner(dialogs) { ++owner.openProgressDisplays; }
    ~ScriptedProgress() override { --owner.openProgressDisplays; }
    ScriptedProgress(const ScriptedProgress&) = delete;
    ScriptedProgress& operator=(const ScriptedProgress&) = delete;
    bool Update(const std::string& text, std::uint64_t done, std::uint64_t total) override {
      owner.progress.push_back({text, done, total});
      return !owner.onProgress || owner.onProgress(owner.progress.back());
    }
    ScriptedDialogs& owner;
  };

  template <typename Answer>
  Answer Take(std::deque<Answer>& answers, Answer refusal, const std::string& question) {
    if (answers.empty()) {
      EXPECT_TRUE(cancelsAll) << "unexpected question: " << question;
      return refusal;
    }
    Answer answer = std::move(answers.front());
    answers.pop_front();
    return answer;
  }
};

}  // namespace quillbox
