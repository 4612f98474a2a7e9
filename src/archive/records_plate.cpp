// The plate records as the archive writer lays them.
#include <stdexcept>
#include <string>

#include "respcore/archive_writer.hpp"

namespace respcore {

namespace {

template <class T, class V>
void put(std::vector<T>& w, size_t first, const V& values, const char* record) {
  if (first < 1 || first - 1 + values.size() > w.size()) {
    throw std::invalid_argument(std::string(record) + " record: " + std::to_string(values.size()) +
                                " values at word " + std::to_string(first) + " do not fit its " +
                                std::to_string(w.size()) + " words");
  }
  size_t k = first - 1;
  for (const auto& v : values) w[k++] = static_cast<T>(v);
}

}  // namespace

std::vector<double> PlateRecord::words() const {
  std::vector<double> w(kWords, 0.0);
  const size_t neq = lm.size();
  put(w, 1, lm, "plate");
  put(w, neq + 1, forces, "plate");
  if (neq * static_cast<size_t>(ns) + neq > 600 || forces.size() > neq * static_cast<size_t>(ns))
    throw std::invalid_argument("plate record: the force matrix does not fit 600 words");
  w[600] = static_cast<double>(neq);
  w[601] = ns;
  // TEMP(r) is word 603 + r.
  auto temp = [&](size_t r, const auto& values) { put(w, 603 + r, values, "plate"); };
  if (nodes.size() > 4 || offset_xyz.size() > 4)
    throw std::invalid_argument("plate record: at most four nodes");
  temp(1, std::vector<double>{nnode != 0.0 ? nnode : static_cast<double>(nodes.size())});
  temp(2, nodes);
  for (size_t i = 0; i < offset_xyz.size(); ++i) temp(6 + 3 * i, offset_xyz[i]);
  temp(18, prop);
  temp(29, std::vector<double>{young, poisson, static_cast<double>(mat_type)});
  temp(32, mat_vals);
  temp(42, std::vector<double>{static_cast<double>(release_flag)});
  temp(43, release_codes);
  temp(47, std::vector<double>{static_cast<double>(form), static_cast<double>(scale_flag)});
  temp(49, scale);
  temp(57, std::vector<double>{angle});
  return w;
}

std::vector<float> GeneralPlateRecord::words() const {
  std::vector<float> w(kWords, 0.0f);
  const size_t nnode = nodes.size();
  const size_t neq = 6 * nnode;
  if (nnode < 1 || nnode > 4 || lm.size() > neq || forc.size() > neq * neq ||
      strs.size() > (8 * nnode + 8) * neq)
    throw std::invalid_argument("general plate record: 1 to 4 nodes, NEQ = 6 NNODE");
  w[0] = static_cast<float>(nnode);
  put(w, 2, nodes, "general plate");
  put(w, 6, thk, "general plate");
  w[10] = static_cast<float>(offset_switch);
  put(w, 12, offsets, "general plate");
  for (size_t r = 0; r < 3; ++r) put(w, 24 + 3 * r, axes[r], "general plate");
  w[32] = static_cast<float>(top);
  w[33] = static_cast<float>(bottom);
  put(w, 35, lm, "general plate");
  // FORC_DISP: a column of 24 words per equation; STRS_DISP behind it, 24
  // words per stress row.
  for (size_t k = 0; k < forc.size(); ++k)
    w[58 + 24 * (k / neq) + k % neq] = static_cast<float>(forc[k]);
  for (size_t k = 0; k < strs.size(); ++k)
    w[58 + 24 * neq + 24 * (k / neq) + k % neq] = static_cast<float>(strs[k]);
  w[kWords - 1] = static_cast<float>(form);
  return w;
}

std::vector<double> PlateHighRecord::words() const {
  std::vector<double> w(kWords, 0.0);
  if (lm.size() > 48 || nodes.size() > 8)
    throw std::invalid_argument("high-order plate record: at most 48 equations and 8 nodes");
  put(w, 1, lm, "high-order plate");
  w[48] = static_cast<double>(lm.size());
  // TEMP(r) is word 51 + r.
  w[51] = static_cast<double>(nodes.size());
  put(w, 53, nodes, "high-order plate");
  put(w, 61, prop, "high-order plate");
  put(w, 72, std::vector<double>{young, poisson, static_cast<double>(mat_type)},
      "high-order plate");
  put(w, 75, mat_vals, "high-order plate");
  return w;
}

Section& ArchiveWriter::plate_records(int32_t serial, const std::vector<PlateRecord>& records) {
  Section& s = second().add(sections::PLAT, serial, 2 * PlateRecord::kWords,
                            static_cast<int64_t>(records.size()));
  for (size_t r = 0; r < records.size(); ++r)
    s.put_f64s(static_cast<int64_t>(r) + 1, 0, records[r].words());
  return s;
}

Section& ArchiveWriter::general_plate_records(int32_t serial,
                                              const std::vector<GeneralPlateRecord>& records) {
  Section& s = second().add(sections::PLAT, serial, GeneralPlateRecord::kWords,
                            static_cast<int64_t>(records.size()));
  for (size_t r = 0; r < records.size(); ++r) {
    const std::vector<float> w = records[r].words();
    s.put_bytes(static_cast<int64_t>(r) + 1, 0, w.data(), w.size() * sizeof(float));
  }
  return s;
}

Section& ArchiveWriter::plate_high_records(int32_t serial,
                                           const std::vector<PlateHighRecord>& records) {
  Section& s = second().add(sections::PLTH, serial, 2 * PlateHighRecord::kWords,
                            static_cast<int64_t>(records.size()));
  for (size_t r = 0; r < records.size(); ++r)
    s.put_f64s(static_cast<int64_t>(r) + 1, 0, records[r].words());
  return s;
}

}  // namespace respcore
