// The component names of every family against the kernel's own addressing:
// a snapshot selector named S, whose points the tool labels P1, P2, ...,
// must read the rows that the history table names S-P1, S-P2, ... (a line
// element's ends "end-i", "end-j" are the rows' suffixes "-i", "-j"; a node
// has one point and the row is the selector).
#include <gtest/gtest.h>

#include "components.hpp"
#include "run/entry.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"

namespace respcore::testing {
namespace {

TEST(ComponentNames, SelectorsReadTheRowsOfTheirNames) {
  int families_named = 0;
  for (const cli::Family& f : cli::families()) {
    const cli::ComponentTable& t = cli::component_table(f.elem_type);
    if (t.rows.empty()) continue;
    ++families_named;
    ASSERT_LE(t.rows.size(), 350u) << f.name;
    for (const cli::Component& sel : t.selectors) {
      // A store whose row r holds r: the many-items form then returns the
      // row numbers it reads.
      RunContext R;
      R.ELEM_TYPE = f.elem_type;
      R.RESULT_COMP = sel.number;
      R.REQUEST_MODE = 2;
      R.NUM_ITEMS = 1;
      Tdsp TDSP("TDSP", 1);
      for (int r = 1; r <= Tdsp::kRows; ++r) TDSP(r, 1) = r;
      const int m = static_cast<int>(history_size(f.elem_type, sel.number, 1, 1, 2));
      std::vector<double> read(static_cast<size_t>(m));
      assemble_history(R, TDSP, VecRef<double>(read.data(), m, "TDSP_COMP"));
      const std::vector<std::string> points = cli::point_labels(f.elem_type, sel.number, m);
      for (int n = 0; n < m; ++n) {
        std::string want = sel.name;
        const std::string& p = points[static_cast<size_t>(n)];
        if (p.rfind("end-", 0) == 0)
          want += p.substr(3);
        else if (p != "value")
          want += "-" + p;
        const int row = static_cast<int>(read[static_cast<size_t>(n)]);
        ASSERT_GE(row, 1) << f.name << " " << sel.name;
        EXPECT_EQ(t.rows.at(static_cast<size_t>(row - 1)).name, want) << f.name << sel.name;
      }
    }
  }
  EXPECT_EQ(families_named, 14);
}

}  // namespace
}  // namespace respcore::testing
