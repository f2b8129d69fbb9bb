// SPDX-License-Identifier: GPL-3.0-or-later
#include "text/code_page_converter.h"

#include <iconv.h>

#include <array>
#include <cstdint>

#include "text/unicode.h"

namespace quillbox {
namespace {

class Iconv {
 public:
  Iconv(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
  Iconv(const Iconv&) = delete;
  Iconv& operator=(const Iconv&) = delete;
  ~Iconv() {
    if (Good()) iconv_close(handle_);
  }

  bool Good() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  /// All of `in`, from the initial state; nothing when it isn't whole or has no counterpart.
  std::optional<std::string> Run(std::string in) {
    std::array<char, 32> buffer{};
    char* from = in.data();
    char* to = buffer.data();
    std::size_t fromLeft = in.size();
    std::size_t toLeft = buffer.size();
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    constexpr auto kFailed = static_cast<std::size_t>(-1);
    if (iconv(handle_, &from, &fromLeft, &to, &toLeft) == kFailed) return std::nullopt;
    // Some pages hold a letter back to join it with an accent that may follow.
    if (iconv(handle_, nullptr, nullptr, &to, &toLeft) == kFailed) return std::nullopt;
    return std::string(buffer.data(), buffer.size() - toLeft);
  }

 private:
  iconv_t handle_;
};

class IconvConverter : public CodePageConverter {
 public:
  explicit IconvConverter(const std::string& name)
      : decoder_("UTF-16LE", name.c_str()), encoder_(name.c_str(), "UTF-16LE") {}

  bool Good() const { return decoder_.Good() && encoder_.Good(); }

  std::optional<char16_t> Decode(std::string_view bytes) override {
    const std::optional<std::string> units = decoder_.Run(std::string(bytes));
    if (!units || units->size() != 2) return std::nullopt;
    return Utf16FromBytes(ByteView(reinterpret_cast<const std::uint8_t*>(units->data()), 2))[0];
  }

  std::optional<std::string> Encode(char16_t unit) override {
    const Bytes bytes = Utf16Bytes(std::u16string_view(&unit, 1));
    return encoder_.Run(std::string(bytes.begin(), bytes.end()));
  }

 private:
  Iconv decoder_, encoder_;
};

}  // namespace

std::unique_ptr<CodePageConverter> OpenCodePage(unsigned number) {
  auto converter = std::make_unique<IconvConverter>("CP" + std::to_string(number));
  if (!converter->Good()) return nullptr;
  return converter;
}

}  // namespace quillbox
