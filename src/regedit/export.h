// SPDX-License-Identifier: GPL-3.0-or-later
// Exports: a key with everything below it as the bytes of a registry file, which is never in memory as a whole.
//
// Text that the 8-bit form cannot hold is never turned into question marks: where one name or text of the exported
// keys does not fit into the system's code page, the whole file is written in the Unicode form, which the editor reads
// just as well, and the result says where the first such text is.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/registry.h"
#include "registry/reg_file.h"

namespace quillbox {

using TakeBytes = std::function<void(std::string_view bytes)>;

struct ExportedKeys {
  RegFileForm form = RegFileForm::Unicode5;  ///< the form that the file has
  std::string firstLoss;  ///< what the 8-bit form could not hold (`[key] "name"`); empty when the form is the asked one
  std::size_t keys = 0;
  std::size_t values = 0;
};

/// Keys come depth first in the registry's order, values in stored order; the names of roots are written in full, the
/// rest of `path` as given. Throws Error when the key does not exist or something below it cannot be read: an export
/// is whole or is not made, so what was written must be dropped then.
///
/// `write` gets the file piece by piece. The 8-bit form is composed twice, first without writing, to know whether it
/// can hold everything.
ExportedKeys ExportKey(Registry& registry, const RegistryPath& path, RegFileForm form, const CodePage& codePage,
                       const TakeBytes& write);

}  // namespace quillbox
