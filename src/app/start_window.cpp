// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/start_window.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <optional>

#include "app/this_computer.h"
#include "host/host_names.h"
#include "host/host_paths.h"
#include "host/state_folder.h"
#include "platform/offline/disk_image.h"
#include "platform/offline/hive_consent.h"
#include "platform/offline/private_data.h"
#include "sample/sample_disk.h"
#include "text/command_options.h"
#include "text/error.h"
#include "text/local_time.h"
#include "text/message_text.h"
#include "text/unicode.h"

namespace quillbox {

namespace {

constexpr const char* kWelcome =
    "Quillbox works on the Windows disk of a computer that isn't running: mount or copy the disk, then choose the "
    "folder that is its drive C:.";
constexpr const char* kFoundOnIt = "Profiles found on it";
constexpr const char* kSampleFolder = "quillbox-sample";

std::string DiskLine(const KnownDisk& known) {
  std::string line = PersonInWords(known.disk.profile) + " — " + known.disk.folder.Text();
  const std::optional<std::tm> local = LocalTime(known.opened);
  std::array<char, 20> when = {};
  if (known.opened != 0 && local && std::strftime(when.data(), when.size(), "%Y-%m-%d %H:%M", &*local) > 0) {
    line += std::string(" — ") + when.data();
  }
  return IsFolder(known.disk.folder) ? line : line + " (not there now)";
}

/// A folder as it is typed: "~" is the home.
HostPath TypedFolder(const std::string& text) {
  const std::string folder(Trim(text));
  if (folder.empty()) return {};
  if (folder == "~" || folder.starts_with("~/")) return HomeFolder().Join(HostPath(folder.substr(1)));
  return Absolute(HostPath(folder));
}

std::string Sentence(std::string clause) {
  if (clause.empty()) return clause;
  clause[0] = AsciiUpper(clause[0]);
  return clause + ".";
}

std::vector<std::string> Letters() {
  std::vector<std::string> letters;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (!DriveLetterFault(letter)) letters.push_back({letter, ':'});
  }
  return letters;
}

}  // namespace

std::string ProfileLine(const ProfileFolder& profile) {
  const IdentityCount count = CountIdentities(profile);
  const std::string name = ShownName(profile, count.windows);
  if (count.error) return name + " — cannot be read: " + count.error->Why();
  std::string line = name + " — ";
  line += count.identities == 0 ? "no" : std::to_string(count.identities);
  line += count.identities == 1 ? " identity" : " identities";
  if (count.damagedPlaces > 0) return line + " (registry " + DamagedIn(count.damagedPlaces) + ")";
  if (count.lacksLogs) return line + " (registry not closed cleanly, and its logs cannot be used)";
  return line;
}

HostPath HostOnlyPaths::HostPathOf(const WinPath& path) const {
  HostPath host = HostPath::Root();
  for (const std::string_view name : path.Names()) host = host.Join(HostName(name));
  return host;
}

WinPath HostOnlyPaths::WindowsPathOf(const HostPath& path) const {
  WinPath seen("Z:\\");
  for (const std::string& name : path.Names()) seen = seen.Join(WindowsName(name));
  return seen;
}

