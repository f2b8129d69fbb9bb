// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <array>
#include <iterator>
#include <unordered_set>

#include "mail/folder_list.h"
#include "text/unicode.h"
#include "text/win_path.h"

namespace quillbox {
namespace {

/// The names that the versions of Outlook Express give their own folders, which are those of the stores' files, by
/// SpecialFolder without None.
constexpr std::array<std::string_view, 5> kNames[] = {
    {"Inbox", "Outbox", "Sent Items", "Deleted Items", "Drafts"},
    {"Posteingang", "Postausgang", "Gesendete Objekte", "Gelöschte Objekte", "Entwürfe"},
    {"Boîte de réception", "Boîte d'envoi", "Éléments envoyés", "Éléments supprimés", "Brouillons"},
    {"Posta in arrivo", "Posta in uscita", "Posta inviata", "Posta eliminata", "Bozze"},
    {"Bandeja de entrada", "Bandeja de salida", "Elementos enviados", "Elementos eliminados", "Borrador"},
    {"Postvak IN", "Postvak UIT", "Verzonden items", "Verwijderde items", "Concepten"},
    {"Inkorgen", "Utkorgen", "Skickat", "Borttaget", "Utkast"},
    {"Caixa de entrada", "Caixa de saída", "Itens enviados", "Itens excluídos", "Rascunhos"},
    {"Skrzynka odbiorcza", "Skrzynka nadawcza", "Elementy wysłane", "Elementy usunięte", "Kopie robocze"},
    {"Входящие", "Исходящие", "Отправленные", "Удаленные", "Черновики"},
};

struct TargetRow {
  SpecialFolder special;
  std::string_view thunderbird, maildir;
};
// Thunderbird's are those of "Local Folders"; Maildir's are those that servers and mutt use. The inbox of a Maildir is
// the Maildir itself, so one beside others has its plain name.
constexpr TargetRow kTargets[] = {
    {SpecialFolder::Inbox, "Inbox", "Inbox"},    {SpecialFolder::Outbox, "Unsent Messages", "Outbox"},
    {SpecialFolder::Sent, "Sent", "Sent"},       {SpecialFolder::Deleted, "Trash", "Trash"},
    {SpecialFolder::Drafts, "Drafts", "Drafts"},
};

/// Files beside the stores that hold no mail.
constexpr std::string_view kOtherFiles[] = {"Folders", "Offline", "Pop3uidl", "cleanup"};

SpecialFolder SpecialOf(std::string_view name) {
  for (const auto& language : kNames) {
    const auto* const found = std::find_if(language.begin(), language.end(),
                                           [name](std::string_view known) { return EqualIgnoreCase(name, known); });
    if (found != language.end()) return static_cast<SpecialFolder>(found - language.begin() + 1);
  }
  return SpecialFolder::None;
}

bool DropEnding(std::string& name, std::string_view ending) {
  if (name.size() <= ending.size()) return false;
  if (!EqualIgnoreCase(std::string_view(name).substr(name.size() - ending.size()), ending)) return false;
  name.resize(name.size() - ending.size());
  return true;
}

/// "Inbox (1)" and "Inbox(1)" become "Inbox".
bool DropNumber(std::string& name) {
  if (!name.ends_with(')')) return false;
  const std::size_t open = name.rfind('(');
  if (open == std::string::npos || open == 0 || open + 2 >= name.size()) return false;
  const std::string_view digits = std::string_view(name).substr(open + 1, name.size() - open - 2);
  if (digits.find_first_not_of("0123456789") != std::string_view::npos) return false;
  name.resize(open);
  name = Trim(name);
  return !name.empty();
}

}  // namespace

std::optional<StoreName> ParseStoreName(std::string_view file) {
  StoreName name;
  name.folder = file;
  name.isCopy = DropEnding(name.folder, ".bak");
  const bool isStore = DropEnding(name.folder, ".dbx") || DropEnding(name.folder, ".mbx");
  if (!isStore && !name.isCopy) return std::nullopt;
  name.isCopy = DropNumber(name.folder) || name.isCopy;
  const bool isOther = std::any_of(std::begin(kOtherFiles), std::end(kOtherFiles),
                                   [&](std::string_view other) { return EqualIgnoreCase(name.folder, other); });
  if (isOther) return std::nullopt;
  name.special = SpecialOf(name.folder);
  return name;
}

void AddUnnamedStores(FolderList& list, std::span<const std::string> files) {
  std::unordered_set<std::string> named;
  std::uint32_t number = 0;
  for (const MailFolder& folder : list.folders) {
    named.insert(UpperCase(folder.file));
    number = std::max(number, folder.number + 1);
  }
  for (const std::string& file : files) {
    const auto name = ParseStoreName(file);
    if (!name || !named.insert(UpperCase(file)).second) continue;
    MailFolder folder;
    folder.number = number++;
    // A copy has a folder of its own here: only the person knows what is in it.
    folder.name = name->isCopy ? file.substr(0, file.rfind('.')) : name->folder;
    folder.file = file;
    folder.special = name->isCopy ? SpecialFolder::None : name->special;
    folder.tree = FolderTree::Local;
    list.folders.push_back(std::move(folder));
  }
}

std::string_view TargetName(SpecialFolder special, MailTarget target) {
  for (const TargetRow& row : kTargets) {
    if (row.special != special || target == MailTarget::Files) continue;
    return target == MailTarget::Thunderbird ? row.thunderbird : row.maildir;
  }
  return {};
}

}  // namespace quillbox
