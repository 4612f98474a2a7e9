#include "nodal/inactive.hpp"

#include <vector>


namespace respcore {

void READ_INFORM_INITIAL(ArchiveReader A, InactiveTables& T) {
  const SectionRef iasi = A.find(sections::IASI, 4);
  if (!iasi.found()) {
    T.NUM_INACTIVE = 0;
    return;
  }
  // One record of as many integers as the record length holds.
  const int32_t n = iasi.reclen;
  // The table is only ever consulted when its first entry is set, which
  // takes a successful read; a record that cannot be read leaves it zero,
  // so its first entry stands for all of it.
  const auto [rec1, rec1_last] = A.readable_among(iasi, int64_t{n} * 4, 1);
  const bool readable = n > 0 && rec1 <= rec1_last;
  T.INFM_TMHL.resize(readable ? n : std::min(n, 1));
  if (readable) A.read_i32(iasi, 1, T.INFM_TMHL.ref(), n);
  if (T.INFM_TMHL(1) == 0) {
    T.NUM_INACTIVE = 0;
    return;
  }
  const SectionRef iase = A.find(sections::IASE, 4);
  if (!iase.found()) {
    T.NUM_INACTIVE = 0;
    return;
  }
  T.NUM_INACTIVE = static_cast<int32_t>(iase.nrec);
  // The records are read in batches from the first; each record has the
  // outcome of its own read, a record that cannot be read leaves its column
  // as it was, and a batch that reads nothing ends the reading. Entries the
  // reading does not reach stay zero, of no kind: the table holds the ones it
  // can fill (none when the file's first record lies past the first batch).
  constexpr int64_t kBatch = 8192;
  const auto [first, last] = A.readable_among(iase, 12, T.NUM_INACTIVE);
  const int64_t filled = first <= last && first <= kBatch ? last : 0;
  T.INACTIVE_INFORM.resize(3, filled);
  T.NUM_TRUS = T.NUM_BEAM = T.NUM_WARB = 0;
  std::vector<int32_t> buf;
  std::vector<char> ok;
  for (int64_t done = 0; done < filled; done += kBatch) {
    const int64_t cnt = std::min<int64_t>(kBatch, filled - done);
    buf.assign(static_cast<size_t>(3 * cnt), 0);
    if (A.read_run(iase, 1 + done, cnt, 12, buf.data(), ok) == 0) break;
    for (int64_t i = 0; i < cnt; ++i) {
      if (!ok[static_cast<size_t>(i)]) continue;
      for (int64_t f = 0; f < 3; ++f) {
        T.INACTIVE_INFORM(f + 1, done + i + 1) = buf[static_cast<size_t>(3 * i + f)];
      }
    }
  }
  for (int64_t k = 1; k <= filled; ++k) {
    const int32_t kind = T.INACTIVE_INFORM(2, k);
    if (kind == INACTIVE_KIND_TRUSS) ++T.NUM_TRUS;
    else if (kind == INACTIVE_KIND_BEAM) ++T.NUM_BEAM;
    else if (kind == INACTIVE_KIND_WALL_BEAM) ++T.NUM_WARB;
  }
  T.TRUS.resize(T.NUM_TRUS);
  T.BEAM.resize(T.NUM_BEAM);
  T.WARB.resize(T.NUM_WARB);
  int32_t nt = 0, nb = 0, nw = 0;
  for (int64_t k = 1; k <= filled; ++k) {
    const int32_t kind = T.INACTIVE_INFORM(2, k);
    const int32_t id = T.INACTIVE_INFORM(3, k);
    if (kind == INACTIVE_KIND_TRUSS) T.TRUS(++nt) = id;
    else if (kind == INACTIVE_KIND_BEAM) T.BEAM(++nb) = id;
    else if (kind == INACTIVE_KIND_WALL_BEAM) T.WARB(++nw) = id;
  }
}

void CHECK_INACTIVE_ELEM(InactiveTables& T, int32_t kind, int32_t element, int32_t hist_case,
                         int32_t& flag) {
  T.IS_INACTIVE = 0;
  flag = 0;
  if (T.INFM_TMHL(hist_case) == 0) return;
  Vec<int32_t>* list = nullptr;
  int32_t count = 0;
  switch (kind) {
    case INACTIVE_KIND_TRUSS: list = &T.TRUS; count = T.NUM_TRUS; break;
    case INACTIVE_KIND_BEAM: list = &T.BEAM; count = T.NUM_BEAM; break;
    case INACTIVE_KIND_WALL_BEAM: list = &T.WARB; count = T.NUM_WARB; break;
    default: return;
  }
  for (int64_t i = 1; i <= count; ++i) {
    if ((*list)(i) == element) {
      flag = 1;
      T.IS_INACTIVE = 1;
    }
  }
}

void DISP_EQUATION_INITIAL(ArchiveReader A, VecRef<double> DISP_INIT, int32_t NDOF,
                           VecRef<int32_t> LM) {
  // Whichever file the case keeps its histories in, the displacements at
  // activation are in direct file 1: one record of (record length / 2)
  // doubles.
  const SectionRef dspl = A.find_direct(sections::DSPL, 1, 1);
  const int64_t n = dspl.reclen / 2;
  // Equations past DISP_INIT (or past LM) are reported once and left out.
  const int64_t ndof = DISP_INIT.fit(1, NDOF);
  for (int64_t i = 1; i <= ndof; ++i) DISP_INIT(i) = 0.0;
  const int64_t nlm = LM.fit(1, ndof);
  // The whole record of N doubles is read; only the entries of the
  // element's equations are fetched from it.
  double probe = 0.0;
  if (!A.read_f64_at(dspl, 1, std::max<int64_t>(n, 0) * 8, -1, probe)) {
    // A failed read leaves the freshly made work array at zero.
    for (int64_t i = 1; i <= nlm; ++i) {
      const int32_t e = LM(i);
      if (e <= 0) continue;
      if (e > n) report_bound_failure("DTEMP", e, 1, std::max<int64_t>(n, 0));
      DISP_INIT(i) = 0.0;
    }
    return;
  }
  for (int64_t i = 1; i <= nlm; ++i) {
    const int32_t e = LM(i);
    if (e <= 0) continue;
    if (e > n) {
      report_bound_failure("DTEMP", e, 1, std::max<int64_t>(n, 0));
      DISP_INIT(i) = 0.0;
      continue;
    }
    double v = 0.0;
    A.read_f64_at(dspl, 1, n * 8, int64_t{e - 1} * 8, v);
    DISP_INIT(i) = v;
  }
}

void release_inactive_tables(InactiveTables& T) {
  T.INFM_TMHL.clear();
  T.INACTIVE_INFORM.clear();
  T.TRUS.clear();
  T.BEAM.clear();
  T.WARB.clear();
  T.NUM_INACTIVE = 0;
  T.NUM_TRUS = T.NUM_BEAM = T.NUM_WARB = 0;
}

}  // namespace respcore
