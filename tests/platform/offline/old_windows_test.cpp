// SPDX-License-Identifier: GPL-3.0-or-later
// Disks of Windows 95, 98 and Me: what is found on them, and that their registry files are read and never written.
#include "platform/offline/old_windows.h"

#include <map>

#include "offline_fixture.h"
#include "platform/offline/offline_platform.h"
#include "sample/creg_writer.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

CregFileKey Root(std::vector<CregFileKey> subkeys) {
  return {.subkeys = std::move(subkeys), .hasEntry = false};
}

/// A key deeper down, with what it holds.
CregFileKey At(std::string_view path, CregFileKey key) {
  for (std::size_t end = path.size(); end != std::string_view::npos; end = path.substr(0, end).rfind('\\')) {
    const std::size_t start = path.substr(0, end).rfind('\\') + 1;
    const bool isLast = end == path.size();
    CregFileKey above{.name = std::string(path.substr(start, end - start))};
    if (isLast) {
      key.name = above.name;
    } else {
      above.subkeys.push_back(std::move(key));
      key = std::move(above);
    }
    if (start == 0) break;
  }
  return key;
}

/// A person's key with identities of these names.
CregFileKey Person(const std::string& name, std::vector<std::string> identities) {
  CregFileKey list{.name = "Identities"};
  for (const std::string& identity : identities) list.subkeys.push_back({identity});
  return {.name = name, .subkeys = {list}};
}

Bytes SystemFile(const std::string& product, const std::string& codePage) {
  return CregFile(Root({At("Software\\Microsoft\\Windows\\CurrentVersion", {.values = {{"ProductName", 1, product}}}),
                        At("System\\CurrentControlSet\\Control\\Nls\\CodePage", {.values = {{"ACP", 1, codePage}}})}));
}

struct OldWindowsTest : testing::Test {
  TempFolder temp;
  ScriptedDialogs dialogs;
  OfflineOptions options = {.folder = temp / "c", .stateFolder = temp / "state"};

  void Write(const std::string& file, const Bytes& bytes) { WriteBytes(temp.File("c/" + file), bytes); }
  void WriteWindows(const std::string& product = "Microsoft Windows 98", const std::string& codePage = "1252") {
    Write("WINDOWS/USER.DAT", CregFile(Root({Person(".Default", {"{1}", "{2}"})})));
    Write("WINDOWS/SYSTEM.DAT", SystemFile(product, codePage));
  }
  std::vector<std::string> People() {
    std::vector<std::string> lines;
    for (const ProfileFolder& profile : FindWindowsDisk(temp / "c").profiles) {
      const IdentityCount count = CountIdentities(profile);
      lines.push_back(profile.name + ": " + ShownName(profile, count.windows) + " " + std::to_string(count.identities));
    }
    return lines;
  }
  std::map<std::filesystem::path, Bytes> Everything() const {
    std::map<std::filesystem::path, Bytes> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(temp / "c")) {
      const bool isLock = entry.path().filename() == ".quillbox-lock";
      if (entry.is_regular_file() && !isLock) files[entry.path()] = ReadBytes(entry.path());
    }
    return files;
  }
  std::string WhyNot() {
    return FaultOf([&] { OfflinePlatform(options, dialogs); });
  }
};

