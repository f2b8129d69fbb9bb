// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/store_export.h"

#include <optional>
#include <utility>

#include "export/file_source.h"
#include "mail/message_header.h"
#include "text/error.h"

namespace quillbox {
namespace {

/// A message up to this size is kept in memory between reading and writing; a longer one is read twice.
constexpr std::size_t kMostHeld = std::size_t{4} * 1024 * 1024;
/// More damage of a store is not put into words.
constexpr std::size_t kMaxDamageListed = 100;

using TextReader = std::function<TextResult(const TextSink&)>;

/// One message on its way.
class Passing {
 public:
  /// `text` is room for its text, and has it afterwards.
  Passing(TextReader read, std::string& text) : read_(std::move(read)), text_(text) { text_.clear(); }

  void Load() {
    result_ = read_([this](std::string_view piece) {
      collector_.Add(piece);
      if (tooLong_) return;
      tooLong_ = text_.size() + piece.size() > kMostHeld;
      tooLong_ ? text_.clear() : static_cast<void>(text_.append(piece));
    });
    header_ = collector_.Header();
    identity_ = collector_.Finish();
  }
  const TextResult& Result() const { return result_; }
  const MessageHeader& Header() const { return header_; }
  const MessageIdentity& Identity() const { return identity_; }

  void WriteTo(FolderTarget& target, const StoredMessage& stored) const {
    target.Begin({stored, header_, identity_});
    if (tooLong_) {
      read_([&](std::string_view piece) { target.Write(piece); });
    } else {
      target.Write(text_);
    }
    target.End();
  }

 private:
  TextReader read_;
  TextResult result_;
  IdentityCollector collector_;
  MessageHeader header_;
  MessageIdentity identity_;
  std::string& text_;
  bool tooLong_ = false;
};

class StoreRun {
 public:
  StoreRun(FileSource& source, const CodePage& page, ExportProgress& progress, const StoreExport::Places& places)
      : source_(source), page_(page), progress_(progress), places_(places) {}

  void Run(const std::string& shownName, bool recover, StoreResult& result);

 private:
  void ExportMessage(std::uint32_t entry);
  void Fail(MessageEnd end, const StoredMessage& stored, const StoreDamage& damage);
  bool IsKnown(const MessageIdentity& message, const FolderTarget& target) const;
  void WriteWhole(const Passing& message, const StoredMessage& stored);
  void WriteRecovered(const Passing& message, const StoredMessage& stored);
  void ExportRecovered(bool recover);
  void TakeBooks();

  FileSource& source_;
  const CodePage& page_;
  ExportProgress& progress_;
  const StoreExport::Places& places_;
  StoreReader store_{source_};
  StoreSurvey survey_{store_};
  StoreResult* result_ = nullptr;
  std::string text_;  ///< room for that of one message after the other
};

void StoreRun::Run(const std::string& shownName, bool recover, StoreResult& result) {
  result_ = &result;
  if (store_.Kind() != StoreKind::Messages && store_.Kind() != StoreKind::OutlookExpress4) {
    result.fault = "it is not a store of messages";
    return;
  }
  if (const auto count = store_.CountInHeader()) result.inHeader = *count;
  result.inIndex = store_.Entries().size();
  progress_.BeginStore(shownName, source_.Size(), result.inIndex);
  for (const std::uint32_t entry : store_.Entries()) {
    ExportMessage(entry);
    progress_.MessageDone();
  }
  survey_.Finish();
  ExportRecovered(recover);
  TakeBooks();
  progress_.EndStore();
}

void StoreRun::ExportMessage(std::uint32_t entry) {
  const auto read = survey_.ReadMessage(entry);
  if (const auto* damage = std::get_if<StoreDamage>(&read)) {
    return result_->Note({MessageEnd::Unreadable, entry, {}, Describe(*damage)});
  }
  auto stored = std::get<StoredMessage>(read);
  const StoredMessage original = stored;
  bool first = true;
  const auto readText = [&](const TextSink& sink) {
    // The books take a text once; a long message is read again from the store itself.
    return std::exchange(first, false) ? survey_.ReadText(original, sink) : store_.ReadText(original, sink);
  };
  Passing message(readText, text_);
  message.Load();
  CompleteFromHeader(stored, message.Header());
  const auto& damage = message.Result().damage;
  if (!damage) return WriteWhole(message, stored);
  if (damage->reason == DamageReason::NoText) return Fail(MessageEnd::NoText, stored, *damage);
  if (message.Result().length == 0) return Fail(MessageEnd::Unreadable, stored, *damage);
  WriteRecovered(message, stored);
  Fail(MessageEnd::Partly, stored, *damage);
}

void StoreRun::Fail(MessageEnd end, const StoredMessage& stored, const StoreDamage& damage) {
  result_->Note({end, stored.offset, DecodeWords(stored.subject, page_).text, Describe(damage)});
}

bool StoreRun::IsKnown(const MessageIdentity& message, const FolderTarget& target) const {
  return target.WasThere(message) || (places_.isCopy && places_.merged && places_.merged->Has(message));
}

void StoreRun::WriteWhole(const Passing& message, const StoredMessage& stored) {
  const bool isKnown = IsKnown(message.Identity(), places_.box);
  if (places_.merged) places_.merged->Add(message.Identity());
  if (isKnown) {
    ++places_.boxResult.alreadyThere;
    return result_->Note(MessageEnd::AlreadyThere);
  }
  message.WriteTo(places_.box, stored);
  ++places_.boxResult.written;
  result_->Note(MessageEnd::Written);
}

void StoreRun::WriteRecovered(const Passing& message, const StoredMessage& stored) {
  FolderTarget& target = places_.recovered();
  if (target.WasThere(message.Identity())) {
    ++places_.recoveredResult.alreadyThere;
    return;
  }
  message.WriteTo(target, stored);
  ++places_.recoveredResult.written;
}

void StoreRun::ExportRecovered(bool recover) {
  for (const RecoveredMessage& found : survey_.Recovered()) {
    if (found.state == RecoveryState::RecordOnly) {
      ++result_->onlyRecords;
      continue;
    }
    ++result_->recoverable;
    if (!recover) continue;
    progress_.Tick();
    StoredMessage stored = survey_.ReadRecovered(found);
    Passing message([&](const TextSink& sink) { return survey_.ReadRecoveredText(found, sink); }, text_);
    message.Load();
    CompleteFromHeader(stored, message.Header());
    if (message.Result().length != 0) WriteRecovered(message, stored);
  }
}

void StoreRun::TakeBooks() {
  result_->account = survey_.Account();
  for (const StoreDamage& damage : survey_.Damage().Listed()) {
    if (result_->damage.size() == kMaxDamageListed) break;
    result_->damage.push_back(Describe(damage));
  }
  result_->changed = source_.HasChanged();
}

}  // namespace

void StoreExport::Run(StoreResult& result, const std::string& shownName, const Places& places, bool recover) {
  std::optional<FileSource> source;
  try {
    source.emplace(files_, result.file, [this] { progress_.Tick(); });
  } catch (const Error& error) {
    result.fault = error.Why();
    return;
  }
  StoreRun(*source, page_, progress_, places).Run(shownName, recover, result);
}

}  // namespace quillbox
