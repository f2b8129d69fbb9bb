// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/backup_lines.h"

#include "text/message_text.h"

namespace quillbox {
namespace {

std::string TextOf(const BackupLine& line) {
  return OneLine((line.from.empty() ? line.what : line.from + "\\" + line.what) + ": " + line.outcome);
}

std::string TextOf(const KeyExport& made) {
  return OneLine(made.key + ": " + LineOf(made).outcome);
}

}  // namespace

void PrintRecord(Console& console, const BackupRecord& record) {
  if (record.endedEarly) console.NotDone("it ended early: " + *record.endedEarly);
  for (const CopyResult& copy : record.copies) {
    const bool isDone = copy.end == CopyEnd::Copied;
    isDone ? console.Result(TextOf(LineOf(copy))) : console.NotDone(TextOf(LineOf(copy)));
  }
  for (const LeftOut& leftOut : record.leftOut) console.NotDone(TextOf(LineOf(leftOut)));
  for (const KeyExport& made : record.exports) {
    switch (made.end) {
      case KeyExport::End::Written:
        console.Result(TextOf(made));
        break;
      case KeyExport::End::NothingThere:
        console.Note(TextOf(made));
        break;
      case KeyExport::End::NotStarted:
      case KeyExport::End::Failed:
        console.NotDone(TextOf(made));
    }
  }
}

}  // namespace quillbox