TEST_F(OldWindowsTest, FindsThePeopleWhereverItIsAndBesideANewerWindows) {
  Write("Win 98/user.dat", CregFile(Root({Person(".Default", {"{1}"})})));
  Write("Win 98/system.dat", SystemFile("Microsoft Windows 95", "1252"));
  EXPECT_THAT(People(), ElementsAre(".DEFAULT: Everyone (Windows 95) 1"));
  EXPECT_EQ(FindWindowsDisk(temp / "c").profiles[0].winFolder.Text(), "C:\\Win 98");
  WriteWindows("Microsoft Windows ME");
  EXPECT_THAT(People(), ElementsAre(".DEFAULT: Everyone (Windows Me) 2")) << "the usual folder first";
  Write("WINDOWS/Profiles/zoe/USER.DAT", CregFile(Root({Person(".Default", {}), Person("Zoe Long", {"{1}"})})));
  Write("WINDOWS/Profiles/Ann/USER.DAT", CregFile(Root({Person("other", {}), Person("ann", {"{1}", "{2}", "{3}"})})));
  temp.Folder("c/WINDOWS/Profiles/All Users");
  EXPECT_THAT(People(), ElementsAre("Ann: Ann (Windows Me) 3", "zoe: zoe (Windows Me) 1"));
  temp.File("c/WINNT/System32/config/software");
  Hive newer = Hive::Create("root", kTestTime);
  newer.CreatePath(newer.Root(), "Identities\\{9}");
  WriteHiveFile(temp / "c/Documents and Settings/ann/NTUSER.DAT", newer);
  EXPECT_THAT(People(),
              ElementsAre("ann: ann 1", "Ann (USER.DAT): Ann (USER.DAT) (Windows Me) 3", "zoe: zoe (Windows Me) 1"));
  options.profile = "ann (user.dat)";
  EXPECT_EQ(OfflinePlatform(options, dialogs)
                .GetRegistry()
                .Open({RegistryRoot::CurrentUser, "Identities\\{3}"}, Access::Full)
                .status,
            Status::Success);
}

TEST_F(OldWindowsTest, HasTheRegistryTheEnvironmentAndTheCodePageOfThatWindows) {
  WriteWindows("Microsoft Windows ME", "1251");
  Write("WINDOWS/USER.DAT", CregFile(Root({At(".Default\\\xEB", {.values = {{"", 1, "\xC4"}}})})));
  Write("WINDOWS/CLASSES.DAT", CregFile(Root({{.name = ".eml"}})));
  OfflinePlatform platform(options, dialogs);
  Registry& registry = platform.GetRegistry();
  EXPECT_EQ(ReadText(registry, {RegistryRoot::CurrentUser, "\u043b"}, ""), "\u0414");
  EXPECT_EQ(platform.GetSystemFacts().CodePageNumber(), 1251u);
  EXPECT_EQ(platform.GetSystemFacts().ExpandEnvironment("%windir% %Temp% %comspec% %UserProfile%"),
            "C:\\WINDOWS C:\\WINDOWS\\TEMP C:\\WINDOWS\\COMMAND.COM %UserProfile%");
  EXPECT_EQ(registry.Open({RegistryRoot::LocalMachine, "software\\classes\\.EML"}, Access::Read).status,
            Status::Success);
  const Key software = registry.Open({RegistryRoot::LocalMachine, "Software"}, Access::Read).key;
  EXPECT_EQ(registry.Info(software).subkeys, 2u);
  EXPECT_EQ(registry.EnumKey(software, 1).name, "CLASSES") << "is in the list though it is in no file of that key";
  EXPECT_EQ(registry.EnumKey(software, 2).status, Status::NoMoreItems);
  EXPECT_TRUE(platform.Warnings().empty());
}

TEST_F(OldWindowsTest, ChangesGoToAPrivateCopyAndTheWindowSaysSo) {
  WriteWindows();
  const auto before = Everything();
  const std::string sentence =
      "Windows 98's registry is read only here; changes go to a private copy, and can be merged on that Windows from "
      "the "
      ".reg files";
  const RegistryPath added[] = {{RegistryRoot::CurrentUser, "Identities\\{3}"},
                                {RegistryRoot::LocalMachine, "Software\\New"}};
  {
    OfflinePlatform platform(options, dialogs);
    EXPECT_EQ(platform.SystemDescription(), options.folder.Text() + ", Everyone (" + sentence + ")");
    EXPECT_EQ(platform.WriteProtection({RegistryRoot::CurrentUser}), sentence + ".");
    EXPECT_EQ(platform.GetRegistry().DeleteTree({RegistryRoot::CurrentUser, ""}), Status::AccessDenied);
    for (const RegistryPath& path : added) EXPECT_EQ(platform.GetRegistry().Create(path).status, Status::Success);
    platform.GetFiles().WriteFile(WinPath("C:\\mail.txt"), "the disk itself can be written");
  }
  EXPECT_EQ(temp.Read("c/mail.txt").size(), 30u);
  std::filesystem::remove(temp / "c/mail.txt");
  EXPECT_EQ(Everything(), before);
  OfflinePlatform again(options, dialogs);
  for (const RegistryPath& path : added)
    EXPECT_EQ(again.GetRegistry().Open(path, Access::Full).status, Status::Success);
  std::filesystem::remove_all(temp / "state");
  temp.File("state");
  EXPECT_THAT(again.SystemDescription(), HasSubstr("(Windows 98's registry is read only here; changes cannot be saved, "
                                                   "since "));
}

