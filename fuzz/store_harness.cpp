// SPDX-License-Identifier: GPL-3.0-or-later
// An untrusted message store: read whole, with the deleted messages, its folders and the account of its bytes.
#include <algorithm>
#include <array>

#include "harness.h"
#include "mail/folder_list.h"
#include "mail/store_survey.h"
#include "sample/dbx_writer.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

constexpr std::size_t kLimit = std::size_t{64} * 1024;
constexpr std::size_t kHeader = 0x24BC;

void RequireFolders(StoreReader& store) {
  static const CodePage kWestern(1252);
  const FolderList list = ReadFolderList(store, kWestern);
  for (std::size_t i = 0; i < list.folders.size(); ++i) {
    const MailFolder& folder = list.folders[i];
    Require(!folder.parent || *folder.parent < i, "a folder comes after its parent");
    Require(IsInnerText(folder.name), "a folder's name is text");
    Require(PathTo(list, i).back() == i, "a folder's path ends with it");
  }
}

void RunStore(ByteView input) {
  MemorySource source(input);
  StoreReader store(source);
  StoreSurvey survey(store);
  std::vector<std::uint32_t> entries = store.Entries();
  std::sort(entries.begin(), entries.end());
  Require(std::adjacent_find(entries.begin(), entries.end()) == entries.end(), "no message is listed twice");
  std::uint64_t given = 0;
  const auto count = [&](std::string_view piece) { given += piece.size(); };
  for (const std::uint32_t entry : store.Entries()) {
    const auto read = survey.ReadMessage(entry);
    const auto* message = std::get_if<StoredMessage>(&read);
    if (message == nullptr || store.Kind() == StoreKind::FolderList) continue;
    given = 0;
    const TextResult text = survey.ReadText(*message, count);
    Require(text.length == given && given <= input.size(), "a text has each byte of the file once at most");
  }
  survey.Finish();
  Require(survey.Account().Total() == input.size(), "every byte is accounted for");
  std::uint64_t recovered = 0;
  for (const RecoveredMessage& message : survey.Recovered()) {
    given = 0;
    const TextResult text = survey.ReadRecoveredText(message, count);
    Require(!text.damage, "a recovered text can be read as far as it was found");
    Require(text.length == given, "a text's length is what was given out");
    Require(message.segments == 0 ? given == 0 : given != 0, "segments have text");
    survey.ReadRecovered(message);
    recovered += given;
  }
  Require(recovered <= survey.Account().Of(ByteUse::Deleted), "recovered texts come from deleted pieces");
  for (const StoreDamage& damage : survey.Damage().Listed()) Require(!Describe(damage).empty(), "damage has words");
  if (store.Kind() == StoreKind::FolderList) RequireFolders(store);
}

/// A number as a damaged or hostile store may have it.
std::uint32_t OddNumber(const Bytes& input, const std::vector<std::size_t>& parts, std::uint32_t old,
                        Mutation& mutation) {
  const std::array<std::uint32_t, 8> numbers = {
      0,       0xFFFFFFFF, static_cast<std::uint32_t>(input.size()), 0x200,
      old + 4, old - 4,    old ^ 1U << mutation.Below(32),           old << 8 | 0x84};
  if (!parts.empty() && mutation.OneIn(2)) return static_cast<std::uint32_t>(parts[mutation.Below(parts.size())]);
  return numbers[mutation.Below(numbers.size())];
}

/// Changes a number near the beginning of a part, mostly.
void MutateStore(Bytes& input, std::size_t limit, Mutation& mutation) {
  if (mutation.OneIn(8) || input.size() < kHeader) return mutation.ByEngine(input, limit);
  if (mutation.OneIn(16)) return input.resize(mutation.Below(input.size()));
  std::vector<std::size_t> parts;
  for (std::size_t at = kHeader; at + 4 <= input.size(); at += 4) {
    if (Load32(&input[at]) == at) parts.push_back(at);
  }
  constexpr std::array<std::size_t, 5> kHeaderFields = {4, 0x7C, 0xC4, 0xE4, 0xE8};
  std::size_t at = kHeaderFields[mutation.Below(kHeaderFields.size())];
  if (!parts.empty() && !mutation.OneIn(8)) at = parts[mutation.Below(parts.size())] + mutation.Below(24) * 4;
  if (at + 4 <= input.size()) Store32(&input[at], OddNumber(input, parts, Load32(&input[at]), mutation));
}

std::vector<DbxMessage> Letters(std::size_t count) {
  std::vector<DbxMessage> letters(count);
  for (std::size_t i = 0; i < count; ++i) {
    letters[i].text = "Subject: a\r\n\r\n" + std::string(i * 311 % 1400, 'x');
    letters[i].subject = "a";
    letters[i].deleted = i % 3 == 2;
  }
  return letters;
}

std::vector<Seed> StoreSeeds() {
  const Bytes store = MessageStore(Letters(9));
  Bytes pages = MessageStore(Letters(2));
  pages.resize(pages.size() + 0x1000);
  pages.insert(pages.end(), store.begin() + kHeader, store.end());
  std::vector<DbxMessage> many(60);
  for (DbxMessage& message : many) message.text = "A: b\r\n\r\n";
  return {{"messages", store},
          {"pages-of-another", pages},
          {"two-levels", MessageStore(many)},
          {"empty", MessageStore({})},
          {"folders", FolderListFile({{{.id = 0, .name = "top", .tree = 4},
                                       {.id = 1, .parent = 0, .name = "local", .file = "a.dbx"},
                                       {.id = 2, .parent = 1, .name = "in", .messages = 3, .special = 1}}})},
          {"other", EmptyStore(DbxKind::Pop3Ids)},
          {"old", OldMessageStore({{"Subject: a\r\n\r\nb\r\n", "Subject: c\r\n\r\n", ""}})}};
}

}  // namespace

const Harness kStoreHarness = {"store", kLimit, RunStore, StoreSeeds, MutateStore};

}  // namespace quillbox
