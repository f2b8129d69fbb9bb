#include "text/code_page.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>

#include "text/error.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

constexpr unsigned kDoubleBytePages[] = {932, 936, 949, 950, 1361};
constexpr std::uint8_t kLeastTrailByte = 0x30;

/// Where Windows' table knows a byte that the host's table does not.
struct ExtraByte {
  unsigned page;
  std::uint8_t byte;
  char16_t character;
};
constexpr ExtraByte kExtraBytes[] = {{936, 0x80, 0x20AC}};

class Converter {
 public:
  Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;
  ~Converter() {
    if (Good()) iconv_close(handle_);
  }

  bool Good() const { return reinterpret_cast<std::intptr_t>(handle_) != -1; }

  /// Converts all of `in`, from the initial state. 0 or the errno that says why not.
  int Run(std::string in, std::string& out) {
    std::array<char, 32> buffer{};
    char* from = in.data();
    char* to = buffer.data();
    std::size_t fromLeft = in.size();
    std::size_t toLeft = buffer.size();
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    constexpr auto kFailed = static_cast<std::size_t>(-1);
    if (iconv(handle_, &from, &fromLeft, &to, &toLeft) == kFailed) return errno;
    // Some pages hold a letter back to join it with an accent that may follow.
    if (iconv(handle_, nullptr, nullptr, &to, &toLeft) == kFailed) return errno;
    out.assign(buffer.data(), buffer.size() - toLeft);
    return 0;
  }

 private:
  iconv_t handle_;
};

std::string PairBytes(unsigned code) {
  std::string bytes;
  if (code > 0xFF) bytes += static_cast<char>(code >> 8);
  bytes += static_cast<char>(code & 0xFF);
  return bytes;
}

}  // namespace

/// Both directions, worked out once. A code is a byte, or lead byte * 256 + trail byte.
struct CodePage::Tables {
  static constexpr char16_t kNothing = 0xFFFF;

  std::array<bool, 256> lead{};
  std::array<char16_t, 256> single{};
  std::vector<char16_t> pairs;  ///< by code; kNothing where the pair has no meaning; empty for single-byte pages
  std::map<char16_t, std::uint16_t> codes;

  Tables(unsigned number, bool doubleByte);

 private:
  void FillSingles(unsigned number, bool doubleByte, Converter& decoder);
  void FillPairs(Converter& decoder);
  void FillCodes(Converter& encoder);
};

CodePage::Tables::Tables(unsigned number, bool doubleByte) {
  const std::string name = "CP" + std::to_string(number);
  Converter decoder("UTF-16LE", name.c_str());
  Converter encoder(name.c_str(), "UTF-16LE");
  if (!decoder.Good() || !encoder.Good()) {
    throw Error("preparing the system's code page", {"code page " + std::to_string(number), {}, {}},
                "this computer has no table for it");
  }
  FillSingles(number, doubleByte, decoder);
  if (doubleByte) FillPairs(decoder);
  FillCodes(encoder);
}

void CodePage::Tables::FillSingles(unsigned number, bool doubleByte, Converter& decoder) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    single[byte] = static_cast<char16_t>(byte);
    if (byte < 0x80) continue;
    std::string out;
    const int failure = decoder.Run(PairBytes(byte), out);
    lead[byte] = doubleByte && failure == EINVAL;
    if (failure == 0 && out.size() == 2)
      single[byte] = Utf16FromBytes(ByteView(reinterpret_cast<const std::uint8_t*>(out.data()), 2))[0];
  }
  for (const ExtraByte& extra : kExtraBytes) {
    if (extra.page != number) continue;
    single[extra.byte] = extra.character;
    lead[extra.byte] = false;
  }
}

void CodePage::Tables::FillPairs(Converter& decoder) {
  pairs.assign(0x10000, kNothing);
  for (unsigned code = 0x8000; code < 0x10000; ++code) {
    std::string out;
    if (!lead[code >> 8] || decoder.Run(PairBytes(code), out) != 0 || out.size() != 2) continue;
    pairs[code] = Utf16FromBytes(ByteView(reinterpret_cast<const std::uint8_t*>(out.data()), 2))[0];
  }
}

void CodePage::Tables::FillCodes(Converter& encoder) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    if (!lead[byte]) codes.emplace(single[byte], static_cast<std::uint16_t>(byte));
  }
  for (unsigned code = 0; code < pairs.size(); ++code) {
    const char16_t character = pairs[code];
    if (character == kNothing || codes.emplace(character, static_cast<std::uint16_t>(code)).second) continue;
    // Several codes for one character: the host knows which one is to be written.
    const Bytes units = Utf16Bytes(std::u16string_view(&character, 1));
    std::string out;
    if (encoder.Run(std::string(units.begin(), units.end()), out) == 0 && out == PairBytes(code)) {
      codes[character] = static_cast<std::uint16_t>(code);
    }
  }
}

CodePage::CodePage(unsigned number)
    : number_(number), tables_(std::make_shared<const Tables>(number, IsDoubleByte())) {}

bool CodePage::IsDoubleByte() const {
  return std::find(std::begin(kDoubleBytePages), std::end(kDoubleBytePages), number_) != std::end(kDoubleBytePages);
}

std::string CodePage::Decode(std::string_view bytes) const {
  std::u16string units;
  units.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<std::uint8_t>(bytes[i]);
    if (!tables_->lead[byte]) {
      units += tables_->single[byte];
      continue;
    }
    const auto trail = i + 1 < bytes.size() ? static_cast<std::uint8_t>(bytes[i + 1]) : std::uint8_t{0};
    const char16_t character = tables_->pairs[static_cast<std::size_t>(byte) << 8 | trail];
    units += character == Tables::kNothing ? char16_t{0xFFFD} : character;
    // A byte that cannot be a second one (the end of a line, say) is not swallowed.
    if (trail >= kLeastTrailByte) ++i;
  }
  return ToUtf8(units);
}

std::size_t CodePage::WholeCharacters(std::string_view bytes) const {
  if (!IsDoubleByte()) return bytes.size();
  std::size_t at = 0;
  while (at < bytes.size()) {
    const bool isLead = tables_->lead[static_cast<std::uint8_t>(bytes[at])];
    if (isLead && at + 1 == bytes.size()) return at;
    at += isLead && static_cast<std::uint8_t>(bytes[at + 1]) >= kLeastTrailByte ? 2 : 1;
  }
  return at;
}

std::optional<std::string> CodePage::Encode(std::string_view text) const {
  std::string bytes;
  for (const char16_t unit : ToUtf16(text)) {
    const auto found = tables_->codes.find(unit);
    if (found == tables_->codes.end()) return std::nullopt;
    bytes += PairBytes(found->second);
  }
  return bytes;
}

std::string CodePage::EncodeLossy(std::string_view text) const {
  std::string bytes;
  const std::u16string units = ToUtf16(text);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto found = tables_->codes.find(units[i]);
    if (found != tables_->codes.end()) {
      bytes += PairBytes(found->second);
      continue;
    }
    bytes += '?';
    const bool pair = (units[i] & 0xFC00) == 0xD800 && i + 1 < units.size() && (units[i + 1] & 0xFC00) == 0xDC00;
    if (pair) ++i;
  }
  return bytes;
}

}  // namespace quillbox