TEST_F(OldWindowsTest, DamagedAndMissingFilesNameTheirEarlierCopies) {
  WriteWindows();
  for (const char* copy : {"WINDOWS/USER.DA0", "WINDOWS/system.da0", "WINDOWS/SYSBCKUP/rb001.cab",
                           "WINDOWS/SYSBCKUP/other.cab", "SYSTEM.1ST"}) {
    temp.File(std::string("c/") + copy);
  }
  const std::string ofUser =
      "arlier copies of it are C:\\WINDOWS\\USER.DA0, C:\\WINDOWS\\SYSBCKUP\\rb001.cab (a cabinet with it)";
  const std::string ofSystem =
      "arlier copies of it are C:\\WINDOWS\\system.da0, C:\\WINDOWS\\SYSBCKUP\\rb001.cab (a cabinet with it), "
      "C:\\SYSTEM.1ST (as Windows was installed)";
  Bytes user = ReadBytes(temp / "c/WINDOWS/USER.DAT");
  Store32(&user[0x40 + 2 * 28 + 20], 0x7FFFFFF0);  // the list of the keys in ".Default" goes on nowhere
  Write("WINDOWS/USER.DAT", user);
  const auto before = Everything();
  dialogs.messageAnswers = {MessageAnswer::No};
  EXPECT_THAT(WhyNot(), AllOf(HasSubstr("leads to no key; e" + ofUser)));
  EXPECT_EQ(
      dialogs.LastMessage(),
      "The registry of this Windows (USER.DAT) is damaged in 1 place. Open what can be read? The disk will not be "
      "written.\n\nE" +
          ofUser + ".");
  EXPECT_EQ(People(), std::vector<std::string>{".DEFAULT: Everyone (Windows 98) 2"});
  dialogs.messageAnswers = {MessageAnswer::Yes};
  EXPECT_THAT(OfflinePlatform(options, dialogs).SystemDescription(),
              EndsWith("(damaged in 1 place: what cannot be read is left out; changes go to a private copy)"));
  EXPECT_EQ(Everything(), before);

  WriteWindows();
  std::filesystem::remove(temp / "c/WINDOWS/SYSTEM.DAT");
  const OfflinePlatform platform(options, dialogs);
  EXPECT_THAT(platform.Warnings(),
              ElementsAre("HKEY_LOCAL_MACHINE is not there: the disk has no file for it; e" + ofSystem + "."));
  Write("WINDOWS/SYSTEM.DAT", SystemFile("Microsoft Windows 98", "1252"));
  temp.File("c/WINDOWS/USER.DAT", "no registry");
  options.readOnly = true;
  EXPECT_THAT(WhyNot(), AllOf(HasSubstr("it does not begin with \"CREG\""), HasSubstr("; e" + ofUser)));
  std::filesystem::remove(temp / "c/WINDOWS/USER.DAT");
  EXPECT_THAT(WhyNot(), AllOf(HasSubstr("there is no C:\\WINDOWS\\USER.DAT"), HasSubstr("; e" + ofUser)));
}

}  // namespace
}  // namespace quillbox
