#include "backup/backup_folder.h"

#include "core/file_helpers.h"
#include "core/identity_catalogue.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kFolderValue = "Quillbox";
constexpr const char* kOverwriteValue = "BackupOverWrite";
constexpr const char* kSelectAtStart = "Please Select A Backup Folder Before Proceeding Further";

const char* Wording(FolderMessage wording) {
  switch (wording) {
    case FolderMessage::WithFullStop:
      return "Please select a backup folder or create one from the Tools menu.";
    case FolderMessage::WithBlank:
      return "Please select a backup folder or create one from the Tools menu ";
    case FolderMessage::WithoutEnding:
      break;
  }
  return "Please select a backup folder or create one from the Tools menu";
}

}  // namespace

std::string BackupFolder::Get() {
  return store_.RegistryGetKeyValue(CurrentUser(kIdentitiesKey), kFolderValue).AsText();
}

void BackupFolder::Set(const std::string& folder) {
  store_.SetKeyValue(kIdentitiesKey, kFolderValue, folder, ValueType::Sz);
}

Status BackupFolder::Probe() {
  return store_.ProbeValue(CurrentUser(kIdentitiesKey), kFolderValue);
}

BackupFolderCheck BackupFolder::Check(bool withMessage) {
  BackupFolderCheck check;
  check.keyOpened = store_.OpenKey(CurrentUser(kIdentitiesKey)).status == Status::Success;
  if (!check.keyOpened) return check;
  const bool hasData = Probe() == probe::kHasData;
  if (!hasData) Reset();
  check.shown = hasData ? Get() : kNoneSelected;
  check.isSet = check.shown != kNoneSelected;
  if (!check.isSet && withMessage) platform_.GetDialogs().Show({.text = kSelectAtStart});
  if (!DirExists(platform_.GetFiles(), check.shown)) Reset();
  return check;
}

std::optional<WinPath> BackupFolder::Guard(FolderMessage wording) {
  const std::string folder = Get();
  if (folder != kNoneSelected) return WinPath(folder);
  Tell(wording);
  return std::nullopt;
}

void BackupFolder::Tell(FolderMessage wording) {
  platform_.GetDialogs().Show({.text = Wording(wording)});
}

void BackupFolder::Enter(const WinPath& folder) {
  FileSystem& files = platform_.GetFiles();
  const bool entered = folder.Drive() != 0 && files.SetCurrentDrive(folder.Drive()) == Status::Success &&
                       files.SetCurrentDirectory(folder) == Status::Success;
  if (entered) return;
  throw Error("entering the backup folder", {folder.Text(), {}, {}},
              files.RefusalOf(folder).value_or("the folder does not exist"));
}

std::optional<bool> BackupFolder::LoadOverwrite() {
  const RegistryPath key = CurrentUser(kIdentitiesKey);
  if (store_.ProbeValue(key, kOverwriteValue) == probe::kMissing) {
    StoreOverwrite(false);
    return false;
  }
  const RegValue stored = store_.RegistryGetKeyValue(key, kOverwriteValue);
  if (stored == RegValue(0)) return false;
  if (stored == RegValue(1)) return true;
  return std::nullopt;
}

void BackupFolder::StoreOverwrite(bool overwrite) {
  store_.SetKeyValue(kIdentitiesKey, kOverwriteValue, RegValue(overwrite ? 1 : 0), ValueType::Dword);
}

std::string BrowseForFolder(Dialogs& dialogs) {
  const auto folder = dialogs.BrowseForFolder("Select a directory");
  return folder ? folder->Text() : std::string();
}

bool CreatePath(FileSystem& files, const std::string& path) {
  return files.MakePath(WinPath(WithBackslash(path)));
}

bool MakeFolder(FileSystem& files, const std::string& path) {
  return CreatePath(files, path);
}

}  // namespace quillbox
