// SPDX-License-Identifier: GPL-3.0-or-later
// Walks every setting of a window as its golden text has it: the texts around it, what each item stores, what each
// stored number shows, what a missing value shows, what typed numbers do.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/registry_store.h"
#include "support/golden_looks.h"
#include "support/matchers.h"
#include "support/scripted_dialogs.h"
#include "ui/form.h"
#include "ui/tab_control.h"

namespace quillbox {

struct SettingsWalk {
  Form& form;
  Platform& platform;
  RegistryStore& store;
  ScriptedDialogs& dialogs;
  std::string userId;            ///< the identity that the window shows
  std::function<void()> reload;  ///< has the window read everything again
  std::map<std::string, GoldenLine> keys = {};

  struct Block : GoldenLine {
    std::string tab;
    bool IsSetting() const { return words[0] == "combo" || words[0] == "box"; }
  };

  /// Every control of the window is in the golden text, on its tab, and looks as it says.
  void CheckTexts() {
    std::set<std::string> names;
    std::vector<std::string> captions;
    for (const Block& block : Blocks()) {
      SCOPED_TRACE(block.Place());
      auto& control = form.Named<Control>(block[1]);
      EXPECT_TRUE(names.insert(block[1]).second) << "twice";
      if (!block.tab.empty() && (captions.empty() || captions.back() != block.tab)) captions.push_back(block.tab);
      if (!block.tab.empty()) {
        EXPECT_EQ(PageOf(control), captions.size() - 1);
      }
      if (block[0] == "label" || block[0] == "button") ExpectLook(control, block);
      if (!block.IsSetting()) continue;
      // The label right before a control says what the control is for.
      const auto& all = form.Controls();
      Control& label = **std::prev(std::find(all.begin(), all.end(), &control));
      EXPECT_EQ(LookOf(label), "label " + block[2]);
      EXPECT_EQ(label.tooltip, block.Fact("tip")[1]);
      const std::string name = block.Fact("named")[1];
      EXPECT_TRUE(name.empty() || label.Name() == name) << label.Name();
      names.insert(label.Name());
      EXPECT_EQ(control.tooltip, block.Fact("boxtip")[1]);
      if (block[0] == "box") {
        EXPECT_EQ(Box(block).readOnly, !block.Fact("readonly").words.empty());
      }
      const GoldenLine button = block.Fact("button");
      if (button.words.empty()) continue;
      ExpectLook(form.Named<Control>(button[1]), button);
      names.insert(button[1]);
    }
    for (const Control* control : form.Controls()) EXPECT_EQ(names.count(control->Name()), 1U) << control->Name();
    if (!captions.empty()) {
      EXPECT_EQ(form.Named<TabControl>("SSTab1").Tabs(), captions);
    }
  }

  /// Acts on each setting and looks at the registry, then the other way round.
  void CheckValues() {
    for (const Block& block : Blocks()) {
      if (!block.IsSetting()) continue;
      std::vector<std::string> items;
      for (const GoldenLine& fact : block.facts) {
        SCOPED_TRACE(block.Place() + ", line " + std::to_string(fact.number) + " " + fact[1]);
        if (fact[0] == "item" || fact[0] == "pick") Pick(block, fact, items.size());
        if (fact[0] == "item") Show(block, fact[2], fact[1]);
        if (fact[0] == "item" || fact[0] == "pick") items.push_back(fact[1]);
        if (fact[0] == "show") Show(block, fact[1], fact[2]);
        if (fact[0] == "enter" || fact[0] == "refuse") Enter(block, fact);
        if (fact[0] == "missing") ShowMissing(block, fact[1], "none");
        if (fact[0] == "makes") ShowMissing(block, fact[2], block[5] + " " + block[4] + " " + fact[1]);
      }
      if (block[0] == "combo") {
        EXPECT_EQ(form.Named<ComboBox>(block[1]).items, items) << block.Place();
      }
    }
  }

  /// The settings of the named key, as "control: what it shows".
  std::vector<std::pair<std::string, std::string>> ShownWithoutKey(const std::string& key) {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const Block& block : Blocks()) {
      if (block.IsSetting() && block[3] == key) texts.emplace_back(block[1], block.Fact("nokey")[1]);
    }
    return texts;
  }

  std::string Text(const std::string& control) {
    const std::string look = LookOf(form.Named<Control>(control));
    return look.substr(look.find(' ') + 1);
  }

 private:
  std::vector<Block> Blocks() {
    std::map<std::string, std::vector<GoldenLine>> lists;
    std::vector<Block> blocks;
    std::string window, tab;
    for (const GoldenLine& line : ReadGolden("ui/forms/settings_golden.txt")) {
      if (line[0] == "list") lists[line[1]] = line.facts;
      if (line[0] == "key") keys[line[1]] = line;
      if (line[0] == "tab") tab = line[1];
      if (line[0] == "window") {
        window = line[1];
        tab.clear();
        if (window == form.Name()) {
          EXPECT_EQ(form.caption, line[2]);
        }
      } else if (line[0] != "tab" && window == form.Name()) {
        blocks.push_back({line, tab});
        const auto& shared = lists[line.Fact("items")[1]];
        auto& facts = blocks.back().facts;
        facts.insert(facts.begin(), shared.begin(), shared.end());
      }
    }
    return blocks;
  }

