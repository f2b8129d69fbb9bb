// SPDX-License-Identifier: GPL-3.0-or-later
#include "registry/hive.h"

#include <stdexcept>
#include <utility>

#include "registry/creg.h"
#include "registry/hive_data.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {

struct Hive::State : HiveData {};

namespace {

/// Calls `use` with each name of a path.
template <typename Use>
void ForEachName(std::string_view path, Use use) {
  while (!path.empty()) {
    const std::size_t end = path.find('\\');
    use(path.substr(0, end));
    path = end == std::string_view::npos ? std::string_view() : path.substr(end + 1);
  }
}

/// The cell of a key that the caller names.
KeyCell CellOf(const HiveData& hive, HiveKey key) {
  const KeyCell cell(key.cell);
  if (!hive.cells.IsUsed(cell) || hive.cells.Room(cell) < KeyField::kName || hive.cells.Tag(cell) != kKeyTag) {
    throw HiveRefusal(HiveLimit::Deleted, "using a registry key", {.name = hive.name, .offset = {}, .line = {}},
                      "the key has been deleted");
  }
  return cell;
}

HiveKey HandleOf(KeyCell key) {
  return {key.offset};
}

HiveValue ReadValue(const HiveData& hive, ValueCell value) {
  return {NameText(ValueName(hive, value)), hive.cells.Get(value, ValueField::kType), ValueData(hive, value)};
}

void Touch(HiveData& hive, KeyCell key) {
  hive.cells.Put(key, KeyField::kTime, hive.now);
  hive.changed = true;
}

void RequireKeyName(const HiveData& hive, KeyCell parent, const NewName& name) {
  const char* doing = "creating a registry key";
  if (name.units.empty()) ThrowRefusal(hive, parent, HiveLimit::Name, doing, "the new key's name is empty");
  if (name.units.size() > Hive::kMaxNameUnits) {
    ThrowRefusal(hive, parent, HiveLimit::Name, doing,
                 "the new key's name is " + std::to_string(name.units.size()) +
                     " characters long; a key's name has no more than " + std::to_string(Hive::kMaxNameUnits));
  }
  if (name.units.find(u'\\') != std::u16string::npos) {
    ThrowRefusal(hive, parent, HiveLimit::Name, doing, "the new key's name holds a backslash");
  }
}

void RequireNewKey(const HiveData& hive, KeyCell parent, const NewName& name, std::size_t depth) {
  const char* doing = "creating a registry key";
  RequireKeyName(hive, parent, name);
  if (depth > Hive::kMaxDepth) {
    ThrowRefusal(hive, parent, HiveLimit::Depth, doing,
                 "keys can be nested " + std::to_string(Hive::kMaxDepth) + " levels deep and no deeper");
  }
  if (!CanTakeSubkey(hive, parent))
    ThrowRefusal(hive, parent, HiveLimit::Subkeys, doing, "the key's list of subkeys is full");
}

KeyCell AddSubkey(HiveData& hive, KeyCell parent, const NewName& name) {
  const KeyCell key = MakeKey(hive, parent, name, hive.cells.Get(parent, KeyField::kSecurity));
  InsertSubkey(hive, key);
  Touch(hive, parent);
  return key;
}

/// A base block alone, of a hive of version 1.3.
Bytes NewBase(std::string_view name) {
  Bytes file(kHivePage);
  const auto put = [&](std::size_t field, std::uint32_t number) { Store32(file.data() + field, number); };
  put(BaseField::kTag, kHiveTag);
  put(BaseField::kSequence1, 1);
  put(BaseField::kSequence2, 1);
  put(BaseField::kMajor, 1);
  put(BaseField::kMinor, 3);
  put(BaseField::kFormat, 1);
  put(BaseField::kCluster, 1);
  const std::u16string units = ToUtf16(name).substr(0, BaseField::kNameUnits - 1);
  for (std::size_t at = 0; at < units.size(); ++at) Store16(file.data() + BaseField::kName + 2 * at, units[at]);
  return file;
}

}  // namespace

void MakeEmptyHive(HiveData& hive, std::string_view rootName) {
  hive.cells = HiveCells(NewBase(rootName));
  const NewName name(rootName.empty() ? "Root" : rootName);
  hive.root = MakeKey(hive, KeyCell(), name, SecurityCell());
  RequireKeyName(hive, hive.root, name);
  hive.cells.Put(hive.root, KeyField::kSecurity, AddSecurity(hive, DefaultDescriptor()));
  const unsigned flags = hive.cells.Get(hive.root, KeyField::kFlags) | KeyFlag::kRoot | KeyFlag::kNoDelete;
  hive.cells.Put(hive.root, KeyField::kFlags, static_cast<std::uint16_t>(flags));
  Store32(hive.cells.Base() + BaseField::kRoot, hive.root.offset);
}

