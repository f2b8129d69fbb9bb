#include "sample/address_book.h"

#include <array>

#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::array<std::uint8_t, 16> kSignature = {0x9C, 0xCB, 0xCB, 0x8D, 0x13, 0x75, 0xD2, 0x11,
                                                     0x91, 0x58, 0x00, 0xC0, 0x4F, 0x79, 0x56, 0xA4};
constexpr std::size_t kHeaderSize = 0x800;
constexpr std::size_t kIndexNameSize = 64;  // bytes of UTF-16, padded with zeros
constexpr std::size_t kIndexEntrySize = kIndexNameSize + 4;
constexpr std::size_t kRecordAlignment = 0x80;

constexpr std::string_view kFirstNames[] = {"Ada", "Björn", "Chloé", "Dana", "Emil", "Fatima", "Grace", "Henrik"};
constexpr std::string_view kLastNames[] = {"Abbott", "Bauer", "Castro", "Dubois", "Eriksson", "Fischer", "Greene"};

// Property tags of a person's record, all of them Unicode texts.
constexpr std::uint32_t kDisplayName = 0x3001001F;
constexpr std::uint32_t kAddressType = 0x3002001F;
constexpr std::uint32_t kMailAddress = 0x3003001F;
constexpr std::uint32_t kGivenName = 0x3A06001F;
constexpr std::uint32_t kSurname = 0x3A11001F;

void AppendProperty(Bytes& record, std::uint32_t tag, std::string_view text) {
  const Bytes units = Utf16Bytes(ToUtf16(text) + u'\0');
  AppendNumber<4>(record, tag);
  AppendNumber<4>(record, 0);
  AppendNumber<4>(record, 1);
  AppendNumber<4>(record, units.size());
  record.insert(record.end(), units.begin(), units.end());
}

Bytes PersonRecord(std::size_t number, std::string_view first, std::string_view last) {
  Bytes record;
  AppendNumber<4>(record, 0);
  AppendNumber<4>(record, 1);
  AppendNumber<4>(record, number + 1);
  AppendNumber<4>(record, 5);
  AppendProperty(record, kDisplayName, std::string(first) + " " + std::string(last));
  AppendProperty(record, kGivenName, first);
  AppendProperty(record, kSurname, last);
  AppendProperty(record, kAddressType, "SMTP");
  AppendProperty(record, kMailAddress, "person" + std::to_string(number + 1) + "@example.org");
  record.resize((record.size() + kRecordAlignment - 1) / kRecordAlignment * kRecordAlignment);
  return record;
}

}  // namespace

Bytes AddressBook(std::size_t people) {
  Bytes index;
  Bytes records;
  const std::size_t recordsAt = kHeaderSize + people * kIndexEntrySize;
  for (std::size_t i = 0; i < people; ++i) {
    const std::string_view first = kFirstNames[i % std::size(kFirstNames)];
    const std::string_view last = kLastNames[i / std::size(kFirstNames) % std::size(kLastNames)];
    Bytes name = Utf16Bytes(ToUtf16(std::string(first) + " " + std::string(last)));
    name.resize(kIndexNameSize);
    index.insert(index.end(), name.begin(), name.end());
    AppendNumber<4>(index, recordsAt + records.size());
    const Bytes record = PersonRecord(i, first, last);
    records.insert(records.end(), record.begin(), record.end());
  }
  Bytes file(kSignature.begin(), kSignature.end());
  AppendNumber<4>(file, people);
  AppendNumber<4>(file, people);
  AppendNumber<4>(file, kIndexEntrySize);
  AppendNumber<4>(file, kHeaderSize);
  AppendNumber<4>(file, index.size());
  AppendNumber<4>(file, recordsAt);
  file.resize(kHeaderSize);
  file.insert(file.end(), index.begin(), index.end());
  file.insert(file.end(), records.begin(), records.end());
  return file;
}

}  // namespace quillbox
