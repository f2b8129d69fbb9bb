// SPDX-License-Identifier: GPL-3.0-or-later
// The files of the sample's message stores: which there are and what is in each.
#pragma once

#include <string>
#include <vector>

#include "text/unicode.h"

namespace quillbox {

struct NamedFile {
  std::string name;
  Bytes bytes;
};

/// The store files of an identity by its place in SampleIdentities(); none for one that was never started. With
/// `small` no store holds more than a few messages.
std::vector<NamedFile> StoreFiles(std::size_t identity, bool small);

}  // namespace quillbox
