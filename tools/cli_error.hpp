// The tool's failure: a one-line message and the process's exit code.
#pragma once

#include <stdexcept>
#include <string>

namespace respcore::cli {

// Exit codes: 1 the archive or the kernel failed (missing, broken, an item
// past its section, error lines from the kernel); 2 the arguments are wrong.
inline constexpr int EXIT_ARCHIVE = 1;
inline constexpr int EXIT_USAGE = 2;

struct CliError : std::runtime_error {
  int code;
  explicit CliError(const std::string& message, int exit_code = EXIT_ARCHIVE)
      : std::runtime_error(message), code(exit_code) {}
};

// A wrong argument.
inline CliError usage_error(const std::string& message) { return CliError(message, EXIT_USAGE); }

}  // namespace respcore::cli
