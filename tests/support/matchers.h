// SPDX-License-Identifier: GPL-3.0-or-later
// How tests say what they expect: matchers under their short names, and what an act is refused with.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <system_error>

#include "text/error.h"

namespace quillbox {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;
using testing::Optional;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;

/// What `act` is refused with; "(done)" when it went through.
template <class Act>
std::string FaultOf(const Act& act) {
  try {
    act();
  } catch (const Error& error) {
    return Describe(error);
  } catch (const std::system_error& error) {
    return error.code().message();
  }
  return "(done)";
}

}  // namespace quillbox
