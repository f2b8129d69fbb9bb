#include "platform/offline/environment.h"

#include <gtest/gtest.h>

namespace quillbox {
namespace {

TEST(Environment, ExpandsOnceAndLeavesTheUnknownAsItReads) {
  Environment environment;
  environment.Set("UserProfile", "C:\\Documents and Settings\\Anna");
  environment.Set("Empty", "");
  environment.Set("Loop", "%Loop%%UserProfile%");
  const struct {
    const char *text, *expanded;
  } rows[] = {{"%USERPROFILE%\\x", "C:\\Documents and Settings\\Anna\\x"},
              {"<%empty%>", "<>"},
              {"%unknown%", "%unknown%"},
              {"100% %Empty%%", "100% %"},
              {"50%%UserProfile%", "50%C:\\Documents and Settings\\Anna"},
              {"%no%USERPROFILE%", "%noC:\\Documents and Settings\\Anna"},
              {"%loop%", "%Loop%%UserProfile%"},
              {"%%", "%%"},
              {"", ""}};
  for (const auto& row : rows) EXPECT_EQ(environment.Expand(row.text), row.expanded) << row.text;
}

TEST(Environment, ValuesThatGrowWithoutBoundStayAsTheyRead) {
  Environment environment;
  environment.Set("A", std::string(30'000, 'x'));
  EXPECT_EQ(environment.Expand("%A%%A%"), "%A%%A%");
  std::string many;
  for (int i = 0; i < 100'000; ++i) many += "%A%";
  EXPECT_EQ(environment.Expand(many), many);
}

}  // namespace
}  // namespace quillbox
