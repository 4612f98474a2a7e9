// Archives for tests, written with the library's own writer into a
// temporary directory; the records go through the writer's typed writers.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"
#include "support/temp_dir.hpp"

namespace respcore::testing {

class ArchiveFixture {
 public:
  explicit ArchiveFixture(std::string product_tag = "P.R.W",
                          DirectoryForm form = DirectoryForm::Plain);

  ArchiveWriter& writer() { return writer_; }
  const std::string& base() const { return base_; }
  TempDir& dir() { return dir_; }

  // The sections most tests need (see ArchiveWriter for the layouts).
  void history_cases(const std::vector<HistoryCase>& cases) { writer_.history_cases(cases); }
  void direct_histories(int32_t file_no, const std::vector<EquationHistory>& eqs, int32_t nsteps) {
    writer_.direct_histories(file_no, eqs, nsteps);
  }
  void node_records(const std::vector<NodeTransform>& nodes, bool seventh_dof = false) {
    writer_.node_transforms(nodes, seventh_dof);
  }
  void modal(const std::vector<std::vector<std::array<double, 3>>>& coord,
             const std::vector<std::vector<double>>& shapes) {
    writer_.modal_histories({coord, shapes});
  }
  void ground_motion(const std::vector<GroundMotion>& ground) { writer_.ground_motion(ground); }
  // Cases 1..NCASES kept in direct file FILE_NO: DISP[e-1] is the
  // displacement history of equation e, its velocity and acceleration zero.
  void direct_case(const std::vector<std::vector<double>>& disp, int32_t file_no = 1,
                   size_t ncases = 1);

  // NNODES nodes (identity transforms, equations 6(n-1)+1..6) moving over
  // NSTEPS steps, in direct storage or in modal storage of three modes.
  void smooth_motion(size_t nnodes, int32_t nsteps, bool in_modes);

  // Writes every file.
  void write() { writer_.write(); }

  // A request on this archive.
  Request request(int32_t elem_type, int32_t comp, int32_t nsteps) const;

 private:
  TempDir dir_;
  std::string base_;
  ArchiveWriter writer_;
};

// Rows 1..NROWS of one item, each through its own history request:
// rows[r-1][s-1].
std::vector<std::vector<double>> history_rows(Kernel& k, Request r, int nrows);

// Every row of R's item over R's steps agrees, step by step, with the same
// row over its first SHORT_STEPS (long and short histories of one row take
// different roads), to rounding of the scale of its group of rows: rows
// 1..ENDS[0], ENDS[0]+1..ENDS[1], ...
void expect_long_rows_agree(Kernel& k, Request r, std::vector<int> ends, int32_t short_steps);

}  // namespace respcore::testing
