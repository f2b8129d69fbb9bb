// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/message_dialog.h"

#include <vector>

#include <wx/bmpbndl.h>
#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/display.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include "ui/wx/port.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

constexpr int kGap = 8;
constexpr int kWidest = 520;
constexpr int kRoomShare = 40;
/// A text that is higher than this share of the screen is shown in a box that scrolls.
constexpr int kScreenShare = 2;

struct Choice {
  wxString label;
  MessageAnswer answer;
};

/// The buttons from the left; the last one is the harmless one. Their words are English whatever language the session
/// has.
std::vector<Choice> ChoicesOf(const Message& message) {
  const ButtonWords words = message.words.value_or(ButtonWords{"&Yes", "&No"});
  const Choice yes{ToWx(words.yes), MessageAnswer::Yes};
  const Choice no{ToWx(words.no), MessageAnswer::No};
  const Choice ok{"OK", MessageAnswer::Ok};
  const Choice cancel{"Cancel", MessageAnswer::Cancel};
  switch (message.buttons) {
    case MessageButtons::Ok:
      break;
    case MessageButtons::OkCancel:
      return {ok, cancel};
    case MessageButtons::YesNo:
      return {yes, no};
    case MessageButtons::YesNoCancel:
      return {yes, no, cancel};
  }
  return {ok};
}

/// `text` with a line end behind a backslash wherever a word, as a registry path, is wider than that many pixels.
wxString BrokenAtBackslashes(const wxWindow& window, const wxString& text, int width) {
  wxString broken;
  wxString word;
  for (const wxUniChar c : text) {
    if (c == ' ' || c == '\n') {
      word.clear();
    } else {
      if (window.GetTextExtent(word + c).x > width) {
        const wxString rest = word.Contains('\\') ? word.AfterLast('\\') : wxString();
        broken.insert(broken.length() - rest.length(), "\n");
        word = rest;
      }
      word += c;
    }
    broken += c;
  }
  return broken;
}

class MessageDialog : public wxDialog {
 public:
  MessageDialog(const Message& message, wxWindow* parent) : wxDialog(parent, wxID_ANY, ToWx(message.title)) {
    auto* content = new wxBoxSizer(wxHORIZONTAL);
    if (message.icon != MessageIcon::None) {
      content->Add(new wxStaticBitmap(this, wxID_ANY, PictureOf(message.icon)),
                   wxSizerFlags().Border(wxRIGHT, 2 * gap_));
    }
    content->Add(MakeText(ToWxLines(message.text)), wxSizerFlags(1).Expand());
    auto* rows = new wxBoxSizer(wxVERTICAL);
    rows->Add(content, wxSizerFlags(1).Expand().Border(wxALL, 2 * gap_));
    rows->Add(MakeButtons(message), wxSizerFlags().Right().Border(wxRIGHT | wxBOTTOM, 2 * gap_));
    SetSizerAndFit(rows);
    CentreOnParent();
    MarkAsAlert(*this);
  }

 private:
  static int IdOf(MessageAnswer answer) { return wxID_HIGHEST + 1 + static_cast<int>(answer); }

  wxWindow* MakeText(const wxString& words) {
    auto* text = new wxStaticText(this, wxID_ANY, "");
    text->SetLabelText(BrokenAtBackslashes(*text, words, FromDIP(kWidest)));
    text->Wrap(FromDIP(kWidest));
    const int highest = wxDisplay(this).GetClientArea().height / kScreenShare;
    if (const wxSize size = text->GetBestSize(); size.y <= highest) {
      // Some systems draw a text a little wider than they measure it.
      text->SetMinSize({size.x + size.x / kRoomShare, size.y});
      return text;
    }
    text->Destroy();
    return new wxTextCtrl(this, wxID_ANY, words, wxDefaultPosition, wxSize(FromDIP(kWidest), highest),
                          wxTE_MULTILINE | wxTE_READONLY);
  }

  wxSizer* MakeButtons(const Message& message) {
    auto* row = new wxBoxSizer(wxHORIZONTAL);
    const std::vector<Choice> choices = ChoicesOf(message);
    for (const Choice& choice : choices) {
      const int id = IdOf(choice.answer);
      auto* button = new wxButton(this, id, choice.label);
      button->Bind(wxEVT_BUTTON,
                   [this, answer = choice.answer](wxCommandEvent&) { EndModal(static_cast<int>(answer)); });
      if (message.noIsDefault ? choice.answer == MessageAnswer::No : row->IsEmpty()) {
        button->SetDefault();
        button->SetFocus();
      }
      row->Add(button, wxSizerFlags().Border(wxLEFT, gap_));
    }
    SetEscapeId(IdOf(choices.back().answer));
    return row;
  }

  const int gap_ = FromDIP(kGap);
};

}  // namespace

MessageAnswer ShowMessage(const Message& message, wxWindow* parent) {
  MessageDialog dialog(message, parent);
  return static_cast<MessageAnswer>(dialog.ShowModal());
}

}  // namespace quillbox
