// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/new_file.h"

#include <utility>

#include "host/host_fault.h"
#include "host/host_paths.h"

namespace quillbox {

namespace {

/// A path whose last name is a link: what it leads to.
HostPath FollowLink(const HostPath& target) {
  const PathInfo there = InfoOf(target, Links::Keep);
  if (!there.info || !there.info->IsLink()) return target;
  const RealPath led = RealPathAsFarAsThere(target);
  return led.fault ? target : led.path;
}

}  // namespace

NewFile::NewFile(HostFolder folder, std::string name, Links links)
    : folder_(std::move(folder)), name_(std::move(name)) {
  Begin(links);
}

NewFile::NewFile(const HostPath& target) {
  const HostPath led = FollowLink(target);
  if (!led.HasName()) ThrowFault(SystemCode(std::errc::is_a_directory));
  folder_ = HostFolder::Open(Absolute(led).Parent());
  name_ = led.Name();
  Begin(Links::Follow);
}

}  // namespace quillbox
