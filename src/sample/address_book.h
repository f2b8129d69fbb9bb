// An address book file for the sample: the real signature, an index of names and a record for each person.
#pragma once

#include "text/unicode.h"

namespace quillbox {

/// A .wab file with `people` invented entries.
Bytes AddressBook(std::size_t people);

}  // namespace quillbox
