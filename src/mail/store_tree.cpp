// SPDX-License-Identifier: GPL-3.0-or-later
#include "mail/store_tree.h"

#include <algorithm>
#include <array>
#include <unordered_set>

#include "mail/store_layout.h"
#include "text/byte_order.h"

namespace quillbox {
namespace {

class TreeWalk {
 public:
  explicit TreeWalk(StoreInput& input) : input_(input) {}

  StoreTree Run(std::uint32_t root) {
    if (root != 0) Enter({root, 0});
    while (!path_.empty() && !full_) {
      Node& node = path_.back();
      if (const auto child = node.NextChild()) {
        Enter(*child);
      } else if (node.next < node.count) {
        AddEntry(node);
      } else {
        path_.pop_back();
      }
    }
    DropRepeatedRecords();
    return std::move(tree_);
  }

 private:
  /// A child as its parent names it.
  struct Child {
    std::uint32_t offset;
    std::uint32_t entries;  ///< that are said to be below it
  };

  struct Node {
    std::uint32_t offset = 0;
    std::array<std::uint8_t, kNodeSize> bytes = {};
    std::size_t count = 0;
    std::size_t next = 0;     ///< the entry whose turn it is
    bool childIsNext = true;  ///< the child before that entry comes first

    std::size_t EntryAt(std::size_t entry) const { return kNodeEntriesAt + entry * kNodeEntrySize; }
    /// The child between the last entry and the next one, once.
    std::optional<Child> NextChild() {
      if (!childIsNext) return std::nullopt;
      childIsNext = false;
      const std::uint8_t* at = next == 0 ? &bytes[kNodeFirstChildAt] : &bytes[EntryAt(next - 1) + 4];
      const std::uint8_t* entriesAt = next == 0 ? &bytes[kNodeEntriesAt - 4] : at + 4;
      const Child child{Load32(at), Load32(entriesAt)};
      return child.offset == 0 ? std::nullopt : std::optional(child);
    }
  };

  void AddEntry(Node& node) {
    if (tree_.records.size() == kMaxStoreEntries) {
      tree_.damage.Add({node.offset, StorePart::TreeNode, DamageReason::TooMany});
      full_ = true;
      return;
    }
    tree_.records.push_back(Load32(&node.bytes[node.EntryAt(node.next)]));
    ++node.next;
    node.childIsNext = true;
  }

  void Enter(Child child) {
    Node node;
    node.offset = child.offset;
    if (auto fault = Load(node)) {
      if (child.entries != 0) fault->detail += (fault->detail.empty() ? "" : ", ") + EntriesText(child.entries);
      tree_.damage.Add(fault->At(child.offset, StorePart::TreeNode));
      return;
    }
    tree_.nodes.push_back(child.offset);
    path_.push_back(node);
  }

  static std::string EntriesText(std::uint32_t entries) {
    return std::to_string(entries) + (entries == 1 ? " entry was below it" : " entries were below it");
  }

  std::optional<ReadFault> Load(Node& node) {
    if (path_.size() == kMaxTreeDepth) return ReadFault{DamageReason::TooDeep};
    const auto read = input_.Read(node.offset, kNodeSize);
    if (const auto* fault = std::get_if<ReadFault>(&read)) return *fault;
    std::copy_n(std::get<ByteView>(read).begin(), kNodeSize, node.bytes.begin());
    if (Load32(node.bytes.data()) != node.offset) return ReadFault{DamageReason::WrongOwnOffset};
    node.count = node.bytes[kNodeCountAt];
    if (node.count > kMaxNodeEntries) return ReadFault{DamageReason::BadLength};
    if (!IsFirstVisit(node.offset)) return ReadFault{DamageReason::UsedTwice};
    return std::nullopt;
  }

  /// Nodes don't overlap, so no two of them begin in the same stretch of a node's length.
  bool IsFirstVisit(std::uint32_t offset) {
    const std::size_t stretch = offset / kNodeSize;
    if (visited_.size() <= stretch) visited_.resize(stretch + 1);
    if (visited_[stretch]) return false;
    visited_[stretch] = true;
    return true;
  }

  void DropRepeatedRecords() {
    std::vector<std::uint32_t> sorted = tree_.records;
    std::sort(sorted.begin(), sorted.end());
    std::unordered_set<std::uint32_t> repeated;
    for (std::size_t i = 1; i < sorted.size(); ++i) {
      if (sorted[i] == sorted[i - 1]) repeated.insert(sorted[i]);
    }
    if (repeated.empty()) return;
    std::unordered_set<std::uint32_t> seen;
    std::erase_if(tree_.records, [&](std::uint32_t record) {
      if (!repeated.contains(record) || seen.insert(record).second) return false;
      tree_.damage.Add({record, StorePart::Record, DamageReason::UsedTwice});
      return true;
    });
  }

  StoreInput& input_;
  std::vector<Node> path_;
  std::vector<bool> visited_;
  bool full_ = false;
  StoreTree tree_;
};

}  // namespace

StoreTree WalkTree(StoreInput& input, std::uint32_t root) {
  return TreeWalk(input).Run(root);
}

}  // namespace quillbox
