// SPDX-License-Identifier: GPL-3.0-or-later
// "list": what is on a disk, as lines or as JSON. It reads accounts by a list of values that may be shown.
#include <nlohmann/json.hpp>
#include <ostream>

#include "cli/commands.h"
#include "core/copy_tally.h"
#include "core/disk_path.h"
#include "core/mail_accounts.h"
#include "core/message_store.h"
#include "export/export_progress.h"
#include "export/found_folders.h"
#include "platform/offline/hive_consent.h"
#include "platform/offline/windows_disk.h"
#include "text/error.h"
#include "text/message_text.h"

namespace quillbox {
namespace {

using Json = nlohmann::ordered_json;

void AddFolders(Console& console, OpenedDisk& disk, const IdentityInfo& identity, const WinPath& store, Json& to) {
  Json list = Json::array();
  FoundFolders folders(disk.platform.GetFiles(), {identity.username, store},
                       CodePage(disk.platform.GetSystemFacts().CodePageNumber()));
  while (folders.Step()) {
  }
  for (const FoundFolder& folder : folders.All()) {
    Json row = {{"name", folder.folder.name}, {"depth", folder.depth}};
    if (folder.store) row["file"] = folder.store->Text();
    row["messages"] = folder.messages;
    row["bytes"] = folder.size;
    if (!folder.fault.empty()) {
      row["fault"] = folder.fault;
      console.NotDone(identity.username + " > " + folder.folder.name + ": " + folder.fault);
    }
    list.push_back(std::move(row));
  }
  if (!folders.ListFault().empty()) {
    to["listFault"] = folders.ListFault();
    console.NotDone(identity.username + ": " + folders.ListFault());
  }
  to["folders"] = std::move(list);
}

Json AccountsOf(RegistryStore& store, const std::string& key) {
  Json list = Json::array();
  for (const MailAccount& account : ReadAccounts(store, key)) {
    Json row = {{"name", account.name}, {"type", account.type}, {"server", account.server}};
    if (!account.smtpServer.empty()) row["smtpServer"] = account.smtpServer;
    if (!account.address.empty()) row["address"] = account.address;
    list.push_back(std::move(row));
  }
  return list;
}

Json IdentityOf(Console& console, OpenedDisk& disk, const IdentityInfo& identity) {
  Session& session = disk.session;
  Json row = {{"username", identity.username},
              {"userId", identity.userId},
              {"default", identity.userId == session.Catalogue().defaultUserId}};
  if (identity.storeFolder) {
    row["store"] = identity.storeFolder->Text();
    const auto store = FindStore(session.store, disk.platform, identity.userId);
    if (const auto* fault = std::get_if<StoreFault>(&store)) {
      row["fault"] = fault->clause;
      console.NotDone(identity.username + ": " + fault->clause);
    } else {
      AddFolders(console, disk, identity, std::get<WinPath>(store), row);
    }
  }
  row["accounts"] = AccountsOf(session.store, IdentityKey(identity.userId) + "\\" + kAccountsKey);
  return row;
}

Json BookOf(OpenedDisk& disk) {
  const WinPath stored = disk.session.Catalogue().addressBookFile;
  if (stored.Empty()) return nullptr;
  Json book = {{"file", stored.Text()}};
  const DiskPath file = CheckAddressBook(disk.platform.GetDrives(), stored);
  const auto entry = file.IsUsable() ? disk.platform.GetFiles().Stat(file.Path()) : std::nullopt;
  book["isThere"] = entry.has_value();
  if (entry) book["bytes"] = entry->size;
  return book;
}

Json ProfileOf(Console& console, const DiskOptions& options, const ProfileFolder& profile) {
  Json row = {{"name", profile.name}};
  if (profile.oldWindows) row["person"] = ShownName(profile, CountIdentities(profile).windows);
  DiskOptions one = options;
  one.profile = profile.name;
  try {
    OpenedDisk disk(console, one, OpenedDisk::Use::Look);
    row["identities"] = Json::array();
    for (const IdentityInfo& identity : disk.session.Catalogue().identities) {
      row["identities"].push_back(IdentityOf(console, disk, identity));
    }
    row["addressBook"] = BookOf(disk);
    row["accounts"] = AccountsOf(disk.session.store, kAccountsKey);
  } catch (const HiveRefused& error) {
    row["fault"] = Describe(error);
    console.NotDone("profile " + profile.name + ": " + Describe(error) + "; with --salvage it is opened all the same");
  } catch (const Error& error) {
    row["fault"] = Describe(error);
    console.NotDone("profile " + profile.name + ": " + Describe(error));
  }
  return row;
}

std::string Text(const Json& row, const char* name) {
  return OneLine(row.value(name, std::string()));
}

void PrintAccounts(Console& console, const Json& accounts, const std::string& indent) {
  for (const Json& account : accounts) {
    const std::string address = Text(account, "address");
    console.Result(indent + "Account " + Text(account, "name") + ": " + Text(account, "type") + " " +
                   Text(account, "server") + (address.empty() ? "" : ", " + address));
  }
}

void PrintIdentity(Console& console, const Json& identity) {
  console.Result("  Identity " + Text(identity, "username") + " " + Text(identity, "userId") +
                 (identity.value("default", false) ? " (default)" : ""));
  const std::string store = Text(identity, "store");
  console.Result("    Store " + (store.empty() ? std::string("none: it was never started") : store));
  for (const char* fault : {"fault", "listFault"}) {
    if (identity.contains(fault)) console.Result("      " + Text(identity, fault));
  }
  for (const Json& folder : identity.value("folders", Json::array())) {
    const std::string fault = Text(folder, "fault");
    console.Result("    " + std::string(2 * folder.value("depth", std::size_t{0}), ' ') + Text(folder, "name") + ": " +
                   CountOf(folder.value("messages", std::size_t{0}), " message, ", " messages, ") +
                   SizeText(folder.value("bytes", std::uint64_t{0})) + (fault.empty() ? "" : "; " + fault));
  }
  PrintAccounts(console, identity.at("accounts"), "    ");
}

void PrintProfile(Console& console, const Json& profile) {
  const std::string person = Text(profile, "person");
  console.Result("Profile " + Text(profile, "name") + (person.empty() ? "" : ": " + person));
  for (const Json& identity : profile.value("identities", Json::array())) PrintIdentity(console, identity);
  const Json book = profile.value("addressBook", Json());
  if (book.is_object()) {
    const bool isThere = book.value("isThere", false);
    console.Result("  Address book " + Text(book, "file") +
                   (isThere ? ", " + SizeText(book.value("bytes", std::uint64_t{0})) : ": it is not there"));
  }
  PrintAccounts(console, profile.value("accounts", Json::array()), "  ");
}

}  // namespace

CliExit RunList(Console& console, const CommandArguments& arguments) {
  const WindowsDisk disk = FindWindowsDisk(arguments.disk.folder, arguments.disk.drives);
  Json all = {{"disk", disk.folder.Text()}, {"profiles", Json::array()}};
  if (!arguments.disk.profile.empty()) ChooseProfile(disk, arguments.disk.profile);
  for (const ProfileFolder& profile : disk.profiles) {
    const bool isMeant =
        arguments.disk.profile.empty() || ChooseProfile(disk, arguments.disk.profile).name == profile.name;
    if (isMeant) all["profiles"].push_back(ProfileOf(console, arguments.disk, profile));
  }
  if (arguments.json) {
    // Bytes that are not UTF-8 become U+FFFD.
    console.out << all.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
  } else {
    for (const Json& profile : all["profiles"]) PrintProfile(console, profile);
  }
  return console.End();
}

}  // namespace quillbox
