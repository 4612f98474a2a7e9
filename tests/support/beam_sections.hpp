// Support motion of line element archives for tests.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "support/archive_fixture.hpp"

namespace respcore::testing {

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
