// SPDX-License-Identifier: GPL-3.0-or-later
// Defines the identifiers that the next headers declare.
#include <initguid.h>
#include <windows.h>
// After them.
#include <commctrl.h>
#include <oleacc.h>
#include <wx/bmpbndl.h>
#include <wx/combobox.h>
#include <wx/dataview.h>
#include <wx/frame.h>
#include <wx/icon.h>
#include <wx/listbox.h>
#include <wx/menu.h>
#include <wx/msw/private.h>
#include <wx/settings.h>
#include <wx/statbox.h>
#include <wx/string.h>
#include <wx/textctrl.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ui/wx/port.h"

namespace quillbox {
namespace {

/// Names one system window, over what the system makes of the labels around it.
void SetNameOf(HWND window, const std::wstring& name) {
  IAccPropServices* services = nullptr;
  if (FAILED(CoCreateInstance(CLSID_AccPropServices, nullptr, CLSCTX_INPROC_SERVER, IID_IAccPropServices,
                              reinterpret_cast<void**>(&services)))) {
    return;  // a system without the service; what the system says by itself remains
  }
  services->SetHwndPropStr(window, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, PROPID_ACC_NAME, name.c_str());
  services->Release();
}

/// The system's windows that a combo box is made of, which the toolkit has no objects for.
COMBOBOXINFO PartsOf(HWND box) {
  COMBOBOXINFO parts = {};
  parts.cbSize = sizeof parts;
  if (!GetComboBoxInfo(box, &parts)) parts = {};
  return parts;
}

/// The entry of a combo box. Without the focus it shows the beginning of its text: left to itself the box selects all
/// of it whenever an item is chosen or the size changes.
LRESULT CALLBACK BoxEntry(HWND entry, UINT message, WPARAM wide, LPARAM long_, UINT_PTR id, DWORD_PTR /*data*/) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(entry, BoxEntry, id);
  if (message == EM_SETSEL && GetFocus() != entry) return DefSubclassProc(entry, message, 0, 0);
  const LRESULT result = DefSubclassProc(entry, message, wide, long_);
  if (message == WM_KILLFOCUS) DefSubclassProc(entry, EM_SETSEL, 0, 0);
  return result;
}

/// An entry without the focus shows the beginning of its text in whatever width it gets: one that was narrow when it
/// got its text would stay at the end of it.
LRESULT CALLBACK ShownEntry(HWND entry, UINT message, WPARAM wide, LPARAM long_, UINT_PTR id, DWORD_PTR /*data*/) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(entry, ShownEntry, id);
  const LRESULT result = DefSubclassProc(entry, message, wide, long_);
  if ((message == WM_SIZE || message == WM_SETTEXT) && GetFocus() != entry) {
    DefSubclassProc(entry, EM_SETSEL, 0, 0);
    DefSubclassProc(entry, EM_SCROLLCARET, 0, 0);
  }
  return result;
}

/// The entry of a picker: a click opens or closes the list, as one on the arrow does.
LRESULT CALLBACK PickerEntry(HWND entry, UINT message, WPARAM wide, LPARAM long_, UINT_PTR id, DWORD_PTR box) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(entry, PickerEntry, id);
  if (message != WM_LBUTTONDOWN && message != WM_LBUTTONDBLCLK) return DefSubclassProc(entry, message, wide, long_);
  const HWND whole = reinterpret_cast<HWND>(box);
  const bool isOpen = SendMessageW(whole, CB_GETDROPPEDSTATE, 0, 0) != 0;
  SetFocus(entry);
  SendMessageW(whole, CB_SHOWDROPDOWN, isOpen ? FALSE : TRUE, 0);
  // The message hides the pointer until it moves.
  SendMessageW(whole, WM_SETCURSOR, reinterpret_cast<WPARAM>(whole), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
  return 0;
}

/// The width that the list of `box` needs to show its items in full, in the toolkit's pixels.
int ListWidth(const wxComboBox& box) {
  int widest = 0;
  for (const wxString& item : box.GetStrings()) widest = std::max(widest, box.GetTextExtent(item).x);
  constexpr int kPadding = 12;
  return widest + box.FromDIP(kPadding) + wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, &box);
}

/// The system's own picture in that size, which the import library has no entry for.
HICON LoadPicture(const wchar_t* name, int size) {
  using Load = HRESULT(WINAPI*)(HINSTANCE, PCWSTR, int, int, HICON*);
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"comctl32.dll"), "LoadIconWithScaleDown");
  const auto load = reinterpret_cast<Load>(reinterpret_cast<void*>(found));
  HICON picture = nullptr;
  return load != nullptr && SUCCEEDED(load(nullptr, name, size, size, &picture)) ? picture : nullptr;
}

/// The name of a picture of the system's own.
const wchar_t* SystemIcon(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::None:
      break;
    case MessageIcon::Exclamation:
      return IDI_WARNING;
    case MessageIcon::Question:
      return IDI_QUESTION;
    case MessageIcon::Error:
      return IDI_ERROR;
    case MessageIcon::Information:
      return IDI_INFORMATION;
  }
  return IDI_APPLICATION;
}

}  // namespace

void PrepareToolkitStart() {
  wxSetInstance(GetModuleHandleW(nullptr));
}

void FinishToolkitStart() {}

HostPath FromDialogPath(const wxString& path) {
  return {std::filesystem::path(path.ToStdWstring())};
}

wxString ToDialogPath(const HostPath& path) {
  return path.Empty() ? wxString() : wxString(NativePath(path).wstring());
}

