// Where Windows' drives are on the host, and the two ways between a Windows path and a host path. Windows looks names
// up without regard to case and forbids some that a host has; the rules for both are here and nowhere else.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "text/win_path.h"

namespace quillbox {

/// A host's file name as inner text that Windows could hold. Characters that Windows forbids (and a blank or full stop
/// at the end) become U+F000 plus their number; a byte b that is no UTF-8 becomes the lone surrogate U+DC00+b.
std::string WindowsName(std::string_view hostName);
/// The reverse: the host name that WindowsName turns into `windowsName`.
std::string HostName(std::string_view windowsName);

class DriveMap {
 public:
  static constexpr char kSystemDrive = 'C';
  static constexpr char kHostDrive = 'Z';  ///< the host's own root folder

  /// `cFolder` is C:\; `more` are further drives by upper-case letter. Z is the host's root unless `more` says else.
  explicit DriveMap(const std::filesystem::path& cFolder, const std::map<char, std::filesystem::path>& more = {});

  /// The host folder of a drive, or null when there is no such drive. Letters in upper case.
  const std::filesystem::path* FolderOf(char letter) const;
  /// True for the drive that is the host's own root.
  bool IsHostDrive(char letter) const;

  /// The host path of an absolute path without "." and "..". Each name is taken as it stands where there is such an
  /// entry, else as the first entry that equals it without regard to case; from the first name on that has none, names
  /// are taken as given. Nothing for a path without a drive of ours, or with a name that would leave its folder.
  std::optional<std::filesystem::path> HostPath(const WinPath& path) const;
  /// The Windows path of a host path: in the drive whose folder holds it most closely. Nothing when no drive does.
  std::optional<WinPath> WindowsPathOf(const std::filesystem::path& hostPath) const;

 private:
  struct Drive {
    std::filesystem::path folder;     ///< absolute, as given
    std::filesystem::path canonical;  ///< the same without symbolic links
  };
  std::map<char, Drive> drives_;
};

/// The entry of the host folder that a Windows name means (see HostPath), or nothing.
std::optional<std::string> FindEntry(const std::filesystem::path& folder, std::string_view windowsName);

}  // namespace quillbox
