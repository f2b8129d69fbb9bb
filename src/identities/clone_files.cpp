// SPDX-License-Identifier: GPL-3.0-or-later
#include "identities/clone_files.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <optional>

#include "core/identity_catalogue.h"
#include "identities/replace_string.h"
#include "registry/reg_file.h"
#include "registry/reg_file_form.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr std::string_view kOwnNames[] = {"Directory Name", "Username", "Identity Ordinal"};
constexpr std::string_view kStoreRoot = "Store Root";
constexpr std::string_view kSoftware = "HKEY_CURRENT_USER\\SOFTWARE";

bool IsOwnName(std::string_view name) {
  return std::any_of(std::begin(kOwnNames), std::end(kOwnNames),
                     [name](std::string_view own) { return EqualIgnoreCase(own, name); });
}

/// Reads a file that must be understood to the last line: the registry editor has just written it.
class WholeFileVisitor : public RegFileVisitor {
 public:
  explicit WholeFileVisitor(const RegText& file) : file_(file) {}
  void OnDeleteKey(std::string_view /*fullName*/, std::size_t line) override { Refuse(line, "it deletes a key"); }
  void OnDeleteValue(std::string_view /*name*/, std::size_t line) override { Refuse(line, "it deletes a value"); }
  void OnProblem(std::size_t line, std::string_view reason) override { Refuse(line, std::string(reason)); }
  [[noreturn]] void Refuse(std::optional<std::size_t> line, const std::string& why) const {
    throw Error("reading an exported registry file", {file_.name, {}, line}, why);
  }

 private:
  const RegText& file_;
};

class OwnValueReader : public WholeFileVisitor {
 public:
  OwnValueReader(const RegText& file, const std::string& userId)
      : WholeFileVisitor(file), identity_(FullName(CurrentUser(IdentityKey(userId)))) {}
  void OnKey(std::string_view fullName, std::size_t /*line*/) override {
    inIdentity_ = EqualIgnoreCase(fullName, identity_);
  }
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t /*line*/) override {
    if (inIdentity_ && IsOwnName(name)) values.push_back({std::string(name), type, Bytes(data.begin(), data.end())});
  }
  std::vector<OwnValue> values;

 private:
  std::string identity_;
  bool inIdentity_ = false;
};

/// Writes what it reads, with its subclass's changes.
class Copier : public WholeFileVisitor {
 public:
  Copier(const RegText& file, RegFileWriter& writer) : WholeFileVisitor(file), writer_(writer) {}

 protected:
  RegFileWriter& writer_;
};

class IdentityCopier : public Copier {
 public:
  IdentityCopier(const RegText& file, RegFileWriter& writer, std::string source, std::string destination,
                 const std::vector<OwnValue>& own)
      : Copier(file, writer),
        source_(std::move(source)),
        destination_(std::move(destination)),
        identity_(FullName(CurrentUser(IdentityKey(source_)))),
        settings_(FullName(CurrentUser(IdentitySettingsKey(source_)))),
        own_(own) {}

  void OnKey(std::string_view fullName, std::size_t line) override {
    if (fullName.find(source_) == fullName.npos) Refuse(line, "it is not an export of " + source_);
    inIdentity_ = EqualIgnoreCase(fullName, identity_);
    inSettings_ = EqualIgnoreCase(fullName, settings_);
    writer_.Key(Moved(fullName));
  }
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t /*line*/) override {
    if (inSettings_ && EqualIgnoreCase(name, kStoreRoot)) return;
    if (inIdentity_ && IsOwnName(name)) return PutOwn(name);
    if (type != kRegSz) return writer_.Value(Moved(name), type, data);
    const std::string text = ToUtf8(Utf16FromBytes(data));
    writer_.Value(Moved(name), type, Utf16Bytes(ToUtf16(Moved(text))));
  }

 private:
  std::string Moved(std::string_view text) const {
    return ReplaceString(text, {.search = source_, .with = destination_}, Case::Match);
  }
  void PutOwn(std::string_view name) {
    for (const OwnValue& value : own_) {
      if (EqualIgnoreCase(value.name, name)) writer_.Value(value.name, value.type, value.data);
    }
  }

  std::string source_, destination_;
  std::string identity_, settings_;
  const std::vector<OwnValue>& own_;
  bool inIdentity_ = false, inSettings_ = false;
};

class AccountsCopier : public Copier {
 public:
  AccountsCopier(const RegText& file, RegFileWriter& writer, const std::string& destination)
      : Copier(file, writer), software_(FullName(CurrentUser(IdentityKey(destination))) + "\\Software") {}
  void OnKey(std::string_view fullName, std::size_t line) override {
    if (!fullName.starts_with(kSoftware)) Refuse(line, "it is not an export of the accounts");
    writer_.Key(software_ + std::string(fullName.substr(kSoftware.size())));
  }
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t /*line*/) override {
    writer_.Value(name, type, data);
  }

 private:
  std::string software_;
};

/// What the visitor of `makeCopier` writes for the file: in the file's own form, or in the Unicode form where the
/// file's own cannot hold everything.
std::string Rewrite(const RegText& file, const CodePage& codePage,
                    const std::function<std::unique_ptr<Copier>(RegFileWriter&)>& makeCopier) {
  const auto write = [&](RegFileForm form, bool& whole) {
    RegFileWriter writer(form, codePage);
    ReadRegFile(file.bytes, file.name, codePage, *makeCopier(writer));
    whole = writer.HoldsEverything();
    return writer.Finish();
  };
  bool whole = false;
  if (!file.bytes.starts_with(kUtf16Mark)) {
    std::string bytes = write(RegFileForm::Regedit4, whole);
    if (whole) return bytes;
  }
  return write(RegFileForm::Unicode5, whole);
}

}  // namespace

std::vector<OwnValue> ReadOwnValues(const RegText& file, const CodePage& codePage, const std::string& userId) {
  OwnValueReader reader(file, userId);
  ReadRegFile(file.bytes, file.name, codePage, reader);
  return std::move(reader.values);
}

std::string RewriteIdentity(const RegText& file, const CodePage& codePage, const std::string& source,
                            const std::string& destination, const std::vector<OwnValue>& own) {
  return Rewrite(file, codePage, [&](RegFileWriter& writer) {
    return std::make_unique<IdentityCopier>(file, writer, source, destination, own);
  });
}

std::string RewriteAccounts(const RegText& file, const CodePage& codePage, const std::string& destination) {
  return Rewrite(file, codePage,
                 [&](RegFileWriter& writer) { return std::make_unique<AccountsCopier>(file, writer, destination); });
}

std::string StoreRootFile(const StoreRoot& root, bool endsWithLine) {
  std::string text = std::string(kRegedit4Header) + "\r\n \r\n[" +
                     FullName(CurrentUser(IdentitySettingsKey(root.userId))) + "]\r\n\"Store Root\"=hex(2):";
  for (const char c : root.folder) {
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "%X,", static_cast<unsigned>(static_cast<unsigned char>(c)));
    text += code.data();
  }
  if (endsWithLine) text += "\r\n \r\n";
  return text;
}

}  // namespace quillbox
