// SPDX-License-Identifier: GPL-3.0-or-later
// The command line as a program.
#include <exception>
#include <iostream>

#include "cli/command_line.h"
#include "host/host_program.h"
#include "host/terminal.h"

int main(int argc, char** argv) {
  const quillbox::Utf8Output output;
  try {
    const bool errorTerminal = quillbox::IsErrorTerminal();
    quillbox::Console console{.in = std::cin,
                              .out = std::cout,
                              .err = std::cerr,
                              .canAsk = errorTerminal && quillbox::IsInputTerminal(),
                              .isTerminal = errorTerminal};
    const quillbox::CliExit end = quillbox::RunCommandLine(quillbox::ProgramArguments(argc, argv), console);
    console.EndProgress();
    // What could not be printed was not done.
    if (!std::cout.flush() && end == quillbox::CliExit::Done) return static_cast<int>(quillbox::CliExit::Incomplete);
    return static_cast<int>(end);
  } catch (const std::exception& error) {
    std::cerr << "quillbox-cli: " << error.what() << '\n';
    return static_cast<int>(quillbox::CliExit::Incomplete);
  }
}
