// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/program_icon.h"

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>
#include <wx/toplevel.h>

namespace quillbox {
namespace {

constexpr const char* kIcon = R"(<svg xmlns="http://www.w3.org/2000/svg" width="64" height="64" viewBox="0 0 64 64">
<path d="M20 44 C22 22 36 6 56 4 C56 22 46 36 26 40 Z" fill="#f4f1e6" stroke="#33415c" stroke-width="3"/>
<path d="M16 52 C24 36 34 22 48 12" fill="none" stroke="#33415c" stroke-width="3"/>
<path d="M6 36 H18 V46 H46 V36 H58 V60 H6 Z" fill="#c78b3b" stroke="#33415c" stroke-width="3"/>
</svg>)";

}  // namespace

void SetProgramIcon(wxTopLevelWindow& window) {
  const wxBitmapBundle picture = wxBitmapBundle::FromSVG(kIcon, wxSize(64, 64));
  wxIconBundle icons;
  for (const int size : {16, 32, 48, 64}) icons.AddIcon(picture.GetIcon(wxSize(size, size)));
  window.SetIcons(icons);
}

}  // namespace quillbox
