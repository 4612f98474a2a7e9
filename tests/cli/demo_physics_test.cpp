// The demo archive is a physically right analysis, checked through the
// kernel: an undamped run of either storage is in equilibrium at every
// step, and the names of the tool's components mean what they name.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/temp_dir.hpp"

#ifdef RESPCORE_HAVE_DEMO
#include "frame_demo.hpp"
#include "query.hpp"
#include "respcore/kernel.hpp"

namespace respcore::testing {
namespace {

using demo::Member;
using demo::Role;

// The demo's frame without damping, written once.
struct DemoArchive {
  DemoArchive() {
    opt.damping = 0.0;
    summary = demo::write_demo_archive(dir.file("out"), opt);
    model = demo::build_frame(opt);
  }
  TempDir dir;
  demo::DemoOptions opt;
  demo::DemoSummary summary;
  demo::FrameModel model;
};
const DemoArchive& undamped() {
  static const DemoArchive a;
  return a;
}

// One item over all steps, global axes, with the node motion STEP_NO selects.
std::vector<double> history(Kernel& k, int type, int serial, int number, int comp, int hist_case,
                            int step_no = 1) {
  Request r;
  r.base = undamped().summary.base;
  r.elem_type = type;
  r.result_comp = comp;
  r.hist_case = hist_case;
  r.num_steps = undamped().summary.steps;
  r.step_no = step_no;
  r.serials = {serial};
  r.elements = {number};
  Result res = k.run(r);
  EXPECT_EQ(res.status, 0);
  EXPECT_TRUE(res.output_lines.empty());
  return res.values;
}
std::vector<double> node_history(Kernel& k, int type, int node, int comp, int hist_case,
                                 int step_no = 1) {
  return history(k, type, node, node, comp, hist_case, step_no);
}
std::vector<double> element_history(Kernel& k, const Member& m, int row, int hist_case) {
  return history(k, m.elem_type, m.serial, m.number, row, hist_case);
}

double peak(const std::vector<double>& v) {
  double p = 0;
  for (double x : v) p = std::max(p, std::abs(x));
  return p;
}

TEST(DemoPhysics, UndampedBaseShearBalancesInertiaForcesAtEveryStep) {
  const DemoArchive& a = undamped();
  Kernel k;
  for (int hist_case : {1, 2}) {
    for (int dir = 0; dir < 2; ++dir) {
      std::vector<double> shear(static_cast<size_t>(a.summary.steps), 0.0), inertia = shear;
      for (const Member& m : a.model.members) {
        if (m.role != Role::Column || m.storey != 1) continue;
        ASSERT_EQ(a.model.node(m.node_i).level, 0);
        ASSERT_DOUBLE_EQ(m.axes[1][0], 1.0);  // local y along X
        ASSERT_DOUBLE_EQ(m.axes[2][1], 1.0);  // local z along Y
        const auto v = element_history(k, m, dir == 0 ? 2 : 3, hist_case);
        for (size_t s = 0; s < v.size(); ++s) shear[s] += v[s];
      }
      for (const demo::Node& n : a.model.nodes) {
        if (n.fixed) continue;
        const auto acc = node_history(k, 11, n.number, dir + 1, hist_case, 2);
        for (size_t s = 0; s < acc.size(); ++s) inertia[s] -= n.mass * acc[s];
      }
      const double scale = peak(inertia);
      ASSERT_GT(scale, 100.0);  // a real earthquake response, in kN
      for (size_t s = 0; s < shear.size(); ++s) {
        ASSERT_NEAR(shear[s], inertia[s], 1e-7 * scale) << hist_case << dir << s;
      }
    }
  }
}

// The tool's names mean what they say: a node velocity is the rate of the
// displacement and an acceleration that of the velocity; a bending stress
// named for Mz is Mz times a section factor, one named for My My times one.
TEST(DemoPhysics, ComponentNamesMeanWhatTheySay) {
  const DemoArchive& a = undamped();
  Kernel k;
  auto by_name = [&](const char* family, int item, const char* comp) {
    const cli::Family& f = cli::family_of(family);
    return node_history(k, f.elem_type, item, cli::resolve_row(f, comp).number, 2);
  };
  const int roof = a.model.nodes.back().number;
  const double h = a.summary.dt;
  const auto d = by_name("node-displacement", roof, "x"), v = by_name("node-velocity", roof, "x"),
             acc = by_name("node-acceleration", roof, "x");
  for (size_t s = 1; s + 1 < d.size(); ++s) {
    ASSERT_NEAR((d[s + 1] - d[s - 1]) / (2 * h), v[s], 0.02 * peak(v)) << s;
    ASSERT_NEAR((v[s + 1] - v[s - 1]) / (2 * h), acc[s], 0.1 * peak(acc)) << s;
  }
  const Member& column = a.model.members.front();
  for (const auto& [stress, moment] : {std::pair{"sMz1-i", "Mz-i"}, {"sMy1-i", "My-i"}}) {
    const cli::Family& beam = cli::family_of("beam");
    const auto sv = element_history(k, column, cli::resolve_row(beam, stress).number, 2);
    const auto mv = element_history(k, column, cli::resolve_row(beam, moment).number, 2);
    const double factor = sv[530] / mv[530];
    for (size_t s = 0; s < sv.size(); ++s)
      if (std::abs(mv[s]) > 0.1 * peak(mv)) {
        ASSERT_NEAR(sv[s], factor * mv[s], 1e-9 * peak(sv)) << stress << " " << s;
      }
  }
}

}  // namespace
}  // namespace respcore::testing

#else

TEST(DemoPhysics, NeedsTheDemoModule) {
  GTEST_SKIP() << "the demo analysis is built with the tools (RESPCORE_BUILD_TOOLS=ON)";
}

#endif
