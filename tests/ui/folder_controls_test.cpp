// SPDX-License-Identifier: GPL-3.0-or-later
// What the lists show; what a user does with them is tested with the window that has them.
#include "ui/folder_controls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "support/form_platform.h"
#include "support/test_drives.h"
#include "ui/form.h"

namespace quillbox {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ListFinder : FileFinder {
  explicit ListFinder(std::vector<FileEntry> toGive) : entries(std::move(toGive)) {}
  std::optional<FileEntry> Next() override { return at < entries.size() ? std::optional(entries[at++]) : std::nullopt; }
  std::vector<FileEntry> entries;
  std::size_t at = 0;
};

/// Folders by their paths; nothing can be changed.
struct FixedFiles : FileSystem {
  std::unique_ptr<FileFinder> Find(const WinPath& pattern) override {
    return std::make_unique<ListFinder>(folders[pattern.Parent().Text()]);
  }
  std::unique_ptr<FolderWalk> Walk(const WinPath&, const std::string&) override { return nullptr; }
  std::optional<FileEntry> Stat(const WinPath&) override { return std::nullopt; }
  Status MakeDirectory(const WinPath&) override { return Status::AccessDenied; }
  bool MakePath(const WinPath&) override { return false; }
  Status RemoveDirectory(const WinPath&) override { return Status::AccessDenied; }
  Status DeleteFile(const WinPath&) override { return Status::AccessDenied; }
  std::string ReadFile(const WinPath&) override { return {}; }
  void WriteFile(const WinPath&, std::string_view) override {}
  std::unique_ptr<FileReader> OpenForReading(const WinPath&) override { return nullptr; }
  std::unique_ptr<FileWriter> StartFile(const WinPath&) override { return nullptr; }
  std::unique_ptr<FolderWriter> StartFolder(const WinPath&) override { return nullptr; }

  std::map<std::string, std::vector<FileEntry>> folders{
      {"C:\\", {{.name = "Data", .isDirectory = true}, {.name = "boot.ini", .isHidden = true}}},
      {"C:\\Data",
       {{.name = ".", .isDirectory = true},
        {.name = "..", .isDirectory = true},
        {.name = "zoo", .isDirectory = true},
        {.name = "Mail", .isDirectory = true},
        {.name = "System", .isDirectory = true, .isSystem = true},
        {.name = "B.dbx"},
        {.name = "a.txt"},
        {.name = "thumbs.db", .isHidden = true}}},
  };
};

struct FolderControlsTest : testing::Test {
  FormPlatform platform;
  HandlerGuard guard{platform};
  struct Lists : Form {
    using Form::Form;
    LayoutNode Layout() override { return Space(); }
    DriveListBox drives{*this, "Drive1"};
    DirListBox folders{*this, "Dir1"};
    FileListBox names{*this, "File1"};
  } form{guard, "Lists", ""};
  TestDrives drives;
  FixedFiles files;
};

TEST_F(FolderControlsTest, ExistingDrivesAreListedOnceHoweverOftenFilled) {
  drives.types = {{'A', DriveType::Removable}, {'C', DriveType::Fixed}, {'Z', DriveType::Remote}};
  form.drives.Fill(drives);
  form.drives.Fill(drives);
  EXPECT_THAT(form.drives.items.Get(), ElementsAre("A:\\", "C:\\", "Z:\\"));
  form.drives.ShowDriveOf(WinPath("c:\\Data\\Mail"));
  EXPECT_EQ(form.drives.Index(), 1U);
}

TEST_F(FolderControlsTest, TheListsShowTheWayDownTheFoldersInsideAndTheFiles) {
  int ran = 0;
  form.folders.onSelect = form.folders.onOpen = [&] { ++ran; };
  form.folders.SetPath(files, drives, WinPath("C:\\Data\\"));
  EXPECT_THAT(form.folders.items.Get(), ElementsAre("C:\\", "  Data", "    Mail", "    zoo"));
  EXPECT_EQ(form.folders.selected, 1U) << "the folder itself";
  EXPECT_EQ(form.folders.FolderAt(0), WinPath("C:\\"));
  EXPECT_EQ(form.folders.FolderAt(3), WinPath("C:\\Data\\zoo"));
  files.folders["C:\\Data"].push_back({.name = "New", .isDirectory = true});
  form.folders.Refresh(files);
  EXPECT_EQ(form.folders.FolderAt(3), WinPath("C:\\Data\\New"));
  form.folders.SetPath(files, drives, WinPath("Mail"));
  EXPECT_EQ(form.folders.Path(), WinPath("C:\\Data\\Mail")) << "relative to the current directory";
  EXPECT_THAT(form.folders.items.Get(), ElementsAre("C:\\", "  Data", "    Mail"));
  EXPECT_EQ(ran, 0);

  form.names.SetPath(files, WinPath("C:\\Data"));
  EXPECT_THAT(form.names.items.Get(), ElementsAre("a.txt", "B.dbx"));
  form.names.SetPath(files, WinPath("C:\\Gone"));
  EXPECT_THAT(form.names.items.Get(), IsEmpty());
}

}  // namespace
}  // namespace quillbox
