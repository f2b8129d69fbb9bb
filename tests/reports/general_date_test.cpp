#include "reports/general_date.h"

#include <iomanip>
#include <sstream>

#include "support/sample_platform.h"

namespace quillbox {
namespace {

std::tm At(const std::string& time) {
  std::tm when = {};
  std::istringstream("2004-03-07 " + time) >> std::get_time(&when, "%Y-%m-%d %H:%M:%S");
  return when;
}

TEST(GeneralDateTest, PicturesAreFilled) {
  const DateStyle us;
  EXPECT_EQ(FormatGeneralDate(At("00:05:09"), us), "3/7/2004 12:05:09 AM");
  EXPECT_EQ(FormatGeneralDate(At("12:00:00"), us), "3/7/2004 12:00:00 PM");
  EXPECT_EQ(FormatGeneralDate(At("23:59:59"), us), "3/7/2004 11:59:59 PM");
  const DateStyle german = {.shortDate = "dd/MM/yy", .time = "HH:mm:ss", .dateSeparator = ".", .timeSeparator = ":"};
  EXPECT_EQ(FormatGeneralDate(At("09:05:09"), german), "07.03.04 09:05:09");
  const DateStyle words = {.shortDate = "dddd, d 'de' MMM yyyy 'open", .time = "t h H", .morning = "Ä1"};
  EXPECT_EQ(FormatGeneralDate(At("01:00:00"), words), "Sunday, 7 de Mar 2004 open Ä 1 1");
}

using GeneralDateOnDisk = SamplePlatform;

TEST_F(GeneralDateOnDisk, ThePersonsStyleIsUsed) {
  const Key key = store->CreateKey(CurrentUser("Control Panel\\International"));
  store->SetValueEx(key, "sShortDate", ValueType::Sz, "yyyy-MM-dd");
  store->SetValueEx(key, "sTimeFormat", ValueType::Sz, "");
  store->SetValueEx(key, "sTime", ValueType::Dword, 7);
  const DateStyle style = ReadDateStyle(*store);
  EXPECT_EQ(FormatGeneralDate(At("15:04:05"), style), "2004-03-07 3:04:05 PM");
}

}  // namespace
}  // namespace quillbox
