// SPDX-License-Identifier: GPL-3.0-or-later
// The real widget of a list with very many rows: the toolkit asks only for the rows in view.
#pragma once

#include "ui/wx/widget_factory.h"

namespace quillbox {

class ListView;

Widget MakeListViewWidget(ListView& control, wxWindow& parent);

}  // namespace quillbox
