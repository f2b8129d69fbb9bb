// SPDX-License-Identifier: GPL-3.0-or-later
// Colours that can be read: a form says "red", and the shade depends on the theme behind it.
#pragma once

#include <wx/colour.h>

namespace quillbox {

/// How much two colours differ in lightness, from 1 to 21. Texts are called readable from 4.5 on (WCAG 2).
double Contrast(const wxColour& a, const wxColour& b);

/// `colour`, made darker or lighter until it is readable on `background`.
wxColour Readable(const wxColour& colour, const wxColour& background);

}  // namespace quillbox