Hive::Hive(std::unique_ptr<State> state) : state_(std::move(state)) {}
Hive::Hive(Hive&&) noexcept = default;
Hive& Hive::operator=(Hive&&) noexcept = default;
Hive::~Hive() = default;

Hive Hive::Create(std::string_view rootName, FileTime now) {
  auto state = std::make_unique<State>();
  state->name = rootName;
  state->now = now;
  MakeEmptyHive(*state, rootName);
  Hive made(std::move(state));
  made.Image(now);
  return made;
}

Hive Hive::Load(Bytes file, std::string name, const ReadHiveLogs& readLogs, DamagedParts damaged) {
  auto state = std::make_unique<State>();
  state->name = std::move(name);
  LoadHive(*state, std::move(file), readLogs, damaged);
  return Hive(std::move(state));
}

Hive Hive::LoadCreg(ByteView file, std::string name, const CodePage& codePage, DamagedParts damaged) {
  auto state = std::make_unique<State>();
  state->name = std::move(name);
  ReadCreg(*state, file, codePage, damaged);
  return Hive(std::move(state));
}

HiveOrigin Hive::Origin() const {
  return state_->origin;
}
const std::vector<std::string>& Hive::AppliedLogs() const {
  return state_->appliedLogs;
}
const std::vector<UnusedHiveLog>& Hive::UnusedLogs() const {
  return state_->unusedLogs;
}
const std::vector<HiveDamage>& Hive::Damage() const {
  return state_->damage;
}
std::uint64_t Hive::DamageCount() const {
  return state_->damageCount;
}

Bytes Hive::Image(FileTime now) {
  std::uint8_t* base = state_->cells.Base();
  const std::uint32_t sequence = Load32(base + BaseField::kSequence1) + 1;
  Store32(base + BaseField::kSequence1, sequence);
  Store32(base + BaseField::kSequence2, sequence);
  Store64(base + BaseField::kTime, now);
  Store64(base + kHivePage + BinField::kTime, now);
  Store32(base + BaseField::kChecksum, BaseChecksum(base));
  state_->changed = false;
  return state_->cells.File();
}

bool Hive::Changed() const {
  return state_->changed;
}
void Hive::SetTime(FileTime now) {
  state_->now = now;
}
HiveKey Hive::Root() const {
  return HandleOf(state_->root);
}

std::optional<HiveKey> Hive::Find(HiveKey from, std::string_view path) const {
  std::optional<KeyCell> key = CellOf(*state_, from);
  ForEachName(path, [&](std::string_view name) {
    if (key) key = FindSubkey(*state_, *key, NewName(name).upper);
  });
  if (!key) return std::nullopt;
  return HandleOf(*key);
}

HiveKey Hive::SubkeyAt(HiveKey key, std::size_t index) const {
  if (index >= SubkeyCount(key)) throw std::out_of_range("no such subkey");
  return HandleOf(SubkeyOf(*state_, KeyCell(key.cell), index));
}

std::size_t Hive::SubkeyCount(HiveKey key) const {
  return state_->cells.Get(CellOf(*state_, key), KeyField::kSubkeyCount);
}

std::vector<HiveKey> Hive::Subkeys(HiveKey key) const {
  std::vector<HiveKey> subkeys;
  for (const KeyCell cell : SubkeyCells(*state_, CellOf(*state_, key))) subkeys.push_back(HandleOf(cell));
  return subkeys;
}

std::optional<HiveKey> Hive::Parent(HiveKey key) const {
  const KeyCell cell = CellOf(*state_, key);
  if (cell == state_->root) return std::nullopt;
  return HandleOf(state_->cells.Get(cell, KeyField::kParent));
}

std::string Hive::Name(HiveKey key) const {
  return NameText(KeyName(*state_, CellOf(*state_, key)));
}
FileTime Hive::Time(HiveKey key) const {
  return state_->cells.Get(CellOf(*state_, key), KeyField::kTime);
}

std::string Hive::ClassName(HiveKey key) const {
  return ToUtf8(Utf16FromBytes(KeyClass(*state_, CellOf(*state_, key))));
}

Bytes Hive::Security(HiveKey key) const {
  const SecurityCell security = state_->cells.Get(CellOf(*state_, key), KeyField::kSecurity);
  if (security.IsNone()) return {};
  const ByteView descriptor = Descriptor(*state_, security);
  return {descriptor.begin(), descriptor.end()};
}

