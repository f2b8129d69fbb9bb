// The shell of a Windows disk that isn't running: copies files, and opens folders and pages with the host's own
// programs. Failures are shown to the person.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/offline/offline_files.h"
#include "platform/platform.h"

namespace quillbox {

class OfflineShell : public Shell {
 public:
  /// All must outlive the shell. `opener` is the host's program that opens a folder or a page given as its argument.
  OfflineShell(OfflineFiles& files, Dialogs& dialogs, Log& log, std::string opener = "xdg-open");
  ~OfflineShell() override;
  OfflineShell(const OfflineShell&) = delete;
  OfflineShell& operator=(const OfflineShell&) = delete;

  void Explore(const std::string& folder, const std::string& parameters) override;
  void OpenUrl(const std::string& url) override;
  /// A `target` that is a folder stands for a file in it with the source's name.
  bool CopyFile(const WinPath& source, const WinPath& target, bool noConfirm) override;

  /// Forgets "Yes to All" and Cancel, and takes the progress display away.
  void EndCommand();

 private:
  struct Copy;
  std::string FaultOf(const Copy& copy) const;
  bool MayReplace(const Copy& copy, const FileEntry& existing);
  bool Run(const Copy& copy);
  bool Report(const Copy& copy, std::uint64_t done, std::uint64_t total);
  void ShowCopyError(const std::string& name, const std::string& why);
  bool Start(const std::string& argument);
  void ReapEnded();

  OfflineFiles& files_;
  Dialogs& dialogs_;
  Log& log_;
  std::string opener_;
  std::vector<pid_t> started_;
  std::set<std::filesystem::path> swept_;  ///< folders that this command has freed of abandoned copies
  bool yesToAll_ = false;
  bool cancelled_ = false;
  std::unique_ptr<Progress> progress_;  ///< one for all copies of a command
};

}  // namespace quillbox
