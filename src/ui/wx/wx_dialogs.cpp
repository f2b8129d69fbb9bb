// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/wx_dialogs.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include <wx/dirdlg.h>
#include <wx/filedlg.h>
#include <wx/textdlg.h>
#include <wx/timer.h>
#include <wx/utils.h>

#include "host/host_paths.h"
#include "ui/wx/message_dialog.h"
#include "ui/wx/overwrite_dialog.h"
#include "ui/wx/port.h"
#include "ui/wx/progress_window.h"
#include "ui/wx/wx_runtime.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

/// "Text (*.txt) | *.txt" as the toolkit expects it: no blanks around the bars.
wxString ToolkitFilter(const std::string& filter) {
  wxString result;
  std::size_t start = 0;
  for (bool isPattern = false; start <= filter.size(); isPattern = !isPattern) {
    const std::size_t bar = std::min(filter.find('|', start), filter.size());
    const wxString part = ToWx(Trim(std::string_view(filter).substr(start, bar - start)));
    if (start > 0) result += '|';
    result += isPattern ? PatternInAnyCase(part) : part;
    start = bar + 1;
  }
  return result;
}

}  // namespace

class WxDialogs::Steps : public wxTimer {
 public:
  void Add(const std::function<bool()>& step) {
    waiting_.push_back(step);
    if (!IsRunning()) Start(static_cast<int>(kMeanwhile.count()));
  }
  /// While a step shows a message the others wait: a timer does not run inside itself.
  void Notify() override {
    for (std::size_t left = waiting_.size(); left > 0; --left) {
      const std::function<bool()> step = std::move(waiting_.front());
      waiting_.pop_front();
      if (step()) waiting_.push_back(step);
    }
    if (waiting_.empty()) Stop();
  }

 private:
  std::deque<std::function<bool()>> waiting_;
};

WxDialogs::WxDialogs(const HostPaths& paths) : paths_(&paths) {}
WxDialogs::~WxDialogs() = default;

void WxDialogs::Meanwhile(const std::function<bool()>& step) {
  if (!steps_) steps_ = std::make_unique<Steps>();
  steps_->Add(step);
}

MessageAnswer WxDialogs::Show(const Message& message) {
  return ShowMessage(message, ActiveWindow());
}

std::optional<std::string> WxDialogs::Input(const std::string& prompt, const std::string& title,
                                            const std::string& proposed) {
  const wxString shown = ToWx(proposed);
  wxTextEntryDialog dialog(ActiveWindow(), ToWxLines(prompt), ToWx(title), shown);
  if (dialog.ShowModal() != wxID_OK) return std::nullopt;
  // An unchanged text is the proposed one, which may hold characters that were not shown.
  return dialog.GetValue() == shown ? proposed : FromWx(dialog.GetValue());
}

std::optional<WinPath> WxDialogs::OpenFile(const FileDialog& dialog) {
  return AskForFile(dialog, wxFD_OPEN | wxFD_FILE_MUST_EXIST);
}

// The toolkit's own question would come for a name in the same case only.
std::optional<WinPath> WxDialogs::SaveFile(const FileDialog& dialog) {
  FileDialog asked = dialog;
  while (true) {
    std::optional<WinPath> file = AskForFile(asked, wxFD_SAVE);
    if (!file || !dialog.askOverwrite || MayReplace(*file)) return file;
    asked.folder = file->Parent();
    asked.name = file->Name();
  }
}

/// True when nothing is there under that name in any case, and when the user agrees to replace it.
bool WxDialogs::MayReplace(const WinPath& file) {
  const HostPath there = paths_->HostPathOf(file);
  if (there.Empty() || !Exists(there)) return true;
  const Message question{.text = "\"" + OneLine(there.Name()) + "\" is already in " + OneLine(file.Parent().Text()) +
                                 ".\n\nDo you want to replace it?",
                         .buttons = MessageButtons::YesNo,
                         .icon = MessageIcon::Question,
                         .noIsDefault = true};
  return Show(question) == MessageAnswer::Yes;
}

std::optional<WinPath> WxDialogs::AskForFile(const FileDialog& dialog, long style) {
  const bool opens = (style & wxFD_OPEN) != 0;
  const wxString title = dialog.title.empty() ? wxString(opens ? "Open" : "Save As") : ToWx(dialog.title);
  wxFileDialog window(ActiveWindow(), title, ToDialogPath(paths_->HostPathOf(dialog.folder)), ToWx(dialog.name),
                      dialog.filter.empty() ? wxString("All Files|*") : ToolkitFilter(dialog.filter), style);
  if (window.ShowModal() != wxID_OK) return std::nullopt;
  return Answer(FromDialogPath(window.GetPath()));
}

std::optional<WinPath> WxDialogs::BrowseForFolder(const FolderDialog& dialog) {
  const wxString folder = dialog.folder.Empty() ? wxGetHomeDir() : ToDialogPath(paths_->HostPathOf(dialog.folder));
  wxDirDialog window(ActiveWindow(), ToWx(dialog.title), folder);
  if (window.ShowModal() != wxID_OK) return std::nullopt;
  return Answer(FromDialogPath(window.GetPath()));
}

std::optional<WinPath> WxDialogs::Answer(const HostPath& chosen) {
  WinPath path = paths_->WindowsPathOf(chosen);
  if (!path.Empty()) return path;
  Show({.text = chosen.Text() + " is not on a drive of the open disk.", .icon = MessageIcon::Exclamation});
  return std::nullopt;
}

OverwriteAnswer WxDialogs::AskOverwrite(const OverwriteQuestion& question) {
  return AskOverwriteWith(question, ActiveWindow());
}

std::unique_ptr<Progress> WxDialogs::ShowProgress(const std::string& title) {
  return std::make_unique<WxProgress>(title);
}

}  // namespace quillbox
