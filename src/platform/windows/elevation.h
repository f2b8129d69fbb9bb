// SPDX-License-Identifier: GPL-3.0-or-later
// Administrators' rights. Since Windows Vista an administrator's programs run without them unless they ask; the
// registry editor does, and the machine's registry cannot be changed without.
#pragma once

#include <functional>

#include "platform/dialogs.h"

namespace quillbox {

/// What Elevation asks of the system.
struct ElevationCalls {
  /// True when the user is an administrator, and this program runs without an administrator's rights.
  std::function<bool()> isLimited;
  /// Starts this program once more, as an administrator. False when the user or the system refuses.
  std::function<bool()> startAgain;
};
ElevationCalls SystemElevation();

class Elevation {
 public:
  /// `dialogs` must outlive this object.
  Elevation(Dialogs& dialogs, ElevationCalls calls = SystemElevation()) : dialogs_(dialogs), calls_(std::move(calls)) {}

  /// Called when the program was started again: this one is to end.
  std::function<void()> onStartedAgain = [] {};

  /// At the start: offers it where exports and merges would fail without.
  void OfferAtStart();
  /// When Windows has refused to start the registry editor; once in a run.
  void OfferForEditor();

 private:
  void Offer(const char* why);

  Dialogs& dialogs_;
  ElevationCalls calls_;
  bool wasOffered_ = false;
};

}  // namespace quillbox
