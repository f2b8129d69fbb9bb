#include "app/start_window.h"

#include <algorithm>

#include "platform/offline/hive_consent.h"
#include "sample/sample_disk.h"
#include "text/error.h"

namespace quillbox {
namespace {

constexpr const char* kWelcome =
    "Quillbox works on the Windows disk of a computer that isn't running: mount or copy the disk, then choose the "
    "folder that is its drive C:.";
constexpr const char* kSampleFolder = "quillbox-sample";

std::string ProfileLine(const ProfileFolder& profile) {
  const IdentityCount count = CountIdentities(profile);
  if (count.error) return profile.name + " — cannot be read: " + count.error->Why();
  std::string line = profile.name + " — ";
  line += count.identities == 0 ? "no" : std::to_string(count.identities);
  line += count.identities == 1 ? " identity" : " identities";
  if (count.damagedPlaces > 0) return line + " (registry " + DamagedIn(count.damagedPlaces) + ")";
  if (count.lacksLogs) return line + " (registry not closed cleanly, and its logs cannot be used)";
  return line;
}

}  // namespace

std::filesystem::path HostOnlyPaths::HostPath(const WinPath& path) const {
  std::string text = path.Text();
  if (path.Drive() != 0) text.erase(0, 2);
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

WinPath HostOnlyPaths::WindowsPathOf(const std::filesystem::path& path) const {
  std::string text = path.string();
  std::replace(text.begin(), text.end(), '/', '\\');
  return WinPath("Z:" + text);
}

StartWindow::StartWindow(HandlerGuard& guard, Dialogs& dialogs, std::function<void(const DiskChoice&)> open)
    : Form(guard, "StartWindow", "Quillbox - Open a Windows disk"),
      lblWelcome(*this, "lblWelcome", kWelcome),
      lblFolder(*this, "lblFolder", "Folder that is drive C:"),
      txtFolder(*this, "txtFolder", "", "The folder on this computer that holds the disk's Windows."),
      cmdChoose(*this, "cmdChoose", "C&hoose...", "Choose the folder that holds the disk's Windows."),
      lblProfiles(*this, "lblProfiles", "Profiles found on it"),
      lstProfiles(*this, "lstProfiles", "Whose mail to open. Double-click to open it."),
      lblFault(*this, "lblFault"),
      cmdOpen(*this, "cmdOpen", "&Open", "Open the selected profile."),
      cmdSample(*this, "cmdSample", "&Make a sample disk to try", "Make a small Windows disk with invented mail."),
      cmdClose(*this, "cmdClose", "Close", "Close this window."),
      dialogs_(dialogs),
      open_(std::move(open)) {
  txtFolder.readOnly = true;
  lblFault.colour = Colour::Red;
  lblFault.wraps = true;
  cmdOpen.isDefault = true;
  cmdOpen.enabled = false;
  cmdClose.isCancel = true;
  cmdChoose.onClick = [this] { cmdChoose_Click(); };
  cmdOpen.onClick = [this] { cmdOpen_Click(); };
  lstProfiles.onOpen = [this] { cmdOpen_Click(); };
  lstProfiles.onSelect = [this] { cmdOpen.enabled = true; };
  cmdSample.onClick = [this] { cmdSample_Click(); };
  cmdClose.onClick = [this] {
    Hide();
    onClosed();
  };
}

LayoutNode StartWindow::Layout() {
  return Column({
      Item(lblWelcome),
      Item(lblFolder),
      Row({Item(txtFolder, 1), Item(cmdChoose)}),
      Item(lblProfiles),
      Item(lstProfiles, 1),
      Item(lblFault),
      Row({Item(cmdSample), Space(), Item(cmdOpen), Item(cmdClose)}),
  });
}

void StartWindow::Look(const DiskChoice& disk) {
  choice_ = disk;
  txtFolder.text = disk.folder.string();
  lblFault.caption = "";
  std::vector<std::string> lines;
  try {
    disk_ = FindWindowsDisk(disk.folder);
    for (const ProfileFolder& profile : disk_->profiles) lines.push_back(ProfileLine(profile));
  } catch (const Error& error) {
    disk_.reset();
    ShowFault(error.Why());
  }
  lstProfiles.items = std::move(lines);
  if (!lstProfiles.items->empty()) lstProfiles.selected = 0;
  cmdOpen.enabled = !lstProfiles.items->empty();
}

void StartWindow::ShowFault(const std::string& fault) {
  lblFault.caption = fault;
}

void StartWindow::cmdChoose_Click() {
  const auto chosen = dialogs_.BrowseForFolder({.title = "Choose the folder that is drive C:"});
  if (chosen) Look({.folder = paths_.HostPath(*chosen), .profile = {}, .drives = {}});
}

void StartWindow::cmdOpen_Click() {
  const std::optional<std::size_t>& line = lstProfiles.selected;
  if (!disk_ || !line) return;
  choice_.profile = disk_->profiles.at(*line).name;
  try {
    open_(choice_);
    Hide();
  } catch (const Error& error) {
    ShowFault(Describe(error));
  }
}

void StartWindow::cmdSample_Click() {
  const auto chosen = dialogs_.BrowseForFolder({.title = "Choose where to make the sample disk"});
  if (!chosen) return;
  try {
    const SampleDisk sample = MakeSampleDisk(paths_.HostPath(*chosen) / kSampleFolder, {});
    Look({.folder = sample.driveC, .profile = sample.profile, .drives = {{'D', sample.driveD}}});
  } catch (const Error& error) {
    ShowFault(Describe(error));
  }
}

}  // namespace quillbox
