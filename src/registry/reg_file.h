// SPDX-License-Identifier: GPL-3.0-or-later
// Registry files: the text form in which the registry editor exports keys and merges them back, in both of its
// kinds. Pure text work: what the text means for a registry is the caller's business.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "registry/byte_source.h"
#include "registry/reg_file_limits.h"
#include "text/code_page.h"
#include "text/unicode.h"

namespace quillbox {

enum class RegFileForm {
  Regedit4,  ///< "REGEDIT4", text in the system's 8-bit code page
  Unicode5,  ///< "Windows Registry Editor Version 5.00", UTF-16 with a byte-order mark
};

/// Writes one registry file, key by key. Value data are given as the registry stores them (text as UTF-16). As the
/// platform's own editor does, a REG_SZ is shown up to its first NUL and without an odd last byte.
class RegFileWriter {
 public:
  RegFileWriter(RegFileForm form, const CodePage& codePage);

  /// Begins a key: `[fullName]`.
  void Key(std::string_view fullName);
  /// A value of the key begun last; an empty name is the default value.
  void Value(std::string_view name, std::uint32_t type, ByteView data);
  /// The bytes written since the last call, for a file that is not to be held whole. How many there are: Pending().
  std::string Take();
  std::size_t Pending() const { return out_.size(); }
  /// Ends the file and returns its bytes, without those that were taken.
  std::string Finish();

  /// False once a name or text was written that the 8-bit form cannot hold (it then shows "?" there). Always true
  /// for the Unicode form. The caller decides what becomes of such a file; see ExportKey in regedit/export.h.
  bool HoldsEverything() const { return holdsEverything_; }
  /// The first key or value that could not be held, for the message: `[key] "name"`.
  const std::string& FirstLoss() const { return firstLoss_; }

 private:
  /// Appends `text` in the file's encoding; false when the 8-bit form cannot hold it ("?" is written then).
  bool Put(std::string_view text);
  void PutHex(std::size_t column, ByteView data);
  /// The bytes that a hex(2) or hex(7) value shows: in the 8-bit form the text in the code page.
  Bytes ShownText(ByteView data, bool& held);
  void NoteLoss(std::string_view quotedName);

  RegFileForm form_;
  CodePage codePage_;
  std::string out_;  ///< bytes not yet taken, in the file's encoding
  std::string currentKey_;
  bool holdsEverything_ = true;
  std::string firstLoss_;
};

/// What a registry file says, in its order. Names are inner text; data are as the registry stores them.
class RegFileVisitor {
 public:
  virtual ~RegFileVisitor() = default;
  virtual void OnKey(std::string_view fullName, std::size_t line) = 0;        ///< `[KEY]`
  virtual void OnDeleteKey(std::string_view fullName, std::size_t line) = 0;  ///< `[-KEY]`
  virtual void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t line) = 0;
  virtual void OnDeleteValue(std::string_view name, std::size_t line) = 0;  ///< `"name"=-`
  /// A line that says nothing usable; reading goes on with the next line.
  virtual void OnProblem(std::size_t line, std::string_view reason) = 0;
};

/// Reads the registry file `name` of either form. Throws Error when the bytes cannot be read, exceed `limits.file`, or
/// are not a registry file at all: a wrong header. Everything else that is wrong goes to OnProblem with its line number
/// from 1. Values under no key, or under `[-KEY]`, are not visited. The memory that this takes does not grow with the
/// file, only with the largest value in it.
void ReadRegFile(ByteSource& source, const std::string& name, const CodePage& codePage, RegFileVisitor& visitor,
                 const RegFileLimits& limits = {});
/// The same for bytes in memory.
void ReadRegFile(std::string_view bytes, const std::string& name, const CodePage& codePage, RegFileVisitor& visitor,
                 const RegFileLimits& limits = {});

}  // namespace quillbox
