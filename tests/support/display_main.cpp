// SPDX-License-Identifier: GPL-3.0-or-later
// Runs tests of real windows: the toolkit is up and its events are handled whenever a test pumps them. A complaint of
// the toolkit fails the test that caused it.
#include <gtest/gtest.h>
#include <wx/evtloop.h>
#include <wx/string.h>

#include "ui/wx/wx_runtime.h"

// What the toolkit's libraries keep for the whole run is not a leak of the program.
extern "C" const char* __lsan_default_suppressions();   // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "leak:libfontconfig\nleak:libgtk-3\nleak:libgdk-3\nleak:libglib-2\nleak:libgobject-2\nleak:libpango\n"
         "leak:libwx_\nleak:librsvg\nleak:libcairo\nleak:libX11\nleak:libdbus\n";
}

namespace {

void FailOnAssert(const wxString& file, int line, const wxString& function, const wxString& condition,
                  const wxString& message) {
  ADD_FAILURE() << "toolkit: " << file << ':' << line << " in " << function << ": " << condition << ": " << message;
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  const quillbox::WxRuntime runtime;
  wxSetAssertHandler(FailOnAssert);
  wxGUIEventLoop loop;
  const wxEventLoopActivator active(&loop);
  return RUN_ALL_TESTS();
}
