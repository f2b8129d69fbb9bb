// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspection/disk_comparison.h"

#include <algorithm>
#include <array>
#include <utility>
#include <variant>

#include "backup/registry_items.h"
#include "backup/store_copier.h"
#include "core/copy_tally.h"
#include "core/disk_path.h"
#include "core/file_comparison.h"
#include "core/message_store.h"
#include "inspection/file_check.h"
#include "registry/reg_file_form.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kPop3Uidl = "Pop3uidl.dbx";
constexpr std::array kSharedKeys = {RegistryItem::AddressBook, RegistryItem::Machine, RegistryItem::Accounts};

void NotCompared(InspectedFile& file, std::string why) {
  file.onDisk = DiskMatch::NotCompared;
  file.difference = std::move(why);
}

bool IsIn(const WinPath& file, const std::string& folder) {
  return EqualIgnoreCase(file.Parent().Name(), folder);
}

bool HasFile(const Inspection& inspection, const std::string& folder, const std::string& name) {
  return std::any_of(inspection.files.begin(), inspection.files.end(), [&](const InspectedFile& file) {
    return IsIn(file.path, folder) && EqualIgnoreCase(file.path.Name(), name);
  });
}

}  // namespace

DiskComparison::DiskComparison(const ComparedDisk& disk, const CodePage& page, InspectionProgress& progress)
    : disk_(disk), page_(page), progress_(progress), files_(disk.platform.GetFiles()) {
  for (const IdentityInfo& info : disk.catalogue.identities) {
    DiskIdentity identity{info, std::nullopt, {}};
    if (info.storeFolder) {
      const auto folder = FindStore(disk.store, disk.platform, info.userId);
      if (const auto* path = std::get_if<WinPath>(&folder)) identity.store = *path;
      if (const auto* fault = std::get_if<StoreFault>(&folder)) identity.fault = fault->clause;
    }
    identities_.push_back(std::move(identity));
  }
  const WinPath book = ReadAddressBookFile(disk.store);
  if (book.Empty()) return;
  const DiskPath path = CheckAddressBook(disk.platform.GetDrives(), book);
  if (path.IsUsable()) {
    book_ = path.Path();
  } else {
    bookFault_ = path.Refusal().Clause();
  }
}

DiskComparison::Candidates DiskComparison::CandidatesFor(const WinPath& file) const {
  Candidates found;
  for (const DiskIdentity& identity : identities_) {
    if (IsIn(file, identity.info.username)) found.push_back(&identity);
  }
  return found;
}

void DiskComparison::Compare(InspectedFile& file) {
  if (file.state == CheckState::NotReadable || file.size == 0) return NotCompared(file, "it cannot be read");
  try {
    switch (file.kind) {
      case FileKind::MessageStore:
      case FileKind::FolderList:
      case FileKind::OtherStore:
      case FileKind::OldStore:
        return CompareStore(file);
      case FileKind::AddressBook:
        return CompareBook(file);
      case FileKind::RegistryText:
        return CompareText(file);
      case FileKind::Hive:
        return CompareHive(file);
      default:
        return NotCompared(file, "nothing of the disk corresponds to it");
    }
  } catch (const Error& error) {
    NotCompared(file, Describe(error));
  }
}

bool DiskComparison::CompareFiles(InspectedFile& file, const WinPath& onDisk) {
  const auto entry = files_.Stat(onDisk);
  const auto a = files_.OpenForReading(file.path);
  const auto b = files_.OpenForReading(onDisk);
  std::uint64_t last = 0;
  const auto offset =
      FirstDifference(*a, *b, [&](std::uint64_t done) { progress_.Advance(2 * (done - std::exchange(last, done))); });
  if (!offset) {
    file.onDisk = DiskMatch::Equal;
    file.difference.clear();
    return true;
  }
  if (file.onDisk == DiskMatch::Differs) return false;
  file.onDisk = DiskMatch::Differs;
  const std::uint64_t size = entry ? entry->size : 0;
  file.difference = "it differs from " + OneLine(onDisk.Text()) + ", first at " + OffsetText(*offset);
  if (size != file.size) {
    file.difference += "; it has " + std::to_string(file.size) + " bytes, and the disk's " + std::to_string(size);
  }
  return false;
}

