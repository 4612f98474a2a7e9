// Queries by family, component and items: what the tool and the Python
// package share. An archive is opened once (its files located, their
// directories read and checked); a request is checked against it before the
// kernel runs, so that a wrong case, a missing section or an item past its
// section is a message rather than rows of zeros; the kernel's arrays are
// then turned into histories, snapshots and envelopes.
//
// Failures throw CliError: EXIT_USAGE for a wrong argument, EXIT_ARCHIVE for
// an archive that is missing, broken or lacks what the request needs. The
// kernel's own error lines are not failures here: they come back in
// KernelLines, and the caller decides.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "archive_directory.hpp"
#include "components.hpp"
#include "output.hpp"
#include "respcore/kernel.hpp"

namespace respcore::cli {

// An archive's files with their directories, the first and second file
// sound.
struct ArchiveView {
  ArchiveInspection files;
  const FileInspection& first() const { return *files.file(ArchiveFileKind::First); }
  const FileInspection& second() const { return *files.file(ArchiveFileKind::Second); }
};

// Locates the archive BASE (PRODUCT empty: the one tag whose first file
// exists) and reads its directories.
ArchiveView open_archive_view(const std::string& base, const std::string& product);

// What the archive tells of one history case.
struct CaseInfo {
  int hist_case = 1;
  std::array<int32_t, 5> ithif{};
  int elem_form = 1;          // 2: element records under serial 4
  std::string storage;        // "modal", "direct" or "unknown (N)"
  int stored_steps = 0;       // 0 when the archive does not tell
};

// Number of history cases (records of THIF).
int case_count(const ArchiveView& a);
// Case HIST_CASE, with the sections its storage needs checked.
CaseInfo case_info(const ArchiveView& a, int hist_case);

// The record section of a family under a case.
struct FamilySection {
  SectionInfo entry;
  std::string name;  // "BEAM/3"
  int64_t records() const { return entry.records(); }
};
FamilySection family_section(const ArchiveView& a, const CaseInfo& c, const Family& f);

// A family by name or number; throws a usage error otherwise.
const Family& family_of(const std::string& text);

// SERIAL or SERIAL:NUMBER; "1,4,7-9,12:112" or "all" (every record of a
// section of NREC records).
Item parse_item(std::string_view text);
std::vector<Item> parse_items(const std::string& text, int64_t nrec);
// Throws a usage error for an item past its section (nodes by number,
// elements by serial).
void check_item(const Family& f, const FamilySection& s, const Item& item);

// The steps a request covers: STEPS, or all stored steps when 0.
int steps_of(int steps, const CaseInfo& c);

// One family and component of one case, as the kernel is asked for it.
struct Query {
  std::string base;
  int product_index = 1;
  const Family* family = nullptr;
  int comp = 1;  // history row (history, envelope) or snapshot selector
  int hist_case = 1;
  int mode = 0;  // one mode of a modal history; 0 all
  bool global = false;
};

// A line the kernel wrote, and the item it concerns (index into the
// request's items; -1 when the call covered several and they were not told
// apart).
struct KernelLine {
  std::string text;
  int item = -1;
};

struct KernelLines {
  std::vector<KernelLine> output;       // the kernel's error lines
  std::vector<std::string> diagnostics; // bound diagnostics of a quiet kernel
  bool empty() const { return output.empty() && diagnostics.empty(); }
};

// Called between kernel runs of a many-item request: items done, of all.
using Progress = std::function<void(size_t done, size_t total)>;

struct RunOptions {
  // A many-item call that reported lines is run again item by item (its
  // values are kept), so that every line names its item.
  bool attribute_lines = false;
  // When set, many-item requests run in slices and report after each.
  const Progress* progress = nullptr;
};

// Node histories only: motion with the ground motion added, or relative to
// another node.
struct NodeMotion {
  bool absolute = false;
  int relative_to = 0;  // node number, 0 none
};

// One item over STEPS steps.
std::vector<double> query_history(Kernel& k, const Query& q, const Item& item, int steps,
                                  const NodeMotion& motion, KernelLines& lines);

// Many items at STEP: POINTS values per item, item by item.
struct SnapshotValues {
  int points = 0;
  std::vector<double> values;  // items x points
};
SnapshotValues query_snapshot(Kernel& k, const Query& q, const std::vector<Item>& items, int step,
                              KernelLines& lines, const RunOptions& run = {});

// The extremes of the component over STEPS steps, with their steps. Node
// families come from the kernel's envelope (the six components at each of
// the two steps); element families from each item's history (the value).
struct EnvelopeValues {
  int width = 1;  // values per item in at_max and at_min
  std::vector<double> at_max, at_min;
  std::vector<int32_t> step_max, step_min;
};
EnvelopeValues query_envelope(Kernel& k, const Query& q, const std::vector<Item>& items, int steps,
                              KernelLines& lines, const RunOptions& run = {});

}  // namespace respcore::cli
