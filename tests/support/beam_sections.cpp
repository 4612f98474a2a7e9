#include "support/beam_sections.hpp"

#include <algorithm>
#include <cmath>

namespace respcore::testing {

namespace {

// Word W (from 1) of a record keeps its integer part and takes COUNT as the
// two digits behind the decimal point.
void pack_count(std::vector<double>& w, size_t word, int32_t count) {
  w[word - 1] = std::trunc(w[word - 1]) + count / 100.0;
}

std::vector<double> element_words(size_t nwords, int32_t neq, int32_t nrow,
                                  const std::vector<double>& lm, const std::vector<double>& strs,
                                  const std::vector<double>& behind) {
  std::vector<double> w(nwords, 0.0);
  for (size_t i = 0; i < lm.size(); ++i) w[i] = lm[i];
  for (size_t v = 0; v < strs.size(); ++v) w[static_cast<size_t>(neq) + v] = strs[v];
  const size_t after = static_cast<size_t>(neq) * static_cast<size_t>(nrow + 1);
  for (size_t i = 0; i < behind.size(); ++i) w[after + i] = behind[i];
  return w;
}

void add_records(ArchiveFile& f, const char* tag, int32_t serial, int32_t ndoubles,
                 const std::vector<std::vector<double>>& recs) {
  Section& s = f.add(tag, serial, 2 * ndoubles, static_cast<int64_t>(recs.size()));
  for (size_t r = 0; r < recs.size(); ++r) s.put_f64s(static_cast<int64_t>(r) + 1, 0, recs[r]);
}

}  // namespace

std::vector<double> beam_words(const BeamRecord& rec) {
  std::vector<double> w =
      element_words(327, rec.neq, rec.nrow, rec.lm, rec.strs, {rec.node_i, rec.node_j});
  pack_count(w, 325, rec.neq);
  pack_count(w, 326, rec.nrow);
  w[326] = rec.factor;
  return w;
}

void beam_section(ArchiveFixture& a, const std::vector<std::vector<double>>& words,
                  int32_t serial) {
  add_records(a.writer().second(), "BEAM", serial, 327, words);
}

std::vector<double> wall_beam_words(const WallBeamRecord& rec) {
  std::vector<double> w = element_words(1053, rec.neq, rec.nrow, rec.lm, rec.strs,
                                        {rec.node_i, rec.node_j, rec.a, rec.b});
  pack_count(w, 1051, rec.neq);
  pack_count(w, 1052, rec.nrow);
  return w;
}

void wall_beam_section(ArchiveFixture& a, const std::vector<std::vector<double>>& words,
                       int32_t serial) {
  add_records(a.writer().second(), "WBMM", serial, 1053, words);
}

void beam_initial_forces(ArchiveFixture& a, int32_t hist_case,
                         const std::vector<std::vector<double>>& forces) {
  add_records(a.writer().second(), "ITBM", hist_case, 12, forces);
}

void wall_beam_initial_forces(ArchiveFixture& a, int32_t hist_case,
                              const std::vector<std::vector<double>>& forces) {
  add_records(a.writer().second(), "ITBW", hist_case, 14, forces);
}

void inactive_elements(ArchiveFixture& a, const std::vector<int32_t>& case_flags,
                       const std::vector<std::array<int32_t, 3>>& entries) {
  Section& head = a.writer().first().add("IASI", 4, static_cast<int32_t>(case_flags.size()), 1);
  head.put_i32s(1, 0, case_flags);
  Section& list = a.writer().first().add("IASE", 4, 3, static_cast<int64_t>(entries.size()));
  for (size_t k = 0; k < entries.size(); ++k) list.put_i32s(static_cast<int64_t>(k) + 1, 0, entries[k]);
}

void activation_displacements(ArchiveFixture& a, const std::vector<double>& by_equation) {
  Section& s = a.writer().direct(1).add("DSPL", 1, static_cast<int32_t>(2 * by_equation.size()), 1);
  s.put_f64s(1, 0, by_equation);
}

void support_motion(ArchiveFixture& a, int32_t hist_case,
                    const std::vector<std::array<int32_t, 2>>& rows,
                    const std::vector<std::vector<double>>& disp, int32_t nsteps) {
  Section& index = a.writer().second().add("MSES", hist_case, 2, static_cast<int64_t>(rows.size()));
  for (size_t r = 0; r < rows.size(); ++r) index.put_i32s(static_cast<int64_t>(r) + 1, 0, rows[r]);
  Section& hist = a.writer().second().add("MSER", hist_case, 2 * std::max(nsteps, 1),
                                          3 * static_cast<int64_t>(disp.size()));
  for (size_t r = 0; r < disp.size(); ++r) hist.put_f64s(3 * static_cast<int64_t>(r) + 3, 0, disp[r]);
}

}  // namespace respcore::testing
