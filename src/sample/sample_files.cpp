// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/sample_files.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <system_error>

#include "sample/address_book.h"
#include "sample/identity_rows.h"
#include "sample/rule_rows.h"
#include "sample/sample_store.h"
#include "sample/user_rows.h"
#include "text/error.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t kBookPeople = 56;
constexpr std::string_view kSettingsPath = "Software\\Microsoft\\Outlook Express\\5.0";
constexpr std::string_view kAccountsPath = "Software\\Microsoft\\Internet Account Manager";

std::string ForIdentity(const std::string& text, const SampleIdentity& identity) {
  return Filled(text, {{"<id>", std::string(identity.userId)}});
}

void AddIdentity(Hive& hive, HiveKey list, std::size_t index, const PersonPlaces& places,
                 const SampleOptions& options) {
  const SampleIdentity& identity = SampleIdentities()[index];
  const HiveKey key = hive.CreateSubkey(list, identity.userId);
  SetText(hive, key, "Username", RowType::Sz, identity.username);
  SetText(hive, key, "User ID", RowType::Sz, identity.userId);
  SetNumber(hive, key, "Directory Name", identity.directoryName);
  SetNumber(hive, key, "Identity Ordinal", static_cast<std::uint32_t>(index + 1));
  if (identity.accounts != nullptr) WriteRows(hive, hive.CreatePath(key, kAccountsPath), identity.accounts());
  if (identity.store == StorePlace::None) return;

  const HiveKey settings = hive.CreatePath(key, kSettingsPath);
  SetText(hive, settings, "Store Root", places.storeRootType,
          identity.store == StorePlace::DriveD ? "D:\\Mail\\Office" : ForIdentity(places.storeRoot, identity));
  WriteRows(hive, settings, identity.settings, {{"<documents>", places.documents}});
  const RuleTexts texts = {CodePage(options.codePage), places.documents};
  if (index == 0) WriteHomeRules(hive, settings, texts);
  if (index == 1) WriteOfficeRules(hive, settings, texts);
}

}  // namespace

void FailSample(const fs::path& path, std::string why) {
  const std::u8string name = path.u8string();
  throw Error("making the sample disk", {{name.begin(), name.end()}, {}, {}}, std::move(why));
}

fs::path SamplePath(std::string_view name) {
  return std::u8string(name.begin(), name.end());
}

void MakeSampleFolders(const fs::path& path) {
  std::error_code code;
  fs::create_directories(path, code);
  if (code) FailSample(path, code.message());
}

void WriteSampleFile(const fs::path& path, const Bytes& bytes) {
  if (fs::exists(fs::symlink_status(path))) FailSample(path, "it exists already");
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) FailSample(path, SystemReason(errno));
  constexpr std::chrono::sys_seconds kMadeAt{std::chrono::seconds{kSampleMadeAt}};
  std::error_code code;
  fs::last_write_time(path, std::chrono::file_clock::from_sys(kMadeAt), code);
  if (code) FailSample(path, code.message());
}

void AddIdentities(Hive& hive, HiveKey person, const PersonPlaces& places, const SampleOptions& options) {
  WriteRows(hive, hive.CreatePath(person, kAccountsPath), HomeAccountRows());
  const HiveKey list = hive.CreateSubkey(person, "Identities");
  WriteRows(hive, list, IdentityListRows(), {{"<default>", std::string(SampleIdentities()[0].userId)}});
  for (std::size_t i = 0; i < SampleIdentities().size(); ++i) AddIdentity(hive, list, i, places, options);
}

void WriteMail(const fs::path& folder, const PersonPlaces& places, const SampleOptions& options) {
  for (std::size_t i = 0; i < SampleIdentities().size(); ++i) {
    const SampleIdentity& identity = SampleIdentities()[i];
    const std::vector<NamedFile> files = StoreFiles(i, options.smallStores);
    if (files.empty()) continue;
    const fs::path store = identity.store == StorePlace::DriveD
                               ? folder / "D/Mail/Office"
                               : folder / "C" / SamplePath(ForIdentity(places.storeFolder, identity));
    MakeSampleFolders(store);
    for (const NamedFile& file : files) WriteSampleFile(store / SamplePath(file.name), file.bytes);
  }
  const fs::path book = folder / "C" / SamplePath(places.bookFile);
  MakeSampleFolders(book.parent_path());
  WriteSampleFile(book, SampleAddressBook({.morePeople = kBookPeople}));
}

}  // namespace quillbox
