// Picks every item of every setting of a window, checks with another program what is then on the disk, and has the
// window read it again.
#pragma once

#include <cstdio>
#include <functional>
#include <span>

#include "settings/setting.h"
#include "support/exported_hive.h"
#include "ui/form.h"

namespace quillbox {

struct SettingsWalk {
  Form& form;
  std::span<const SettingsTab* const> tabs;
  std::function<std::string(SettingKey)> keyInHive;  ///< where ExportHive finds the settings' keys
  std::function<ExportedValues()> readDisk;
  std::function<void()> reload;
  std::map<std::string, std::string> shownOtherwise;  ///< "control item": what is shown after a reload instead

  /// The number of picks that were made.
  std::size_t Run() const {
    std::size_t all = 0;
    for (std::size_t item = 0, before = 1; all != before; ++item) {
      before = all;
      all += PickEverywhere(item);
    }
    return all;
  }

 private:
  static std::string WrittenData(const Setting& setting, const std::string& item) {
    const auto& choices = setting.written.choices.empty() ? setting.shown.choices : setting.written.choices;
    for (const Choice& choice : choices) {
      if (choice.text != item && choice.text != kAnyOther) continue;
      char data[32];
      std::snprintf(data, sizeof data, "dword:%08x", static_cast<unsigned>(choice.number));
      return data;
    }
    return "no choice " + item;
  }

  std::size_t PickEverywhere(std::size_t item) const {
    std::map<std::string, std::string> data;
    std::map<std::string, std::string> shown;
    for (const SettingsTab* tab : tabs) {
      for (const Setting& setting : tab->rows) {
        const std::string name(setting.control);
        if (!setting.IsComboBox() || item >= form.Named<ComboBox>(name).items->size()) continue;
        auto& combo = form.Named<ComboBox>(name);
        combo.enabled = true;  // what disables one is another test's matter
        combo.pick(item);
        const std::string picked = combo.text;
        data[LowerCase(keyInHive(setting.key) + "|" + std::string(setting.value))] = WrittenData(setting, picked);
        const auto other = shownOtherwise.find(name + " " + picked);
        shown[name] = other == shownOtherwise.end() ? picked : other->second;
      }
    }
    const ExportedValues stored = readDisk();
    for (const auto& [value, wanted] : data) EXPECT_EQ(stored.count(value) ? stored.at(value) : "", wanted) << value;
    reload();
    for (const auto& [name, text] : shown) EXPECT_EQ(form.Named<ComboBox>(name).text, text) << name;
    return shown.size();
  }
};

}  // namespace quillbox
