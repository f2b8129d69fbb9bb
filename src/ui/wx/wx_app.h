// SPDX-License-Identifier: GPL-3.0-or-later
// Runs the program's windows: starts the toolkit, renders the forms, and ends with the last of them. Needs no toolkit
// header, so that main does not either.
#pragma once

#include <functional>

namespace quillbox {

class Form;

class WindowSystem {
 public:
  virtual ~WindowSystem() = default;
  /// Renders `form` whenever it is visible, at once if it is visible now. The form must outlive the run.
  virtual void Attach(Form& form) = 0;
  /// Ends the run once the handler that is running has ended; windows still open go with it.
  virtual void Quit() = 0;
};

/// Opens the display, calls `start`, and then handles events until no attached form is visible any more or Quit was
/// called. Throws Error when there is no display, and whatever `start` throws.
void RunWindows(const std::function<void(WindowSystem&)>& start);

}  // namespace quillbox
