// SPDX-License-Identifier: GPL-3.0-or-later
// The sample disk as the system that tests of the subsystems work on.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/offline/offline_platform.h"
#include "sample/sample_disk.h"
#include "support/temp_folder.h"

namespace quillbox {

using SampledPlatform = OfflinePlatform;

inline std::string ForThatEditor(const std::string& commandLine) {
  return commandLine;
}

inline SampleDisk MakeSampled(const TempFolder& temp) {
  return MakeSampleDisk(temp / "disk", {.smallStores = true});
}

/// A kind of SampledPlatform on it. `named` gets "D=FOLDER" for each drive that the user names on the spot.
template <class Platform>
std::unique_ptr<Platform> OpenSampled(const SampleDisk& sample, const TempFolder& temp, Dialogs& dialogs,
                                      std::function<void(std::string)> named) {
  OfflineOptions options;
  options.folder = sample.driveC;
  options.profile = sample.profile;
  options.drives = {{'D', sample.driveD}};
  options.stateFolder = temp / "state";
  options.driveNamed = [named = std::move(named)](char letter, const HostPath& folder) {
    named(std::string(1, letter) + "=" + folder.Text());
  };
  return std::make_unique<Platform>(options, dialogs);
}

}  // namespace quillbox
