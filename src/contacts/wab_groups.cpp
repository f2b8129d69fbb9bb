// SPDX-License-Identifier: GPL-3.0-or-later
#include "contacts/wab_groups.h"

#include <algorithm>

#include "text/byte_order.h"

namespace quillbox {
namespace {

template <class T>
void SortAndDropDoubles(std::vector<T>& list) {
  std::sort(list.begin(), list.end());
  list.erase(std::unique(list.begin(), list.end()), list.end());
}

template <class T>
std::unordered_map<std::uint32_t, std::size_t> PlacesOf(const std::vector<T>& list) {
  std::unordered_map<std::uint32_t, std::size_t> places;
  for (std::size_t at = 0; at < list.size(); ++at) places.emplace(list[at].recordId, at);
  return places;
}

class GroupResolver {
 public:
  GroupResolver(ContactBook& book, const std::vector<RawGroup>& raw, const AddFault& addFault)
      : book_(book),
        raw_(raw),
        addFault_(addFault),
        contacts_(PlacesOf(book.contacts)),
        groups_(PlacesOf(book.groups)) {}

  void FindMembers(const EntryIds& entryIds) {
    for (std::size_t at = 0; at < book_.groups.size(); ++at) {
      for (const Bytes& member : raw_[at].members) AddMember(at, member, entryIds);
      SortAndDropDoubles(book_.groups[at].contacts);
      SortAndDropDoubles(book_.groups[at].groups);
    }
  }

  /// Walks the groups depth first with a stack of its own. A member that is on the stack is a loop and is taken out; a
  /// group is complete when all below it are.
  void CutLoopsAndComplete() {
    states_.assign(book_.groups.size(), State::New);
    for (std::size_t root = 0; root < book_.groups.size(); ++root) {
      if (states_[root] != State::New) continue;
      Enter(root);
      while (!path_.empty()) Step();
    }
  }

 private:
  enum class State { New, OnPath, Done };
  static constexpr auto kLoop = static_cast<std::size_t>(-1);  ///< instead of a member that was a loop
  struct Level {
    std::size_t group;
    std::size_t next = 0;
  };

  void Fault(std::size_t group, BookPart part, BookFaultKind kind) {
    addFault_({.part = part, .kind = kind, .offset = raw_[group].offset, .recordId = book_.groups[group].recordId});
  }

  void AddMember(std::size_t group, const Bytes& member, const EntryIds& entryIds) {
    const auto own = entryIds.find(EntryKey(member));
    if (own == entryIds.end() && (member.size() < 4 || member.size() > kLongestEntryId)) {
      return Fault(group, BookPart::Member, BookFaultKind::UnknownMember);
    }
    // An id that no record names as its own is the record's number, or ends with it.
    const std::uint32_t id = own != entryIds.end() ? own->second : Load32(&member[member.size() - 4]);
    if (const auto contact = contacts_.find(id); contact != contacts_.end()) {
      book_.groups[group].contacts.push_back(contact->second);
    } else if (const auto inner = groups_.find(id); inner != groups_.end()) {
      book_.groups[group].groups.push_back(inner->second);
    } else {
      Fault(group, BookPart::Member, BookFaultKind::NoSuchMember);
    }
  }

  void Enter(std::size_t group) {
    states_[group] = State::OnPath;
    path_.push_back({group});
  }

  void Step() {
    Level& level = path_.back();
    std::vector<std::size_t>& inner = book_.groups[level.group].groups;
    if (level.next == inner.size()) {
      Complete(level.group);
      path_.pop_back();
      return;
    }
    const std::size_t child = inner[level.next];
    if (states_[child] == State::OnPath) {
      Fault(child, BookPart::Group, BookFaultKind::Loop);
      inner[level.next] = kLoop;
    }
    ++level.next;
    if (states_[child] == State::New) Enter(child);
  }

  void Complete(std::size_t at) {
    states_[at] = State::Done;
    ContactGroup& group = book_.groups[at];
    std::erase(group.groups, kLoop);
    std::size_t added = 0;
    for (const std::size_t inner : group.groups) added += book_.groups[inner].everyone.size();
    group.everyone = group.contacts;
    if (added > kMostMemberships - memberships_) return Fault(at, BookPart::Group, BookFaultKind::TooMany);
    memberships_ += added;
    for (const std::size_t inner : group.groups) {
      const std::vector<std::size_t>& more = book_.groups[inner].everyone;
      group.everyone.insert(group.everyone.end(), more.begin(), more.end());
    }
    SortAndDropDoubles(group.everyone);
  }

  ContactBook& book_;
  const std::vector<RawGroup>& raw_;
  const AddFault& addFault_;
  std::unordered_map<std::uint32_t, std::size_t> contacts_, groups_;
  std::vector<State> states_;
  std::vector<Level> path_;
  std::size_t memberships_ = 0;  ///< those that came with inner groups, before doubles were dropped
};

}  // namespace

void ResolveGroups(ContactBook& book, const std::vector<RawGroup>& raw, const EntryIds& entryIds,
                   const AddFault& addFault) {
  GroupResolver resolver(book, raw, addFault);
  resolver.FindMembers(entryIds);
  resolver.CutLoopsAndComplete();
}

}  // namespace quillbox
