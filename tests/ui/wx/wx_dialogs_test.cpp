// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/wx_dialogs.h"

#include <gtest/gtest.h>
#include <wx/button.h>
#include <wx/filedlg.h>
#include <wx/frame.h>
#include <wx/gauge.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>
#include <wx/timer.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "platform/offline/offline_drives.h"
#include "support/temp_folder.h"
#include "support/window_test.h"

namespace quillbox {
namespace {

struct WxDialogsTest : testing::Test {
  WxDialogsTest() {
    window.Show();
    Settle();
    MoveTo(MiddleOf(window));
  }
  ~WxDialogsTest() override { window.Hide(); }

  /// Does `act` a moment after the question that the caller is about to ask has opened.
  void WhenAsked(std::function<void()> act) {
    timer.Bind(wxEVT_TIMER, [act = std::move(act)](wxTimerEvent&) { act(); });
    timer.StartOnce(400);
  }
  void AnswerWith(int key, int modifiers = wxMOD_NONE) {
    WhenAsked([=] { wxUIActionSimulator().Char(key, modifiers); });
  }

  /// Presses one key after the other, letters with Alt, with time between for what each opens.
  void AnswerInTurn(const std::vector<int>& keys) {
    auto left = std::make_shared<std::deque<int>>(keys.begin(), keys.end());
    timer.Bind(wxEVT_TIMER, [this, left](wxTimerEvent&) {
      if (left->empty()) return timer.Stop();
      const int key = left->front();
      left->pop_front();
      wxUIActionSimulator().Char(key, key < 128 && key > ' ' ? wxMOD_ALT : wxMOD_NONE);
    });
    timer.Start(800);
  }

