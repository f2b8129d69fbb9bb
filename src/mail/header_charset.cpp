// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/header_charset.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

struct PageRow {
  std::string_view charset;  ///< in small letters
  unsigned page;
};

// Names that Windows' pages have in messages. Where a page has more characters than the charset, those are what mail
// programs meant by them.
constexpr PageRow kPages[] = {
    {"iso-8859-1", 1252},   {"us-ascii", 1252},      {"ascii", 1252},      {"iso-8859-7", 1253}, {"iso-8859-8", 1255},
    {"iso-8859-8-i", 1255}, {"iso-8859-9", 1254},    {"iso-8859-11", 874}, {"tis-620", 874},     {"gb2312", 936},
    {"gbk", 936},           {"big5", 950},           {"shift_jis", 932},   {"shift-jis", 932},   {"x-sjis", 932},
    {"euc-kr", 949},        {"ks_c_5601-1987", 949}, {"ibm850", 850},      {"ibm437", 437},      {"ibm852", 852},
    {"ibm866", 866},
};

struct UpperHalf {
  std::string_view charset;
  unsigned first;  ///< the byte that the characters begin with; those below are themselves
  std::u16string_view characters;
};

// By the tables of the Unicode Consortium, for the charsets that no Windows has as a page.
constexpr UpperHalf kUpperHalves[] = {
    {"iso-8859-2", 0xA0,
     u"\u00A0Ą˘Ł¤ĽŚ§¨ŠŞŤŹ\u00ADŽŻ°ą˛ł´ľśˇ¸šşťź˝žżŔÁÂĂÄĹĆÇČÉĘËĚÍÎĎĐŃŇÓÔŐÖ×ŘŮÚŰÜÝŢßŕáâăäĺćçčéęëěíîďđńňóôőö÷řůúűüýţ˙"},
    {"iso-8859-5", 0xA0,
     u"\u00A0ЁЂЃЄЅІЇЈЉЊЋЌ\u00ADЎЏАБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯабвгдежзийклмнопрстуфхцчшщъыьэюя№ёђѓєѕіїјљњћќ§ўџ"},
    {"iso-8859-15", 0xA0,
     u"\u00A0¡¢£€¥Š§š©ª«¬\u00AD®¯°±²³Žµ¶·ž¹º»ŒœŸ¿ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞßàáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ"},
    {"koi8-r", 0x80,
     u"─│┌┐└┘├┤┬┴┼▀▄█▌▐░▒▓⌠■∙√≈≤≥\u00A0⌡°²·÷═║╒ё╓╔╕╖╗╘╙╚╛╜╝╞╟╠╡Ё╢╣╤╥╦╧╨╩╪╫╬©юабцдефгхийклмнопярстужвьызшэщчъЮАБЦДЕФГХИЙ"
     u"КЛМНОПЯРСТУЖВЬЫЗШЭЩЧЪ"},
    {"koi8-u", 0x80,
     u"─│┌┐└┘├┤┬┴┼▀▄█▌▐░▒▓⌠■∙√≈≤≥\u00A0⌡°²·÷═║╒ёє╔ії╗╘╙╚╛ґ╝╞╟╠╡ЁЄ╣ІЇ╦╧╨╩╪Ґ╬©юабцдефгхийклмнопярстужвьызшэщчъЮАБЦДЕФГХИЙ"
     u"КЛМНОПЯРСТУЖВЬЫЗШЭЩЧЪ"},
};

std::string SmallLetters(std::string_view text) {
  std::string small(text);
  for (char& c : small) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return small;
}

std::optional<unsigned> PageOf(std::string_view charset) {
  const auto* const row = std::find_if(std::begin(kPages), std::end(kPages),
                                       [&](const PageRow& candidate) { return candidate.charset == charset; });
  if (row != std::end(kPages)) return row->page;
  for (const std::string_view prefix : {"windows-", "cp"}) {
    if (!charset.starts_with(prefix) || charset.size() > prefix.size() + 4) continue;
    unsigned page = 0;
    for (const char c : charset.substr(prefix.size())) {
      if (c < '0' || c > '9') return std::nullopt;
      page = page * 10 + static_cast<unsigned>(c - '0');
    }
    return page;
  }
  return std::nullopt;
}

std::string DecodeUpperHalf(const UpperHalf& table, std::string_view bytes) {
  std::u16string units;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    units += byte < table.first ? static_cast<char16_t>(byte) : table.characters[byte - table.first];
  }
  return ToUtf8(units);
}

/// The page of that number; null for one that this computer doesn't know. Making a page takes longer than decoding a
/// header, so each is made once.
const CodePage* FindPage(unsigned number) {
  thread_local std::map<unsigned, std::optional<CodePage>> pages;
  const auto [entry, isNew] = pages.try_emplace(number);
  if (isNew) {
    try {
      entry->second.emplace(number);
    } catch (const Error&) {
      entry->second.reset();
    }
  }
  return entry->second ? &*entry->second : nullptr;
}

}  // namespace

std::optional<std::string> DecodeCharset(const EncodedText& text) {
  const std::string name = SmallLetters(text.charset);
  const std::string_view bytes = text.bytes;
  if (name == "utf-8" || name == "utf8") return ToUtf8(ToUtf16(bytes));
  for (const UpperHalf& table : kUpperHalves) {
    if (table.charset == name) return DecodeUpperHalf(table, bytes);
  }
  const auto page = PageOf(name);
  if (!page) return std::nullopt;
  const CodePage* const known = FindPage(*page);
  return known == nullptr ? std::nullopt : std::optional(known->Decode(bytes));
}

}  // namespace quillbox
