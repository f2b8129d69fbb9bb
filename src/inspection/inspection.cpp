// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspection/inspection.h"

#include <algorithm>
#include <utility>

namespace quillbox {

void InspectedFile::AddFault(std::string fault) {
  state = CheckState::Damaged;
  if (++faultCount <= kMaxListed) faults.push_back(std::move(fault));
}

bool InspectedFile::IsGood() const {
  return state == CheckState::Whole && (onDisk == DiskMatch::NotAsked || onDisk == DiskMatch::Equal);
}

std::size_t Inspection::Count(CheckState state) const {
  return static_cast<std::size_t>(
      std::count_if(files.begin(), files.end(), [&](const InspectedFile& file) { return file.state == state; }));
}

std::size_t Inspection::Count(DiskMatch match) const {
  return static_cast<std::size_t>(
      std::count_if(files.begin(), files.end(), [&](const InspectedFile& file) { return file.onDisk == match; }));
}

std::size_t Inspection::MissingOfDisk() const {
  return static_cast<std::size_t>(
      std::count_if(notInBackup.begin(), notInBackup.end(), [](const NotInBackup& part) { return !part.isUsual; }));
}

InspectionEnd Inspection::End() const {
  if (cancelled) return InspectionEnd::Cancelled;
  if (Count(CheckState::Damaged) + Count(CheckState::NotReadable) + missing.size() > 0) return InspectionEnd::NotWhole;
  if (!notSeen.empty() || Count(CheckState::NotReached) > 0) return InspectionEnd::NotAllSeen;
  return Count(CheckState::Whole) == 0 ? InspectionEnd::NothingFound : InspectionEnd::Whole;
}

bool Inspection::IsGood() const {
  const ComparisonEnd comparison = Comparison();
  return End() == InspectionEnd::Whole && (comparison == ComparisonEnd::NotAsked || comparison == ComparisonEnd::Equal);
}

ComparisonEnd Inspection::Comparison() const {
  if (!isCompared) return ComparisonEnd::NotAsked;
  if (Count(DiskMatch::Differs) + Count(DiskMatch::NotOnDisk) + MissingOfDisk() > 0) return ComparisonEnd::Different;
  const bool isAll = !cancelled && notSeen.empty() && Count(DiskMatch::Equal) == files.size() && !files.empty();
  return isAll ? ComparisonEnd::Equal : ComparisonEnd::NotAll;
}

}  // namespace quillbox
