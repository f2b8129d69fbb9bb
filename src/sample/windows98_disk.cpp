// SPDX-License-Identifier: GPL-3.0-or-later
#include "sample/windows98_disk.h"

#include <string_view>

#include "sample/creg_writer.h"
#include "sample/sample_files.h"
#include "sample/windows98_rows.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kFolders[] = {
    "C/Program Files/Outlook Express",
    "C/Program Files/Common Files",
    "C/My Documents",
    "C/WINDOWS/All Users/Desktop",
    "C/WINDOWS/Desktop",
    "C/WINDOWS/SYSBCKUP",
    "C/WINDOWS/SYSTEM",
    "C/WINDOWS/TEMP",
    "D/Backup",
};

/// Where the person's folders are, as Windows writes it.
std::string HomeOf(const SampleOptions& options) {
  const bool hasProfiles = options.kind == SampleKind::Windows98WithProfiles;
  return hasProfiles ? "C:\\WINDOWS\\Profiles\\" + options.profile : "C:\\WINDOWS";
}

std::string OnDriveC(std::string_view windowsPath) {
  return Filled(windowsPath.substr(3), {{"\\", "/"}});
}

/// The root key, which has no entry, with what the hive's has below it.
CregFileKey RootOf(const Hive& hive, const CodePage& codePage) {
  CregFileKey root = CregKeyOf(hive, hive.Root(), codePage);
  root.hasEntry = false;
  return root;
}

}  // namespace

void FillWindows98(const fs::path& folder, const SampleOptions& options) {
  const bool hasProfiles = options.kind == SampleKind::Windows98WithProfiles;
  const CodePage codePage(options.codePage);
  const std::string home = HomeOf(options);
  const std::string store = home + "\\Application Data\\Identities\\<id>\\Microsoft\\Outlook Express";
  const std::string book = home + "\\Application Data\\Microsoft\\Address Book\\" + options.profile + ".wab";
  const std::string documents = hasProfiles ? home + "\\My Documents" : "C:\\My Documents";
  for (const std::string_view name : kFolders) MakeSampleFolders(folder / SamplePath(name));
  for (const std::string& place : {home + "\\Application Data", home + "\\Desktop", documents}) {
    MakeSampleFolders(folder / "C" / SamplePath(OnDriveC(place)));
  }

  const PersonPlaces places = {
      .storeFolder = OnDriveC(store), .storeRoot = store, .documents = documents, .bookFile = OnDriveC(book)};
  const Placeholders folders = {{"<home>", home}, {"<documents>", documents}, {"<book>", book}};
  const auto write = [&](const std::string& name, const Hive& hive) {
    WriteSampleFile(folder / "C" / SamplePath(name), CregFile(RootOf(hive, codePage)));
  };
  Hive user = Hive::Create("user", kSampleFileTime);
  const HiveKey person = user.CreateSubkey(user.Root(), hasProfiles ? options.profile : kSharedProfile);
  WriteRows(user, person, Windows98UserRows(), folders);
  AddIdentities(user, person, places, options);
  if (hasProfiles) {
    write(OnDriveC(home) + "/USER.DAT", user);
    Hive shared = Hive::Create("shared", kSampleFileTime);
    WriteRows(shared, shared.CreateSubkey(shared.Root(), kSharedProfile), Windows98UserRows(), folders);
    write("WINDOWS/USER.DAT", shared);
  } else {
    write("WINDOWS/USER.DAT", user);
  }
  Hive system = Hive::Create("system", kSampleFileTime);
  WriteRows(system, system.Root(), Windows98SystemRows(),
            {{"<product>", options.productName.empty() ? "Microsoft Windows 98" : options.productName},
             {"<profile>", options.profile},
             {"<codepage>", std::to_string(options.codePage)}});
  write("WINDOWS/SYSTEM.DAT", system);
  WriteMail(folder, places, options);
}

}  // namespace quillbox
