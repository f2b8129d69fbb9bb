// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's complete restore.
#include "backup/registry_items.h"
#include "backup/store_restore.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

void Form1::cmdRestore_Click() {
  ReportFailure("The complete restore", [this] {
    const BusyScope busy(*this, cmdRestore);
    resbkupAllIdent();
    resbkupIAM();
    resbkupAddBook();
    RestoreAddressBook(CopyPart::OneOfSeveral);
    session_.GetInputPaths();
    resComplete();
  });
}

void Form1::resbkupAllIdent() {
  RestoreSilently(RegistryItem::AllIdentities);
  session_.GetInputPaths();
}

void Form1::RestoreSilently(RegistryItem item) {
  sb1.panels[1] = "";
  Items().RestoreSilently(item);
  sb1.panels[0] = RowOf(item).restoreDone;
}

void Form1::resComplete() {
  const auto folder = session_.backupFolder.Guard(FolderMessage::WithFullStop);
  if (!folder) return;
  StoreRestore restore(session_.platform, session_.store, session_.backupFolder, ToStatus());
  restore.RestoreAll(*folder, session_.Catalogue(), session_.Overwrite());
  ShowCopies({}, restore.Notes());
  sb1.panels[0] = "Restore Complete";
}

void Form1::resDBX_Click() {
  sb1.panels[1] = "";
  if (RefusesEmptyIdentity("This Identity is empty, there are no files to restore. Please select another Identity.")) {
    return;
  }
  OpenSearch();
}

}  // namespace quillbox
