// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_folder.h"

#include <utility>

#include "host/host_fault.h"
#include "host/host_names.h"
#include "host/temporary_name.h"

namespace quillbox {

namespace {

std::vector<std::string> NamesIn(const HostFolder& folder) {
  std::vector<std::string> names;
  folder.EachName([&](const std::string& name) {
    names.push_back(name);
    return false;
  });
  return names;
}

}  // namespace

NewFolder::NewFolder(HostFolder parent, std::string name) : parent_(std::move(parent)), name_(std::move(name)) {
  if (LeavesItsFolder(name_)) ThrowFault(SystemCode(std::errc::invalid_argument));
  if (const auto existing = parent_.Find(name_)) {
    if (!existing->IsFolder()) ThrowFault(SystemCode(std::errc::not_a_directory));
    there_ = parent_.OpenFolder(name_);
  }
  Make();
}

NewFolder::~NewFolder() {
  if (temporary_.empty()) return;
  Empty();
  made_.Close();
  Outer().RemoveFolder(temporary_);
}

/// The folder is beside its place or in it, so that everything in it can move.
void NewFolder::Make() {
  std::error_code fault;
  for (int attempt = 0; attempt < kMaxNameAttempts; ++attempt) {
    std::string name = RandomTemporaryName();
    fault = Outer().MakeFolder(name);
    if (!fault) {
      temporary_ = std::move(name);
      break;
    }
    if (fault != std::errc::file_exists) break;
  }
  if (fault) ThrowFault(fault);
  made_ = Outer().OpenFolder(temporary_);
  MarkInUse();
}

bool NewFolder::Takes(const std::string& name) const {
  if (LeavesItsFolder(name)) return false;
  try {
    MakeFile(name);
  } catch (const std::system_error&) {
    return false;
  }
  return !made_.Remove(name);
}

void NewFolder::StartFile(const std::string& name) {
  if (LeavesItsFolder(name)) ThrowFault(SystemCode(std::errc::invalid_argument));
  if (there_ && there_->Find(name)) ThrowFault(SystemCode(std::errc::file_exists));
  file_ = MakeFile(name);
}

void NewFolder::Commit() {
  made_.FlushFileSystem();
  if (there_) {
    MoveFiles();
    there_->Flush();
  } else {
    made_.Close();  // an open folder keeps its name on some hosts
    if (const std::error_code fault = parent_.Rename({.from = temporary_, .to = name_})) {
      made_ = parent_.OpenFolder(temporary_);
      ThrowFault(fault);
    }
    temporary_.clear();
  }
  parent_.Flush();
}

void NewFolder::MoveFiles() {
  const std::vector<std::string> names = NamesIn(made_);
  for (std::size_t at = 0; at < names.size(); ++at) {
    const std::error_code fault = made_.MoveNew(names[at], *there_);
    if (!fault) continue;
    while (at-- != 0) there_->Remove(names[at]);
    ThrowFault(fault);
  }
  made_.Close();
  there_->RemoveFolder(temporary_);
  temporary_.clear();
}

void NewFolder::Empty() {
  file_.Close();
  for (const std::string& name : NamesIn(made_)) made_.Remove(name);
}

void RemoveAbandonedFolder(const HostFolder& folder, const std::string& name) {
  try {
    if (IsBeingMade(folder, name)) return;
    HostFolder abandoned = folder.OpenFolder(name);
    for (const std::string& file : NamesIn(abandoned)) abandoned.Remove(file);
    abandoned.Close();
    folder.RemoveFolder(name);
  } catch (const std::system_error&) {  // NOLINT(bugprone-empty-catch): it is somebody else's, then
  }
}

}  // namespace quillbox
