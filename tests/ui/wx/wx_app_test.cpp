// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/wx_app.h"

#include <gtest/gtest.h>
#include <wx/app.h>

#include <stdexcept>

#include "support/every_control_form.h"
#include "support/form_platform.h"
#include "support/window_test.h"

namespace quillbox {
namespace {

struct WindowsRun : testing::Test {
  FormPlatform platform;
  HandlerGuard guard{platform};
  EveryControlForm first{guard};
  EveryControlForm second{guard};
  std::string seen;
};

TEST_F(WindowsRun, EndWithTheLastVisibleForm) {
  RunWindows([&](WindowSystem& windows) {
    first.Show();
    windows.Attach(first);
    windows.Attach(second);
    wxTheApp->CallAfter([&] {
      // As a handler may: nothing is visible while a question is asked, and then another window is.
      first.Hide();
      wxGUIEventLoop question;
      wxTheApp->CallAfter([&question] { question.ScheduleExit(); });
      question.Run();
      Settle();
      second.Show();
      seen += "second ";
      wxTheApp->CallAfter([&] {
        seen += "end";
        second.close();
      });
    });
  });
  EXPECT_EQ(seen, "second end");
}

TEST_F(WindowsRun, EndOnQuitWithWindowsOpenAndWhenTheStartFails) {
  RunWindows([&](WindowSystem& windows) {
    windows.Attach(first);
    first.Show();
    windows.Quit();
    seen = "rest of the handler";
  });
  EXPECT_EQ(seen, "rest of the handler");
  EXPECT_TRUE(first.visible);
  EXPECT_THROW(RunWindows([](WindowSystem&) { throw std::runtime_error("no disk"); }), std::runtime_error);
}

}  // namespace
}  // namespace quillbox
