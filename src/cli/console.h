// SPDX-License-Identifier: GPL-3.0-or-later
// What a command prints to and asks through: results on one stream, everything else on the other, so that tests give it
// streams of their own. The log is in its file only.
#pragma once

#include <iosfwd>
#include <string>

namespace quillbox {

enum class CliExit {
  Done = 0,
  Incomplete = 1,  ///< some part failed; it is named on the error stream
  WrongUse = 2,    ///< the command line is wrong, whatever is on the disk
};

struct Console {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool canAsk = false;        ///< somebody is at a terminal
  bool isTerminal = false;    ///< `err` is one: progress is one line that changes
  bool incomplete = false;    ///< NotDone() was called
  bool progressLine = false;  ///< the last line of `err` is progress

  /// A result.
  void Result(const std::string& line);
  /// What somebody may want to know.
  void Note(const std::string& line);
  /// Something that was asked for and was not done, and why: the command ends as Incomplete.
  void NotDone(const std::string& line);
  /// How far it is; on a terminal it replaces the one before.
  void Progress(const std::string& text);
  void EndProgress();

  CliExit End() const { return incomplete ? CliExit::Incomplete : CliExit::Done; }
};

}  // namespace quillbox
