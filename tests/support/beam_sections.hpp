// Sections of beam and wall beam archives for tests: element records as
// words (so that a test may spoil one before writing it), initial end forces,
// the inactive-element tables with their stored initial displacements, and
// support motion.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing {

inline std::vector<double> beam_words(const BeamRecord& rec) { return rec.words(); }
inline std::vector<double> wall_beam_words(const WallBeamRecord& rec) { return rec.words(); }

// Section BEAM or WBMM (second file, serial 3 or 4), one record of words per
// element from 1.
inline void beam_section(ArchiveFixture& a, const std::vector<std::vector<double>>& words,
                         int32_t serial = 3) {
  a.writer().second().add_f64_rows(sections::BEAM, serial, words, BeamRecord::kWords);
}
inline void wall_beam_section(ArchiveFixture& a, const std::vector<std::vector<double>>& words,
                              int32_t serial = 3) {
  a.writer().second().add_f64_rows(sections::WBMM, serial, words, WallBeamRecord::kWords);
}

// Initial end forces of case HIST_CASE, one record per element from 1.
inline void beam_initial_forces(ArchiveFixture& a, int32_t hist_case,
                                const std::vector<std::vector<double>>& forces) {
  a.writer().initial_forces(sections::ITBM, hist_case, forces);
}
inline void wall_beam_initial_forces(ArchiveFixture& a, int32_t hist_case,
                                     const std::vector<std::vector<double>>& forces) {
  a.writer().initial_forces(sections::ITBW, hist_case, forces);
}

inline void inactive_elements(ArchiveFixture& a, const std::vector<int32_t>& case_flags,
                              const std::vector<InactiveEntry>& entries) {
  a.writer().inactive_elements(case_flags, entries);
}

inline void activation_displacements(ArchiveFixture& a, const std::vector<double>& by_equation) {
  a.writer().activation_displacements(by_equation);
}

// Support motion of case HIST_CASE: one (node, component) row per entry and
// the displacement history of each.
inline void support_motion(ArchiveFixture& a, int32_t hist_case,
                           const std::vector<std::array<int32_t, 2>>& rows,
                           const std::vector<std::vector<double>>& disp, int32_t nsteps) {
  SupportMotion s;
  s.rows = rows;
  for (const auto& d : disp) s.histories.push_back({{}, {}, d});
  a.writer().support_motion(hist_case, s, nsteps);
}

}  // namespace respcore::testing
