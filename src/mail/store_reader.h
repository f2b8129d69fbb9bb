// SPDX-License-Identifier: GPL-3.0-or-later
// A message store: what kind it is, how many messages there are, and each of them in the tree's order. Nothing that a
// file holds makes this throw; what cannot be read is reported and the rest goes on. Memory: four bytes a message, one
// message's record, and a window of the file.
#pragma once

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

#include "mail/segment_chain.h"
#include "mail/store_tree.h"
#include "mail/stored_message.h"

namespace quillbox {

enum class StoreKind {
  Messages,
  FolderList,
  Other,            ///< holds neither (Offline.dbx, Pop3uidl.dbx)
  OutlookExpress4,  ///< messages in the older form, some of them named .dbx
  NotAStore,
};

class StoreReader {
 public:
  /// Reads the header only. `source` must outlive the reader.
  explicit StoreReader(PositionedSource& source);

  StoreKind Kind() const { return kind_; }
  std::uint64_t FileSize() const { return input_.Size(); }
  /// How many entries the header promises; nothing where the header is cut off or the file isn't a store.
  std::optional<std::uint32_t> CountInHeader() const { return countInHeader_; }

  /// The records in their order: what is counted, and what ReadMessage takes. Walks the tree at the first call, and
  /// reads its nodes only (for Outlook Express 4: the messages' heads).
  const std::vector<std::uint32_t>& Entries();
  /// Damage of header and tree; complete after Entries().
  const DamageList& Damage() const { return damage_; }

  /// One of the entries. Damage when its record cannot be read.
  std::variant<StoredMessage, StoreDamage> ReadMessage(std::uint32_t entry);
  /// The fields of an entry of any store of Outlook Express 5 and 6.
  std::variant<StoreRecord, StoreDamage> ReadRecord(std::uint32_t entry);
  /// The message as it came over the wire (RFC 822), in pieces. A message without a place of its text is damage, with
  /// the reason NoText.
  TextResult ReadText(const StoredMessage& message, const TextSink& sink);

  /// For those who look at the store's parts.
  StoreInput& Input() { return input_; }
  /// The tree's nodes that were read by Entries().
  const std::vector<std::uint32_t>& Nodes() const { return nodes_; }
  /// The root of one of the trees; 0 for an empty one or a header that is cut off.
  std::uint32_t TreeRoot(std::size_t tree);

 private:
  std::optional<std::uint32_t> HeaderNumber(std::size_t offset);

  StoreInput input_;
  StoreKind kind_;
  std::optional<std::uint32_t> countInHeader_;
  DamageList damage_;
  bool walked_ = false;
  std::vector<std::uint32_t> entries_;
  std::vector<std::uint32_t> nodes_;
};

}  // namespace quillbox
