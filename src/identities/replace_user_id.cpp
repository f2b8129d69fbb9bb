// SPDX-License-Identifier: GPL-3.0-or-later
#include "identities/replace_user_id.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "identities/replace_string.h"
#include "identities/user_id.h"
#include "registry/reg_file_form.h"
#include "text/code_page.h"
#include "text/error.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {
namespace {

static_assert(std::endian::native == std::endian::little, "UTF-16 is read into memory as the file has it");

constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;  ///< read and written at a time

enum class Encoding { EightBit, Utf8, Utf16 };

struct Mark {
  Encoding encoding;
  std::string_view bytes;
};
constexpr Mark kMarks[] = {{Encoding::Utf16, kUtf16Mark}, {Encoding::Utf8, kUtf8Mark}};

/// A file's lines, unchanged, in pieces of whole lines.
template <class Unit>
class Pieces {
 public:
  using View = std::basic_string_view<Unit>;
  /// `begun` is what was read already.
  Pieces(FileReader& file, std::string_view begun) : file_(file), buffer_(kMaxLineBytes / sizeof(Unit)) {
    have_ = begun.size();
    std::memcpy(buffer_.data(), begun.data(), begun.size());
  }

  /// The next piece, good until the next call; nothing at the end. Line ends are never cut.
  std::optional<View> Next() {
    const std::size_t unitsDone = std::exchange(done_, 0);
    have_ -= unitsDone * sizeof(Unit);
    std::memmove(buffer_.data(), buffer_.data() + unitsDone, have_);
    while (done_ == 0) {
      const std::size_t wanted = std::min(kPieceBytes, buffer_.size() * sizeof(Unit) - have_);
      const std::size_t got = file_.Read({reinterpret_cast<char*>(buffer_.data()) + have_, wanted});
      have_ += got;
      const View all(buffer_.data(), have_ / sizeof(Unit));
      if (got < wanted) {
        if (all.empty()) return std::nullopt;
        done_ = all.size();
      } else {
        done_ = WholeLines(all);
        if (done_ == 0 && all.size() == buffer_.size()) done_ = Cut(all);
      }
    }
    return View(buffer_.data(), done_);
  }

  /// The bytes at the file's end that make no unit.
  std::string_view Rest() const {
    return {reinterpret_cast<const char*>(buffer_.data() + done_), have_ % sizeof(Unit)};
  }

 private:
  /// A CR at the end may be half of a line end.
  static std::size_t WholeLines(View all) {
    static constexpr Unit kEnds[] = {'\r', '\n'};
    const bool half = !all.empty() && all.back() == '\r';
    return all.substr(0, all.size() - (half ? 1 : 0)).find_last_of(View(kEnds, 2)) + 1;
  }
  /// Where a line that is too long is cut: before a {USER_ID} that could be only half there.
  static std::size_t Cut(View all) {
    const std::size_t last = all.size() - (all.back() == '\r' ? 1 : 0);
    return std::min(all.find('{', last - (kUserIdLength - 1)), last);
  }

  FileReader& file_;
  std::vector<Unit> buffer_;
  std::size_t have_ = 0;  ///< bytes in the buffer
  std::size_t done_ = 0;  ///< units of the piece given last
};

/// Gathers small writes.
class Output {
 public:
  explicit Output(FileWriter& file) : file_(file) { pending_.reserve(kPieceBytes); }
  template <class Unit>
  void Put(std::basic_string_view<Unit> text) {
    const std::string_view bytes(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Unit));
    if (pending_.size() + bytes.size() > kPieceBytes) Flush();
    if (bytes.size() >= kPieceBytes) return file_.Write(bytes);
    pending_ += bytes;
  }
  void Flush() {
    if (!pending_.empty()) file_.Write(pending_);
    pending_.clear();
  }

 private:
  FileWriter& file_;
  std::string pending_;
};

