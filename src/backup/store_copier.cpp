// SPDX-License-Identifier: GPL-3.0-or-later
#include "backup/store_copier.h"

#include <algorithm>
#include <utility>

#include "core/copy_tally.h"
#include "core/file_helpers.h"

namespace quillbox {
namespace {

constexpr std::size_t kEnding = 4;  // ".dbx"
constexpr const char* kPop3Uidl = "Pop3uidl.dbx";

struct NoteRow {
  LeftOut::Kind kind;
  const char* one;
  const char* several;
};
constexpr NoteRow kNotes[] = {
    {LeftOut::Kind::Identity, " identity not backed up", " identities not backed up"},
    {LeftOut::Kind::MessageStore, " message store not copied", " message stores not copied"},
    {LeftOut::Kind::AddressBook, " address book not copied", " address books not copied"},
    {LeftOut::Kind::NameWithFullStop, " file left out (full stop in its name)",
     " files left out (full stop in the name)"},
};

}  // namespace

bool HasFullStop(const std::string& name) {
  return name.size() > kEnding && name.substr(0, name.size() - kEnding).find('.') != std::string::npos;
}

bool IsStoreFileToCopy(const std::string& name, Pop3Uidl pop3Uidl) {
  return name.size() >= kEnding && !HasFullStop(name) && (pop3Uidl == Pop3Uidl::Copy || name != kPop3Uidl);
}

void StoreCopier::Copy(const StoreCopy& copy) {
  platform_.GetShell().BeginCopyStep();
  for (const std::string& name : FileList(platform_.GetFiles(), copy.from.Join("*.dbx"))) {
    if (!Qualifies(copy, name)) continue;
    platform_.GetShell().CopyFile(
        {.source = copy.from.Join(name), .target = copy.to.Join(name), .noConfirm = copy.overwrite});
    Show(name + copy.done);
  }
}

bool StoreCopier::Qualifies(const StoreCopy& copy, const std::string& name) {
  if (HasFullStop(name)) {
    LeaveOut({LeftOut::Kind::NameWithFullStop, copy.from.Join(name).Text(), "its name has a full stop"});
  }
  return IsStoreFileToCopy(name, copy.pop3Uidl);
}

void StoreCopier::LeaveOut(LeftOut what) {
  platform_.GetLog().Write("not copied: " + what.what + ": " + what.why);
  leftOut_.push_back(std::move(what));
}

std::vector<std::string> StoreCopier::Notes() const {
  std::vector<std::string> notes;
  for (const NoteRow& row : kNotes) {
    const auto count = std::count_if(leftOut_.begin(), leftOut_.end(),
                                     [&](const LeftOut& leftOut) { return leftOut.kind == row.kind; });
    if (count > 0) notes.push_back(CountOf(static_cast<std::size_t>(count), row.one, row.several));
  }
  return notes;
}

}  // namespace quillbox
