// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/code_page_converter.h"

#include <windows.h>

#include <array>

namespace quillbox {
namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

class SystemConverter : public CodePageConverter {
 public:
  explicit SystemConverter(unsigned number) : number_(number) {}

  std::optional<char16_t> Decode(std::string_view bytes) override {
    std::array<wchar_t, 4> units{};
    const int count = MultiByteToWideChar(number_, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
                                          units.data(), static_cast<int>(units.size()));
    if (count != 1) return std::nullopt;
    return static_cast<char16_t>(units[0]);
  }

  std::optional<std::string> Encode(char16_t unit) override {
    const auto wide = static_cast<wchar_t>(unit);
    std::array<char, 4> bytes{};
    BOOL replaced = FALSE;
    const int count = WideCharToMultiByte(number_, WC_NO_BEST_FIT_CHARS, &wide, 1, bytes.data(),
                                          static_cast<int>(bytes.size()), nullptr, &replaced);
    if (count == 0 || replaced != FALSE) return std::nullopt;
    return std::string(bytes.data(), static_cast<std::size_t>(count));
  }

 private:
  unsigned number_;
};

}  // namespace

std::unique_ptr<CodePageConverter> OpenCodePage(unsigned number) {
  CPINFO info = {};
  if (GetCPInfo(number, &info) == FALSE) return nullptr;
  return std::make_unique<SystemConverter>(number);
}

}  // namespace quillbox
