// What went wrong with registry files, and which paths of the registry were not used. The program's own texts say only
// that the registry editor ran; the reasons are gathered here and told to the person in one message for each command,
// however many files it has.
#pragma once

#include <string>
#include <vector>

#include "platform/dialogs.h"

namespace quillbox {

class RegistryReports {
 public:
  explicit RegistryReports(Dialogs& dialogs) : dialogs_(dialogs) {}

  /// Tells `lines` (one or more, a repeated one once) now, or at the end of the scope that is open.
  void Add(const std::string& lines);

  /// Holds the reports of a command back until it ends.
  class Scope {
   public:
    explicit Scope(RegistryReports& reports) : reports_(reports) { ++reports_.depth_; }
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    RegistryReports& reports_;
  };

 private:
  void Tell();

  Dialogs& dialogs_;
  std::vector<std::string> lines_;
  int depth_ = 0;
};

}  // namespace quillbox
