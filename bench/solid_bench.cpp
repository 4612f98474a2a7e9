// Solids: one 20-node hexahedron over 10,000 steps, and 5,000 8-node
// hexahedra at one step, each beside the plain pread of the bytes its
// request needs, measured in the same run.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench_support.hpp"
#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"

namespace {

using namespace respcore;

using respcore::bench::bench_dir;
using respcore::bench::offset;
using respcore::bench::history_request;
using respcore::bench::run_each_iteration;
using respcore::bench::run_into;
using respcore::bench::snapshot_request;

// Every element of material 1; returns the two sections.
std::pair<Section*, Section*> add_material(ArchiveWriter& w, int32_t nelem) {
  Section& elmt = w.element_table(std::vector<std::vector<int32_t>>(static_cast<size_t>(nelem), {1}));
  Section& matl = w.materials({{1, 2.0e5, 0.3, 0, {}}});
  return {&elmt, &matl};
}

// ---------------------------------------------------------------------------
// One 20-node hexahedron, 10,000 direct steps.

struct HexArchive {
  std::string base;
  int32_t nsteps = 10000;
  int64_t psoh = 0, cord = 0, dmed = 0, elmt = 0, matl = 0;
  int32_t psoh_len = 0, cord_len = 0, elmt_len = 0, matl_len = 0;
};

HexArchive make_hex_archive() {
  HexArchive a;
  a.base = bench_dir() + "/hex20";
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, a.nsteps, 0, 0}});
  const auto [elmt, matl] = add_material(w, 1);
  const double nat[20][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, 1},
                             {1, -1, 1},   {1, 1, 1},   {-1, 1, 1}, {0, -1, -1}, {1, 0, -1},
                             {0, 1, -1},   {-1, 0, -1}, {0, -1, 1}, {1, 0, 1},   {0, 1, 1},
                             {-1, 0, 1},   {-1, -1, 0}, {1, -1, 0}, {1, 1, 0},   {-1, 1, 0}};
  SolidHighRecord rec;
  std::vector<std::array<double, 3>> cord;
  for (int k = 0; k < 20; ++k) {
    rec.nodes.push_back(k + 1);
    for (int c = 0; c < 3; ++c) rec.equations.push_back(3 * k + c + 1);
    cord.push_back({2.0 * nat[k][0] + 0.1 * nat[k][1], 1.5 * nat[k][1], nat[k][2]});
  }
  Section& psoh = w.solid_high_records(3, {rec});
  Section& cords = w.node_coordinates(cord);
  std::vector<EquationHistory> eqs(60);
  for (int e = 1; e <= 60; ++e) {
    for (int s = 0; s < a.nsteps; ++s) eqs[e - 1].disp.push_back(1e-3 * std::sin(0.01 * s * e));
  }
  Section& dmed = w.direct_histories(1, eqs, a.nsteps);
  w.second().build();
  w.direct(1).build();
  a.psoh = offset(psoh, 1);
  a.psoh_len = SolidHighRecord::kWords * 8;
  a.cord = offset(cords, 1);
  a.cord_len = 4 * cords.reclen_words();
  a.dmed = offset(dmed, 1);
  a.elmt = offset(*elmt, 1);
  a.matl = offset(*matl, 1);
  w.write();
  return a;
}

HexArchive& hex_archive() {
  static HexArchive a = make_hex_archive();
  return a;
}

// Centre stress xx over all steps, beside the plain read of the bytes it
// needs: the material, the element record, the coordinates of its 20 nodes
// and the 60 displacement histories. Each side runs 20 times per round.
void BM_Hex20History(benchmark::State& st) {
  HexArchive& a = hex_archive();
  const Request q = history_request(a.base, 8, 61, a.nsteps);
  Kernel k;
  std::vector<double> out;
  const int64_t reclen = 8LL * a.nsteps;
  std::vector<double> buf(static_cast<size_t>(a.nsteps));
  auto plain = [&] {
    const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
    const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
    double rec[90], xyz[3], mat[13];
    int32_t matno = 0;
    benchmark::DoNotOptimize(pread(fd2, &matno, 4, a.elmt));
    benchmark::DoNotOptimize(pread(fd2, mat, sizeof mat, a.matl));
    benchmark::DoNotOptimize(pread(fd2, rec, sizeof rec, a.psoh));
    for (int n = 0; n < 20; ++n)
      benchmark::DoNotOptimize(pread(fd2, xyz, sizeof xyz, a.cord + n * a.cord_len));
    for (int e = 1; e <= 60; ++e)
      benchmark::DoNotOptimize(
          pread(fd, buf.data(), static_cast<size_t>(reclen), a.dmed + (3 * e - 1) * reclen));
    close(fd);
    close(fd2);
  };
  constexpr int kRepeat = 20;
  respcore::bench::alternate(
      st, "20-node hexahedron, 10000 steps, kernel / plain read",
      [&] {
        for (int i = 0; i < kRepeat; ++i) run_into(k, q, out);
      },
      [&] {
        for (int i = 0; i < kRepeat; ++i) plain();
      },
      15);
}
BENCHMARK(BM_Hex20History)->Iterations(1)->Unit(benchmark::kMillisecond);

