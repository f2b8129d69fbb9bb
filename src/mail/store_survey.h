// SPDX-License-Identifier: GPL-3.0-or-later
// The books of one store: every message read through it is noted with the bytes that it takes, and at the end every
// byte of the file is accounted for, and what nothing leads to has been found. So an export keeps the books while it
// reads, and the file is read once.
#pragma once

#include "mail/deleted_pieces.h"
#include "mail/store_reader.h"

namespace quillbox {

class StoreSurvey {
 public:
  /// `store` must outlive the survey. Walks the tree.
  explicit StoreSurvey(StoreReader& store);

  /// All texts together that are given out, as a multiple of the file's size. In a sound store each byte belongs to one
  /// message; without a limit, a store whose messages share one long text would fill any disk.
  static constexpr std::uint64_t kMaxTextPerFile = 4;

  /// As those of StoreReader, noted.
  std::variant<StoredMessage, StoreDamage> ReadMessage(std::uint32_t entry);
  TextResult ReadText(const StoredMessage& message, const TextSink& sink);

  /// Reads the messages that `entries` names without a use for their text, for those who want the account only.
  void ReadAll();

  /// After every entry was read: closes the books. Only then is what follows complete.
  void Finish();
  /// Adds up to the file's size, whatever the file holds.
  StoreAccount Account() const;
  const std::vector<RecoveredMessage>& Recovered() const { return recovered_; }
  /// All damage: of the tree, of the messages read, and of the accounting.
  const DamageList& Damage() const { return damage_; }

  /// What the record of a recovered message says. Without a record: where its text is, and nothing else.
  StoredMessage ReadRecovered(const RecoveredMessage& message);
  /// As much of its text as is there. No damage: the message's state says what it is.
  TextResult ReadRecoveredText(const RecoveredMessage& message, const TextSink& sink);

 private:
  void ClaimIndex();
  void ClaimDamage();
  void ClaimOldMessage(const StoredMessage& message);

  StoreReader& store_;
  StoreExtents extents_;
  DamageList damage_;
  std::vector<RecoveredMessage> recovered_;
  std::uint64_t textLength_ = 0;  ///< given out so far
};

}  // namespace quillbox
