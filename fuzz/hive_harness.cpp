// SPDX-License-Identifier: GPL-3.0-or-later
// An untrusted hive file: opened strictly and with damaged parts left out, read, written, and read again.
#include <optional>

#include "harness.h"
#include "hive_mutation.h"
#include "hive_reading.h"
#include "hive_seeds.h"
#include "registry/hive.h"
#include "text/error.h"

namespace quillbox {
namespace {

std::optional<Hive> Open(ByteView input, DamagedParts damaged) {
  try {
    return Hive::Load(Bytes(input.begin(), input.end()), "fuzzed", {}, damaged);
  } catch (const Error&) {
    return std::nullopt;
  }
}

void RunHive(ByteView input) {
  std::optional<Hive> strict = Open(input, DamagedParts::Refuse);
  std::optional<Hive> partial = Open(input, DamagedParts::LeaveOut);
  if (strict) {
    Require(strict->Damage().empty(), "a hive that opens strictly lacks nothing");
    Require(partial && partial->Damage().empty(), "nothing is left out of a hive that opens strictly");
    Require(ReadAll(*strict) == ReadAll(*partial), "both ways of opening a whole hive give the same");
    RequireReloads(*strict);
  } else if (partial) {
    Require(!partial->Damage().empty(), "what is left out is listed");
    RequireReloads(*partial);
  }
}

}  // namespace

const Harness kHiveHarness = {"hive", 64 * 1024, RunHive, HiveSeeds, MutateHive};

}  // namespace quillbox
