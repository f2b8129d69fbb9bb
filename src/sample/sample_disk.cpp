// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/sample_disk.h"

#include <random>
#include <system_error>

#include "sample/machine_rows.h"
#include "sample/sample_files.h"
#include "sample/user_rows.h"
#include "sample/windows98_disk.h"
#include "text/error.h"
#include "text/win_path.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kFolders[] = {
    "C/Program Files/Outlook Express",
    "C/Program Files/Common Files",
    "C/WINDOWS/system32/config",
    "C/WINDOWS/TEMP",
    "C/Documents and Settings/All Users/Application Data",
    "C/Documents and Settings/All Users/Desktop",
    "C/Documents and Settings/All Users/Documents",
    "C/Documents and Settings/Default User/Application Data",
    "C/Documents and Settings/<profile>/Application Data/Microsoft/Address Book",
    "C/Documents and Settings/<profile>/Desktop",
    "C/Documents and Settings/<profile>/Local Settings/Application Data/Identities",
    "C/Documents and Settings/<profile>/Local Settings/Temp",
    "C/Documents and Settings/<profile>/My Documents",
    "D/Backup",
};

PersonPlaces PlacesOf(const std::string& profile) {
  const std::string home = "Documents and Settings/" + profile;
  return {.storeFolder = home + "/Local Settings/Application Data/Identities/<id>/Microsoft/Outlook Express",
          .storeRoot = "%UserProfile%\\Local Settings\\Application Data\\Identities\\<id>\\Microsoft\\Outlook Express",
          .storeRootType = RowType::ExpandSz,
          .documents = "C:\\Documents and Settings\\" + profile + "\\My Documents",
          .bookFile = home + "/Application Data/Microsoft/Address Book/" + profile + ".wab"};
}

Hive NewHive() {
  return Hive::Create("$$$PROTO.HIV", kSampleFileTime);
}

void WriteHive(const fs::path& path, Hive& hive) {
  WriteSampleFile(path, hive.Image(kSampleFileTime));
}

void WriteHives(const fs::path& driveC, const SampleOptions& options) {
  const fs::path config = driveC / "WINDOWS" / "system32" / "config";
  Hive software = NewHive();
  WriteRows(software, software.Root(), SoftwareRows(),
            {{"<product>", options.productName.empty() ? "Microsoft Windows XP" : options.productName},
             {"<profile>", options.profile}});
  WriteHive(config / "software", software);
  Hive system = NewHive();
  WriteRows(system, system.Root(), SystemRows(), {{"<codepage>", std::to_string(options.codePage)}});
  WriteHive(config / "system", system);

  const fs::path people = driveC / "Documents and Settings";
  Hive user = NewHive();
  WriteRows(user, user.Root(), UserRows(), {{"<profile>", options.profile}});
  AddIdentities(user, user.Root(), PlacesOf(options.profile), options);
  WriteHive(people / SamplePath(options.profile) / "NTUSER.DAT", user);
  Hive newcomer = NewHive();
  WriteRows(newcomer, newcomer.Root(), UserRows(), {{"<profile>", "Default User"}});
  WriteHive(people / "Default User" / "NTUSER.DAT", newcomer);
}

void FillXp(const fs::path& folder, const SampleOptions& options) {
  for (const std::string_view name : kFolders) {
    MakeSampleFolders(folder / SamplePath(Filled(name, {{"<profile>", options.profile}})));
  }
  WriteHives(folder / "C", options);
  WriteMail(folder, PlacesOf(options.profile), options);
}

void RefuseUsed(const fs::path& folder) {
  std::error_code code;
  const fs::file_status status = fs::status(folder, code);
  if (status.type() == fs::file_type::not_found) return;
  if (code) FailSample(folder, code.message());
  if (!fs::is_directory(status)) FailSample(folder, "it exists and is not a folder");
  const bool empty = fs::is_empty(folder, code);
  if (code) FailSample(folder, code.message());
  if (!empty) FailSample(folder, "the folder is not empty; nothing in it was touched");
}

/// A new folder beside `folder`, which is renamed at the end, so that a disk is made whole or not at all.
class Workshop {
 public:
  explicit Workshop(const fs::path& folder) {
    std::random_device random;
    std::error_code code;
    do {
      path_ = folder;
      path_ += "." + std::to_string(random());
    } while (!fs::create_directory(path_, code) && !code);
    if (code) FailSample(path_, code.message());
  }
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;
  ~Workshop() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }

  const fs::path& Path() const { return path_; }
  void MoveTo(const fs::path& folder) {
    std::error_code code;
    // Windows renames nothing over a folder, not even over an empty one.
    if (fs::is_directory(fs::symlink_status(folder, code))) fs::remove(folder, code);
    fs::rename(path_, folder, code);
    if (code) FailSample(folder, code.message());
    path_.clear();
  }

 private:
  fs::path path_;
};

}  // namespace

SampleDisk MakeSampleDisk(const fs::path& folder, const SampleOptions& options) {
  if (const auto fault = FileNameFault(options.profile)) {
    throw Error("making the sample disk", {options.profile, {}, {}},
                "the profile's name can't be a folder: " + fault->reason);
  }
  fs::path target = fs::absolute(folder).lexically_normal();
  if (!target.has_filename()) target = target.parent_path();
  RefuseUsed(target);
  MakeSampleFolders(target.parent_path());
  Workshop workshop(target);
  const bool isXp = options.kind == SampleKind::Xp;
  isXp ? FillXp(workshop.Path(), options) : FillWindows98(workshop.Path(), options);
  workshop.MoveTo(target);
  const bool isShared = options.kind == SampleKind::Windows98;
  return {target / "C", target / "D", isShared ? kSharedProfile : options.profile};
}

}  // namespace quillbox
