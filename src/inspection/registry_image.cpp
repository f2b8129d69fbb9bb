// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspection/registry_image.h"

#include <algorithm>
#include <utility>

#include "platform/status_text.h"
#include "regedit/export.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr const char* kDoing = "comparing registry keys";

class Recorder final : public RegFileVisitor {
 public:
  void OnKey(std::string_view fullName, std::size_t) override {
    const auto path = ParseRegistryPath(fullName);
    key_ = &image_.Add(path ? FullName(*path) : std::string(fullName));
  }
  void OnDeleteKey(std::string_view, std::size_t) override { image_.deletes = true; }
  void OnDeleteValue(std::string_view, std::size_t) override { image_.deletes = true; }
  void OnProblem(std::size_t, std::string_view) override {}
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t) override {
    size_ += data.size();
    if (size_ > kLargestImage) throw Error(kDoing, {}, "there is more data than can be compared");
    key_->values[UpperCase(name)] = {std::string(name), type, {data.begin(), data.end()}};
  }

  RegistryImage Take() { return std::move(image_); }

 private:
  RegistryImage image_;
  ImageKey* key_ = nullptr;  ///< values come below a key only
  std::uint64_t size_ = 0;
};

void Check(Status status, const RegistryPath& path) {
  if (status != Status::Success) throw Error(kDoing, {FullName(path), {}, {}}, KeyStatusReason(status));
}

void AddStored(Registry& registry, const RegistryPath& path, const std::string& name, RegistryImage& image) {
  const OpenResult opened = registry.Open(path, Access::Read);
  Check(opened.status, path);
  ImageKey& key = image.Add(name);
  for (std::uint32_t index = 0;; ++index) {
    const ValueResult value = registry.EnumStoredValue(opened.key, index);
    if (value.status == Status::NoMoreItems) break;
    Check(value.status, path);
    key.values[UpperCase(value.name)] = {value.name, static_cast<std::uint32_t>(value.type), value.data};
  }
  for (std::uint32_t index = 0;; ++index) {
    const NameResult subkey = registry.EnumKey(opened.key, index);
    if (subkey.status == Status::NoMoreItems) break;
    Check(subkey.status, path);
    AddStored(registry, path.Child(subkey.name), name.empty() ? subkey.name : name + "\\" + subkey.name, image);
  }
}

std::string QuotedValue(const ImageValue& value) {
  return value.name.empty() ? "the default value" : "the value \"" + ShortName(value.name) + "\"";
}

/// What differs in a key that both have; empty for nothing.
std::string DifferenceIn(const ImageKey& file, const ImageKey& disk) {
  for (const auto& [upper, value] : file.values) {
    const auto other = disk.values.find(upper);
    if (other == disk.values.end()) return QuotedValue(value) + " is not on the disk";
    if (other->second.type != value.type || other->second.data != value.data) return QuotedValue(value) + " differs";
  }
  for (const auto& [upper, value] : disk.values) {
    if (file.values.count(upper) == 0) return QuotedValue(value) + " is on the disk only";
  }
  return {};
}

}  // namespace

ImageKey& RegistryImage::Add(const std::string& name) {
  const std::string upper = UpperCase(name);
  const auto [at, isNew] = keys.try_emplace(upper);
  if (isNew) {
    at->second.name = name;
    order.push_back(upper);
    const bool isBelow = std::any_of(roots.begin(), roots.end(), [&](const std::string& root) {
      return root.empty() || upper.starts_with(root + "\\");
    });
    if (!isBelow) roots.push_back(upper);
  }
  return at->second;
}

bool RegistryImage::Has(const std::string& key) const {
  return keys.count(UpperCase(key)) > 0;
}

RegistryImage ImageOfText(ByteSource& source, const CodePage& page) {
  Recorder recorder;
  ReadRegFile(source, {}, page, recorder);
  return recorder.Take();
}

/// The text of the export is read with the reader that reads the file: what the text leaves out is left out of both.
RegistryImage ImageOfRegistry(Registry& registry, const RegistryImage& like, RegFileForm form, const CodePage& page) {
  Recorder recorder;
  for (const std::string& root : like.roots) {
    const auto path = ParseRegistryPath(like.keys.at(root).name);
    if (!path) throw Error(kDoing, {like.keys.at(root).name, {}, {}}, "it begins with no root key");
    if (registry.Open(*path, Access::Read).status == Status::FileNotFound) continue;
    std::string text;
    ExportKey(registry, *path, form, page, [&](std::string_view bytes) {
      if (text.size() + bytes.size() > kLargestImage) {
        throw Error(kDoing, {FullName(*path), {}, {}}, "there is more below it than can be compared");
      }
      text += bytes;
    });
    ReadRegFile(text, {}, page, recorder);
  }
  return recorder.Take();
}

RegistryImage ImageOfHive(const Hive& hive) {
  RegistryImage image;
  std::vector<std::pair<HiveKey, std::string>> open = {{hive.Root(), {}}};
  while (!open.empty()) {
    const auto [key, name] = std::move(open.back());
    open.pop_back();
    ImageKey& to = image.Add(name);
    for (std::size_t index = 0; index < hive.ValueCount(key); ++index) {
      HiveValue value = hive.ValueAt(key, index);
      to.values[UpperCase(value.name)] = {value.name, value.type, std::move(value.data)};
    }
    const std::vector<HiveKey> subkeys = hive.Subkeys(key);
    for (auto subkey = subkeys.rbegin(); subkey != subkeys.rend(); ++subkey) {
      open.emplace_back(*subkey, name.empty() ? hive.Name(*subkey) : name + "\\" + hive.Name(*subkey));
    }
  }
  return image;
}

std::optional<RegistryImage> ImageOfKey(Registry& registry, const RegistryPath& path) {
  if (registry.Open(path, Access::Read).status == Status::FileNotFound) return std::nullopt;
  RegistryImage image;
  AddStored(registry, path, {}, image);
  return image;
}

ImageDifference DifferenceOf(const RegistryImage& file, const RegistryImage& disk) {
  ImageDifference difference;
  const auto add = [&](const ImageKey& key, const std::string& what) {
    if (++difference.keys > 1) return;
    difference.first = "[" + (key.name.empty() ? std::string("the key itself") : ShortName(key.name)) + "] " + what;
  };
  for (const std::string& upper : file.order) {
    const ImageKey& key = file.keys.at(upper);
    const auto other = disk.keys.find(upper);
    if (other == disk.keys.end()) {
      add(key, "is not on the disk");
    } else if (const std::string what = DifferenceIn(key, other->second); !what.empty()) {
      add(key, what);
    }
  }
  for (const std::string& upper : disk.order) {
    if (file.keys.count(upper) == 0) add(disk.keys.at(upper), "is on the disk only");
  }
  return difference;
}

}  // namespace quillbox
