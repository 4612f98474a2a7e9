// The records the kernel reads, as the archive writer lays them: the words of
// each element record and the typed writers of ArchiveWriter.
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "respcore/archive_writer.hpp"

namespace respcore {

namespace {

using sections::BEAM;

std::vector<double> words_of(size_t n) { return std::vector<double>(n, 0.0); }

// Puts VALUES at words FIRST, FIRST + 1, ... (from 1) of W, which must hold them.
void place(std::vector<double>& w, size_t first, const std::vector<double>& values,
           const char* record) {
  if (first < 1 || first - 1 + values.size() > w.size()) {
    throw std::invalid_argument(std::string(record) + " record: " +
                                std::to_string(values.size()) + " values at word " +
                                std::to_string(first) + " do not fit its " +
                                std::to_string(w.size()) + " words");
  }
  std::copy(values.begin(), values.end(), w.begin() + static_cast<std::ptrdiff_t>(first - 1));
}

// The layout the line elements share: the NEQ equation numbers, the matrix of
// NROW values per column behind them, and the words BEHIND the matrix.
std::vector<double> line_words(size_t nwords, int32_t neq, int32_t nrow,
                               const std::vector<double>& lm, const std::vector<double>& strs,
                               const std::vector<double>& behind, const char* record) {
  std::vector<double> w = words_of(nwords);
  place(w, 1, lm, record);
  place(w, static_cast<size_t>(neq) + 1, strs, record);
  place(w, static_cast<size_t>(neq) * static_cast<size_t>(nrow + 1) + 1, behind, record);
  return w;
}

// Word WORD (from 1) keeps its integer part and takes COUNT as the two digits
// behind the decimal point.
void pack_count(std::vector<double>& w, size_t word, int32_t count) {
  w[word - 1] = std::trunc(w[word - 1]) + count / 100.0;
}

template <class Record>
Section& add_records(ArchiveFile& f, const SectionName& name, int32_t serial,
                     const std::vector<Record>& records) {
  Section& s = f.add(name, serial, 2 * Record::kWords, static_cast<int64_t>(records.size()));
  for (size_t r = 0; r < records.size(); ++r) {
    s.put_f64s(static_cast<int64_t>(r) + 1, 0, records[r].words());
  }
  return s;
}

// Doubles per record that the kernel reads from each initial-force section.
int32_t initial_force_count(const SectionName& name) {
  const std::string tag(name.tag, 4);
  if (tag == sections::ITTR.tag) return 2;
  if (tag == sections::ITBM.tag) return 12;
  if (tag == sections::ITBW.tag) return 14;
  return 1;
}

}  // namespace

std::vector<double> identity_upper() {
  std::vector<double> u;
  for (int i = 0; i < 6; ++i) {
    for (int j = i; j < 6; ++j) u.push_back(i == j ? 1.0 : 0.0);
  }
  return u;
}

std::vector<double> TrussRecord::words() const {
  std::vector<double> w = words_of(kWords);
  place(w, 1, lm, "truss");
  place(w, lm.size() + 1, strs, "truss");
  w[60] = static_cast<double>(lm.size());
  w[61] = nstr;
  w[62] = scale;
  return w;
}

std::vector<double> ExtendedTrussRecord::words() const {
  std::vector<double> w = words_of(kWords);
  place(w, 1, truss.lm, "extended truss");
  place(w, truss.lm.size() + 1, truss.strs, "extended truss");
  place(w, 1204, nodes_a, "extended truss");
  place(w, 1223, nodes_b, "extended truss");
  w[1200] = static_cast<double>(nodes_a.size());
  w[1201] = static_cast<double>(nodes_b.size());
  w[1242] = static_cast<double>(truss.lm.size());
  w[1243] = truss.nstr;
  // Word 63 carries the factor (its sign turned); the value it displaces
  // waits in word 1245 and is put back on reading.
  w[1244] = w[62];
  w[62] = -factor;
  return w;
}

std::vector<double> BeamRecord::words() const {
  std::vector<double> w = line_words(kWords, neq, nrow, lm, strs, {node_i, node_j}, "beam");
  pack_count(w, 325, neq);
  pack_count(w, 326, nrow);
  w[326] = factor;
  return w;
}

std::vector<double> WallBeamRecord::words() const {
  std::vector<double> w =
      line_words(kWords, neq, nrow, lm, strs, {node_i, node_j, a, b}, "wall beam");
  pack_count(w, 1051, neq);
  pack_count(w, 1052, nrow);
  return w;
}

std::vector<double> SolidRecord::words() const {
  std::vector<double> w = words_of(kWords);
  place(w, 1, lm, "solid");
  place(w, lm.size() + 1, strs, "solid");
  w[3792] = static_cast<double>(lm.size());
  w[3793] = nr;
  w[3795] = nn;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) w[static_cast<size_t>(3796 + 3 * i + j)] = axes[i][j];
  }
  return w;
}