std::size_t Hive::ValueCount(HiveKey key) const {
  return state_->cells.Get(CellOf(*state_, key), KeyField::kValueCount);
}

HiveValue Hive::ValueAt(HiveKey key, std::size_t index) const {
  if (index >= ValueCount(key)) throw std::out_of_range("no such value");
  return ReadValue(*state_, ValueOf(*state_, KeyCell(key.cell), index));
}

std::optional<HiveValue> Hive::Value(HiveKey key, std::string_view name) const {
  const std::optional<ValueCell> value = FindValue(*state_, CellOf(*state_, key), NewName(name));
  if (!value) return std::nullopt;
  return ReadValue(*state_, *value);
}

HiveKey Hive::CreateSubkey(HiveKey parent, std::string_view name) {
  const KeyCell cell = CellOf(*state_, parent);
  const NewName newName(name);
  if (const auto found = FindSubkey(*state_, cell, newName.upper)) return HandleOf(*found);
  RequireNewKey(*state_, cell, newName, KeyDepth(*state_, cell) + 1);
  RequireSpace(*state_, cell, "creating a registry key", newName.StoredSize());
  return HandleOf(AddSubkey(*state_, cell, newName));
}

HiveKey Hive::CreatePath(HiveKey from, std::string_view path) {
  KeyCell key = CellOf(*state_, from);
  std::vector<NewName> missing;
  ForEachName(path, [&](std::string_view text) {
    NewName name(text);
    const auto found = missing.empty() ? FindSubkey(*state_, key, name.upper) : std::nullopt;
    if (found) {
      key = *found;
    } else {
      missing.push_back(std::move(name));
    }
  });
  std::size_t depth = missing.empty() ? 0 : KeyDepth(*state_, key);
  std::uint64_t size = 0;
  for (const NewName& name : missing) {
    RequireNewKey(*state_, key, name, ++depth);
    size += name.StoredSize() + KeyField::kName;
  }
  if (!missing.empty()) RequireSpace(*state_, key, "creating a registry key", size);
  for (const NewName& name : missing) key = AddSubkey(*state_, key, name);
  return HandleOf(key);
}

void Hive::SetValue(HiveKey key, std::string_view name, std::uint32_t type, ByteView data) {
  const KeyCell cell = CellOf(*state_, key);
  const std::string doing = "writing the value \"" + ShortName(name) + "\"";
  const NewName newName(name);
  if (newName.units.size() > kMaxValueNameUnits) {
    ThrowRefusal(*state_, cell, HiveLimit::Name, doing,
                 "its name has more than " + std::to_string(kMaxValueNameUnits) + " characters");
  }
  if (const std::string fault = DataFault(*state_, data.size()); !fault.empty()) {
    ThrowRefusal(*state_, cell, HiveLimit::Data, doing, fault);
  }
  RequireSpace(*state_, cell, doing, newName.StoredSize() + data.size() + data.size() / 4);
  WriteValue(*state_, cell, newName, type, data);
  Touch(*state_, cell);
}

bool Hive::DeleteValue(HiveKey key, std::string_view name) {
  const KeyCell cell = CellOf(*state_, key);
  const std::optional<ValueCell> value = FindValue(*state_, cell, NewName(name));
  if (!value) return false;
  RemoveValue(*state_, cell, *value);
  Touch(*state_, cell);
  return true;
}

void Hive::DeleteTree(HiveKey key) {
  const KeyCell cell = CellOf(*state_, key);
  if (cell == state_->root) {
    ThrowRefusal(*state_, cell, HiveLimit::RootKey, "deleting a registry key", "a hive's root key cannot be deleted");
  }
  RemoveKey(*state_, cell);
  state_->changed = true;
}

Hive Hive::SaveSubtree(HiveKey key, FileTime now) const {
  const KeyCell cell = CellOf(*state_, key);
  Hive saved = Create(Name(key), now);
  State& hive = *saved.state_;
  RequireCopy(hive, hive.root, {*state_, cell}, "saving a registry key");
  CopyTree(hive, hive.root, {*state_, cell});
  hive.cells.Put(hive.root, KeyField::kTime, Time(key));
  return saved;
}

void Hive::ReplaceSubtree(HiveKey key, const Hive& source) {
  if (source.state_ == state_) {
    ReplaceSubtree(key, source.SaveSubtree(Root(), state_->now));
    return;
  }
  const KeyCell cell = CellOf(*state_, key);
  const SourceKey from{*source.state_, source.state_->root};
  RequireCopy(*state_, cell, from, "replacing a registry key");
  ClearKey(*state_, cell);
  CopyTree(*state_, cell, from);
  Touch(*state_, cell);
}

}  // namespace quillbox
