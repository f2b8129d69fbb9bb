// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/program_icon.h"

#include <wx/bmpbndl.h>
#include <wx/iconbndl.h>
#include <wx/toplevel.h>

namespace quillbox {

void SetProgramIcon(wxTopLevelWindow& window) {
  const wxBitmapBundle picture = wxBitmapBundle::FromSVG(kProgramIcon, wxSize(64, 64));
  wxIconBundle icons;
  for (const int size : {16, 24, 32, 48, 64, 128}) icons.AddIcon(picture.GetIcon(wxSize(size, size)));
  window.SetIcons(icons);
}

}  // namespace quillbox
