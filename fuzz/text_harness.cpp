// SPDX-License-Identifier: GPL-3.0-or-later
// Text, code pages, paths and names. The input's first byte selects what is tried with the rest.
#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "harness.h"
#include "host/host_names.h"
#include "text/code_page.h"
#include "text/registry_path.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

constexpr std::array kPages = {1252U, 932U, 936U, 949U, 950U, 1250U, 874U, 1255U, 1258U, 437U};

const CodePage& PageOf(unsigned number) {
  static const std::vector<CodePage> kCodePages(kPages.begin(), kPages.end());
  return kCodePages[number % kCodePages.size()];
}

void TryUnicode(const std::string& text) {
  const std::u16string units = ToUtf16(text);
  const std::string inner = ToUtf8(units);
  Require(IsInnerText(inner), "what was converted is inner text");
  Require(ToUtf16(inner) == units, "units survive the way out and in");
  Require(!IsInnerText(text) || inner == text, "inner text survives the way in and out");
  Require(!IsAscii(text) || inner == text, "ASCII is itself");
  const Bytes bytes = BytesFrom(text);
  const std::u16string stored = Utf16FromBytes(bytes);
  const Bytes back = Utf16Bytes(stored);
  Require(std::equal(back.begin(), back.end(), bytes.begin()) && back.size() == bytes.size() / 2 * 2,
          "stored units survive");
  Require(ToUtf16(ToUtf8(stored)) == stored, "any sequence of units survives");
  const std::string upper = UpperCase(inner);
  Require(UpperCase(upper) == upper, "upper case has no upper case of its own");
  Require(EqualIgnoreCase(upper, inner) && StartsWithIgnoreCase(upper, inner), "upper case differs only in case");
}

void TryCodePage(unsigned number, const std::string& bytes) {
  const CodePage& page = PageOf(number);
  const std::string text = page.Decode(bytes);
  Require(IsInnerText(text), "what was decoded is inner text");
  const std::optional<std::string> encoded = page.Encode(text);
  if (encoded) {
    Require(page.Decode(*encoded) == text, "what was encoded decodes to the same");
    Require(page.EncodeLossy(text) == *encoded, "nothing is lost where nothing has to be");
  } else {
    Require(text.find("\xEF\xBF\xBD") != std::string::npos || page.IsDoubleByte(),
            "only a broken pair has no way back to bytes");
    static_cast<void>(page.EncodeLossy(text));
  }
  // Any inner text: it can be held and comes back, or it cannot.
  const std::string any = ToUtf8(Utf16FromBytes(BytesFrom(bytes)));
  const std::optional<std::string> held = page.Encode(any);
  Require(!held || page.Decode(*held) == any, "a text that a code page holds comes back");
}

void TryPaths(const std::string& text) {
  const WinPath directory("C:\\Data\\Mail");
  const WinPath resolved = Resolve(WinPath(text), directory);
  Require(Resolve(resolved, WinPath("D:\\Else")) == resolved, "a resolved path stays what it is");
  Require((resolved.Text() + "\\").find("\\..\\") == std::string::npos, "a resolved path goes nowhere up");
  const RegistryPath key = ParseRegistryPath(text).value_or(RegistryPath{});
  Require(ParseRegistryPath(FullName(key)) == key, "a key's full name leads to it");
  static_cast<void>(DirectoryFromFile(text) + NameFromFullPath(text) + GetFileName(text));
  if (FileNameFault(text)) return;
  Require(directory.Join(text).Parent() == directory && directory.Join(text).Name() == text,
          "a good name stays in its folder");
  Require(Resolve(WinPath(text), directory) == directory.Join(text), "a good name is itself in its folder");
  Require(HostName(text).find('/') == std::string::npos || HostName(text) == text, "a good name is one host name");
}

void TryHostNames(const std::string& text) {
  if (text.empty() || text.find('/') != std::string::npos || text.find('\0') != std::string::npos) return;
  if (text == "." || text == "..") return;
  const std::string name = WindowsName(text);
  Require(IsInnerText(name), "a host's name shows as text");
  Require(name.find_first_of("\\/:*?\"<>|") == std::string::npos, "a host's name has nothing that Windows forbids");
  Require(WindowsName(HostName(name)) == name, "a Windows name leads to a host's name that shows as it");
  // A host's own name may hold the characters that replace others; then two host names have one Windows name.
  const bool hasStandIns = text.find_first_of("\xED\xEF") != std::string::npos;
  Require(hasStandIns || HostName(name) == text, "a host's name comes back");
  const std::string host = HostName(text);
  Require(host != "." && host != ".." && (host.find('/') == std::string::npos), "a Windows name stays in its folder");
}

/// The plainest way to match.
struct Mask {
  std::u16string units;

  bool Matches(std::u16string_view name) const;
};

bool Mask::Matches(std::u16string_view name) const {
  std::vector<bool> reached(name.size() + 1);
  reached[0] = true;
  for (const char16_t unit : units) {
    if (unit == u'*') {
      for (std::size_t at = 1; at <= name.size(); ++at) reached[at] = reached[at] || reached[at - 1];
      continue;
    }
    for (std::size_t at = name.size(); at > 0; --at) {
      reached[at] = reached[at - 1] && (unit == u'?' || unit == name[at - 1]);
    }
    reached[0] = false;
  }
  return reached[name.size()];
}

void TryWildcard(const std::string& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string pattern = text.substr(0, end);
  const std::string name = end < text.size() ? text.substr(end + 1) : std::string();
  const bool expected = pattern == "*.*" || Mask{UpperCase(ToUtf16(pattern))}.Matches(UpperCase(ToUtf16(name)));
  Require(Wildcard(pattern).Matches(name) == expected, "a wildcard matches as it should");
}

void RunText(ByteView input) {
  InputReader reader(input);
  const unsigned what = reader.Byte();
  const std::string text = TextFrom(reader.Rest());
  switch (what % 5) {
    case 0:
      return TryUnicode(text);
    case 1:
      return TryCodePage(what / 5, text);
    case 2:
      return TryPaths(text);
    case 3:
      return TryHostNames(text);
    default:
      return TryWildcard(text);
  }
}

std::vector<Seed> TextSeeds() {
  const auto seed = [](const char* name, int what, std::string_view text) {
    return Seed{name, BytesFrom(std::string(1, static_cast<char>(what)) + std::string(text))};
  };
  std::vector<Seed> seeds = {
      seed("unicode", 0, "B\xC3\xBCro \xD0\x96 \xF0\x9F\x98\x80 \xED\xA0\x80 \xFF"),
      seed("path", 2, "c:..\\.\\Mail. /x\\\\y "),
      seed("share", 2, "\\\\server\\share\\x"),
      seed("key", 2, "HKCU\\Software\\\\x\\"),
      seed("name", 2, "Inbox.dbx"),
      seed("host-name", 3, "a:b\xFF*. "),
      seed("private-name", 3, "\xEF\x80\xBA\xED\xB3\xBF"),
      seed("wildcard", 4, "*n?x*.d*\nInbox.dbx"),
  };
  for (unsigned page = 0; page < kPages.size(); ++page) {
    seeds.push_back(seed(("page-" + std::to_string(kPages[page])).c_str(), static_cast<int>(1 + 5 * page),
                         "abc \x80\x82\xA0\x83\x5C\xC3\xFC\xFF"));
  }
  return seeds;
}

}  // namespace

const Harness kTextHarness = {"text", 512, RunText, TextSeeds};

}  // namespace quillbox
