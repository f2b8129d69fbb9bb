#include "backup/store_copier.h"

#include "core/file_helpers.h"

namespace quillbox {
namespace {

constexpr const char* kPop3Uidl = "Pop3uidl.dbx";

}  // namespace

bool IsStoreFileToCopy(const std::string& name, Pop3Uidl pop3Uidl) {
  constexpr std::size_t kEnding = 4;
  if (name.size() < kEnding) return false;
  if (name.substr(0, name.size() - kEnding).find('.') != std::string::npos) return false;
  return pop3Uidl == Pop3Uidl::Copy || name != kPop3Uidl;
}

void StoreCopier::Copy(const StoreCopy& copy) {
  platform_.GetShell().BeginCopyStep();
  for (const std::string& name : FileList(platform_.GetFiles(), copy.from.Join("*.dbx"))) {
    if (!IsStoreFileToCopy(name, copy.pop3Uidl)) continue;
    platform_.GetShell().CopyFile(
        {.source = copy.from.Join(name), .target = copy.to.Join(name), .noConfirm = copy.overwrite});
    Show(name + copy.done);
  }
}

}  // namespace quillbox