void DiskComparison::CompareStore(InspectedFile& file) {
  const Candidates identities = CandidatesFor(file.path);
  if (identities.empty()) return NotCompared(file, "no identity of the disk has the name of its folder");
  for (const DiskIdentity* identity : identities) {
    if (!identity->store) {
      if (file.onDisk != DiskMatch::NotAsked) continue;
      if (identity->fault.empty()) {
        file.onDisk = DiskMatch::NotOnDisk;
        file.difference = "the identity has no message store on the disk";
      } else {
        NotCompared(file, identity->fault);
      }
      continue;
    }
    const WinPath onDisk = identity->store->Join(file.path.Name());
    const auto entry = files_.Stat(onDisk);
    if (entry && !entry->isDirectory) {
      if (CompareFiles(file, onDisk)) return;
    } else if (file.onDisk != DiskMatch::Differs) {
      file.onDisk = DiskMatch::NotOnDisk;
      file.difference = OneLine(onDisk.Text()) + " is not there";
    }
  }
}

void DiskComparison::CompareBook(InspectedFile& file) {
  if (!book_) {
    return NotCompared(file, bookFault_.empty() ? "the registry of the disk names no address book" : bookFault_);
  }
  if (!EqualIgnoreCase(book_->Name(), file.path.Name())) {
    return NotCompared(file, "the address book in use on the disk is " + OneLine(book_->Text()));
  }
  const auto entry = files_.Stat(*book_);
  if (entry && !entry->isDirectory) {
    CompareFiles(file, *book_);
    return;
  }
  file.onDisk = DiskMatch::NotOnDisk;
  file.difference = OneLine(book_->Text()) + " is not there";
}

void DiskComparison::TakeDifference(InspectedFile& file, const ImageDifference& difference) {
  file.onDisk = difference.keys == 0 ? DiskMatch::Equal : DiskMatch::Differs;
  if (difference.keys > 0) {
    file.difference =
        CountOf(difference.keys, " key differs", " keys differ") + " from the disk, first " + OneLine(difference.first);
  }
}

void DiskComparison::CompareText(InspectedFile& file) {
  InspectedSource source(files_, file.path, progress_);
  Bytes head(2);
  head.resize(source.ReadAt(0, head));
  const bool isUtf16 = std::string(head.begin(), head.end()) == kUtf16Mark;
  SequentialSource bytes(source);
  const RegistryImage saved = ImageOfText(bytes, page_);
  if (saved.deletes) return NotCompared(file, "it deletes keys or values, which no export does");
  for (const std::string& root : saved.roots) saved_.push_back(root);
  if (saved.keys.empty()) return NotCompared(file, "it has no keys");
  const RegistryImage now = ImageOfRegistry(disk_.platform.GetRegistry(), saved,
                                            isUtf16 ? RegFileForm::Unicode5 : RegFileForm::Regedit4, page_);
  if (!now.keys.empty()) return TakeDifference(file, DifferenceOf(saved, now));
  file.onDisk = DiskMatch::NotOnDisk;
  file.difference = "none of its keys is on the disk";
}

/// Backups have one hive: the signatures of an identity.
void DiskComparison::CompareHive(InspectedFile& file) {
  const std::string name = file.path.Name();
  const FileNames& single = RowOf(RegistryItem::Signatures).exportFile;
  const auto isName = [&](const char* known) { return EqualIgnoreCase(name, known); };
  const Candidates identities = CandidatesFor(file.path);
  const bool isSignatures = isName(kSignaturesInBackup.on2k) || isName(kSignaturesInBackup.onXp) ||
                            isName(single.on2k) || isName(single.onXp);
  if (!isSignatures || identities.empty()) return NotCompared(file, "the file does not say which key it was made from");
  if (file.state != CheckState::Whole) return NotCompared(file, "it is damaged");
  InspectedSource source(files_, file.path, progress_);
  const RegistryImage saved = ImageOfHive(Hive::Load(ReadWhole(source), name));
  for (const DiskIdentity* identity : identities) {
    const RegistryPath path = CurrentUser(IdentitySettingsKey(identity->info.userId) + "\\Signatures");
    if (const auto now = ImageOfKey(disk_.platform.GetRegistry(), path)) {
      TakeDifference(file, DifferenceOf(saved, *now));
      if (file.onDisk == DiskMatch::Equal) return file.difference.clear();
    } else if (file.onDisk == DiskMatch::NotAsked) {
      file.onDisk = DiskMatch::NotOnDisk;
      file.difference = "the identity has no signatures on the disk";
    }
  }
}

