// Sections of beam and wall beam archives, written in the layout the kernel
// reads: element records with their packed counts, initial end forces, the
// inactive-element tables with their stored initial displacements, and
// support motion.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing {

// A beam record before packing. STRS holds NROW values per column, NEQ
// columns; the node pair goes right behind it.
struct BeamRecord {
  int32_t neq = 12;
  int32_t nrow = 26;
  std::vector<double> lm;    // NEQ equation numbers
  std::vector<double> strs;  // NROW x NEQ, column by column
  double node_i = 1.0;
  double node_j = 2.0;
  double factor = 1.0;       // word 327
};

// The 327 words of a beam record: NEQ and NROW become the two digits behind
// the decimal point of words 325 and 326, whatever integer part they hold.
std::vector<double> beam_words(const BeamRecord& rec);

// Section BEAM (second file, serial 3 or 4), one record per element from 1.
void beam_section(ArchiveFixture& a, const std::vector<std::vector<double>>& words,
                  int32_t serial = 3);

// A wall beam record: as the beam, with the scale words a and b behind the
// node pair.
struct WallBeamRecord {
  int32_t neq = 14;
  int32_t nrow = 72;
  std::vector<double> lm;
  std::vector<double> strs;  // NROW x NEQ, column by column
  double node_i = 1.0;
  double node_j = 2.0;
  double a = 1.0;
  double b = 1.0;
};

// The 1053 words of a wall beam record (counts in words 1051 and 1052).
std::vector<double> wall_beam_words(const WallBeamRecord& rec);

// Section WBMM (second file, serial 3 or 4).
void wall_beam_section(ArchiveFixture& a, const std::vector<std::vector<double>>& words,
                       int32_t serial = 3);

// Initial end forces of case HIST_CASE, one record per element from 1: ITBM
// (12 values) for beams, ITBW (14 values) for wall beams.
void beam_initial_forces(ArchiveFixture& a, int32_t hist_case,
                         const std::vector<std::vector<double>>& forces);
void wall_beam_initial_forces(ArchiveFixture& a, int32_t hist_case,
                              const std::vector<std::vector<double>>& forces);

// Inactive-element tables (first file, serial 4): IASI with one flag per
// case, IASE with one (unused, kind, element) entry per row.
void inactive_elements(ArchiveFixture& a, const std::vector<int32_t>& case_flags,
                       const std::vector<std::array<int32_t, 3>>& entries);

// Displacement of every equation at activation (section DSPL of direct
// file 1), equation 1 first.
void activation_displacements(ArchiveFixture& a, const std::vector<double>& by_equation);

// Support motion of case HIST_CASE: section MSES with one (node, component)
// row per entry, section MSER with the displacement history of each row (the
// third record of its triple).
void support_motion(ArchiveFixture& a, int32_t hist_case,
                    const std::vector<std::array<int32_t, 2>>& rows,
                    const std::vector<std::vector<double>>& disp, int32_t nsteps);

}  // namespace respcore::testing
