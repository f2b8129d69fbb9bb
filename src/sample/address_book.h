// SPDX-License-Identifier: GPL-3.0-or-later
// The sample's address book: invented people with all that a book can say about them, lists of them, and a record that
// was deleted.
#pragma once

#include <cstddef>

#include "sample/wab_writer.h"

namespace quillbox {

struct SampleBookOptions {
  WabTextForm form = WabTextForm::Wide;
  WabRoom room = WabRoom::Usual;
  std::size_t morePeople = 0;  ///< people with a name and an address besides those that are always there
};

/// A .wab file. Always there are, in this order: four people (records 1 to 4), a deleted one (5), and three groups (6
/// to 8), the last one with another in it.
Bytes SampleAddressBook(const SampleBookOptions& options = {});

}  // namespace quillbox
