#include "sample/sample_disk.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <random>

#include "sample/address_book.h"
#include "sample/identity_rows.h"
#include "sample/machine_rows.h"
#include "sample/rule_rows.h"
#include "sample/sample_store.h"
#include "sample/user_rows.h"
#include "text/error.h"
#include "text/file_time.h"
#include "text/win_path.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

// Everything on the disk was last changed then: noon (UTC) of the 18th of December 2004.
constexpr std::chrono::sys_seconds kMadeAt{std::chrono::seconds{1103371200}};
constexpr FileTime kMadeAtFileTime = FileTimeOfUnix(kMadeAt.time_since_epoch().count());

constexpr std::size_t kBookPeople = 56;
constexpr std::string_view kSettingsPath = "Software\\Microsoft\\Outlook Express\\5.0";
constexpr std::string_view kAccountsPath = "Software\\Microsoft\\Internet Account Manager";

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

[[noreturn]] void Fail(const fs::path& path, std::string why) {
  const std::u8string name = path.u8string();
  throw Error("making the sample disk", {{name.begin(), name.end()}, {}, {}}, std::move(why));
}

/// A name in UTF-8 as a path, whatever the host takes narrow names for.
fs::path PathOf(std::string_view name) {
  return std::u8string(name.begin(), name.end());
}

void MakeFolders(const fs::path& path) {
  std::error_code code;
  fs::create_directories(path, code);
  if (code) Fail(path, code.message());
}

void WriteFile(const fs::path& path, const Bytes& bytes) {
  if (fs::exists(fs::symlink_status(path))) Fail(path, "it exists already");
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) Fail(path, SystemReason(errno));
  std::error_code code;
  fs::last_write_time(path, std::chrono::file_clock::from_sys(kMadeAt), code);
  if (code) Fail(path, code.message());
}

std::string WithProfile(std::string_view path, const std::string& profile, std::string_view userId = {}) {
  std::string text(path);
  for (const auto& [word, replacement] :
       {std::pair<std::string_view, std::string_view>{"<profile>", profile}, {"<id>", userId}}) {
    if (const std::size_t at = text.find(word); at != std::string::npos) text.replace(at, word.size(), replacement);
  }
  return text;
}

Hive NewHive() {
  return Hive::Create("$$$PROTO.HIV", kMadeAtFileTime);
}

void WriteHive(const fs::path& path, Hive& hive) {
  WriteFile(path, hive.Image(kMadeAtFileTime));
}

void AddIdentity(Hive& hive, HiveKey list, std::size_t index, const SampleOptions& options, const CodePage& codePage) {
  const SampleIdentity& identity = SampleIdentities()[index];
  const HiveKey key = hive.CreateSubkey(list, identity.userId);
  SetText(hive, key, "Username", RowType::Sz, identity.username);
  SetText(hive, key, "User ID", RowType::Sz, identity.userId);
  SetNumber(hive, key, "Directory Name", identity.directoryName);
  SetNumber(hive, key, "Identity Ordinal", static_cast<std::uint32_t>(index + 1));
  if (identity.accounts != nullptr) WriteRows(hive, hive.CreatePath(key, kAccountsPath), identity.accounts());
  if (identity.storeRoot.empty()) return;

  const HiveKey settings = hive.CreatePath(key, kSettingsPath);
  SetText(hive, settings, "Store Root", RowType::ExpandSz,
          WithProfile(identity.storeRoot, options.profile, identity.userId));
  WriteRows(hive, settings, identity.settings, {{"<profile>", options.profile}});
  if (index == 0) WriteHomeRules(hive, settings, codePage);
  if (index == 1) WriteOfficeRules(hive, settings, codePage);
}

Hive UserHive(const SampleOptions& options) {
  const CodePage codePage(options.codePage);
  Hive hive = NewHive();
  WriteRows(hive, hive.Root(), UserRows(), {{"<profile>", options.profile}});
  WriteRows(hive, hive.CreatePath(hive.Root(), kAccountsPath), HomeAccountRows());
  const HiveKey list = hive.CreateSubkey(hive.Root(), "Identities");
  WriteRows(hive, list, IdentityListRows(), {{"<default>", std::string(SampleIdentities()[0].userId)}});
  for (std::size_t i = 0; i < SampleIdentities().size(); ++i) AddIdentity(hive, list, i, options, codePage);
  return hive;
}

void WriteHives(const fs::path& driveC, const SampleOptions& options) {
  const fs::path config = driveC / "WINDOWS" / "system32" / "config";
  Hive software = NewHive();
  WriteRows(software, software.Root(), SoftwareRows(),
            {{"<product>", options.productName}, {"<profile>", options.profile}});
  WriteHive(config / "software", software);
  Hive system = NewHive();
  WriteRows(system, system.Root(), SystemRows(), {{"<codepage>", std::to_string(options.codePage)}});
  WriteHive(config / "system", system);

  const fs::path people = driveC / "Documents and Settings";
  Hive user = UserHive(options);
  WriteHive(people / PathOf(options.profile) / "NTUSER.DAT", user);
  Hive newcomer = NewHive();
  WriteRows(newcomer, newcomer.Root(), UserRows(), {{"<profile>", "Default User"}});
  WriteHive(people / "Default User" / "NTUSER.DAT", newcomer);
}

void WriteStores(const fs::path& folder, const SampleOptions& options) {
  for (std::size_t i = 0; i < SampleIdentities().size(); ++i) {
    const SampleIdentity& identity = SampleIdentities()[i];
    const std::vector<NamedFile> files = StoreFiles(i, options.smallStores);
    if (files.empty()) continue;
    const fs::path store = folder / std::string(1, identity.storeDrive) /
                           PathOf(WithProfile(identity.storeFolder, options.profile, identity.userId));
    MakeFolders(store);
    for (const NamedFile& file : files) WriteFile(store / PathOf(file.name), file.bytes);
  }
}

void Fill(const fs::path& folder, const SampleOptions& options) {
  for (const std::string_view name : kFolders) MakeFolders(folder / PathOf(WithProfile(name, options.profile)));
  WriteHives(folder / "C", options);
  WriteStores(folder, options);
  WriteFile(folder / "C" / "Documents and Settings" / PathOf(options.profile) / "Application Data" / "Microsoft" /
                "Address Book" / PathOf(options.profile + ".wab"),
            SampleAddressBook({.morePeople = kBookPeople}));
}

void RefuseUsed(const fs::path& folder) {
  std::error_code code;
  const fs::file_status status = fs::status(folder, code);
  if (status.type() == fs::file_type::not_found) return;
  if (code) Fail(folder, code.message());
  if (!fs::is_directory(status)) Fail(folder, "it exists and is not a folder");
  const bool empty = fs::is_empty(folder, code);
  if (code) Fail(folder, code.message());
  if (!empty) Fail(folder, "the folder is not empty; nothing in it was touched");
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
    if (code) Fail(path_, code.message());
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
    if (code) Fail(folder, code.message());
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
  MakeFolders(target.parent_path());
  Workshop workshop(target);
  Fill(workshop.Path(), options);
  workshop.MoveTo(target);
  return {target / "C", target / "D", options.profile};
}

}  // namespace quillbox
