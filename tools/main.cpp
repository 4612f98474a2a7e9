// respcore: work with result archives from the command line.
//
//   respcore sections BASE                 the directory of every file
//   respcore history BASE --type beam --item 3 --comp My-i --plot my.svg
//   respcore snapshot BASE --type beam --items 1-6 --comp corner1 --step 200
//   respcore envelope BASE --type node-displacement --items 7-24 --comp x
//   respcore components [TYPE]             families and component names
//   respcore demo DIR                      write the demo archive
#include <CLI/CLI.hpp>

#include <iostream>

#include "cli_error.hpp"
#include "commands.hpp"

namespace {

using namespace respcore::cli;

void add_query_options(CLI::App* cmd, QueryOptions& o) {
  cmd->add_option("base", o.base, "archive base name, without extension")->required();
  cmd->add_option("--type,-t", o.type, "result family: a name (beam, truss, node-displacement, ...) or 1 to 14")->required();
  cmd->add_option("--comp,-c", o.comp, "component: a name from 'respcore components TYPE' or its number")->required();
  cmd->add_option("--case", o.hist_case, "history case (default 1)");
  cmd->add_option("--steps", o.steps, "steps from the first (default: all stored steps of the case)");
  cmd->add_option("--product", o.product, "product tag, e.g. P.R.W or 1 to 8 (default: the archive that exists)");
  cmd->add_option("--mode", o.mode, "one mode of a modal history (default 0: all modes)");
  cmd->add_flag("--global", o.global, "results in global axes instead of local ones");
  cmd->add_option("--format,-f", o.format, "table, csv or json (default table)");
  cmd->add_flag("--quiet,-q", o.quiet, "the kernel's error lines to standard error, each with its item, not standard output");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"respcore: time histories from the result archive of a dynamic analysis"};
  app.require_subcommand(1);
  app.footer(
      "Exit status: 0 done; 1 the archive is missing or broken, or the kernel reported errors; "
      "2 bad arguments.");

  std::string base, product;
  auto* sections = app.add_subcommand("sections", "list the directory of each of the archive's files");
  sections->add_option("base", base, "archive base name, without extension")->required();
  sections->add_option("--product", product, "product tag (default: the archive that exists)");

  HistoryOptions h;
  auto* history = app.add_subcommand("history", "one item over the steps");
  add_query_options(history, h);
  history->add_option("--item,-i", h.item, "SERIAL[:NUMBER]: record in the family's section, and the element or node number")->required();
  history->add_option("--plot", h.plot, "also write an SVG line plot to this file");
  history->add_option("--every", h.every, "table: print every n-th step (CSV and JSON hold all)");
  history->add_flag("--absolute", h.absolute, "node results: absolute motion, ground motion added");
  history->add_option("--relative-to", h.relative_to, "node results: motion relative to this node");

  SnapshotOptions s;
  auto* snapshot = app.add_subcommand("snapshot", "many items at one step, all points of each element");
  add_query_options(snapshot, s);
  snapshot->add_option("--items,-i", s.items, "items: 1,4,7-9,12:112 or all")->required();
  snapshot->add_option("--step", s.step, "the step")->required();

  EnvelopeOptions e;
  auto* envelope = app.add_subcommand("envelope", "largest and smallest values over the steps, with their steps");
  add_query_options(envelope, e);
  envelope->add_option("--items,-i", e.items, "items: 1,4,7-9 or all")->required();

  std::string type, comp_format = "table";
  auto* components = app.add_subcommand("components", "result families, or the component names of one");
  components->add_option("type", type, "family name or number");
  components->add_option("--format,-f", comp_format, "table, csv or json");

  DemoCommandOptions d;
  auto* demo = app.add_subcommand("demo", "write the demo archive: a steel frame under a synthetic earthquake");
  demo->add_option("dir", d.dir, "output directory (made if missing)")->required();
  demo->add_option("--damping", d.damping, "modal damping ratio (default 0.02)");
  demo->add_option("--seed", d.seed, "seed of the ground motion");
  demo->add_option("--steps", d.steps, "stored steps over the 10 s record (default 1000)");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& err) {
    if (err.get_exit_code() == 0) return app.exit(err);  // --help
    std::cerr << "respcore: " << err.what() << " (see 'respcore --help')\n";
    return EXIT_USAGE;
  }

  try {
    if (*sections) return run_sections(base, product, std::cout);
    if (*history) return run_history(h, std::cout);
    if (*snapshot) return run_snapshot(s, std::cout);
    if (*envelope) return run_envelope(e, std::cout);
    if (*components) return run_components(type, comp_format, std::cout);
    if (*demo) return run_demo(d, std::cout);
  } catch (const CliError& err) {
    std::cout.flush();
    std::cerr << "respcore: " << err.what() << "\n";
    return err.code;
  } catch (const std::exception& err) {
    std::cout.flush();
    std::cerr << "respcore: " << err.what() << "\n";
    return EXIT_ARCHIVE;
  }
  return EXIT_USAGE;
}