// ---------------------------------------------------------------------------
// 5,000 8-node hexahedra in a 50 x 10 x 10 block, 10 stored steps; the
// request asks for step 7.

struct BlockArchive {
  std::string base;
  int32_t n = 5000;
  int32_t nsteps = 10;
  int64_t sold = 0, dmed = 0, elmt = 0, matl = 0;
  int64_t sold_len = 0;
  std::vector<std::vector<int32_t>> lm;
};

BlockArchive make_block_archive() {
  BlockArchive a;
  a.base = bench_dir() + "/hex8block";
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, a.nsteps, 0, 0}});
  const auto [elmt, matl] = add_material(w, a.n);
  const int nx = 50, ny = 10, nz = 10;
  auto node = [&](int i, int j, int k) { return 1 + i + (nx + 1) * (j + (ny + 1) * k); };
  const int corner[8][3] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                            {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
  Section& sold = w.second().add(sections::SOLD, 3, 2 * SolidRecord::kWords, a.n);
  SolidRecord rec;
  rec.nr = 78;
  rec.nn = 8;
  rec.axes = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  int32_t e = 0;
  for (int k = 0; k < nz; ++k) {
    for (int j = 0; j < ny; ++j) {
      for (int i = 0; i < nx; ++i) {
        ++e;
        std::vector<int32_t> lm;
        for (const auto& c : corner) {
          const int nd = node(i + c[0], j + c[1], k + c[2]);
          for (int d = 1; d <= 3; ++d) lm.push_back(3 * (nd - 1) + d);
        }
        rec.lm.assign(lm.begin(), lm.end());
        rec.strs.clear();
        for (int q = 0; q < 78 * 24; ++q) rec.strs.push_back(std::sin(0.37 * q + e));
        sold.put_f64s(e, 0, rec.words());
        a.lm.push_back(lm);
      }
    }
  }
  const int32_t neq = 3 * (nx + 1) * (ny + 1) * (nz + 1);
  std::vector<EquationHistory> eqs(static_cast<size_t>(neq));
  for (int32_t x = 1; x <= neq; ++x) {
    for (int s = 0; s < a.nsteps; ++s) eqs[x - 1].disp.push_back(1e-4 * std::cos(x + s));
  }
  Section& dmed = w.direct_histories(1, eqs, a.nsteps);
  w.second().build();
  w.direct(1).build();
  a.sold = offset(sold, 1);
  a.sold_len = 4LL * sold.reclen_words();
  a.dmed = offset(dmed, 1);
  a.elmt = offset(*elmt, 1);
  a.matl = offset(*matl, 1);
  w.write();
  return a;
}

BlockArchive& block_archive() {
  static BlockArchive a = make_block_archive();
  return a;
}

void BM_Hex8Snapshot_Kernel(benchmark::State& st) {
  BlockArchive& a = block_archive();
  // xx at the centre and the nodes
  run_each_iteration(st, snapshot_request(a.base, 4, 4, a.n, 7));
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_Hex8Snapshot_Kernel)->Unit(benchmark::kMillisecond);

void BM_Hex8Snapshot_PlainRead(benchmark::State& st) {
  BlockArchive& a = block_archive();
  const int64_t dreclen = 8LL * a.nsteps;
  std::vector<double> head(24 + 78 * 24);
  for (auto _ : st) {
    const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
    const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
    double tail[13], mat[13], h[7];
    for (int32_t e = 1; e <= a.n; ++e) {
      int32_t matno = 0;
      benchmark::DoNotOptimize(pread(fd2, &matno, 4, a.elmt + 4LL * (e - 1)));
      benchmark::DoNotOptimize(pread(fd2, mat, sizeof mat, a.matl));
      const int64_t rec = a.sold + (e - 1) * a.sold_len;
      benchmark::DoNotOptimize(pread(fd2, tail, sizeof tail, rec + 3792 * 8));
      benchmark::DoNotOptimize(pread(fd2, head.data(), head.size() * 8, rec));
      for (int32_t eq : a.lm[static_cast<size_t>(e - 1)])
        benchmark::DoNotOptimize(pread(fd, h, sizeof h, a.dmed + (3LL * eq - 1) * dreclen));
    }
    close(fd);
    close(fd2);
  }
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_Hex8Snapshot_PlainRead)->Unit(benchmark::kMillisecond);

}  // namespace
