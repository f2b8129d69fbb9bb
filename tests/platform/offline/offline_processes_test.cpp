#include "platform/offline/offline_processes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/offline/offline_platform.h"
#include "sample_disk.h"
#include "support/scripted_dialogs.h"

namespace quillbox {
namespace {

using testing::HasSubstr;

struct OfflineProcessesTest : testing::Test {
  XpDisk disk;
  ScriptedDialogs dialogs;
  OfflineOptions options = {
      .folder = disk.folder, .drives = {{'D', disk.temp.Folder("data")}}, .stateFolder = disk.temp / "state"};
};

TEST_F(OfflineProcessesTest, TheEditorGetsTheDiskItsLockAndTheRawCommandLine) {
  // A shell script in the registry editor's place, which reports to the file $OUT.
  options.registryEditor = disk.temp.File("editor", "#!/bin/sh\nOUT='" + (disk.temp / "out").string() + R"('
for a in "$@"; do
  echo "<$a>" >> "$OUT"
  if [ "$last" = --lock-fd ]; then [ -e "/proc/self/fd/$a" ] && echo passed >> "$OUT"; fi
  last=$a
done
cp ')" + (disk.anna / "ntuser.dat").string() + "' \"$OUT.hive\"\necho 'line 3 makes no sense' >&2\nexit 1\n");
  std::filesystem::permissions(options.registryEditor, std::filesystem::perms::owner_all);
  OfflinePlatform platform(options, dialogs);
  platform.GetDrives().SetCurrentDrive('D');
  platform.GetRegistry().Create({RegistryRoot::CurrentUser, "Identities\\{3}"});
  const std::string command = R"(REGEDIT.EXE /e:A Main.reg "HKEY_CURRENT_USER\Identities\{1}\)";
  EXPECT_EQ(platform.GetProcesses().RunAndWait(command, ShowStyle::Normal).exitCode, 1);
  EXPECT_THAT(disk.temp.Read("state/quillbox.log"), HasSubstr("ended with code 1: line 3 makes no sense"));
  const std::string out = disk.temp.Read("out");
  for (const std::string& part :
       {"<--disk>\n<" + disk.folder.string() + ">", std::string("<--profile>\n<Anna>"),
        "<--drive>\n<D=" + (disk.temp / "data").string() + ">",
        "<--directory>\n<D:\\>\n<--command-line>\n<" + command + ">", std::string("passed\n")}) {
    EXPECT_THAT(out, HasSubstr(part));
  }
  const Hive seen = Hive::Load(AsBytes(disk.temp.Read("out.hive")), "seen");
  EXPECT_TRUE(seen.Find(seen.Root(), "Identities\\{3}").has_value()) << "written before the editor started";
}

TEST_F(OfflineProcessesTest, OtherCommandsAreNotStarted) {
  options.registryEditor = disk.temp / "no editor";
  OfflinePlatform platform(options, dialogs);
  for (const char* command : {"regedit /s x.reg", "regedit32 x", "notepad x", "", " regedit"}) {
    EXPECT_FALSE(platform.GetProcesses().RunAndWait(command, ShowStyle::Normal).started) << command;
  }
}

}  // namespace
}  // namespace quillbox
