// The real widget of a list with very many rows: the toolkit asks for the rows that are seen, and no others.
#pragma once

#include "ui/wx/widget_factory.h"

namespace quillbox {

class ListView;

Widget MakeListViewWidget(ListView& control, wxWindow& parent);

}  // namespace quillbox
