// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/host_names.h"

#include <algorithm>
#include <array>

#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr std::string_view kForbidden = "\\:*?\"<>|";
constexpr char32_t kForbiddenBase = 0xF000;
constexpr char32_t kBadByteBase = 0xDC00;

unsigned char ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

bool IsForbidden(char c) {
  return static_cast<unsigned char>(c) < 0x20 || kForbidden.find(c) != std::string_view::npos;
}

bool IsForbiddenLast(char c) {
  return c == ' ' || c == '.';
}

/// True for most names: ASCII that Windows takes as it is.
bool IsUsualName(std::string_view name) {
  static const std::array<bool, 256> kUsual = [] {
    std::array<bool, 256> usual{};
    for (int c = 0; c < 0x80; ++c) usual[static_cast<std::size_t>(c)] = !IsForbidden(static_cast<char>(c));
    return usual;
  }();
  return !name.empty() && !IsForbiddenLast(name.back()) &&
         std::all_of(name.begin(), name.end(), [](char c) { return kUsual[static_cast<unsigned char>(c)]; });
}

/// Length of the strict UTF-8 sequence (no surrogates) at `at`, or 0 when there is none.
std::size_t SequenceLength(std::string_view text, std::size_t at) {
  const unsigned char lead = ByteAt(text, at);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((ByteAt(text, at + i) & 0xC0) != 0x80) return 0;
  }
  const unsigned char second = ByteAt(text, at + 1);
  const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
  const bool surrogate = lead == 0xED && second >= 0xA0;
  const bool tooLarge = lead == 0xF4 && second >= 0x90;
  return overlong || surrogate || tooLarge ? 0 : length;
}

/// The code point of the three bytes at `at`, or 0 when they are not a three-byte sequence.
char32_t ThreeByteCodePoint(std::string_view text, std::size_t at) {
  if (at + 3 > text.size() || (ByteAt(text, at) & 0xF0) != 0xE0) return 0;
  return (ByteAt(text, at) & 0x0Fu) << 12 | (ByteAt(text, at + 1) & 0x3Fu) << 6 | (ByteAt(text, at + 2) & 0x3Fu);
}

}  // namespace

std::string WindowsName(std::string_view hostName) {
  if (IsUsualName(hostName)) return std::string(hostName);
  std::string name;
  name.reserve(hostName.size());
  for (std::size_t at = 0; at < hostName.size();) {
    const char c = hostName[at];
    const std::size_t length = SequenceLength(hostName, at);
    const bool last = at + 1 == hostName.size();
    if (length == 0) {
      AppendUtf8(name, kBadByteBase + ByteAt(hostName, at));
    } else if (length == 1 && (IsForbidden(c) || (last && IsForbiddenLast(c)))) {
      AppendUtf8(name, kForbiddenBase + ByteAt(hostName, at));
    } else {
      name.append(hostName, at, length);
    }
    at += std::max<std::size_t>(length, 1);
  }
  return name;
}

std::string HostName(std::string_view windowsName) {
  std::string name;
  name.reserve(windowsName.size());
  for (std::size_t at = 0; at < windowsName.size();) {
    const char32_t code = ThreeByteCodePoint(windowsName, at);
    const bool last = at + 3 == windowsName.size();
    const auto low = static_cast<char>(code & 0xFF);
    const bool forbidden =
        code > kForbiddenBase && code < kForbiddenBase + 0x80 && (IsForbidden(low) || (last && IsForbiddenLast(low)));
    const bool badByte = code >= kBadByteBase + 0x80 && code <= kBadByteBase + 0xFF;
    if (forbidden || badByte) {
      name.push_back(low);
      at += 3;
    } else {
      name.push_back(windowsName[at++]);
    }
  }
  return LeavesItsFolder(name) ? std::string(windowsName) : name;
}

bool LeavesItsFolder(std::string_view hostName) {
  return hostName.empty() || hostName == "." || hostName == ".." || hostName.find('/') != std::string_view::npos ||
         hostName.find('\0') != std::string_view::npos;
}

}  // namespace quillbox
