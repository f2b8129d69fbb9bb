// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "support/every_control_form.h"
#include "support/form_platform.h"

namespace quillbox {
namespace {

struct ControlsTest : testing::Test {
  /// Acts once on every control that runs a handler.
  void ActOnAll() {
    form.picker.pick("three");
    form.box.type("x");
    form.check.click();
    form.cmdOk.click();
    form.list.pick(0);
    form.list.open(1);
    form.first.click();
  }
  std::string TakeActs() { return std::exchange(form.acts, ""); }

  FormPlatform platform;
  HandlerGuard guard{platform};
  EveryControlForm form{guard};
};

TEST_F(ControlsTest, OnlyActsRunHandlersAndOnlyWhereAControlIsOn) {
  form.picker.text = "two";
  form.picker.items = {"three"};
  form.box.text = "D:\\";
  form.check.checked = true;
  form.list.selected = 2;
  EXPECT_EQ(TakeActs(), "");
  ActOnAll();
  EXPECT_EQ(TakeActs(), "picker=three#0 box=x unchecked ok list=0 open=1 first ");
  EXPECT_EQ(platform.commandsEnded, 7) << "each act is a command of its own";

  for (Control* control : form.Controls()) control->enabled = false;
  ActOnAll();
  form.several.choose({0});
  EXPECT_TRUE(form.several.selected->empty());
  form.box.enabled = true;
  form.box.readOnly = true;
  form.box.type("y");
  EXPECT_EQ(TakeActs() + form.box.text.Get(), "x");
}

TEST_F(ControlsTest, PickerKnowsWhichOfEqualItemsWasPicked) {
  EXPECT_EQ(form.picker.Index(), std::nullopt) << "its text is none of its items";
  form.picker.pick(2);
  EXPECT_EQ(form.picker.Index(), 2U);
  form.picker.Add("four");
  EXPECT_EQ(form.picker.Index(), 1U) << "other items: the first with the text";
  EXPECT_THROW(form.picker.pick("five"), std::invalid_argument);
  form.picker.Clear();
  EXPECT_EQ(form.picker.Index(), std::nullopt);
  form.picker.type("typed");
  EXPECT_EQ(form.picker.text.Get(), "") << "a picker takes no typing";
  form.typed.type("*.x");
  EXPECT_EQ(form.typed.text.Get(), "*.x");
}

TEST_F(ControlsTest, SelectionEndsWithTheTextOrTheItems) {
  form.box.SelectAll();
  EXPECT_TRUE(form.box.allSelected);
  form.box.text = "other";
  EXPECT_FALSE(form.box.allSelected);
  form.list.selected = 2;
  form.list.items = {"a"};
  form.list.pick(1);
  EXPECT_EQ(form.list.selected, std::nullopt) << "a line that is not there";
  form.several.choose({0, 1});
  form.several.choose({1, 3});
  EXPECT_THAT(form.several.selected.Get(), testing::ElementsAre(0, 1));
  form.several.items = {"a"};
  EXPECT_TRUE(form.several.selected->empty());
  form.first.click();
  EXPECT_TRUE(form.first.IsChosen() && !form.second.IsChosen());
  form.options.Choose(nullptr);
  EXPECT_FALSE(form.first.IsChosen());
}

TEST_F(ControlsTest, RendererHearsOfChangesAndOnlyOfThose) {
  int heard = 0;
  for (Control* control : form.Controls()) control->onChanged = [&] { ++heard; };
  form.onChanged = [&] { ++heard; };
  form.value.caption = form.value.caption.Get();
  EXPECT_EQ(heard, 0);
  form.value.colour = Colour::Red;
  form.bar.panels[1] = "x";
  form.pointer = Pointer::Hourglass;
  form.check.tooltip = "y";
  EXPECT_EQ(heard, 4);
}

TEST_F(ControlsTest, FailuresAreLoggedAndTheCommandEndsOnce) {
  form.cmdOk.onClick = [this] {
    form.cmdInner.click();
    EXPECT_EQ(platform.commandsEnded, 0) << "a handler inside another is one command with it";
    throw std::runtime_error("the folder is gone");
  };
  form.cmdOk.click();
  EXPECT_EQ(TakeActs(), "inner ");
  EXPECT_THAT(platform.log.lines, testing::ElementsAre("EveryControl.cmdOk_Click ended early: the folder is gone"));
  EXPECT_EQ(platform.commandsEnded, 1);
  platform.onEndCommand = [] { throw std::runtime_error("the disk is full"); };
  form.cmdInner.click();
  EXPECT_THAT(platform.dialogs.LastMessage(), testing::HasSubstr("the disk is full"));
  EXPECT_EQ(platform.log.lines.size(), 2U);
}

TEST_F(ControlsTest, ClosingPressesTheCancelButtonAndMenusRunTheirItems) {
  form.Show();
  form.close();
  EXPECT_FALSE(form.visible);
  form.Show();
  form.cmdClose.enabled = false;
  form.close();
  EXPECT_TRUE(form.visible) << "the button is off";
  form.cmdClose.isCancel = false;
  form.escape();
  EXPECT_TRUE(form.visible) << "Esc does nothing in a window without a cancel button";
  form.menuBar.click("SaveAs");
  form.menuBar.click("SaveAsHTML");
  EXPECT_EQ(TakeActs(), "SaveAs ") << "the other item is off";
  EXPECT_THROW(form.menuBar.click("Missing"), std::invalid_argument);
}

}  // namespace
}  // namespace quillbox
