// SPDX-License-Identifier: GPL-3.0-or-later
#include "regedit/export.h"

#include <utility>
#include <vector>

#include "platform/status_text.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{256} << 10;

struct Level {
  RegistryPath path;
  Key key;
  std::uint32_t nextSubkey = 0;
};

void Check(Status status, const RegistryPath& path) {
  if (status != Status::Success) throw Error("exporting a key", {FullName(path), {}, {}}, KeyStatusReason(status));
}

class Exporter {
 public:
  Exporter(Registry& registry, RegFileForm form, const CodePage& codePage, const TakeBytes& write)
      : registry_(registry), write_(write), writer_(form, codePage) {
    result_.form = form;
  }

  ExportedKeys Run(const RegistryPath& path) {
    Enter(path, registry_.Open(path, Access::Read));
    while (!levels_.empty()) {
      Level& level = levels_.back();
      const NameResult next = registry_.EnumKey(level.key, level.nextSubkey++);
      if (next.status == Status::NoMoreItems) {
        levels_.pop_back();
      } else {
        Check(next.status, level.path);
        Enter(level.path.Child(next.name), registry_.OpenSubkey(level.key, next.name, Access::Read));
      }
    }
    write_(writer_.Finish());
    result_.firstLoss = writer_.FirstLoss();
    return std::move(result_);
  }

 private:
  void Enter(const RegistryPath& path, OpenResult opened) {
    Check(opened.status, path);
    writer_.Key(FullName(path));
    ++result_.keys;
    for (std::uint32_t index = 0;; ++index) {
      const ValueResult value = registry_.EnumStoredValue(opened.key, index);
      if (value.status == Status::NoMoreItems) break;
      Check(value.status, path);
      writer_.Value(value.name, static_cast<std::uint32_t>(value.type), value.data);
      ++result_.values;
      if (writer_.Pending() >= kPieceBytes) write_(writer_.Take());
    }
    if (writer_.Pending() >= kPieceBytes) write_(writer_.Take());
    levels_.push_back({path, std::move(opened.key)});
  }

  Registry& registry_;
  const TakeBytes& write_;
  RegFileWriter writer_;
  std::vector<Level> levels_;
  ExportedKeys result_;
};

}  // namespace

ExportedKeys ExportKey(Registry& registry, const RegistryPath& path, RegFileForm form, const CodePage& codePage,
                       const TakeBytes& write) {
  std::string firstLoss;
  if (form == RegFileForm::Regedit4) {
    const TakeBytes drop = [](std::string_view) {};
    firstLoss = Exporter(registry, form, codePage, drop).Run(path).firstLoss;
    if (!firstLoss.empty()) form = RegFileForm::Unicode5;
  }
  ExportedKeys result = Exporter(registry, form, codePage, write).Run(path);
  result.firstLoss = std::move(firstLoss);
  return result;
}

}  // namespace quillbox