  TempFolder folder;
  OfflineDrives paths{DriveMap(folder.Path())};  // C:\ is the folder
  WxDialogs dialogs{paths};
  wxFrame window{nullptr, wxID_ANY, "Owner", wxPoint(100, 100), wxSize(600, 400)};
  wxTimer timer;
};

TEST_F(WxDialogsTest, EveryButtonOfAMessageGivesItsAnswer) {
  using enum MessageButtons;
  const ButtonWords own{"&Go On", "&Stop"};
  const ButtonWords wide{"&Keep What Can Be Read", "&Leave Such Files Out"};
  const struct {
    MessageButtons buttons;
    std::optional<ButtonWords> words;
    int key;
    MessageAnswer answer;
  } cases[] = {
      {Ok, {}, WXK_RETURN, MessageAnswer::Ok},
      {Ok, {}, WXK_ESCAPE, MessageAnswer::Ok},
      {OkCancel, {}, WXK_RETURN, MessageAnswer::Ok},
      {OkCancel, {}, WXK_ESCAPE, MessageAnswer::Cancel},
      {YesNo, {}, 'Y', MessageAnswer::Yes},
      {YesNo, {}, 'N', MessageAnswer::No},
      {YesNo, {}, WXK_RETURN, MessageAnswer::Yes},
      {YesNo, {}, WXK_ESCAPE, MessageAnswer::No},
      {YesNo, own, 'G', MessageAnswer::Yes},
      {YesNo, own, 'S', MessageAnswer::No},
      {YesNoCancel, {}, 'N', MessageAnswer::No},
      {YesNoCancel, {}, WXK_ESCAPE, MessageAnswer::Cancel},
      {YesNoCancel, wide, WXK_ESCAPE, MessageAnswer::Cancel},
  };
  for (const auto& test : cases) {
    AnswerWith(test.key, test.key < 128 && test.key > ' ' ? wxMOD_ALT : wxMOD_NONE);
    EXPECT_EQ(dialogs.Show({.text = "Proceed?", .buttons = test.buttons, .words = test.words}), test.answer)
        << test.key;
  }
}

TEST_F(WxDialogsTest, AMessageShowsItsIconAndAllOfItsText) {
  using enum MessageIcon;
  for (const MessageIcon icon : {None, Exclamation, Question, Error, Information}) {
    int drawn = 0;
    WhenAsked([&drawn] {
      for (const wxWindow* child : OpenDialog()->GetChildren()) {
        const auto* image = dynamic_cast<const wxStaticBitmap*>(child);
        if (image && image->IsShownOnScreen() && image->GetSize().x >= 32 && image->GetBitmap().IsOk()) ++drawn;
      }
      wxUIActionSimulator().Char(WXK_RETURN);
    });
    dialogs.Show({.text = "Proceed?", .icon = icon});
    EXPECT_EQ(drawn, icon == None ? 0 : 1) << static_cast<int>(icon);
  }
  std::string lines;
  for (int i = 0; i < 200; ++i) lines += "line " + std::to_string(i) + "\n";
  wxSize size;
  WhenAsked([&size] {
    size = OpenDialog()->GetSize();
    wxUIActionSimulator().Char(WXK_ESCAPE);
  });
  dialogs.Show({.text = lines});
  EXPECT_LT(size.y, wxGetDisplaySize().y) << "a long text scrolls";
  WhenAsked([&size] {
    size = OpenDialog()->GetSize();
    wxUIActionSimulator().Char(WXK_ESCAPE);
  });
  dialogs.Show({.text = "HKEY_CURRENT_USER\\Identities\\{2B7C0E64-91D3-4F5A-8C17-6E0D53A9F421}\\Software\\Microsoft"
                        "\\Outlook Express\\" +
                        std::string(150, 'x')});
  EXPECT_LT(size.x, 640) << "a path breaks at its backslashes";
}

TEST_F(WxDialogsTest, InputIsTypedOrCancelled) {
  WhenAsked([] {
    wxUIActionSimulator().Text("xy");
    wxUIActionSimulator().Char(WXK_RETURN);
  });
  EXPECT_EQ(dialogs.Input("Enter folder name", "Quillbox", "proposed"), "xy") << "typing replaces the proposed text";
  AnswerWith(WXK_ESCAPE);
  EXPECT_EQ(dialogs.Input("Enter folder name", "Quillbox", "kept"), std::nullopt);
  AnswerWith(WXK_RETURN);
  EXPECT_EQ(dialogs.Input("Enter new Username", "Quillbox", "Ann\n"), "Ann\n") << "what was left alone stays";
}

TEST_F(WxDialogsTest, OverwriteQuestionShowsBothFilesAndGivesEveryAnswer) {
  const OverwriteQuestion question{.source = WinPath("C:\\Store\\Tom & Jerry.dbx"),
                                   .target = WinPath("D:\\Backup\\Tom & Jerry.dbx"),
                                   .sourceSize = 1234567,
                                   .targetSize = 1,
                                   .sourceModified = 127'000'000'000'000'000,
                                   .targetModified = 0};
  using enum OverwriteAnswer;
  for (const auto& [label, answer] : {std::pair<const char*, OverwriteAnswer>("&Yes", Yes),
                                      {"Yes to &All", YesToAll},
                                      {"&No", No},
                                      {"Cancel", Cancel}}) {
    std::string words;
    WhenAsked([&words, wanted = wxString(label)] {
      const wxButton* chosen = nullptr;
      for (wxWindow* child : OpenDialog()->GetChildren()) {
        if (const auto* text = dynamic_cast<wxStaticText*>(child)) words += text->GetLabelText().utf8_string() + "\n";
        const auto* button = dynamic_cast<wxButton*>(child);
        if (button && button->GetLabel() == wanted) chosen = button;
      }
      ClickWithoutSettling(*chosen);
    });
    EXPECT_EQ(dialogs.AskOverwrite(question), answer);
    for (const char* part : {"Tom & Jerry.dbx\"", "C:\\Store\\Tom & Jerry.dbx\n1,234,567 bytes\nmodified 1",
                             "D:\\Backup\\Tom & Jerry.dbx\n1 byte\ndate not known"}) {
      EXPECT_NE(words.find(part), std::string::npos) << part << " in\n" << words;
    }
    MoveTo(MiddleOf(window));
  }
  AnswerWith(WXK_ESCAPE);
  EXPECT_EQ(dialogs.AskOverwrite(question), Cancel);
}

TEST_F(WxDialogsTest, FileDialogsAnswerInWindowsPaths) {
  std::filesystem::create_directories(folder.Path() / "Backup");
  const FileDialog dialog{"", WinPath("C:\\Backup"), "New.reg", "Registration Files (*.reg) | *.reg", false};
  AnswerWith(WXK_RETURN);
  EXPECT_EQ(dialogs.SaveFile(dialog), WinPath("C:\\Backup\\New.reg"));
  AnswerWith(WXK_ESCAPE);
  EXPECT_EQ(dialogs.OpenFile(dialog), std::nullopt);
  AnswerWith(WXK_RETURN);
  EXPECT_EQ(dialogs.BrowseForFolder({.title = "Select a directory", .folder = WinPath("C:\\")}), WinPath("C:\\"));
  setenv("HOME", (folder.Path() / "Backup").c_str(), 1);
  AnswerWith(WXK_RETURN);
  EXPECT_EQ(dialogs.BrowseForFolder({.title = "Select a directory"}), WinPath("C:\\Backup"));
}

TEST_F(WxDialogsTest, APatternListsNamesInAnyCase) {
  std::filesystem::create_directories(folder.Path() / "Books");
  folder.File("Books/Aaa.txt", "");
  folder.File("Books/Ann Miller.wab", "");
  AnswerInTurn({WXK_DOWN, WXK_RETURN, WXK_ESCAPE});
  const FileDialog dialog{"", WinPath("C:\\Books"), "", "Address Book (*.WAB) | *.WAB", false};
  EXPECT_EQ(dialogs.OpenFile(dialog), WinPath("C:\\Books\\Ann Miller.wab"));
}

TEST_F(WxDialogsTest, AFileOfThatNameInAnotherCaseIsAskedAboutOnce) {
  folder.File("Report.txt", "");
  const FileDialog dialog{"", WinPath("C:\\"), "REPORT.TXT", "Text Files (*.txt) | *.txt", true};
  AnswerInTurn({WXK_RETURN, 'Y', WXK_ESCAPE, WXK_ESCAPE});
  EXPECT_EQ(dialogs.SaveFile(dialog), WinPath("C:\\REPORT.TXT"));
  AnswerInTurn({WXK_RETURN, WXK_RETURN, WXK_ESCAPE});
  EXPECT_EQ(dialogs.SaveFile(dialog), std::nullopt) << "Enter is No, and leads back to the name";
}

TEST_F(WxDialogsTest, WhatGoesOnElsewhereDoesNotHoldUpTheWindows) {
  std::string seen;
  dialogs.Meanwhile([&] {
    seen += "a";
    return seen == "a";
  });
  dialogs.Meanwhile([&] {
    seen += "b";
    AnswerWith(WXK_RETURN);
    dialogs.Show({.text = "It has failed."});
    seen += "B";
    return false;
  });
  EXPECT_EQ(seen, "");
  EXPECT_TRUE(WaitFor([&] { return seen.size() == 4; })) << seen;
}

TEST_F(WxDialogsTest, ProgressAppearsLateTakesTheOtherWindowsOutAndCancels) {
  const auto progress = dialogs.ShowProgress("Copying");
  EXPECT_TRUE(progress->Update("Inbox.dbx", 0, 100));
  EXPECT_EQ(OpenDialog(), nullptr) << "work that is done at once shows nothing";
  wxMilliSleep(520);
  EXPECT_TRUE(progress->Update("Inbox.dbx", 3'000'000'000, 6'000'000'000));
  ASSERT_NE(OpenDialog(), nullptr);
  EXPECT_FALSE(window.IsEnabled());
  int shares = 0;
  for (wxWindow* child : OpenDialog()->GetChildren()) {
    if (const auto* gauge = dynamic_cast<wxGauge*>(child)) shares = gauge->GetValue() * 100 / gauge->GetRange();
  }
  EXPECT_EQ(shares, 50);

  const auto cancelled = [&] {
    wxMilliSleep(60);
    return !progress->Update("Inbox.dbx", 4'000'000'000, 0);
  };
  for (int i = 0; i < 5; ++i) EXPECT_FALSE(cancelled());
  ClickWithoutSettling(*OpenDialog()->FindWindow(wxID_CANCEL));
  bool ended = false;
  for (int i = 0; i < 20 && !ended; ++i) ended = cancelled();
  EXPECT_TRUE(ended);
}

}  // namespace
}  // namespace quillbox
