// SPDX-License-Identifier: GPL-3.0-or-later
// The check of message stores and lists of folders: every message of the index is read, and every byte accounted for.
#include <string>
#include <variant>

#include "core/copy_tally.h"
#include "inspection/file_check.h"
#include "mail/store_survey.h"

namespace quillbox {
namespace {

void AddFaults(const DamageList& damage, InspectedFile& file) {
  for (const StoreDamage& one : damage.Listed()) file.AddFault(Describe(one));
  const std::uint64_t more = damage.Count() - damage.Listed().size();
  file.faultCount += more;
}

/// Reads all messages; how many have no text because it was never downloaded.
std::size_t ReadMessages(StoreReader& store, StoreSurvey& survey) {
  std::size_t withoutText = 0;
  for (const std::uint32_t entry : store.Entries()) {
    const auto read = survey.ReadMessage(entry);
    const auto* message = std::get_if<StoredMessage>(&read);
    if (message == nullptr) continue;
    const TextResult text = survey.ReadText(*message, [](std::string_view) {});
    if (text.damage && text.damage->reason == DamageReason::NoText) ++withoutText;
  }
  return withoutText;
}

void CompareCounts(StoreReader& store, InspectedFile& file) {
  const std::size_t inIndex = store.Entries().size();
  const auto inHeader = store.CountInHeader();
  if (!inHeader || *inHeader == inIndex) return;
  file.AddFault("the header counts " + std::to_string(*inHeader) + ", and the index leads to " +
                std::to_string(inIndex));
}

}  // namespace

FileFindings CheckStore(PositionedSource& source, const CodePage& page, InspectedFile& file) {
  StoreReader store(source);
  if (store.Kind() == StoreKind::Other) {
    AddFaults(store.Damage(), file);
    return {};
  }
  StoreSurvey survey(store);
  FileFindings findings;
  if (store.Kind() == StoreKind::FolderList) {
    survey.ReadAll();
    FolderList list = ReadFolderList(store, page);
    file.contents = CountOf(list.folders.size(), " folder", " folders");
    findings.folders = std::move(list.folders);
    AddFaults(list.damage, file);
  } else {
    const std::size_t withoutText = ReadMessages(store, survey);
    file.contents = CountOf(store.Entries().size(), " message", " messages");
    if (withoutText > 0) file.contents += ", " + std::to_string(withoutText) + " of them never downloaded";
  }
  survey.Finish();
  // The list of folders has found what the survey finds as well.
  if (findings.folders.empty() || file.faultCount == 0) AddFaults(survey.Damage(), file);
  CompareCounts(store, file);
  if (const std::uint64_t bytes = survey.Account().Of(ByteUse::Damage); bytes > 0 && file.faultCount == 0) {
    file.AddFault(std::to_string(bytes) + " bytes of it are damaged");
  }
  return findings;
}

}  // namespace quillbox
