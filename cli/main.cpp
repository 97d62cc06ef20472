// The command `vexa`: arguments in, text out. Exit 0, 1 for bad input, 2 for bad usage.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <unistd.h>

#include "cli/application.h"
#include "formats/Descriptor.h"
#include "formats/interruption.h"
#include "formats/printable.h"

namespace {

int complain(const std::string& fault, int exitCode) {
  std::fprintf(stderr, "vexa: %s\n", vexa::formats::printable(fault).c_str());
  return exitCode;
}

// The terminate handler: an exception inside a destructor reaches no handler in main. Formatted
// output would need memory, so the text goes out by write(2).
[[noreturn]] void endWithoutMemory() {
  vexa::formats::removeTemporaries();
  try {
    if (const auto cause = std::current_exception()) std::rethrow_exception(cause);
  } catch (const std::bad_alloc&) {
    constexpr char kText[] = "vexa: not enough memory\n";
    vexa::formats::writeAll(STDERR_FILENO, kText, sizeof(kText) - 1);
    _exit(1);
  } catch (...) {
  }
  std::abort();
}

int complainOfUsage(const CLI::App& app, const CLI::ParseError& error) {
  // The fault of a command refers to the help of that command.
  const auto commands = app.get_subcommands();
  if (!commands.empty()) {
    return complain(
        std::string(error.what()) + " (see vexa " + commands[0]->get_name() + " --help)", 2);
  }
  // The library would call an unknown command an argument too many.
  const bool isUnknown = app.remaining_size() > 0;
  return complain((isUnknown ? "\"" + app.remaining()[0] + "\" is no command" : error.what()) +
                      std::string(" (see vexa --help)"),
                  2);
}

int run(int argc, char** argv) {
  // In this order: the first file that is opened must not become a standard stream, and no
  // temporary file may be made before the signals are caught.
  vexa::formats::openStandardStreams();
  vexa::formats::removeTemporariesOnSignals();
  std::set_terminate(endWithoutMemory);
  CLI::App app;
  vexa::cli::setUp(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) return complainOfUsage(app, error);
    app.exit(error);  // prints the help or the version
  } catch (const std::bad_alloc&) {
    return complain("not enough memory", 1);
  } catch (const std::exception& error) {
    return complain(error.what(), 1);
  }
  // A full disk behind standard output shows up here at the latest.
  const bool written = std::cout.flush().good() && std::fflush(stdout) == 0;
  if (!written || std::ferror(stdout) != 0) return complain("standard output: cannot write", 1);
  return 0;
}

}  // namespace

// Setting up the options and writing an error text need memory, too, and happen outside run()'s
// handlers.
int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (...) {
    endWithoutMemory();
  }
}