  TextBox& Box(const Block& block) { return form.Named<TextBox>(block[1]); }

  /// The number of the tab that a control is on.
  std::size_t PageOf(const Control& control) {
    const std::function<bool(const LayoutNode&)> has = [&](const LayoutNode& node) {
      return node.control == &control || std::any_of(node.children.begin(), node.children.end(), has);
    };
    const LayoutNode layout = form.Layout();
    const auto tabs = std::find_if(layout.children.begin(), layout.children.end(),
                                   [](const LayoutNode& node) { return node.kind == LayoutNode::Kind::Tabs; });
    return static_cast<std::size_t>(std::find_if(tabs->children.begin(), tabs->children.end(), has) -
                                    tabs->children.begin());
  }

  RegistryPath PathOf(const Block& block) {
    const GoldenLine& key = keys.at(block[3]);
    std::string path = key[3];
    if (const std::size_t at = path.find("{USER_ID}"); at != std::string::npos) path.replace(at, 9, userId);
    return {key[2] == "HKLM" ? RegistryRoot::LocalMachine : RegistryRoot::CurrentUser, path};
  }

  /// "Launch Inbox dword 1" as the registry has it, the name in the case that it was written in; "none" without it.
  std::string Stored(const Block& block) {
    const OpenResult opened = platform.GetRegistry().Open(PathOf(block), Access::Read);
    for (std::uint32_t i = 0;; ++i) {
      const ValueResult value = platform.GetRegistry().EnumValue(opened.key, i);
      if (value.status != Status::Success) return "none";
      if (strcasecmp(value.name.c_str(), block[5].c_str()) != 0) continue;
      if (value.type == ValueType::Sz && value.data.back() == 0) {
        return value.name + " text " + std::string(value.data.begin(), value.data.end() - 1);
      }
      if (value.type != ValueType::Dword || value.data.size() != 4) return value.name + " of another type";
      std::uint32_t number = 0;
      for (std::size_t byte = 4; byte-- > 0;) number = number << 8 | value.data[byte];
      return value.name + " dword " + std::to_string(static_cast<std::int32_t>(number));
    }
  }
  void Remove(const Block& block) { platform.GetRegistry().DeleteValue(store.OpenKey(PathOf(block)).key, block[5]); }
  std::string Written(const Block& block, const std::string& data) {
    const std::string otherCase = block.Fact("writes")[1];
    return (otherCase.empty() ? block[5] : otherCase) + " " + block[4] + " " + data;
  }

  void Pick(const Block& block, const GoldenLine& fact, std::size_t index) {
    auto& combo = form.Named<ComboBox>(block[1]);
    ASSERT_LT(index, combo.items->size());
    EXPECT_EQ(combo.items->at(index), fact[1]);
    Remove(block);
    combo.enabled = true;  // what disables one is another test's matter
    combo.pick(index);
    EXPECT_EQ(Stored(block), Written(block, fact[2]));
  }
  void Show(const Block& block, const std::string& stored, const std::string& text) {
    const RegistryPath path = PathOf(block);
    const bool isText = block[4] == "text";
    const RegValue value = isText ? RegValue(stored) : RegValue(std::stoi(stored));
    const auto set =
        path.root == RegistryRoot::LocalMachine ? &RegistryStore::SetKeyValue2 : &RegistryStore::SetKeyValue;
    (store.*set)(path.subkey, block[5], value, isText ? ValueType::Sz : ValueType::Dword);
    const std::string before = Stored(block);
    reload();
    EXPECT_EQ(Text(block[1]), text);
    EXPECT_EQ(Stored(block), before) << "showing must not write";
  }
  void ShowMissing(const Block& block, const std::string& text, const std::string& storedThen) {
    if (!block[3].empty()) Remove(block);
    reload();
    EXPECT_EQ(Text(block[1]), text);
    if (!block[3].empty()) {
      EXPECT_EQ(Stored(block), storedThen);
    }
  }
  void Enter(const Block& block, const GoldenLine& fact) {
    const bool isRefused = fact[0] == "refuse";
    Remove(block);
    dialogs.messages.clear();
    Box(block).type(fact[1]);
    form.Named<Button>(block.Fact("button")[1]).click();
    EXPECT_EQ(Text(block[1]), isRefused ? fact[1] : fact[3]);
    EXPECT_EQ(Stored(block), isRefused ? "none" : Written(block, fact[2]));
    EXPECT_EQ(dialogs.LastMessage(), isRefused ? fact[2] : fact[4]);
    EXPECT_LE(dialogs.messages.size(), 1U);
    if (!isRefused) return;
    dialogs.messageAnswers = {MessageAnswer::No};  // the window asks what to do with what is typed
    reload();
    EXPECT_EQ(dialogs.messages.size(), 2U);
  }
};

}  // namespace quillbox
