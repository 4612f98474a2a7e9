// The tool's subcommands. Each returns the process's exit code and throws
// CliError for a failure that ends it with a one-line message.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

namespace respcore::cli {

struct QueryOptions {
  std::string base;
  std::string type;
  std::string comp;
  std::string product;
  std::string format = "table";
  int hist_case = 1;
  int steps = 0;  // 0: all stored steps of the case
  int mode = 0;   // single mode of a modal history, 0 all
  bool global = false;
  bool quiet = false;  // the kernel's lines to standard error, with their items
};

struct HistoryOptions : QueryOptions {
  std::string item;  // SERIAL[:NUMBER]
  std::string plot;  // SVG file, empty for none
  int every = 1;     // table rows: every n-th step
  bool absolute = false;  // node results: add the ground motion
  int relative_to = 0;    // node results: motion relative to this node
};

struct SnapshotOptions : QueryOptions {
  std::string items;
  int step = 0;
};

struct EnvelopeOptions : QueryOptions {
  std::string items;
};

struct DemoCommandOptions {
  std::string dir;
  double damping = 0.02;
  uint32_t seed = 20240611;
  int steps = 1000;
};

int run_sections(const std::string& base, const std::string& product, std::ostream& out);
int run_history(const HistoryOptions& o, std::ostream& out);
int run_snapshot(const SnapshotOptions& o, std::ostream& out);
int run_envelope(const EnvelopeOptions& o, std::ostream& out);
int run_components(const std::string& type, const std::string& format, std::ostream& out);
int run_demo(const DemoCommandOptions& o, std::ostream& out);

}  // namespace respcore::cli
