// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wx/wx_clipboard.h"

#include <wx/clipbrd.h>

namespace quillbox {

void WxClipboard::Clear() {
  wxClipboardLocker lock;
  if (!!lock) wxTheClipboard->Clear();
}

}  // namespace quillbox
