// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/overwrite_dialog.h"

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

#include <wx/button.h>
#include <wx/control.h>
#include <wx/datetime.h>
#include <wx/dcclient.h>
#include <wx/dialog.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include "text/file_time.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

constexpr int kGap = 8;
constexpr int kWidest = 560;

struct Choice {
  const char* label;
  OverwriteAnswer answer;
};
constexpr Choice kChoices[] = {{"&Yes", OverwriteAnswer::Yes},
                               {"Yes to &All", OverwriteAnswer::YesToAll},
                               {"&No", OverwriteAnswer::No},
                               {"Cancel", OverwriteAnswer::Cancel}};

wxString SizeText(std::uint64_t bytes) {
  std::string digits = std::to_string(bytes);
  for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
  return digits + (bytes == 1 ? " byte" : " bytes");
}

wxString TimeText(std::uint64_t fileTime) {
  const std::optional<std::int64_t> seconds = UnixSeconds(fileTime);
  if (!seconds) return "date not known";
  return "modified " + wxDateTime(static_cast<time_t>(*seconds)).Format("%d %B %Y, %H:%M:%S");
}

class OverwriteDialog : public wxDialog {
 public:
  OverwriteDialog(const OverwriteQuestion& question, wxWindow* parent)
      : wxDialog(parent, wxID_ANY, "Confirm File Replace") {
    auto* rows = new wxBoxSizer(wxVERTICAL);
    const auto add = [&](const wxString& text) {
      rows->Add(Text(text), wxSizerFlags().Expand().Border(wxBOTTOM, gap_));
    };
    add("The folder already has a file named \"" + ToWx(question.target.Name()) + "\".");
    add("Would you like to replace the existing file");
    AddFile(*rows, question.target, question.targetSize, question.targetModified);
    add("with this one?");
    AddFile(*rows, question.source, question.sourceSize, question.sourceModified);
    rows->Add(Buttons(), wxSizerFlags().Right());
    auto* around = new wxBoxSizer(wxVERTICAL);
    around->Add(rows, wxSizerFlags(1).Expand().Border(wxALL, 2 * gap_));
    SetEscapeId(wxID_HIGHEST + 1 + static_cast<int>(OverwriteAnswer::Cancel));
    SetSizerAndFit(around);
    CentreOnParent();
  }

 private:
  wxStaticText* Text(const wxString& words) {
    auto* text = new wxStaticText(this, wxID_ANY, "");
    const wxString shown =
        wxControl::Ellipsize(words, wxClientDC(this), wxELLIPSIZE_MIDDLE, FromDIP(kWidest), wxELLIPSIZE_FLAGS_NONE);
    text->SetLabelText(shown);
    if (shown != words) text->SetToolTip(words);
    return text;
  }

  void AddFile(wxSizer& rows, const WinPath& path, std::uint64_t size, std::uint64_t modified) {
    const wxString facts = ToWx(path.Text()) + "\n" + SizeText(size) + "\n" + TimeText(modified);
    rows.Add(Text(facts), wxSizerFlags().Expand().Border(wxLEFT | wxBOTTOM, 2 * gap_));
  }

  wxSizer* Buttons() {
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    for (const Choice& choice : kChoices) {
      const int id = wxID_HIGHEST + 1 + static_cast<int>(choice.answer);
      auto* button = new wxButton(this, id, choice.label);
      button->Bind(wxEVT_BUTTON, [this, id](wxCommandEvent&) { EndModal(id); });
      if (choice.answer == OverwriteAnswer::No) {
        button->SetDefault();
        button->SetFocus();
      }
      row->Add(button, wxSizerFlags().Border(wxLEFT, gap_));
    }
    return row;
  }

  const int gap_ = FromDIP(kGap);
};

}  // namespace

OverwriteAnswer AskOverwriteWith(const OverwriteQuestion& question, wxWindow* parent) {
  OverwriteDialog dialog(question, parent);
  return static_cast<OverwriteAnswer>(dialog.ShowModal() - wxID_HIGHEST - 1);
}

}  // namespace quillbox
