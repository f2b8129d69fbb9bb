// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/offline/commit_record.h"

#include <cstdint>
#include <sstream>
#include <string_view>

#include "platform/offline/hive_storage.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::string_view kFirstLine = "Quillbox was putting these registry hives in place together:";
constexpr std::string_view kLastLine = "end";
constexpr const char* kOnDisk = "disk";
constexpr const char* kPrivateCopy = "copy";
constexpr const char* kDoing = "noting what is about to be written";
// Two lines with paths on a disk.
constexpr std::uint64_t kMaxRecordBytes = 65'536;

bool HasLineEnd(const CommitRecordLine& line) {
  return line.hive.find('\n') != std::string::npos;
}

std::optional<CommitRecordLine> ParseLine(const std::string& text) {
  std::istringstream fields(text);
  std::string place;
  CommitRecordLine line;
  if (!(fields >> place >> line.before >> line.after) || fields.get() != ' ') return std::nullopt;
  if (place != kOnDisk && place != kPrivateCopy) return std::nullopt;
  line.isPrivateCopy = place == kPrivateCopy;
  std::getline(fields, line.hive);
  if (line.hive.empty()) return std::nullopt;
  return line;
}

}  // namespace

std::string NameInRecord(const HostPlace& disk, const HostPlace& machineFolder) {
  return disk.Path().RelativeTo(machineFolder.Path()).Text();
}

void WriteRecord(const HostPlace& file, const CommitRecord& record) {
  std::string text = std::string(kFirstLine) + "\n";
  for (const CommitRecordLine& line : record) {
    if (HasLineEnd(line)) throw Error(kDoing, {line.hive, {}, {}}, "its name has a line end in it");
    text += std::string(line.isPrivateCopy ? kPrivateCopy : kOnDisk) + " " + line.before + " " + line.after + " " +
            line.hive + "\n";
  }
  text.append(kLastLine).append("\n");
  RemoveEntry(file);
  ReplaceHostFile(file, Bytes(text.begin(), text.end()), kDoing, file);
}

std::optional<CommitRecord> ReadRecord(const HostPlace& file) try {
  if (!IsOrdinaryEntry(file) || StateOf(file).size > kMaxRecordBytes) return std::nullopt;
  const Bytes bytes = ReadHostFile(file, "reading a record");
  std::istringstream in(std::string(bytes.begin(), bytes.end()));
  std::string text;
  if (!std::getline(in, text) || text != kFirstLine) return std::nullopt;
  CommitRecord record;
  while (std::getline(in, text) && text != kLastLine) {
    const std::optional<CommitRecordLine> line = ParseLine(text);
    if (!line) return std::nullopt;
    record.push_back(*line);
  }
  if (text != kLastLine) return std::nullopt;
  return record;
} catch (const Error&) {
  return std::nullopt;
}

}  // namespace quillbox
