// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/code_page_table.h"

#include <algorithm>
#include <iterator>

namespace quillbox {
namespace {

constexpr DoubleBytePage kDoubleBytePages[] = {
    {932, {{{0x81, 0x9F}, {0xE0, 0xFC}}}, {{{0x40, 0x7E}, {0x80, 0xFC}}}},
    {936, {{{0x81, 0xFE}, {}}}, {{{0x40, 0x7E}, {0x80, 0xFE}}}},
    {949, {{{0x81, 0xFE}, {}}}, {{{0x41, 0x7A}, {0x81, 0xFE}}}},
    {950, {{{0x81, 0xFE}, {}}}, {{{0x40, 0x7E}, {0xA1, 0xFE}}}},
};

constexpr unsigned kSingleBytePages[] = {437,  850,  852,  855,  866,  874,  1250, 1251,
                                         1252, 1253, 1254, 1255, 1256, 1257, 1258};

constexpr CodeRun kSingleByteRuns[] = {
    {874, 0xDB, 0xDE, 0xF8C1},  {874, 0xFC, 0xFF, 0xF8C5},  {932, 0xA0, 0xA0, 0xF8F0},  {932, 0xFD, 0xFF, 0xF8F1},
    {936, 0x80, 0x80, 0x20AC},  {936, 0xFF, 0xFF, 0xF8F5},  {949, 0xFF, 0xFF, 0xF8F7},  {950, 0xFF, 0xFF, 0xF8F8},
    {1253, 0xAA, 0xAA, 0xF8F9}, {1253, 0xD2, 0xD2, 0xF8FA}, {1253, 0xFF, 0xFF, 0xF8FB}, {1255, 0xCA, 0xCA, 0x05BA},
    {1255, 0xD9, 0xDF, 0xF88D}, {1255, 0xFB, 0xFC, 0xF894}, {1255, 0xFF, 0xFF, 0xF896}, {1257, 0xA1, 0xA1, 0xF8FC},
    {1257, 0xA5, 0xA5, 0xF8FD},
};

constexpr CodeRun kUserDefinedRuns[] = {
    // The holes of 936's own rows come before the area of whole rows that is around them.
    {936, 0xA2AB, 0xA2FE, 0xE766}, {936, 0xA4F4, 0xA4FE, 0xE772}, {936, 0xA5F7, 0xA5FE, 0xE77D},
    {936, 0xA6B9, 0xA6FE, 0xE785}, {936, 0xA7C2, 0xA7FE, 0xE7A0}, {936, 0xA896, 0xA8FE, 0xE7BC},
    {936, 0xA958, 0xA9FE, 0xE7E2}, {936, 0xD7FA, 0xD7FE, 0xE810}, {936, 0xFE50, 0xFEA0, 0xE815},
    {936, 0xAAA1, 0xAFFE, 0xE000}, {936, 0xF8A1, 0xFEFE, 0xE234}, {936, 0xA140, 0xA7A0, 0xE4C6},
    {949, 0xC9A1, 0xC9FE, 0xE000}, {949, 0xFEA1, 0xFEFE, 0xE05E}, {950, 0x8140, 0x8DFE, 0xEEB8},
    {950, 0x8E40, 0xA0FE, 0xE311}, {950, 0xFA40, 0xFEFE, 0xE000},
};

// Double lines of 950, which has them twice.
constexpr PreferredCode kPreferredCodes[] = {{950, 0xF9F9}, {950, 0xF9E9}, {950, 0xF9EA}, {950, 0xF9EB}};

}  // namespace

const DoubleBytePage* FindDoubleBytePage(unsigned number) {
  const auto* const end = std::end(kDoubleBytePages);
  const auto* const found = std::find_if(std::begin(kDoubleBytePages), end,
                                         [number](const DoubleBytePage& page) { return page.number == number; });
  return found == end ? nullptr : found;
}

bool IsKnownCodePage(unsigned number) {
  return FindDoubleBytePage(number) != nullptr ||
         std::find(std::begin(kSingleBytePages), std::end(kSingleBytePages), number) != std::end(kSingleBytePages);
}

std::span<const CodeRun> SingleByteRuns() {
  return kSingleByteRuns;
}

std::span<const CodeRun> UserDefinedRuns() {
  return kUserDefinedRuns;
}

std::span<const PreferredCode> PreferredCodes() {
  return kPreferredCodes;
}

}  // namespace quillbox
