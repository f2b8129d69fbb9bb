// SPDX-License-Identifier: GPL-3.0-or-later
#include "session/backup_recorder.h"

#include <utility>

namespace quillbox {

void BackupRecorder::Begin(const char* command) {
  record_ = {
      .command = command, .ended = 0, .folder = {}, .copies = {}, .exports = {}, .leftOut = {}, .endedEarly = {}};
  session_.store.TakeExports();
}

void BackupRecorder::End() {
  if (record_.folder.Empty()) return;
  record_.ended = session_.platform.GetClock().Now();
  record_.copies = session_.platform.GetShell().FinishCopies();
  record_.exports = session_.store.TakeExports();
  session_.KeepBackup(std::exchange(record_, {}));
}

}  // namespace quillbox
