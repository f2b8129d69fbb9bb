// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/registry_access.h"

#include "text/byte_order.h"
#include "text/error.h"

namespace quillbox {
namespace {

std::string TextUpToNul(const Bytes& bytes) {
  std::string text(bytes.begin(), bytes.end());
  return text.substr(0, text.find('\0'));
}

Bytes TextWithNul(const std::string& text) {
  Bytes bytes(text.begin(), text.end());
  bytes.push_back(0);
  return bytes;
}

}  // namespace

RegValue RegistryAccess::Read(const RegistryPath& path, std::string_view name, ExpandableText expandable) {
  const OpenResult opened = registry_.Open(path, Access::Read);
  return opened.status == Status::Success ? Read(opened.key, name, expandable) : RegValue();
}

RegValue RegistryAccess::Read(const Key& key, std::string_view name, ExpandableText expandable) {
  const QueryResult asked = registry_.Query(key, name, std::nullopt);
  return asked.status == Status::Success ? ReadTyped(key, name, asked, expandable) : RegValue();
}

RegValue RegistryAccess::ReadTyped(const Key& key, std::string_view name, const QueryResult& asked,
                                   ExpandableText expandable) {
  const bool isText =
      asked.type == ValueType::Sz || (asked.type == ValueType::ExpandSz && expandable == ExpandableText::Read);
  if (isText && asked.size == 0) return std::string();
  if (!isText && asked.type != ValueType::Binary && asked.type != ValueType::Dword) return {};

  // A number is read into 4 bytes whatever the stored size, so a longer one fails and a shorter one has zeros above.
  Bytes buffer(asked.type == ValueType::Dword ? 4 : asked.size);
  if (buffer.empty()) return {};
  if (registry_.Query(key, name, std::span(buffer)).status != Status::Success) return {};
  if (isText) return TextUpToNul(buffer);
  if (asked.type == ValueType::Binary) return buffer;
  return static_cast<std::int32_t>(Load32(buffer.data()));
}

Status RegistryAccess::Probe(const RegistryPath& path, std::string_view name) {
  const OpenResult opened = registry_.Open(path, Access::Read);
  if (opened.status != Status::Success) return opened.status;
  return registry_.Query(opened.key, name, std::span<std::uint8_t>()).status;
}

std::string RegistryAccess::ReadWholeText(const RegistryPath& path, std::string_view name) {
  constexpr std::size_t kFirstAttempt = 256;
  const OpenResult opened = registry_.Open(path, Access::Read);
  if (opened.status != Status::Success) return {};
  Bytes buffer(kFirstAttempt);
  QueryResult read = registry_.Query(opened.key, name, std::span(buffer));
  if (read.status == Status::MoreData) {
    buffer.resize(read.size);
    read = registry_.Query(opened.key, name, std::span(buffer));
  }
  if (read.status != Status::Success) return {};
  if (read.type != ValueType::Sz && read.type != ValueType::ExpandSz) {
    throw Error("reading a text value", {FullName(path) + ", \"" + std::string(name) + "\"", {}, {}},
                "it is of type " + std::to_string(static_cast<unsigned>(read.type)) + ", not text");
  }
  std::string text(buffer.begin(), buffer.begin() + read.size);
  if (text.ends_with('\0')) text.pop_back();
  return text;
}

std::vector<std::string> RegistryAccess::SubkeyNames(const Key& key) {
  std::vector<std::string> names;
  const KeyInfo info = registry_.Info(key);
  for (std::uint32_t index = 0; index < info.subkeys; ++index) {
    NameResult result = registry_.EnumKey(key, index);
    const bool ended = result.status == Status::NoMoreItems;
    if (result.status != Status::Success && !ended) break;
    names.push_back(std::move(result.name));
    if (ended) break;
  }
  return names;
}

Status RegistryAccess::Write(const RegistryPath& path, std::string_view name, const RegValue& value, ValueType type) {
  const OpenResult opened = registry_.Open(path, Access::SetValue);
  return opened.status == Status::Success ? Write(opened.key, name, value, type) : opened.status;
}

Status RegistryAccess::Write(const Key& key, std::string_view name, const RegValue& value, ValueType type) {
  switch (type) {
    case ValueType::Sz:
    case ValueType::ExpandSz:
      if (value.Data()) return Status::InvalidParameter;
      return registry_.SetValue(key, name, type, TextWithNul(value.AsText()));
    case ValueType::Dword: {
      const auto number = value.IsEmpty() ? std::optional<std::int32_t>(0) : value.AsNumber();
      if (!number) return Status::InvalidParameter;
      return registry_.SetValue(key, name, type, NumberBytes(static_cast<std::uint32_t>(*number)));
    }
    default:
      return Status::Success;
  }
}

}  // namespace quillbox
