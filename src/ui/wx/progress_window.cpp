// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/progress_window.h"

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/evtloop.h>
#include <wx/gauge.h>
#include <wx/sizer.h>
#include <wx/stattext.h>
#include <wx/utils.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "ui/wx/wx_runtime.h"
#include "ui/wx/wx_text.h"

namespace quillbox {
namespace {

using namespace std::chrono_literals;

constexpr auto kAppearsAfter = 500ms;
constexpr auto kDrawnEvery = 50ms;
constexpr int kGap = 8;
constexpr int kWidth = 420;
constexpr int kGaugeRange = 1000;

}  // namespace

class ProgressDialog : public wxDialog {
 public:
  ProgressDialog(wxWindow* parent, const std::string& title) : wxDialog(parent, wxID_ANY, ToWx(title)), others_(this) {
    auto* rows = new wxBoxSizer(wxVERTICAL);
    for (wxWindow* row : {static_cast<wxWindow*>(text_), static_cast<wxWindow*>(gauge_)}) {
      row->SetMinSize(wxSize(FromDIP(kWidth), -1));
      rows->Add(row, wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(kGap)));
    }
    auto* cancel = new wxButton(this, wxID_CANCEL, "Cancel");
    cancel->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { cancelled_ = true; });
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
      event.Veto();
      cancelled_ = true;
    });
    rows->Add(cancel, wxSizerFlags().Right());
    auto* around = new wxBoxSizer(wxVERTICAL);
    around->Add(rows, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(2 * kGap)));
    SetSizerAndFit(around);
    CentreOnParent();
    Show();
  }

  bool Cancelled() const { return cancelled_; }

  void Display(const std::string& text, std::uint64_t done, std::uint64_t total) {
    text_->SetLabelText(ToWx(text));
    if (total == 0) {
      gauge_->Pulse();
    } else {
      const double share = static_cast<double>(std::min(done, total)) / static_cast<double>(total);
      gauge_->SetValue(static_cast<int>(share * kGaugeRange));
    }
  }

 private:
  wxStaticText* text_ = new wxStaticText(this, wxID_ANY, " ", wxDefaultPosition, wxDefaultSize,
                                         wxST_NO_AUTORESIZE | wxST_ELLIPSIZE_MIDDLE);
  wxGauge* gauge_ = new wxGauge(this, wxID_ANY, kGaugeRange);
  bool cancelled_ = false;
  wxWindowDisabler others_;
};

WxProgress::WxProgress(std::string title) : title_(std::move(title)) {}
WxProgress::~WxProgress() = default;

bool WxProgress::Update(const std::string& text, std::uint64_t done, std::uint64_t total) {
  const auto now = SteadyClock::now();
  if (now - started_ < kAppearsAfter) return true;
  if (dialog_ && now - drawn_ < kDrawnEvery) return !dialog_->Cancelled();
  drawn_ = now;
  if (!dialog_) dialog_ = std::make_unique<ProgressDialog>(ActiveWindow(), title_);
  dialog_->Display(text, done, total);
  wxEventLoopBase* loop = wxEventLoopBase::GetActive();
  if (loop && !loop->IsYielding()) loop->YieldFor(wxEVT_CATEGORY_UI | wxEVT_CATEGORY_USER_INPUT);
  return !dialog_->Cancelled();
}

}  // namespace quillbox