wxString PatternInAnyCase(const wxString& pattern) {
  return pattern;  // patterns have no case here
}

void SetAccessibleName(wxWindow& window, const std::string& name) {
  const std::wstring wide = wxString::FromUTF8(name).ToStdWstring();
  if (wide.empty()) return;
  SetNameOf(window.GetHandle(), wide);
  if (const HWND entry = PartsOf(window.GetHandle()).hwndItem) SetNameOf(entry, wide);
}

/// The toolkit asks for the pictures of files and folders, among which some systems have none of these.
wxBitmapBundle PictureOf(MessageIcon icon) {
  wxVector<wxBitmap> sizes;
  for (const int size : {32, 40, 48, 64}) {
    HICON picture = LoadPicture(SystemIcon(icon), size);
    if (picture == nullptr) continue;
    wxIcon owner;
    owner.CreateFromHICON(picture);
    sizes.push_back(wxBitmap(owner));
  }
  return wxBitmapBundle::FromBitmaps(sizes);
}

/// Screen readers say the texts of every dialog that opens.
void MarkAsAlert(wxDialog& /*dialog*/) {}

/// The system draws the text of an entry at the top, so each has the height that fits it.
void GiveOneHeight(const std::vector<wxWindow*>& /*fields*/) {}

/// A list is not wider than a screen: the system sees to that.
void TameComboBox(wxComboBox& box) {
  if (const HWND entry = PartsOf(box.GetHandle()).hwndItem) SetWindowSubclass(entry, BoxEntry, 0, 0);
  box.Bind(wxEVT_MOUSEWHEEL, [&box](wxMouseEvent& event) {
    if (SendMessageW(box.GetHandle(), CB_GETDROPPEDSTATE, 0, 0) != 0) event.Skip();
  });
  box.Bind(wxEVT_COMBOBOX_DROPDOWN, [&box](wxCommandEvent& event) {
    event.Skip();
    SendMessageW(box.GetHandle(), CB_SETDROPPEDWIDTH, static_cast<WPARAM>(ListWidth(box)), 0);
  });
}

void OpenByClick(wxComboBox& box) {
  if (const HWND entry = PartsOf(box.GetHandle()).hwndItem) {
    SetWindowSubclass(entry, PickerEntry, 0, reinterpret_cast<DWORD_PTR>(box.GetHandle()));
  }
}

/// The system draws it so by itself.
void ShowReadOnly(wxTextCtrl& entry, bool readOnly) {
  if (readOnly) SetWindowSubclass(entry.GetHandle(), ShownEntry, 0, 0);
}

/// It is clear by itself.
void SetTitleBesideLine(wxStaticBox& /*frame*/) {}

bool IsPopupOpen() {
  GUITHREADINFO here = {};
  here.cbSize = sizeof here;
  if (!GetGUIThreadInfo(GetCurrentThreadId(), &here)) return false;
  if ((here.flags & (GUI_INMENUMODE | GUI_POPUPMENUMODE)) != 0) return true;
  for (const HWND window : {here.hwndFocus, GetParent(here.hwndFocus)}) {
    const COMBOBOXINFO parts = PartsOf(window);
    if (parts.hwndList && IsWindowVisible(parts.hwndList)) return true;
  }
  return false;
}

/// The item is replaced by one without a menu; the toolkit keeps the empty menu, and passes the command on.
void MakeCommandOfBar(wxMenu& menu, std::function<void()> act) {
  wxMenuBar* bar = menu.GetMenuBar();
  const HMENU items = bar->GetHMenu();
  int position = 0;
  while (GetSubMenu(items, position) != menu.GetHMenu()) ++position;
  const bool isEnabled = bar->IsEnabledTop(static_cast<std::size_t>(position));
  const int id = wxWindow::NewControlId();
  const UINT flags = MF_BYPOSITION | MF_STRING | (isEnabled ? MF_ENABLED : MF_GRAYED);
  RemoveMenu(items, static_cast<UINT>(position), MF_BYPOSITION);
  InsertMenuW(items, static_cast<UINT>(position), flags, static_cast<UINT_PTR>(static_cast<WORD>(id)),
              menu.GetTitle().wc_str());
  bar->GetFrame()->Bind(
      wxEVT_MENU, [act = std::move(act)](wxCommandEvent&) { act(); }, id);
  bar->Refresh();
}

/// A list does not select a line by itself when it gets the focus.
bool IsFocusMoving() {
  return false;
}

/// It does so by itself.
void ToggleByClick(wxListBox& /*list*/) {}

void ShowRowTips(wxDataViewCtrl& list, std::function<std::string(std::size_t row)> tipOf) {
  wxWindow* rows = list.GetMainWindow();
  rows->Bind(wxEVT_MOTION, [&list, rows, tipOf = std::move(tipOf)](wxMouseEvent& event) {
    event.Skip();
    wxDataViewItem item;
    wxDataViewColumn* column = nullptr;
    list.HitTest(list.ScreenToClient(rows->ClientToScreen(event.GetPosition())), item, column);
    const auto* model = static_cast<const wxDataViewVirtualListModel*>(list.GetModel());
    const wxString tip = item.IsOk() ? wxString::FromUTF8(tipOf(model->GetRow(item))) : wxString();
    if (rows->GetToolTipText() != tip) rows->SetToolTip(tip);
  });
}

/// They have.
void GiveRowsOneHeight(wxDataViewCtrl& /*list*/) {}

}  // namespace quillbox
