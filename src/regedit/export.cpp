#include "regedit/export.h"

#include <utility>
#include <vector>

#include "regedit/outcome.h"
#include "text/error.h"

namespace quillbox {
namespace {

struct Level {
  RegistryPath path;
  Key key;
  std::uint32_t nextSubkey = 0;
};

void Check(Status status, const RegistryPath& path) {
  if (status != Status::Success) throw Error("exporting a key", {FullName(path), {}, {}}, ReasonOf(status));
}

class Exporter {
 public:
  Exporter(Registry& registry, RegFileForm form, const CodePage& codePage)
      : registry_(registry), writer_(form, codePage) {
    result_.form = form;
  }

  ExportResult Run(const RegistryPath& path) {
    Enter(path);
    while (!levels_.empty()) {
      Level& level = levels_.back();
      const NameResult next = registry_.EnumKey(level.key, level.nextSubkey++);
      if (next.status == Status::NoMoreItems) {
        levels_.pop_back();
      } else {
        Check(next.status, level.path);
        Enter(level.path.Child(next.name));
      }
    }
    result_.bytes = writer_.Finish();
    result_.firstLoss = writer_.FirstLoss();
    return std::move(result_);
  }

 private:
  void Enter(const RegistryPath& path) {
    OpenResult opened = registry_.Open(path, Access::Read);
    Check(opened.status, path);
    writer_.Key(FullName(path));
    ++result_.keys;
    for (std::uint32_t index = 0;; ++index) {
      const ValueResult value = registry_.EnumStoredValue(opened.key, index);
      if (value.status == Status::NoMoreItems) break;
      Check(value.status, path);
      writer_.Value(value.name, static_cast<std::uint32_t>(value.type), value.data);
      ++result_.values;
    }
    levels_.push_back({path, std::move(opened.key)});
  }

  Registry& registry_;
  RegFileWriter writer_;
  std::vector<Level> levels_;
  ExportResult result_;
};

}  // namespace

ExportResult ExportKey(Registry& registry, const RegistryPath& path, RegFileForm form, const CodePage& codePage) {
  ExportResult result = Exporter(registry, form, codePage).Run(path);
  if (result.firstLoss.empty()) return result;
  std::string firstLoss = std::move(result.firstLoss);
  result = Exporter(registry, RegFileForm::Unicode5, codePage).Run(path);
  result.firstLoss = std::move(firstLoss);
  return result;
}

}  // namespace quillbox
