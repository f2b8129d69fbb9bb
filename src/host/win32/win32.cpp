// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/win32/win32.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <utility>

#include "host/host_fault.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

/// Errors of the system that no errno says, in its own words.
class SystemWords : public std::error_category {
 public:
  const char* name() const noexcept override { return "windows"; }
  std::string message(int value) const override {
    std::array<wchar_t, 512> buffer = {};
    const DWORD size = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
        static_cast<DWORD>(value), 0, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
    std::wstring_view words(buffer.data(), size);
    while (words.ends_with(L' ') || words.ends_with(L'.')) words.remove_suffix(1);
    return words.empty() ? "system error " + std::to_string(value) : Narrow(words);
  }
};

const std::error_category& SystemCategory() {
  static const SystemWords category;
  return category;
}

// Errors that the headers do not name.
constexpr DWORD kDeletePending = 303;
constexpr DWORD kDataChecksumError = 323;
constexpr DWORD kStoppedOnSymlink = 681;
constexpr DWORD kDiskQuotaExceeded = 1295;

struct ErrnoOf {
  DWORD error;
  std::errc code;
};
constexpr ErrnoOf kErrnos[] = {
    {ERROR_FILE_NOT_FOUND, std::errc::no_such_file_or_directory},
    {ERROR_PATH_NOT_FOUND, std::errc::no_such_file_or_directory},
    {ERROR_INVALID_DRIVE, std::errc::no_such_file_or_directory},
    {ERROR_BAD_PATHNAME, std::errc::no_such_file_or_directory},
    {ERROR_BAD_NETPATH, std::errc::no_such_file_or_directory},
    {ERROR_BAD_NET_NAME, std::errc::no_such_file_or_directory},
    {ERROR_ACCESS_DENIED, std::errc::permission_denied},
    {kDeletePending, std::errc::permission_denied},
    {ERROR_NETWORK_ACCESS_DENIED, std::errc::permission_denied},
    {ERROR_CANNOT_MAKE, std::errc::permission_denied},
    {ERROR_PRIVILEGE_NOT_HELD, std::errc::operation_not_permitted},
    {ERROR_ALREADY_EXISTS, std::errc::file_exists},
    {ERROR_FILE_EXISTS, std::errc::file_exists},
    {ERROR_DIR_NOT_EMPTY, std::errc::directory_not_empty},
    {ERROR_DIRECTORY, std::errc::not_a_directory},
    {ERROR_DISK_FULL, std::errc::no_space_on_device},
    {ERROR_HANDLE_DISK_FULL, std::errc::no_space_on_device},
    {ERROR_WRITE_PROTECT, std::errc::read_only_file_system},
    {ERROR_INVALID_NAME, std::errc::invalid_argument},
    {ERROR_INVALID_PARAMETER, std::errc::invalid_argument},
    {ERROR_NEGATIVE_SEEK, std::errc::invalid_argument},
    {ERROR_NO_UNICODE_TRANSLATION, std::errc::illegal_byte_sequence},
    {ERROR_FILENAME_EXCED_RANGE, std::errc::filename_too_long},
    {ERROR_BUFFER_OVERFLOW, std::errc::filename_too_long},
    {ERROR_FILE_TOO_LARGE, std::errc::file_too_large},
    {ERROR_NOT_SAME_DEVICE, std::errc::cross_device_link},
    {ERROR_TOO_MANY_LINKS, std::errc::too_many_links},
    {ERROR_CANT_RESOLVE_FILENAME, std::errc::too_many_symbolic_link_levels},
    {kStoppedOnSymlink, std::errc::too_many_symbolic_link_levels},
    {ERROR_NOT_SUPPORTED, std::errc::not_supported},
    {ERROR_INVALID_FUNCTION, std::errc::not_supported},
    {ERROR_CALL_NOT_IMPLEMENTED, std::errc::function_not_supported},
    {ERROR_INVALID_HANDLE, std::errc::bad_file_descriptor},
    {ERROR_TOO_MANY_OPEN_FILES, std::errc::too_many_files_open},
    {ERROR_NOT_ENOUGH_MEMORY, std::errc::not_enough_memory},
    {ERROR_OUTOFMEMORY, std::errc::not_enough_memory},
    {ERROR_COMMITMENT_LIMIT, std::errc::not_enough_memory},
    {ERROR_NO_SYSTEM_RESOURCES, std::errc::not_enough_memory},
    {ERROR_BROKEN_PIPE, std::errc::broken_pipe},
    {ERROR_NO_DATA, std::errc::broken_pipe},
    // What disks, their drivers and damaged file systems answer.
    {ERROR_CRC, std::errc::io_error},
    {kDataChecksumError, std::errc::io_error},
    {ERROR_SEEK, std::errc::io_error},
    {ERROR_SECTOR_NOT_FOUND, std::errc::io_error},
    {ERROR_READ_FAULT, std::errc::io_error},
    {ERROR_WRITE_FAULT, std::errc::io_error},
    {ERROR_GEN_FAILURE, std::errc::io_error},
    {ERROR_IO_DEVICE, std::errc::io_error},
    {ERROR_DISK_OPERATION_FAILED, std::errc::io_error},
    {ERROR_SEM_TIMEOUT, std::errc::io_error},
    {ERROR_FILE_CORRUPT, std::errc::io_error},
    {ERROR_DISK_CORRUPT, std::errc::io_error},
};

