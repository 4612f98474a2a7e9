#include "support/archive_fixture.hpp"

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

std::vector<std::vector<double>> history_rows(Kernel& k, Request r, int nrows) {
  std::vector<std::vector<double>> rows;
  for (int c = 1; c <= nrows; ++c) {
    r.result_comp = c;
    rows.push_back(k.run(r).values);
  }
  return rows;
}

}  // namespace respcore::testing