StartWindow::StartWindow(HandlerGuard& guard, Dialogs& dialogs, const HostPath& stateFolder)
    : Form(guard, "StartWindow", "Quillbox - Open a Windows disk"),
      lblWelcome(*this, "lblWelcome", kWelcome),
      lblState(*this, "lblState"),
      lblDisks(*this, "lblDisks", "Disks opened before"),
      lstDisks(*this, "lstDisks", "Whose mail was opened last, and where. Double-click to open it again."),
      lblFolder(*this, "lblFolder", "Folder that is drive C:"),
      txtFolder(*this, "txtFolder", "", "The folder on this computer that holds the disk's Windows."),
      cmdChoose(*this, "cmdChoose", "C&hoose...", "Choose the folder that holds the disk's Windows."),
      lblProfiles(*this, "lblProfiles", kFoundOnIt),
      lstProfiles(*this, "lstProfiles", "Whose mail to open. Double-click to open it."),
      lblDrives(*this, "lblDrives"),
      cmbLetter(*this, "cmbLetter", "", "A further drive's letter"),
      txtDrive(*this, "txtDrive", "", "The folder on this computer that is this drive."),
      cmdChooseDrive(*this, "cmdChooseDrive", "Choose...", "Choose the folder that is this drive, and add it."),
      cmdAddDrive(*this, "cmdAddDrive", "&Add", "Add the drive."),
      cmdRemoveDrive(*this, "cmdRemoveDrive", "&Remove", "Do without the drive of this letter."),
      lblFault(*this, "lblFault"),
      txtCommand(*this, "txtCommand", "", "Copy this command into a terminal."),
      cmdOpen(*this, "cmdOpen", "&Open", "Open the selected profile."),
      cmdSearch(*this, "cmdSearch", "&Search This Disk for Mail Files",
                "Find and copy mail files without the disk's registry: for a profile that cannot be opened."),
      cmdSample(*this, "cmdSample", "&Make a Sample Disk to Try", "Make a small Windows disk with invented mail."),
      cmdThisComputer(*this, "cmdThisComputer", "&This Computer", "Open the Windows that Quillbox runs on."),
      cmdManual(*this, "cmdManual", "Ma&nual", "Open the manual in the browser."),
      cmdPrivateData(*this, "cmdPrivateData", "Remove &Private Data...",
                     "Shows what Quillbox keeps of disks on this computer, and removes it."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      dialogs_(dialogs),
      stateFolder_(stateFolder),
      disks_(LoadDisks(stateFolder)) {
  for (Label* label : {&lblWelcome, &lblState, &lblFault}) label->wraps = true;
  for (Label* label : {&lblState, &lblFault}) label->colour = Colour::Red;
  const auto fault = StateFolderFault(stateFolder);
  lblState.visible = fault.has_value();
  if (fault) {
    lblState.caption =
        Sentence("nothing can be remembered, and changes to a write-protected disk cannot be kept: " + *fault);
  }
  cmdThisComputer.visible = IsWindowsHere();
  txtCommand.readOnly = true;
  txtCommand.visible = false;
  cmdOpen.isDefault = true;
  for (Button* button : {&cmdOpen, &cmdSearch}) button->enabled = false;
  cmdClose.isCancel = true;
  cmbLetter.items = Letters();
  for (ListBox* list : {&lstDisks, &lstProfiles}) list->linesShown = 4;
  SetHandlers();
  ShowDrives();
  ListDisks();
}

void StartWindow::SetHandlers() {
  cmdThisComputer.onClick = [this] { Leave(onThisComputer); };
  lstDisks.onSelect = [this] { lstDisks_Click(); };
  lstDisks.onOpen = [this] { cmdOpen_Click(); };
  txtFolder.onChange = [this] { txtFolder_Change(); };
  cmdChoose.onClick = [this] { cmdChoose_Click(); };
  lstProfiles.onSelect = [this] { cmdOpen.enabled = true; };
  lstProfiles.onOpen = [this] { cmdOpen_Click(); };
  cmbLetter.onClick = [this] { cmbLetter_Click(); };
  cmdRemoveDrive.onClick = [this] { cmdRemoveDrive_Click(); };
  cmdChooseDrive.onClick = [this] { cmdChooseDrive_Click(); };
  cmdAddDrive.onClick = [this] { cmdAddDrive_Click(); };
  cmdOpen.onClick = [this] { cmdOpen_Click(); };
  cmdSearch.onClick = [this] { cmdSearch_Click(); };
  cmdSample.onClick = [this] { cmdSample_Click(); };
  cmdManual.onClick = [this] { onManual(); };
  cmdPrivateData.onClick = [this] { cmdPrivateData_Click(); };
  cmdClose.onClick = [this] {
    Hide();
    onClosed();
  };
}

LayoutNode StartWindow::Layout() {
  return Column({
      Row({Item(lblWelcome, 1), Item(cmdThisComputer)}),
      Item(lblState),
      Row({Item(lblDisks), Space(), Item(cmdPrivateData)}),
      Item(lstDisks, 1),
      Item(lblFolder),
      Row({Item(txtFolder, 1), Item(cmdChoose)}),
      Item(lblProfiles),
      Item(lstProfiles, 1),
      Item(lblDrives),
      Row({Item(cmbLetter), Item(txtDrive, 1), Item(cmdChooseDrive), Item(cmdAddDrive), Item(cmdRemoveDrive)}),
      Item(lblFault),
      Item(txtCommand),
      Row({Item(cmdSample), Item(cmdSearch), Item(cmdManual), Space(), Item(cmdOpen), Item(cmdClose)}),
  });
}

/// The last one is looked at, so that Enter opens it again; not when it would only be reported as missing.
void StartWindow::ListDisks() {
  std::vector<std::string> lines;
  for (const KnownDisk& known : disks_) lines.push_back(DiskLine(known));
  lstDisks.items = std::move(lines);
  lblDisks.visible = !disks_.empty();
  lstDisks.visible = !disks_.empty();
  if (disks_.empty() || !IsFolder(disks_.front().disk.folder)) return;
  Look(disks_.front().disk);
}

void StartWindow::ShowFolder(const DiskChoice& disk) {
  choice_ = disk;
  txtFolder.text = disk.folder.Text();
  looked_ = txtFolder.text;
  const auto known = std::find_if(disks_.begin(), disks_.end(), [&](const KnownDisk& other) {
    return other.disk.folder == disk.folder && other.disk.profile == disk.profile;
  });
  const auto line = static_cast<std::size_t>(known - disks_.begin());
  lstDisks.selected = known != disks_.end() ? std::optional(line) : std::nullopt;
  ShowFault("");
  ShowDrives();
}

void StartWindow::Look(const DiskChoice& disk) {
  ShowFolder(disk);
  cmdSearch.enabled = IsFolder(disk.folder);
  isOffer_ = false;
  lblProfiles.caption = kFoundOnIt;
  try {
    ShowFound({FindWindowsDisk(disk.folder, disk.drives)});
  } catch (const Error& error) {
    ShowWhyNot(error.Why());
  }
}

void StartWindow::ShowWhyNot(const std::string& why) {
  if (const auto advice = AdviceOnMounting(choice_.folder)) {
    ShowFault("This is " + advice->what + ", not a folder. Mount it with this command, then choose " + advice->where +
              ":");
    txtCommand.text = advice->command;
    txtCommand.visible = true;
    return ShowFound({});
  }
  const std::vector<WindowsDisk> near = FindDisksNear(choice_.folder);
  isOffer_ = !near.empty();
  if (near.size() == 1) lblProfiles.caption = "Open " + near.front().folder.Text() + "?";
  if (near.size() > 1) lblProfiles.caption = "Open one of these?";
  ShowFault(isOffer_ ? "This folder is not a Windows disk itself." : Sentence(why));
  ShowFound(near);
}

/// Lists the profiles of `disks`, with their folders where they are an offer.
void StartWindow::ShowFound(const std::vector<WindowsDisk>& disks) {
  found_.clear();
  std::vector<std::string> lines;
  std::size_t selected = 0;
  for (const WindowsDisk& disk : disks) {
    for (const ProfileFolder& profile : disk.profiles) {
      if (EqualIgnoreCase(profile.name, choice_.profile)) selected = found_.size();
      found_.push_back({isOffer_ ? disk.folder : choice_.folder, profile.name});
      lines.push_back((disks.size() > 1 ? disk.folder.Text() + ": " : "") + ProfileLine(profile));
    }
  }
  lstProfiles.items = std::move(lines);
  lstProfiles.selected = found_.empty() ? std::nullopt : std::optional(selected);
  cmdOpen.enabled = !found_.empty();
}

void StartWindow::ShowFault(const std::string& fault) {
  lblFault.caption = fault;
  lblFault.visible = !fault.empty();
  txtCommand.visible = false;
}

/// Offers the next free letter.
void StartWindow::ShowDrives() {
  std::string drives;
  for (const auto& [letter, folder] : choice_.drives) {
    drives += (drives.empty() ? ": " : ", ") + std::string(1, letter) + ": " + folder.Text();
  }
  lblDrives.caption = "Further drives of that Windows" + drives;
  char free = 'D';
  while (choice_.drives.count(free) > 0) ++free;
  cmbLetter.text = std::string{free, ':'};
  cmbLetter_Click();
}

/// A drive that is known is shown; else there is nothing yet.
void StartWindow::cmbLetter_Click() {
  const auto known = choice_.drives.find(cmbLetter.text->front());
  cmdRemoveDrive.enabled = known != choice_.drives.end();
  txtDrive.text = known != choice_.drives.end() ? known->second.Text() : std::string();
}

/// The drives belong to the disk that was looked at.
void StartWindow::LookAtText() {
  const HostPath folder = TypedFolder(txtFolder.text);
  DiskChoice disk{.folder = folder, .profile = {}, .drives = {}};
  if (choice_.folder.Empty() || choice_.folder == folder) disk.drives = choice_.drives;
  Look(disk);
}

void StartWindow::txtFolder_Change() {
  looked_.reset();
  lstDisks.selected = std::nullopt;
  found_.clear();
  lstProfiles.items = std::vector<std::string>();
  lstProfiles.selected = std::nullopt;
  lblProfiles.caption = kFoundOnIt;
  ShowFault("");
  for (Button* button : {&cmdOpen, &cmdSearch}) button->enabled = !Trim(txtFolder.text.Get()).empty();
}

void StartWindow::lstDisks_Click() {
  if (const auto line = lstDisks.selected.Get()) Look(disks_.at(*line).disk);
}

void StartWindow::cmdChoose_Click() {
  FolderDialog dialog{.title = "Choose the folder that is drive C:"};
  if (IsFolder(TypedFolder(txtFolder.text))) dialog.folder = paths_.WindowsPathOf(TypedFolder(txtFolder.text));
  const auto chosen = dialogs_.BrowseForFolder(dialog);
  if (!chosen) return;
  txtFolder.text = paths_.HostPathOf(*chosen).Text();
  LookAtText();
}

void StartWindow::cmdChooseDrive_Click() {
  const auto chosen = dialogs_.BrowseForFolder({.title = "Choose the folder that is drive " + cmbLetter.text.Get()});
  if (!chosen) return;
  txtDrive.text = paths_.HostPathOf(*chosen).Text();
  cmdAddDrive_Click();
}

void StartWindow::cmdAddDrive_Click() {
  if (!AddDrive() || !looked_) return;
  Look(DiskChoice(choice_));
}

/// Adds the drive that is typed; false with a message when it cannot be one.
bool StartWindow::AddDrive() {
  const HostPath folder = TypedFolder(txtDrive.text);
  if (folder.Empty() || !IsFolder(folder) || folder.IsRoot()) {
    ShowFault("Drive " + cmbLetter.text.Get() + " needs a folder of this computer that is there, other than its root.");
    return false;
  }
  choice_.drives[cmbLetter.text->front()] = folder;
  ShowFault("");
  ShowDrives();
  return true;
}

void StartWindow::cmdRemoveDrive_Click() {
  choice_.drives.erase(cmbLetter.text->front());
  ShowDrives();
  if (looked_) Look(DiskChoice(choice_));
}

bool StartWindow::HasTypedDrive() const {
  return !Trim(txtDrive.text.Get()).empty();
}

void StartWindow::Leave(const std::function<void()>& open) {
  try {
    open();
    Hide();
  } catch (const Error& error) {
    ShowFault(Describe(error));
  }
}

/// A typed folder is looked at first; where there is no choice, it is opened at once.
void StartWindow::cmdOpen_Click() {
  if (HasTypedDrive() && !AddDrive()) return;
  if (looked_ != txtFolder.text.Get()) {
    LookAtText();
    if (isOffer_ || found_.size() != 1) return;
  }
  const auto line = lstProfiles.selected.Get();
  if (!line || *line >= found_.size()) return;
  const Found& found = found_[*line];
  Leave([&] { onOpen({.folder = found.folder, .profile = found.profile, .drives = choice_.drives}); });
}

void StartWindow::cmdSearch_Click() {
  if (HasTypedDrive() && !AddDrive()) return;
  if (looked_ != txtFolder.text.Get()) LookAtText();
  if (!IsFolder(choice_.folder)) return;
  Leave([&] { onSearch({.folder = choice_.folder, .profile = {}, .drives = choice_.drives}); });
}

void StartWindow::cmdSample_Click() {
  const auto chosen = dialogs_.BrowseForFolder({.title = "Choose where to make the sample disk"});
  if (!chosen) return;
  try {
    const SampleDisk sample = MakeSampleDisk(NativePath(paths_.HostPathOf(*chosen) / kSampleFolder), {});
    Look({.folder = sample.driveC, .profile = sample.profile, .drives = {{'D', sample.driveD}}});
  } catch (const Error& error) {
    ShowFault(Describe(error));
  }
}

void StartWindow::cmdPrivateData_Click() {
  const PrivateData data = ListPrivateData(stateFolder_);
  if (data.IsEmpty() && data.faults.empty()) {
    dialogs_.Show({.text = "Quillbox keeps no copies of registries and no log on this computer.",
                   .icon = MessageIcon::Information});
    return;
  }
  const Message question{.text = TextOf(data, stateFolder_, std::time(nullptr)) + "\n\nThis is in " +
                                 OneLine(stateFolder_.Text()) + ". Remove it? It cannot be brought back.",
                         .buttons = MessageButtons::YesNo,
                         .icon = MessageIcon::Question,
                         .words = ButtonWords{"&Remove", "&Keep"},
                         .noIsDefault = true};
  if (dialogs_.Show(question) != MessageAnswer::Yes) return;
  const PrivateRemoval removal = RemovePrivateData(stateFolder_, data);
  dialogs_.Show(
      {.text = SummaryOf(removal), .icon = removal.kept.empty() ? MessageIcon::Information : MessageIcon::Exclamation});
}

}  // namespace quillbox
