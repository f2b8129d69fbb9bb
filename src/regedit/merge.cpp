// SPDX-License-Identifier: GPL-3.0-or-later
#include "regedit/merge.h"

#include <optional>
#include <utility>

#include "platform/status_text.h"
#include "registry/reg_file.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

std::string Quoted(std::string_view text) {
  std::string quoted(1, '"');
  quoted.append(ShortName(text)).append(1, '"');
  return quoted;
}

class Merger : public RegFileVisitor {
 public:
  explicit Merger(Registry& registry) : registry_(registry) {}

  void OnKey(std::string_view fullName, std::size_t line) override {
    key_.Close();
    const std::optional<RegistryPath> path = Parse(fullName, line);
    if (!path) return;
    OpenResult opened = registry_.Open(*path, Access::Full);
    if (opened.status == Status::FileNotFound) {
      opened = registry_.Create(*path);
      if (opened.status == Status::Success) ++report_.keysAdded;
    }
    if (opened.status != Status::Success) Refuse(line, fullName, opened.status);
    key_ = std::move(opened.key);
  }

  void OnDeleteKey(std::string_view fullName, std::size_t line) override {
    key_.Close();
    const std::optional<RegistryPath> path = Parse(fullName, line);
    if (path) Count(registry_.DeleteTree(*path), report_.keysDeleted, fullName, line);
  }

  // Without an open key its line was reported already.
  void OnValue(std::string_view name, std::uint32_t type, ByteView data, std::size_t line) override {
    if (!key_.IsOpen()) return;
    const Status status = registry_.SetStoredValue(key_, name, static_cast<ValueType>(type), data);
    if (status == Status::Success) {
      ++report_.valuesSet;
    } else {
      Refuse(line, name, status);
    }
  }

  void OnDeleteValue(std::string_view name, std::size_t line) override {
    if (key_.IsOpen()) Count(registry_.DeleteValue(key_, name), report_.valuesDeleted, name, line);
  }

  void OnProblem(std::size_t line, std::string_view reason) override {
    ++report_.problemCount;
    if (report_.problems.size() < MergeReport::kMaxProblems) report_.problems.push_back({line, std::string(reason)});
  }

  MergeReport Take() { return std::move(report_); }

 private:
  std::optional<RegistryPath> Parse(std::string_view fullName, std::size_t line) {
    std::optional<RegistryPath> path = ParseRegistryPath(fullName);
    if (!path) OnProblem(line, Quoted(fullName) + " begins with no root key");
    return path;
  }

  void Count(Status deleted, std::size_t& counter, std::string_view name, std::size_t line) {
    if (deleted == Status::Success) {
      ++counter;
    } else if (deleted != Status::FileNotFound) {
      Refuse(line, name, deleted);
    }
  }

  void Refuse(std::size_t line, std::string_view name, Status status) {
    const std::string why = registry_.WhyRefused().value_or(KeyStatusReason(status));
    OnProblem(line, (name.empty() ? "the default value" : Quoted(name)) + ": " + why);
  }

  Registry& registry_;
  Key key_;
  MergeReport report_;
};

}  // namespace

MergeReport MergeFile(Registry& registry, ByteSource& source, const std::string& name, const CodePage& codePage) {
  Merger merger(registry);
  ReadRegFile(source, name, codePage, merger);
  return merger.Take();
}

}  // namespace quillbox