std::vector<double> SolidHighRecord::words() const {
  std::vector<double> w = words_of(kWords);
  w[0] = static_cast<double>(nodes.size());
  if (nodes.size() > 20 || equations.size() > 60) {
    throw std::invalid_argument("high-order solid record: at most 20 nodes and 60 equations");
  }
  place(w, 2, nodes, "high-order solid");
  place(w, 22, equations, "high-order solid");
  for (int v = 0; v < 9; ++v) w[static_cast<size_t>(81 + v)] = mat_vals[static_cast<size_t>(v)];
  return w;
}

Section& ArchiveFile::add_i32_rows(const SectionName& name, int32_t serial,
                                   const std::vector<std::vector<int32_t>>& rows,
                                   int32_t min_words) {
  size_t width = static_cast<size_t>(std::max(min_words, 1));
  for (const auto& r : rows) width = std::max(width, r.size());
  Section& s = add(name, serial, static_cast<int32_t>(width), static_cast<int64_t>(rows.size()));
  for (size_t i = 0; i < rows.size(); ++i) s.put_i32s(static_cast<int64_t>(i) + 1, 0, rows[i]);
  return s;
}

Section& ArchiveWriter::history_cases(const std::vector<HistoryCase>& cases) {
  std::vector<std::vector<int32_t>> rows;
  for (const HistoryCase& c : cases) {
    rows.push_back({c.storage, c.set_or_file, c.stored_steps, c.modes, c.spare});
  }
  return second().add_i32_rows(sections::THIF, 3, rows, 5);
}

Section& ArchiveWriter::element_forms(const std::vector<int32_t>& form_of_case) {
  std::vector<std::vector<int32_t>> rows;
  for (const int32_t f : form_of_case) rows.push_back({f});
  return first().add_i32_rows(sections::THLG, 1, rows, 1);
}

Section& ArchiveWriter::node_transforms(const std::vector<NodeTransform>& nodes,
                                        bool seventh_dof) {
  const size_t k = seventh_dof ? 7 : 6;
  if (seventh_dof) second().add(sections::MTKM, 3, 2, 1);
  std::vector<std::vector<double>> rows;
  for (const NodeTransform& n : nodes) {
    std::vector<double> rec(k + 21, 0.0);
    for (size_t i = 0; i < n.equations.size() && i < k; ++i) rec[i] = n.equations[i];
    const std::vector<double> up = n.upper.empty() ? identity_upper() : n.upper;
    for (size_t i = 0; i < 21 && i < up.size(); ++i) rec[k + i] = up[i];
    rows.push_back(std::move(rec));
  }
  return second().add_f64_rows(sections::NDSP, 3, rows, static_cast<int32_t>(k + 21));
}

void ArchiveWriter::modal_histories(const ModalHistory& modal) {
  const int64_t nm = static_cast<int64_t>(modal.coords.size());
  const int64_t nss = nm ? static_cast<int64_t>(modal.coords[0].size()) : 0;
  Section& md = second().add(sections::MDSP, 3, 6, nm * nss);
  for (int64_t m = 0; m < nm; ++m) {
    const auto& per_step = modal.coords[static_cast<size_t>(m)];
    for (int64_t s = 0; s < nss && s < static_cast<int64_t>(per_step.size()); ++s) {
      md.put_f64s(m * nss + s + 1, 0, per_step[static_cast<size_t>(s)]);
    }
  }
  second().add_f64_rows(sections::MSHP, 3, modal.shapes, static_cast<int32_t>(std::max<int64_t>(nm, 1)));
}

Section& ArchiveWriter::direct_histories(int32_t file_no,
                                         const std::vector<EquationHistory>& equations,
                                         int32_t nsteps) {
  Section& s = direct(file_no).add(sections::DMED, 1, 2 * std::max(nsteps, 1),
                                   3 * static_cast<int64_t>(equations.size()));
  for (size_t e = 0; e < equations.size(); ++e) {
    const int64_t r = 3 * static_cast<int64_t>(e) + 1;
    s.put_f64s(r, 0, equations[e].acc);
    s.put_f64s(r + 1, 0, equations[e].vel);
    s.put_f64s(r + 2, 0, equations[e].disp);
  }
  return s;
}