constexpr DWORD kInUse[] = {ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION, ERROR_USER_MAPPED_FILE};

/// The words of every other host for errnos that the C runtime here has none for.
struct Words {
  std::errc code;
  const char* text;
};
constexpr Words kWords[] = {
    {std::errc::too_many_symbolic_link_levels, "Too many levels of symbolic links"},
    {std::errc::filename_too_long, "File name too long"},
    {std::errc::io_error, "Input/output error"},
    {std::errc::cross_device_link, "Invalid cross-device link"},
    {std::errc::not_supported, "Operation not supported"},
    {std::errc::illegal_byte_sequence, "Invalid or incomplete multibyte or wide character"},
    {std::errc::not_enough_memory, "Cannot allocate memory"},
};

bool IsOneOf(const std::error_code& fault, std::initializer_list<std::errc> codes) {
  return std::find(codes.begin(), codes.end(), fault) != codes.end();
}

bool IsQuota(const std::error_code& fault) {
  return fault == std::error_code(kDiskQuotaExceeded, SystemCategory());
}

}  // namespace

std::wstring Wide(std::string_view text) {
  const std::u16string units = ToUtf16(text);
  return {units.begin(), units.end()};
}

std::string Narrow(std::wstring_view text) {
  return ToUtf8(std::u16string(text.begin(), text.end()));
}

std::error_code CodeOf(DWORD error) {
  if (error == ERROR_SUCCESS) return {};
  for (const ErrnoOf& known : kErrnos) {
    if (known.error == error) return std::make_error_code(known.code);
  }
  if (std::find(std::begin(kInUse), std::end(kInUse), error) != std::end(kInUse)) return HostFault::InUse;
  return {static_cast<int>(error), SystemCategory()};
}

std::error_code LastCode() {
  return CodeOf(GetLastError());
}

void ThrowLast() {
  ThrowFault(LastCode());
}

void HostHandle::Close() {
  if (number_ != kNone) CloseHandle(reinterpret_cast<HANDLE>(std::exchange(number_, kNone)));
}

std::string ReasonOf(const std::error_code& fault) {
  for (const Words& words : kWords) {
    if (fault == words.code) return words.text;
  }
  return fault.message();
}

bool IsFull(const std::error_code& fault) {
  return fault == std::errc::no_space_on_device || IsQuota(fault);
}

bool IsUnreadablePlace(const std::error_code& fault) {
  return fault == std::errc::io_error;
}

bool MayPass(const std::error_code& fault) {
  return IsFull(fault) || fault == HostFault::InUse ||
         IsOneOf(fault, {std::errc::io_error, std::errc::not_enough_memory, std::errc::too_many_files_open});
}

}  // namespace quillbox
