#include "support/archive_fixture.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace respcore::testing {

ArchiveFixture::ArchiveFixture(std::string product_tag, DirectoryForm form)
    : base_(dir_.file("model")), writer_(base_, product_tag, form) {
  // Both main files exist, if only with an empty directory.
  writer_.first();
  writer_.second();
}

Request ArchiveFixture::request(int32_t elem_type, int32_t comp, int32_t nsteps) const {
  Request r;
  r.base = base_;
  r.elem_type = elem_type;
  r.result_comp = comp;
  r.num_steps = nsteps;
  r.num_items = 1;
  r.request_mode = 1;
  r.product_index = 1;
  r.serials = {1};
  r.elements = {1};
  return r;
}

void ArchiveFixture::direct_case(const std::vector<std::vector<double>>& disp, int32_t file_no,
                                 size_t ncases) {
  const auto nsteps = static_cast<int32_t>(disp.empty() ? 0 : disp[0].size());
  history_cases(std::vector<HistoryCase>(ncases, {2, file_no, nsteps, 0, 0}));
  std::vector<EquationHistory> eqs;
  for (const auto& d : disp) eqs.push_back({{}, {}, d});
  direct_histories(file_no, eqs, nsteps);
}

void ArchiveFixture::smooth_motion(size_t nnodes, int32_t nsteps, bool in_modes) {
  std::vector<NodeTransform> nodes(nnodes);
  std::vector<EquationHistory> eqs(6 * nnodes);
  std::vector<std::vector<std::array<double, 3>>> coord(3);
  std::vector<std::vector<double>> shapes(6 * nnodes);
  auto wave = [](double a, int32_t s) {
    return 1e-3 * std::sin(0.1 * s + a) + 2e-4 * std::cos(a * s);
  };
  for (size_t q = 0; q < 6 * nnodes; ++q) {
    nodes[q / 6].equations.push_back(q + 1.0);
    for (int32_t s = 1; s <= nsteps; ++s) eqs[q].disp.push_back(wave(0.7 * q, s));
    for (size_t m = 0; m < 3; ++m) shapes[q].push_back(std::cos(0.9 * q + 2.1 * m));
  }
  for (int32_t s = 1; s <= nsteps; ++s)
    for (size_t m = 0; m < 3; ++m) coord[m].push_back({wave(1.3 * m + 0.2, s), 0, 0});
  node_records(nodes);
  history_cases({{in_modes ? 1 : 2, 1, nsteps, in_modes ? 3 : 0, 0}});
  if (in_modes)
    modal(coord, shapes);
  else
    direct_histories(1, eqs, nsteps);
}

void expect_long_rows_agree(Kernel& k, Request r, std::vector<int> ends, int32_t short_steps) {
  std::vector<double> scale(ends.size(), 0.0);
  auto group = [&](int row) {
    return std::lower_bound(ends.begin(), ends.end(), row) - ends.begin();
  };
  std::vector<std::vector<double>> whole;
  for (r.result_comp = 1; r.result_comp <= ends.back(); ++r.result_comp) {
    whole.push_back(k.run(r).values);
    for (double v : whole.back())
      scale[group(r.result_comp)] = std::max(scale[group(r.result_comp)], std::fabs(v));
  }
  for (r.num_steps = short_steps, r.result_comp = 1; r.result_comp <= ends.back();
       ++r.result_comp) {
    const std::vector<double> part = k.run(r).values;
    ASSERT_EQ(part.size(), static_cast<size_t>(short_steps));
    for (int32_t s = 0; s < short_steps; ++s)
      ASSERT_NEAR(whole[r.result_comp - 1].at(s), part[s], 1e-12 * scale[group(r.result_comp)])
          << "row " << r.result_comp << " step " << s + 1;
  }
}

std::vector<std::vector<double>> history_rows(Kernel& k, Request r, int nrows) {
  std::vector<std::vector<double>> rows;
  for (int c = 1; c <= nrows; ++c) {
    r.result_comp = c;
    rows.push_back(k.run(r).values);
  }
  return rows;
}

}  // namespace respcore::testing