Section& ArchiveWriter::activation_displacements(const std::vector<double>& by_equation) {
  return direct(1).add_f64_rows(sections::DSPL, 1, {by_equation});
}

void ArchiveWriter::support_motion(int32_t hist_case, const SupportMotion& motion,
                                   int32_t nsteps) {
  std::vector<std::vector<int32_t>> rows;
  for (const auto& r : motion.rows) rows.push_back({r[0], r[1]});
  second().add_i32_rows(sections::MSES, hist_case, rows, 2);
  Section& hist = second().add(sections::MSER, hist_case, 2 * std::max(nsteps, 1),
                               3 * static_cast<int64_t>(motion.histories.size()));
  for (size_t r = 0; r < motion.histories.size(); ++r) {
    const int64_t rec = 3 * static_cast<int64_t>(r) + 1;
    hist.put_f64s(rec, 0, motion.histories[r].acc);
    hist.put_f64s(rec + 1, 0, motion.histories[r].vel);
    hist.put_f64s(rec + 2, 0, motion.histories[r].disp);
  }
}

Section& ArchiveWriter::ground_motion(const std::vector<GroundMotion>& by_case) {
  std::vector<std::vector<double>> rows;
  for (const GroundMotion& c : by_case) {
    for (const auto& direction : c) {
      for (const auto& quantity : direction) rows.push_back(quantity);
    }
  }
  return second().add_f64_rows(sections::GRMT, 3, rows);
}

Section& ArchiveWriter::skew_systems(const std::vector<SkewSystem>& systems) {
  Section& s = second().add(sections::NSKI, 3, 19, static_cast<int64_t>(systems.size()));
  for (size_t r = 0; r < systems.size(); ++r) {
    const auto rec = static_cast<int64_t>(r) + 1;
    s.put_i32(rec, 0, systems[r].node);
    s.put_f64s(rec, 1, systems[r].matrix);
  }
  return s;
}

void ArchiveWriter::inactive_elements(const std::vector<int32_t>& case_flags,
                                      const std::vector<InactiveEntry>& entries) {
  first().add_i32_rows(sections::IASI, 4, {case_flags});
  std::vector<std::vector<int32_t>> rows;
  for (const InactiveEntry& e : entries) rows.push_back({e.spare, e.kind, e.element});
  first().add_i32_rows(sections::IASE, 4, rows, 3);
}

Section& ArchiveWriter::initial_forces(const SectionName& name, int32_t hist_case,
                                       const std::vector<std::vector<double>>& by_element) {
  return second().add_f64_rows(name, hist_case, by_element, initial_force_count(name));
}

Section& ArchiveWriter::truss_records(int32_t serial, const std::vector<TrussRecord>& records) {
  return add_records(second(), sections::TRUS, serial, records);
}

Section& ArchiveWriter::extended_truss_records(int32_t serial,
                                               const std::vector<ExtendedTrussRecord>& records) {
  return add_records(second(), sections::EMBT, serial, records);
}

Section& ArchiveWriter::beam_records(int32_t serial, const std::vector<BeamRecord>& records) {
  return add_records(second(), BEAM, serial, records);
}

Section& ArchiveWriter::wall_beam_records(int32_t serial,
                                          const std::vector<WallBeamRecord>& records) {
  return add_records(second(), sections::WBMM, serial, records);
}

Section& ArchiveWriter::solid_records(int32_t serial, const std::vector<SolidRecord>& records) {
  return add_records(second(), sections::SOLD, serial, records);
}

Section& ArchiveWriter::solid_high_records(int32_t serial,
                                           const std::vector<SolidHighRecord>& records) {
  return add_records(second(), sections::PSOH, serial, records);
}

Section& ArchiveWriter::node_coordinates(const std::vector<std::array<double, 3>>& xyz) {
  std::vector<std::vector<double>> rows;
  for (const auto& p : xyz) rows.push_back({p[0], p[1], p[2]});
  return second().add_f64_rows(sections::CORD, 3, rows, 3);
}

Section& ArchiveWriter::element_table(const std::vector<std::vector<int32_t>>& rows) {
  return second().add_i32_rows(sections::ELMT, 3, rows, 1);
}

Section& ArchiveWriter::materials(const std::vector<MaterialRecord>& records) {
  std::vector<std::vector<double>> rows;
  for (const MaterialRecord& m : records) {
    std::vector<double> r = {static_cast<double>(m.number), m.young, m.poisson,
                             static_cast<double>(m.type)};
    r.insert(r.end(), m.vals.begin(), m.vals.end());
    rows.push_back(std::move(r));
  }
  return second().add_f64_rows(sections::MATL, 3, rows, 13);
}

}  // namespace respcore