/// Whether every line of the piece ends with CR LF.
template <class Unit>
bool HasCrLfOnly(std::basic_string_view<Unit> piece) {
  if (piece.empty()) return true;
  unsigned lone = piece.front() == '\n' || piece.back() == '\r';
  const Unit* units = piece.data();
  const std::size_t pairs = piece.size() - 1;
  for (std::size_t i = 0; i < pairs; ++i) lone |= (units[i] == '\r') != (units[i + 1] == '\n');
  return lone == 0;
}

template <class Unit>
std::basic_string<Unit> WithCrLf(std::basic_string_view<Unit> piece) {
  std::basic_string<Unit> text;
  text.reserve(piece.size() + piece.size() / 16);
  for (std::size_t i = 0; i < piece.size(); ++i) {
    if (piece[i] != '\r' && piece[i] != '\n') {
      text += piece[i];
      continue;
    }
    if (piece[i] == '\r' && i + 1 < piece.size() && piece[i + 1] == '\n') ++i;
    text += '\r';
    text += '\n';
  }
  return text;
}

template <class Unit>
class Rewriter {
 public:
  using Text = std::basic_string<Unit>;
  using View = std::basic_string_view<Unit>;
  struct UserIds {
    Text old;
    Text replacement;
  };
  Rewriter(Output& output, UserIds userIds)
      : output_(output), old_(std::move(userIds.old)), replacement_(std::move(userIds.replacement)) {}

  void Run(Pieces<Unit>& pieces) {
    static constexpr Unit kLineEnd[] = {'\r', '\n'};
    bool endsWithLine = true;
    while (const auto piece = pieces.Next()) {
      endsWithLine = piece->back() == '\r' || piece->back() == '\n';
      if (HasCrLfOnly(*piece)) {
        PutLines(*piece);
      } else {
        PutLines(WithCrLf(*piece));
      }
    }
    if (!endsWithLine) output_.Put(View(kLineEnd, 2));
    output_.Put(pieces.Rest());
  }

 private:
  void PutLines(View piece) {
    std::size_t done = 0;
    for (std::size_t at = piece.find(old_); at != piece.npos; at = piece.find(old_, done)) {
      const std::size_t start = std::max(piece.rfind('\n', at) + 1, done);
      output_.Put(piece.substr(done, start - done));
      done = std::min(piece.find('\r', at), piece.size());
      output_.Put(View(ReplaceString<Unit>(piece.substr(start, done - start), {old_, replacement_}, Case::Ignore)));
    }
    output_.Put(piece.substr(done));
  }

  Output& output_;
  Text old_;
  Text replacement_;
};

/// One registry file being read: its encoding is known, and what was read to know it is kept.
class Source {
 public:
  Source(FileSystem& files, SystemFacts& facts, WinPath path)
      : path_(std::move(path)), codePage_(facts.CodePageNumber()) {
    file_ = files.OpenForReading(path_);
    begun_.resize(kUtf8Mark.size());
    begun_.resize(file_->Read(begun_));
    for (const Mark& mark : kMarks) {
      if (!begun_.starts_with(mark.bytes)) continue;
      encoding_ = mark.encoding;
      mark_ = mark.bytes;
      begun_.erase(0, mark_.size());
    }
  }

  /// Whether it begins as UTF-16 text does, in either byte order, without the mark that registry files have.
  bool IsUnmarkedUtf16() const {
    if (!mark_.empty() || begun_.size() < 2) return false;
    return (begun_[0] == 0) != (begun_[1] == 0) || begun_.starts_with("\xFE\xFF");
  }
  bool IsUtf16() const { return encoding_ == Encoding::Utf16; }
  std::string_view MarkBytes() const { return mark_; }
  template <class Unit>
  Pieces<Unit> Lines() {
    return Pieces<Unit>(*file_, begun_);
  }
  std::optional<std::string> FindOld() { return IsUtf16() ? FindOldIn<char16_t>() : FindOldIn<char>(); }

  /// `text` in this file's encoding.
  std::string Encoded(const std::string& text) const {
    if (encoding_ != Encoding::EightBit || IsAscii(text)) return text;
    if (std::optional<std::string> bytes = codePage_.Encode(text)) return *bytes;
    throw Error(
        "replacing the {USER_ID}", {path_.Text(), {}, {}},
        "the file is in code page " + std::to_string(codePage_.Number()) + ", which cannot hold \"" + text + "\"");
  }