void DiskComparison::AddMissingStores(const DiskIdentity& identity, const Inspection& inspection,
                                      std::vector<NotInBackup>& missing) const {
  const std::string& folder = identity.info.username;
  if (!identity.fault.empty()) {
    missing.push_back({"the messages of \"" + OneLine(folder) + "\"", identity.fault});
  }
  if (!identity.store) return;
  const auto finder = files_.Find(identity.store->Join("*.dbx"));
  while (const auto entry = finder->Next()) {
    if (entry->isDirectory || HasFile(inspection, folder, entry->name)) continue;
    NotInBackup part{OneLine(identity.store->Join(entry->name).Text())};
    if (HasFullStop(entry->name)) part.why = "backups leave out files with a full stop in the name";
    if (EqualIgnoreCase(entry->name, kPop3Uidl)) {
      part.isUsual = true;
      part.why = "it has no messages, and only complete backups have it";
    }
    missing.push_back(std::move(part));
  }
}

/// A key is saved by the file of it, or of one above it.
void DiskComparison::AddMissingKeys(const Inspection& inspection, std::vector<NotInBackup>& missing) const {
  const auto isSaved = [&](const RegistryPath& path) {
    const std::string key = UpperCase(FullName(path));
    return std::any_of(saved_.begin(), saved_.end(),
                       [&](const std::string& root) { return key == root || key.starts_with(root + "\\"); });
  };
  const auto add = [&](const RegistryPath& path, const std::string& what, const char* usual) {
    if (isSaved(path) || disk_.store.OpenKey(path, Access::Read).status == Status::FileNotFound) return;
    missing.push_back(
        {what, usual ? usual : "no registry file there has " + OneLine(FullName(path)), usual != nullptr});
  };
  for (const DiskIdentity& identity : identities_) {
    const IdentityInfo& info = identity.info;
    add(CurrentUser(IdentityKey(info.userId)), "the settings of \"" + OneLine(info.username) + "\"",
        info.storeFolder ? nullptr : "backups leave out identities without a message store");
  }
  constexpr std::array kNames = {"the address book's settings", "the settings of the machine", "the mail accounts"};
  for (std::size_t at = 0; at < kSharedKeys.size(); ++at) {
    const bool isLeftOut = kSharedKeys.at(at) == RegistryItem::Machine && isSaved(CurrentUser(kIdentitiesKey));
    const char* usual = isLeftOut ? "complete backups leave them out" : nullptr;
    if (const auto path = ParseRegistryPath(RowOf(kSharedKeys.at(at)).key)) add(*path, kNames.at(at), usual);
  }
  if (!book_) {
    if (!bookFault_.empty()) missing.push_back({"the address book", bookFault_});
    return;
  }
  const bool hasBook = std::any_of(inspection.files.begin(), inspection.files.end(), [&](const InspectedFile& file) {
    return EqualIgnoreCase(file.path.Name(), book_->Name());
  });
  if (!hasBook && files_.Stat(*book_)) missing.push_back({OneLine(book_->Text()), "it is the address book in use"});
}

std::vector<NotInBackup> DiskComparison::Missing(const Inspection& inspection) const {
  std::vector<NotInBackup> missing;
  for (const DiskIdentity& identity : identities_) AddMissingStores(identity, inspection, missing);
  AddMissingKeys(inspection, missing);
  return missing;
}

}  // namespace quillbox
