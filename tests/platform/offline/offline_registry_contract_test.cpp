#include "platform/offline/offline_fixture.h"
#include "platform/registry_contract.h"

namespace quillbox {
namespace {

class OfflineUnderTest : public RegistryUnderTest, OfflineFixture {
 public:
  OfflineUnderTest()
      : hive_(HostPlace::Anywhere(MakeHiveFile(disk / "NTUSER.DAT")), HiveMode::Write, disk / "state", log) {
    registry.Mount({RegistryRoot::CurrentUser, ""}, hive_);
    disk.Folder("saved");
  }
  Registry& GetRegistry() override { return registry; }
  RegistryPath Base() override { return {RegistryRoot::CurrentUser, "Contract"}; }
  WinPath Folder() override { return WinPath("C:\\saved"); }

 private:
  HiveFile hive_;
};

INSTANTIATE_TEST_SUITE_P(Offline, RegistryContract,
                         testing::Values([] { return std::make_unique<OfflineUnderTest>(); }));

}  // namespace
}  // namespace quillbox
