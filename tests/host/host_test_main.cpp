// SPDX-License-Identifier: GPL-3.0-or-later
// The tests of the host, and the program that they start: themselves, with a word that no test has.
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "host/folder_lock.h"
#include "host/host_program.h"

namespace quillbox {
namespace {

/// Writes each argument to standard error, in a line of its own.
int ShowArguments(const std::vector<std::string>& arguments) {
  for (const std::string& argument : arguments) std::cerr << '<' << argument << ">\n";
  return 7;
}

/// Locks the folder and says whether it could; ends as a program that is killed.
int Lock(const std::vector<std::string>& arguments) try {
  std::vector<HandleNumber> inherited;
  for (std::size_t at = 2; at < arguments.size(); ++at) inherited.push_back(std::stoll(arguments[at]));
  const FolderLock lock(HostPath(arguments.at(1)), inherited);
  std::cerr << "locked " << lock.Lack() << std::flush;
  std::_Exit(0);
} catch (const std::exception& error) {
  std::cerr << error.what();
  return 1;
}

}  // namespace
}  // namespace quillbox

int main(int argc, char** argv) {
  const std::vector<std::string> arguments = quillbox::ProgramArguments(argc, argv);
  const std::string task = arguments.empty() ? "" : arguments.front();
  if (task == "show") return quillbox::ShowArguments(arguments);
  if (task == "lock") return quillbox::Lock(arguments);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