 private:
  std::u16string Decoded(std::u16string_view line) const { return std::u16string(line); }
  std::u16string Decoded(std::string_view line) const {
    return ToUtf16(encoding_ == Encoding::EightBit ? codePage_.Decode(line) : std::string(line));
  }

  /// A byte "{" may be the second half of a double-byte character, so the line is decoded before the find counts.
  template <class Unit>
  std::optional<std::string> FindOldIn() {
    static constexpr Unit kEnds[] = {'\r', '\n'};
    Pieces<Unit> pieces = Lines<Unit>();
    while (const auto piece = pieces.Next()) {
      for (std::size_t at = piece->find('{'); at != piece->npos;) {
        const std::size_t before = piece->substr(0, at).find_last_of({kEnds, 2}) + 1;
        const std::size_t end = std::min(piece->find_first_of({kEnds, 2}, at), piece->size());
        const std::u16string line = Decoded(piece->substr(before, end - before));
        if (const std::size_t brace = line.find(u'{'); brace != line.npos) {
          return ToUtf8(line.substr(brace, kUserIdLength));
        }
        at = piece->find('{', end);
      }
    }
    return std::nullopt;
  }

  WinPath path_;
  CodePage codePage_;
  std::unique_ptr<FileReader> file_;
  Encoding encoding_ = Encoding::EightBit;
  std::string_view mark_;
  std::string begun_;
};

void CopyAsItIs(FileReader& from, Output& to) {
  std::vector<char> piece(kPieceBytes);
  while (const std::size_t got = from.Read(piece)) to.Put(std::string_view(piece.data(), got));
}

}  // namespace

WinPath ReplacedFile(const WinPath& backupFolder, const WinPath& input) {
  return WinPath(backupFolder.Text() + "\\New" + GetFileName(input.Text()) + ".reg");
}

std::optional<std::string> FindOldUserId(FileSystem& files, SystemFacts& facts, const WinPath& input) {
  return Source(files, facts, input).FindOld();
}

std::optional<ReplacementRefusal> RefusalOf(FileSystem& files, SystemFacts& facts, const UserIdReplacement& what) {
  const auto refuse = [](const WinPath& file, const std::string& reason) {
    return ReplacementRefusal{"No file was made: \"" + OneLine(file.Text()) + "\" " + reason + "."};
  };
  if (Source(files, facts, what.input).IsUnmarkedUtf16()) {
    return refuse(what.input, "is UTF-16 text without the mark that registry files begin with");
  }
  const auto old = FindOldUserId(files, facts, what.input);
  if (old && !IsUserId(*old)) {
    return refuse(what.input, "has its first \"{\" before something that is not a {USER_ID}: " + OneLine(*old));
  }
  const auto there = files.Stat(what.output);
  if (there && there->isDirectory) return refuse(what.output, "is a folder");
  return std::nullopt;
}

void ReplaceUserId(FileSystem& files, SystemFacts& facts, const UserIdReplacement& what) {
  const std::string old = FindOldUserId(files, facts, what.input).value_or(std::string());
  const bool isWhole = ToUtf16(old).size() == kUserIdLength;
  Source source(files, facts, what.input);
  const std::string replacement = source.Encoded(what.userId);
  const std::unique_ptr<FileWriter> file = files.StartFile(what.output);
  Output out(*file);
  if (!isWhole) {
    CopyAsItIs(*files.OpenForReading(what.input), out);
  } else if (out.Put(source.MarkBytes()); source.IsUtf16()) {
    auto lines = source.Lines<char16_t>();
    Rewriter<char16_t>(out, {ToUtf16(old), ToUtf16(what.userId)}).Run(lines);
  } else {
    auto lines = source.Lines<char>();
    Rewriter<char>(out, {source.Encoded(old), replacement}).Run(lines);
  }
  out.Flush();
  file->Commit();
}

}  // namespace quillbox
