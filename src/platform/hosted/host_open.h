// SPDX-License-Identifier: GPL-3.0-or-later
// The ways to open a place on the host and to look at it. Beneath a drive no link is followed: the place was found with
// its links resolved, and what has changed since is refused with the reason. Failures are std::system_error; callers
// know the name that a person would recognise, and ReasonOf has the words.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/host_file.h"
#include "host/host_folder.h"
#include "host/new_file.h"
#include "platform/hosted/host_place.h"
#include "platform/hosted/place_finder.h"

namespace quillbox {

/// Opens a folder, for reading its entries where its permissions allow that, else for working on them by name.
HostFolder OpenFolder(const HostPlace& folder);

/// An entry: its folder, open, and its name there.
struct OpenPlace {
  HostFolder folder;
  std::string name;
  Links links = Links::Follow;  ///< how calls on it take a link: followed only where the host follows them

  EntryInfo Info() const { return folder.InfoOf(name, links); }
};
/// Opens the folder that `place` is in. The place itself need not be there; it must not be a root (is_a_directory).
OpenPlace OpenFolderOf(const HostPlace& place);

/// Opens a file for reading, never waiting for a pipe's other end. Beneath a drive it must be an ordinary file.
HostFile OpenForReading(const HostPlace& file);
/// A whole file.
std::string ReadWholeFile(const HostPlace& file);

/// Begins a file. Beneath a drive a target that is a link is refused; anywhere on the host the file that it leads to
/// is replaced.
std::unique_ptr<NewFile> StartNewFile(const HostPlace& target);
/// True for a device, pipe or socket, which is written to and never replaced. There are none beneath a drive.
bool IsStream(const HostPlace& file);

/// Removes what killed programs have left in a folder, if it can be opened.
void RemoveAbandonedFilesIn(const HostPlace& folder);

/// What is there, or nothing. Anywhere on the host links are followed.
std::optional<EntryInfo> InfoOf(const HostPlace& place);
bool IsFolder(const HostPlace& place);
/// True when both places are there and are one.
bool IsSameEntry(const HostPlace& a, const HostPlace& b);

}  // namespace quillbox
