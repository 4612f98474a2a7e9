#include "support/archive_fixture.hpp"

namespace respcore::testing {

std::vector<double> identity_upper() {
  std::vector<double> u;
  for (int i = 0; i < 6; ++i) {
    for (int j = i; j < 6; ++j) u.push_back(i == j ? 1.0 : 0.0);
  }
  return u;
}

ArchiveFixture::ArchiveFixture(std::string product_tag, DirectoryForm form)
    : base_(dir_.file("model")), writer_(base_, product_tag, form) {
  // Both main files exist, if only with an empty directory.
  writer_.first();
  writer_.second();
}

void ArchiveFixture::history_cases(const std::vector<std::array<int32_t, 5>>& cases) {
  Section& s = writer_.second().add("THIF", 3, 5, static_cast<int64_t>(cases.size()));
  for (size_t c = 0; c < cases.size(); ++c) s.put_i32s(static_cast<int64_t>(c) + 1, 0, cases[c]);
}

void ArchiveFixture::direct_histories(int32_t file_no, const std::vector<EquationHistory>& eqs,
                                      int32_t nsteps) {
  Section& s = writer_.direct(file_no).add("DMED", 1, 2 * std::max(nsteps, 1),
                                           3 * static_cast<int64_t>(eqs.size()));
  for (size_t e = 0; e < eqs.size(); ++e) {
    const int64_t r = 3 * static_cast<int64_t>(e) + 1;
    s.put_f64s(r, 0, eqs[e].acc);
    s.put_f64s(r + 1, 0, eqs[e].vel);
    s.put_f64s(r + 2, 0, eqs[e].disp);
  }
}

void ArchiveFixture::node_records(const std::vector<NodeRecord>& nodes, bool product_flag) {
  const int32_t k = product_flag ? 7 : 6;
  Section& s = writer_.second().add("NDSP", 3, 2 * (k + 21), static_cast<int64_t>(nodes.size()));
  for (size_t n = 0; n < nodes.size(); ++n) {
    std::vector<double> rec(static_cast<size_t>(k + 21), 0.0);
    for (size_t i = 0; i < nodes[n].eq.size() && i < static_cast<size_t>(k); ++i) rec[i] = nodes[n].eq[i];
    const std::vector<double> up = nodes[n].upper.empty() ? identity_upper() : nodes[n].upper;
    for (size_t i = 0; i < 21; ++i) rec[static_cast<size_t>(k) + i] = up[i];
    s.put_f64s(static_cast<int64_t>(n) + 1, 0, rec);
  }
}

void ArchiveFixture::modal(const std::vector<std::vector<std::array<double, 3>>>& coord,
                           const std::vector<std::vector<double>>& shapes) {
  const int64_t nm = static_cast<int64_t>(coord.size());
  const int64_t nss = nm ? static_cast<int64_t>(coord[0].size()) : 0;
  Section& md = writer_.second().add("MDSP", 3, 6, nm * nss);
  for (int64_t m = 0; m < nm; ++m) {
    for (int64_t s = 0; s < nss; ++s) {
      md.put_f64s(m * nss + s + 1, 0, coord[static_cast<size_t>(m)][static_cast<size_t>(s)]);
    }
  }
  Section& sh = writer_.second().add("MSHP", 3, static_cast<int32_t>(2 * std::max<int64_t>(nm, 1)),
                                     static_cast<int64_t>(shapes.size()));
  for (size_t e = 0; e < shapes.size(); ++e) sh.put_f64s(static_cast<int64_t>(e) + 1, 0, shapes[e]);
}

void ArchiveFixture::ground_motion(
    const std::vector<std::array<std::array<std::vector<double>, 3>, 3>>& ground) {
  size_t width = 1;
  for (const auto& c : ground) {
    for (const auto& d : c) {
      for (const auto& q : d) width = std::max(width, q.size());
    }
  }
  Section& s = writer_.second().add("GRMT", 3, static_cast<int32_t>(2 * width),
                                    9 * static_cast<int64_t>(ground.size()));
  for (size_t c = 0; c < ground.size(); ++c) {
    for (size_t d = 0; d < 3; ++d) {
      for (size_t q = 0; q < 3; ++q) {
        s.put_f64s(static_cast<int64_t>(9 * c + 3 * d + q) + 1, 0, ground[c][d][q]);
      }
    }
  }
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

}  // namespace respcore::testing
