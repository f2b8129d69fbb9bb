// Picks every item of every setting of a window, checks with another program what is then on the disk, and has the
// window read it again.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <span>
#include <string>

#include "settings/setting.h"
#include "ui/form.h"

namespace quillbox {

/// Values by "KEY|NAME" in lower case, their data as a .reg file has them ("dword:0000002a"). Empty without that
/// program.
using ExportedValues = std::map<std::string, std::string>;

inline std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

inline bool CanExportHives() {
  return std::system("command -v hivexregedit >/dev/null") == 0;
}

/// The values of `key` ("\\Identities") and of all keys below it.
inline ExportedValues ExportHive(const std::filesystem::path& hive, const std::string& key) {
  const std::string out = hive.string() + ".exported";
  const std::string command = "hivexregedit --export '" + hive.string() + "' '" + key + "' >'" + out + "'";
  EXPECT_EQ(std::system(command.c_str()), 0);
  ExportedValues values;
  std::ifstream in(out);
  std::string section;
  for (std::string line; std::getline(in, line);) {
    const std::size_t end = line.find("\"=");
    if (line.starts_with("[")) section = line.substr(1, line.size() - 2);
    if (line.starts_with("\"") && end != std::string::npos) {
      values[LowerCase(section + "|" + line.substr(1, end - 1))] = line.substr(end + 2);
    }
  }
  std::filesystem::remove(out);
  return values;
}

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
