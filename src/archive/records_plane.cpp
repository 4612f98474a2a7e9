// The plane element records as the archive writer lays them.
#include <algorithm>
#include <stdexcept>
#include <string>

#include "respcore/archive_writer.hpp"

namespace respcore {

namespace {

// The material block: PLATE_PROP(1..11), E, nu, the type, nine values, from
// word FIRST (from 1) of W.
void put_material(std::vector<double>& w, size_t first, const PlaneMaterial& m) {
  std::copy(m.plate_prop.begin(), m.plate_prop.end(),
            w.begin() + static_cast<std::ptrdiff_t>(first - 1));
  w[first + 10] = m.young;
  w[first + 11] = m.poisson;
  w[first + 12] = m.type;
  std::copy(m.vals.begin(), m.vals.end(), w.begin() + static_cast<std::ptrdiff_t>(first + 13));
}

template <class Record>
Section& add_plane_records(ArchiveFile& f, const SectionName& name, int32_t serial,
                           const std::vector<Record>& records) {
  Section& s = f.add(name, serial, 2 * Record::kWords, static_cast<int64_t>(records.size()));
  for (size_t r = 0; r < records.size(); ++r)
    s.put_f64s(static_cast<int64_t>(r) + 1, 0, records[r].words());
  return s;
}

}  // namespace

std::vector<double> PlaneRecord::words() const {
  const size_t neq = lm.size();
  if (neq > 24 || nrow < 0 || nrow > 27 || strs.size() > neq * static_cast<size_t>(nrow)) {
    throw std::invalid_argument("plane record: at most 24 equations and 27 rows, and STRS of " +
                                std::to_string(nrow) + " rows by the equations");
  }
  std::vector<double> w(kWords, 0.0);
  std::copy(lm.begin(), lm.end(), w.begin());
  std::copy(strs.begin(), strs.end(), w.begin() + static_cast<std::ptrdiff_t>(neq));
  w[672] = static_cast<double>(neq);
  w[673] = nrow;
  // TEMP(k) is word 675 + k.
  w[675] = nodes_count;
  for (size_t k = 0; k < 4; ++k) {
    w[676 + k] = nodes[k];
    for (size_t i = 0; i < 3; ++i) w[680 + 3 * k + i] = xyz[k][i];
  }
  put_material(w, 693, material);
  w[715] = option;
  w[716] = angle;
  return w;
}

std::vector<double> PlaneHighRecord::words() const {
  if (lm.size() > 48 || nodes.size() > 8) {
    throw std::invalid_argument("high-order plane record: at most 48 equations and 8 nodes");
  }
  std::vector<double> w(kWords, 0.0);
  std::copy(lm.begin(), lm.end(), w.begin());
  w[48] = static_cast<double>(lm.size());
  // TEMP(k) is word 51 + k.
  w[51] = static_cast<double>(nodes.size());
  std::copy(nodes.begin(), nodes.end(), w.begin() + 52);
  put_material(w, 61, material);
  return w;
}

Section& ArchiveWriter::plane_records(const SectionName& name, int32_t serial,
                                      const std::vector<PlaneRecord>& records) {
  return add_plane_records(second(), name, serial, records);
}

Section& ArchiveWriter::plane_high_records(const SectionName& name, int32_t serial,
                                           const std::vector<PlaneHighRecord>& records) {
  return add_plane_records(second(), name, serial, records);
}

}  // namespace respcore
