// SPDX-License-Identifier: GPL-3.0-or-later
// A registry file: what is read from it can be written, reads back equal, and is then written equal again. The input's
// first byte selects the code page.
#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "harness.h"
#include "registry/reg_file.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::array kPages = {1252U, 932U, 1251U, 949U};
constexpr std::uint32_t kText = 1;

const CodePage& PageOf(unsigned number) {
  static const std::vector<CodePage> kCodePages(kPages.begin(), kPages.end());
  return kCodePages[number % kCodePages.size()];
}

struct Entry {
  bool isKey = false;
  std::string name;
  std::uint32_t type = 0;
  Bytes data;
  bool operator==(const Entry&) const = default;
};

/// What a file sets. Deletions are left out, because the writer has none.
class Collector : public RegFileVisitor {
 public:
  void OnKey(std::string_view fullName, std::size_t line) override {
    CheckLine(line);
    entries.push_back({true, std::string(fullName), 0, {}});
  }
  void OnDeleteKey(std::string_view, std::size_t line) override { CheckLine(line); }
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t line) override {
    CheckLine(line);
    Require(!entries.empty(), "a value belongs to a key");
    entries.push_back({false, std::string(name), type, Bytes(data.begin(), data.end())});
  }
  void OnDeleteValue(std::string_view, std::size_t line) override { CheckLine(line); }
  void OnProblem(std::size_t line, std::string_view reason) override {
    Require(line > 1 && !reason.empty(), "a problem has a place and a reason");
    ++problems;
  }

  std::vector<Entry> entries;
  std::size_t problems = 0;

 private:
  void CheckLine(std::size_t line) {
    Require(line > lastLine_, "statements come in the file's order, one a line");
    lastLine_ = line;
  }
  std::size_t lastLine_ = 1;
};

/// The part of an entry that a file can show: a text ends at its first NUL and has whole characters.
Entry Shown(Entry entry) {
  if (entry.isKey || entry.type != kText) return entry;
  std::u16string units = Utf16FromBytes(entry.data);
  units.resize(std::min(units.find(u'\0'), units.size()));
  units.push_back(u'\0');
  entry.data = Utf16Bytes(units);
  return entry;
}

/// The file with `entries`; nothing when its form cannot hold them.
std::optional<std::string> Written(const std::vector<Entry>& entries, RegFileForm form, const CodePage& page) {
  RegFileWriter writer(form, page);
  for (const Entry& entry : entries) {
    if (entry.isKey) {
      writer.Key(entry.name);
    } else {
      writer.Value(entry.name, entry.type, entry.data);
    }
  }
  std::string bytes = writer.Finish();
  Require(writer.HoldsEverything() == writer.FirstLoss().empty(), "a loss is named");
  if (!writer.HoldsEverything()) return std::nullopt;
  return bytes;
}

void RequireReadsBack(const std::vector<Entry>& entries, RegFileForm form, const CodePage& page) {
  const std::optional<std::string> bytes = Written(entries, form, page);
  if (!bytes) {
    Require(form == RegFileForm::Regedit4, "the Unicode form holds everything");
    return;
  }
  Collector back;
  ReadRegFile(*bytes, "written", page, back);
  Require(back.problems == 0, "what was written reads without a problem");
  std::vector<Entry> shown;
  std::transform(entries.begin(), entries.end(), std::back_inserter(shown), Shown);
  Require(back.entries == shown, "what was written reads back equal");
  Require(Written(back.entries, form, page) == bytes, "what was read back is written equal");
}

void RunRegText(ByteView input) {
  InputReader reader(input);
  const CodePage& page = PageOf(reader.Byte());
  Collector read;
  try {
    ReadRegFile(TextFrom(reader.Rest()), "fuzzed", page, read);
  } catch (const Error&) {
    return;
  }
  RequireReadsBack(read.entries, RegFileForm::Unicode5, page);
  RequireReadsBack(read.entries, RegFileForm::Regedit4, page);
}

std::string AsUtf16(std::string_view text) {
  return "\xFF\xFE" + TextFrom(Utf16Bytes(ToUtf16(text)));
}

std::vector<Seed> RegTextSeeds() {
  const std::string body =
      "\r\n\r\n[HKEY_CURRENT_USER\\Identities\\{1}]\r\n@=\"x\"\r\n\"a \\\"b\\\"\\\\\"=\"two\r\nlines\"\r\n\"n\"=dword:"
      "0000002a\r\n\"h\"=hex:01,02,\\\r\n  "
      "03\r\n\"e\"=hex(2):25,00,41,00,25,00,00,00\r\n\"m\"=hex(7):61,00\r\n\"q\"=hex("
      "b):01,02,03,04,05,06,07,08\r\n; comment\r\n\"gone\"=-\r\n\r\n[-HKEY_CURRENT_USER\\Old]\r\n\"x\"=\"y\"\r\n\r\n";
  const std::string four = "REGEDIT4" + body;
  const std::string five = "Windows Registry Editor Version 5.00" + body;
  const auto seed = [](const char* name, char page, const std::string& text) {
    return Seed{name, BytesFrom(std::string(1, page) + text)};
  };
  return {
      seed("8-bit", 0, four),
      seed("8-bit-932", 1, four + "[HKEY_USERS\\\x83\x5C]\n\"\x82\xA0\"=\"\x81\x5C\"\n"),
      seed("unicode", 0, AsUtf16(five)),
      seed("8-bit-under-5", 2, five),
      seed("utf-8", 3, "\xEF\xBB\xBF" + five + "[HKEY_USERS\\\xD0\x96]\n\"\xF0\x9F\x98\x80\"=\"\xED\xA0\x80\"\n"),
      seed("faults", 0, four + "stray\n[open\n\"u=\"\n\"h\"=hex:1,,2\n\"t\"=\"x\" y\n\"d\"=dword:123456789\n\"last")};
}

}  // namespace

const Harness kRegTextHarness = {"reg_text", 8 * 1024, RunRegText, RegTextSeeds};

}  // namespace quillbox
