// SPDX-License-Identifier: GPL-3.0-or-later
// The registry files of Windows 95, 98 and Me ("CREG"): SYSTEM.DAT, USER.DAT, and CLASSES.DAT of Windows Me. They are
// read only; what is read fills a hive like any other.
#pragma once

#include "registry/hive_data.h"
#include "text/code_page.h"

namespace quillbox {

/// Makes `hive`, which has only a name, a hive of version 1.3 with all that the root key of `file` leads to. Names and
/// texts are converted from `codePage`; keys are ordered as hives order them. Texts get the NUL that this family leaves
/// out, since every reader of a registry counts on it. With DamagedParts::Refuse the first fault is thrown as an Error
/// with its place; with LeaveOut faults are noted in HiveData::damage, and only a file without a root key, or one that
/// does not fit into a hive, is an Error.
///
/// Time and memory are in proportion to the size of the file.
void ReadCreg(HiveData& hive, ByteView file, const CodePage& codePage, DamagedParts damaged);

}  // namespace quillbox
