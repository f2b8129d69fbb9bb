// SPDX-License-Identifier: GPL-3.0-or-later
// The check of registry files: text that parses to its end, and hives whose every cell is sound.
#include <string>
#include <string_view>

#include "core/copy_tally.h"
#include "inspection/file_check.h"
#include "registry/hive.h"
#include "registry/reg_file.h"

namespace quillbox {
namespace {

struct Counter final : RegFileVisitor {
  explicit Counter(InspectedFile& inspected) : file(inspected) {}

  void OnKey(std::string_view, std::size_t) override { ++keys; }
  void OnDeleteKey(std::string_view, std::size_t) override { ++deletions; }
  void OnValue(std::string_view, std::uint32_t, ByteView, std::size_t) override { ++values; }
  void OnDeleteValue(std::string_view, std::size_t) override { ++deletions; }
  void OnProblem(std::size_t line, std::string_view reason) override {
    file.AddFault("line " + std::to_string(line) + ": " + std::string(reason));
  }

  InspectedFile& file;
  std::size_t keys = 0, values = 0, deletions = 0;
};

/// Every registry editor ends an export with an empty line.
bool EndsInEmptyLine(PositionedSource& source) {
  constexpr std::size_t kTail = 8;
  Bytes tail(static_cast<std::size_t>(std::min<std::uint64_t>(kTail, source.Size())));
  tail.resize(source.ReadAt(source.Size() - tail.size(), tail));
  std::string end;
  for (const std::uint8_t byte : tail) {
    if (byte != 0 && byte != '\r') end += static_cast<char>(byte);
  }
  const bool isCutInLineEnd = !tail.empty() && tail.back() == '\r';
  return !isCutInLineEnd && end.ends_with("\n\n");
}

void CountKeys(const Hive& hive, InspectedFile& file) {
  std::size_t keys = 0;
  std::size_t values = 0;
  std::vector<HiveKey> open = {hive.Root()};
  while (!open.empty()) {
    const HiveKey key = open.back();
    open.pop_back();
    ++keys;
    values += hive.ValueCount(key);
    for (const HiveKey subkey : hive.Subkeys(key)) open.push_back(subkey);
  }
  file.contents = CountOf(keys, " key", " keys") + ", " + CountOf(values, " value", " values");
}

}  // namespace

void CheckRegistryText(PositionedSource& source, const CodePage& page, InspectedFile& file) {
  Counter counter(file);
  SequentialSource bytes(source);
  ReadRegFile(bytes, {}, page, counter);
  file.contents = CountOf(counter.keys, " key", " keys") + ", " + CountOf(counter.values, " value", " values");
  if (counter.deletions > 0) {
    file.contents += ", " + CountOf(counter.deletions, " deletion", " deletions");
  } else if (counter.keys == 0) {
    file.AddFault(OffsetText(file.size) + ": it ends before its first key");
  } else if (!EndsInEmptyLine(source)) {
    file.AddFault(OffsetText(file.size) +
                  ": it does not end with the empty line that exports end with, so its end may be missing");
  }
}

void CheckHive(PositionedSource& source, const CodePage& page, InspectedFile& file) {
  const Bytes bytes = ReadWhole(source);
  const Hive hive = file.kind == FileKind::OldHive ? Hive::LoadCreg(bytes, {}, page, DamagedParts::LeaveOut)
                                                   : Hive::Load(bytes, {}, {}, DamagedParts::LeaveOut);
  for (const HiveDamage& damage : hive.Damage()) {
    file.AddFault(OffsetText(damage.offset) + ": " + damage.part + ": " + damage.fault);
  }
  file.faultCount += hive.DamageCount() - hive.Damage().size();
  if (hive.Origin() == HiveOrigin::DirtyNoLog) {
    file.AddFault("it was not closed cleanly, so what its log has may be missing");
  }
  CountKeys(hive, file);
}

}  // namespace quillbox
