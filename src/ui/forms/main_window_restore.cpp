// The main window's complete restore.
#include "backup/registry_items.h"
#include "backup/store_restore.h"
#include "ui/forms/main_window.h"
#include "ui/forms/program_windows.h"

namespace quillbox {

void Form1::cmdRestore_Click() {
  TellFailure("The complete restore", [this] {
    resbkupAllIdent();
    resbkupIAM();
    resbkupAddBook();
    RestoreAddressBook(CopyPart::OneOfSeveral);
    GetInputPaths();
    resComplete();
  });
}

void Form1::resbkupAllIdent() {
  RestoreSilently(RegistryItem::AllIdentities);
  GetInputPaths();
}

void Form1::RestoreSilently(RegistryItem item) {
  sb1.panels[1] = "";
  RegistryItems(program_.platform, program_.store, program_.backupFolder)
      .RestoreSilently(item, program_.backupFolder.Get());
  sb1.panels[0] = RowOf(item).restoreDone;
}

void Form1::resComplete() {
  const auto folder = program_.backupFolder.Guard(FolderMessage::WithFullStop);
  if (!folder) return;
  program_.overwrite = chkOverwrite.checked;
  StoreRestore restore(program_.platform, program_.store, program_.backupFolder, ToStatus());
  restore.RestoreAll(*folder, program_.catalogue, program_.overwrite);
  ShowCopies({}, restore.MissingStores());
  sb1.panels[0] = "Restore Complete";
}

void Form1::resDBX_Click() {
  sb1.panels[1] = "";
  if (inpth1.text == kEmptyIdentityMarker) {
    program_.platform.GetDialogs().Show(
        {.text = "This Identity is empty, there are no files to restore. Please select another Identity.",
         .icon = MessageIcon::Exclamation});
    return;
  }
  windows_.OpenSearch();
}

}  // namespace quillbox
