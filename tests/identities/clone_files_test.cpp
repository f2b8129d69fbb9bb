#include "identities/clone_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/sample_ids.h"
#include "text/error.h"

namespace quillbox {
namespace {

using ::testing::HasSubstr;

const std::string kAlice = kMain;
const std::string kBob = kOffice;

std::string KeyOf(const std::string& userId) {
  return "[HKEY_CURRENT_USER\\Identities\\" + userId;
}

TEST(CloneFiles, TheDestinationKeepsItsOwnValuesAndOnlyThose) {
  const std::string accounts = "\\Software\\Accounts]\r\n\"Username\"=\"pop\"\r\n\"Store Root\"=\"kept\"\r\n\r\n";
  const RegText source{"source.reg", "REGEDIT4\r\n\r\n" + KeyOf(kAlice) +
                                         "]\r\n\"Username\"=\"Alice\"\r\n\"User ID\"=\"" + kAlice +
                                         "\"\r\n\"Directory Name\"=dword:00000001\r\n\r\n" + KeyOf(kAlice) +
                                         "\\Software\\Microsoft\\Outlook Express\\5.0]\r\n\"Store "
                                         "Root\"=hex(2):41,\\\r\n  42,00\r\n\"After\"=\"\"\r\n\r\n" +
                                         KeyOf(kAlice) + accounts};
  const RegText destination{"destination.reg", "REGEDIT4\r\n\r\n" + KeyOf(kBob) + "]\r\n\"Username\"=\"Bob\"\r\n\r\n" +
                                                   KeyOf(kBob) + "\\Software]\r\n\"Username\"=\"not this\"\r\n\r\n"};
  const CodePage codePage;
  const std::vector<OwnValue> own = ReadOwnValues(destination, codePage, kBob);
  EXPECT_EQ(RewriteIdentity(source, codePage, kAlice, kBob, own),
            "REGEDIT4\r\n\r\n" + KeyOf(kBob) + "]\r\n\"Username\"=\"Bob\"\r\n\"User ID\"=\"" + kBob + "\"\r\n\r\n" +
                KeyOf(kBob) + "\\Software\\Microsoft\\Outlook Express\\5.0]\r\n\"After\"=\"\"\r\n\r\n" + KeyOf(kBob) +
                accounts);
  EXPECT_THROW(RewriteIdentity(destination, codePage, kAlice, kBob, own), Error);
  EXPECT_THROW(ReadOwnValues({"cut.reg", source.bytes.substr(0, source.bytes.size() - 20)}, codePage, kAlice), Error);
}

TEST(CloneFiles, TheStoreRootFileEndsAsItsWindowsWantsIt) {
  const std::string folder = "%UserProfile%\\Outlook Express\\";
  const std::string file = StoreRootFile({kBob, folder}, false);
  EXPECT_THAT(file, HasSubstr("REGEDIT4\r\n \r\n" + KeyOf(kBob) +
                              "\\Software\\Microsoft\\Outlook Express\\5.0]\r\n\"Store Root\"=hex(2):25,55,73,65,"));
  EXPECT_TRUE(file.ends_with(",65,73,73,5C,")) << file;
  EXPECT_EQ(StoreRootFile({kBob, folder}, true), file + "\r\n \r\n");
}

}  // namespace
}  // namespace quillbox
