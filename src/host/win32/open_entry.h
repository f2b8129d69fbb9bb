// SPDX-License-Identifier: GPL-3.0-or-later
// Opening entries of folders, and what an open one is.
#pragma once

#include <windows.h>

#include <optional>
#include <system_error>

#include "host/entry.h"
#include "host/host_folder.h"
#include "host/host_handle.h"
#include "host/host_path.h"

namespace quillbox {

/// What everybody else may do meanwhile.
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct OpenMode {
  DWORD access = GENERIC_READ;
  DWORD share = kShareAll;
};

/// A handle, or why there is none.
struct Opened {
  HostHandle handle;
  std::error_code fault;
};
/// The handle; throws std::system_error where there is none.
HostHandle OrThrow(Opened opened);

/// Opens a file or folder that is there. With Links::Keep a link fails with too_many_symbolic_link_levels; other
/// reparse points, which stand for the files of cloud drives and the like, are the files themselves.
Opened OpenThere(const HostPath& path, const OpenMode& mode, Links links);
/// Opens the entry itself, a link too, as far as is needed to ask what it is; that is hardly ever refused.
Opened OpenForFacts(const HostPath& path, Links links);
/// Opens a folder, so that neither it nor what is above it can get another name or be replaced until it is closed.
Opened OpenAsFolder(const HostPath& path, Links links, FolderUse use);

/// True for symbolic links, junctions, mounted volumes, and all else that stands for another name.
bool IsLink(DWORD attributes, DWORD tag);
/// The same for something open.
bool IsLink(HANDLE entry);

/// What is open; throws std::system_error.
EntryInfo InfoOfHandle(HANDLE entry);
/// What this program makes up about a folder that only it shows.
EntryInfo InfoOfVirtual(const HostPath& folder);

/// Its path without links; nothing where the file system does not say it.
std::optional<HostPath> PathOfHandle(HANDLE entry);

HostTime TimeOf(const FILETIME& time);
FILETIME FileTimeOf(const HostTime& time);

}  // namespace quillbox
