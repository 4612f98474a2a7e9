// Archives for tests, written with the library's own writer into a
// temporary directory. Each helper writes one kind of section in the layout
// the kernel reads.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"
#include "support/temp_dir.hpp"

namespace respcore::testing {

// Histories of one equation: acceleration, velocity and displacement per
// stored step.
struct EquationHistory {
  std::vector<double> acc, vel, disp;
};

// A node: its equation numbers (6, or 7 with the warping dof) and the upper
// triangle of its 6x6 transform, row by row (identity when empty).
struct NodeRecord {
  std::vector<double> eq;
  std::vector<double> upper;  // 21 values
};

// Identity transform as the 21 values of its upper triangle.
std::vector<double> identity_upper();

class ArchiveFixture {
 public:
  explicit ArchiveFixture(std::string product_tag = "P.R.W",
                          DirectoryForm form = DirectoryForm::Plain);

  ArchiveWriter& writer() { return writer_; }
  const std::string& base() const { return base_; }
  TempDir& dir() { return dir_; }

  // Section THIF (second file, serial 3): one record of five integers per case.
  void history_cases(const std::vector<std::array<int32_t, 5>>& cases);
  // Section DMED of direct file FILE_NO: three records per equation, from 1.
  void direct_histories(int32_t file_no, const std::vector<EquationHistory>& eqs,
                        int32_t nsteps);
  // Section NDSP (second file, serial 3): one record per node, from 1.
  void node_records(const std::vector<NodeRecord>& nodes, bool product_flag = false);
  // Sections MDSP and MSHP (second file, serial 3): COORD[m][s] = {d, v, a}
  // of mode m at stored step s for modal set 1; SHAPES[e][m] the value of mode
  // m at equation e (from 1).
  void modal(const std::vector<std::vector<std::array<double, 3>>>& coord,
             const std::vector<std::vector<double>>& shapes);
  // Section GRMT (second file, serial 3): GROUND[c][d][q] the record of case
  // c, direction d, quantity q (1 acceleration, 2 velocity, 3 displacement).
  void ground_motion(const std::vector<std::array<std::array<std::vector<double>, 3>, 3>>& ground);

  // Writes every file.
  void write() { writer_.write(); }

  // A request on this archive.
  Request request(int32_t elem_type, int32_t comp, int32_t nsteps) const;

 private:
  TempDir dir_;
  std::string base_;
  ArchiveWriter writer_;
};

}  // namespace respcore::testing
