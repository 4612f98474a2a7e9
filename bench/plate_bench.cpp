// Plates: one four-node plate over 100,000 steps and one eight-node plate
// over 10,000 steps, each in alternation with the plain pread of the bytes
// its request needs; 5,000 four-node plates at one step beside that read,
// measured in the same run.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <string>
#include <vector>

#include "bench_support.hpp"
#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"

namespace {

using namespace respcore;

using respcore::bench::alternate;
using respcore::bench::bench_dir;
using respcore::bench::offset;
using respcore::bench::history_request;
using respcore::bench::run_each_iteration;
using respcore::bench::run_into;
using respcore::bench::snapshot_request;

// Where the plain read finds what a request needs.
struct PlateArchive {
  std::string base;
  int32_t nsteps = 0, n = 0;
  int64_t rec = 0, rec_len = 0, cord = 0, cord_len = 0, dmed = 0, elmt = 0, matl = 0;
  std::vector<std::vector<int32_t>> nodes;  // per element
};

// A flat four-node plate of the grid, thick, with the ordinary section.
PlateRecord quad_record(const std::vector<int32_t>& nodes,
                        const std::vector<std::array<double, 3>>& xyz, int32_t e) {
  PlateRecord r;
  for (int32_t nd : nodes) {
    r.nodes.push_back(nd);
    r.offset_xyz.push_back(xyz[static_cast<size_t>(nd - 1)]);
    for (int c = 1; c <= 6; ++c) r.lm.push_back(6.0 * (nd - 1) + c);
  }
  for (int q = 0; q < 24 * 24; ++q) r.forces.push_back(std::sin(0.37 * q + e));
  r.prop = {0.2, 0.2};
  r.young = 2.0e5;
  r.poisson = 0.3;
  return r;
}

// NX by NY four-node plates on a skewed grid, or (HIGH) one eight-node
// plate, with NSTEPS direct steps.
PlateArchive make_archive(const std::string& name, int nx, int ny, int32_t nsteps, bool high) {
  PlateArchive a;
  a.base = bench_dir() + "/" + name;
  a.nsteps = nsteps;
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, nsteps, 0, 0}});
  std::vector<std::array<double, 3>> xyz;
  if (high) {
    xyz = {{0, 0, 0}, {2, 0, 0},    {2, 1.5, 0}, {0, 1.5, 0},
           {1, 0, 0}, {2, 0.75, 0}, {1, 1.5, 0}, {0, 0.75, 0}};
    a.nodes = {{1, 2, 3, 4, 5, 6, 7, 8}};
  } else {
    for (int j = 0; j <= ny; ++j)
      for (int i = 0; i <= nx; ++i) xyz.push_back({double(i), 0.8 * j + 0.05 * i, 0.0});
    for (int j = 0; j < ny; ++j)
      for (int i = 0; i < nx; ++i) {
        const int32_t n1 = 1 + i + (nx + 1) * j;
        a.nodes.push_back({n1, n1 + 1, n1 + nx + 2, n1 + nx + 1});
      }
  }
  a.n = static_cast<int32_t>(a.nodes.size());
  Section& elmt = w.element_table(std::vector<std::vector<int32_t>>(a.nodes.size(), {1}));
  Section& matl = w.materials({{1, 2.0e5, 0.3, 0, {}}});
  Section& cord = w.node_coordinates(xyz);
  std::vector<NodeTransform> transforms;
  for (size_t nd = 0; nd < xyz.size(); ++nd) {
    NodeTransform t;
    for (int c = 1; c <= 6; ++c) t.equations.push_back(6.0 * nd + c);
    transforms.push_back(t);
  }
  w.node_transforms(transforms);
  Section* rec = nullptr;
  if (high) {
    PlateHighRecord r;
    for (int nd = 1; nd <= 8; ++nd) r.nodes.push_back(nd);
    for (int e = 1; e <= 48; ++e) r.lm.push_back(e);
    r.prop = {0.2, 0.2};
    r.young = 2.0e5;
    r.poisson = 0.3;
    rec = &w.plate_high_records(3, {r});
  } else {
    std::vector<PlateRecord> recs;
    for (int32_t e = 0; e < a.n; ++e) recs.push_back(quad_record(a.nodes[e], xyz, e));
    rec = &w.plate_records(3, recs);
  }
  std::vector<EquationHistory> eqs(6 * xyz.size());
  for (size_t q = 0; q < eqs.size(); ++q)
    for (int32_t s = 0; s < nsteps; ++s) eqs[q].disp.push_back(1e-4 * std::sin(0.01 * s + q));
  Section& dmed = w.direct_histories(1, eqs, nsteps);
  w.second().build();
  w.direct(1).build();
  a.rec = offset(*rec, 1);
  a.rec_len = 4LL * rec->reclen_words();
  a.cord = offset(cord, 1);
  a.cord_len = 4LL * cord.reclen_words();
  a.dmed = offset(dmed, 1);
  a.elmt = offset(elmt, 1);
  a.matl = offset(matl, 1);
  w.write();
  return a;
}

// Whether the last displacement read of VALUES per equation finds its bytes.
bool plain_read_reaches(const PlateArchive& a, int32_t values) {
  std::vector<double> h(static_cast<size_t>(values));
  const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
  const int64_t eq = 6LL * a.nodes.back().back();
  const auto got = pread(fd, h.data(), 8LL * values, a.dmed + (3 * eq - 1) * 8LL * a.nsteps);
  close(fd);
  return got == 8LL * values;
}

// One read of the bytes of elements 1..N: element table, material, element
// record, node coordinates, and VALUES displacements of each equation.
void read_bytes(const PlateArchive& a, int32_t values, std::vector<double>& rec,
                std::vector<double>& h) {
  const int64_t dreclen = 8LL * a.nsteps;
  rec.resize(static_cast<size_t>(a.rec_len / 8));
  h.resize(static_cast<size_t>(values));
  const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
  const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
  double xyz[3], mat[13];
  for (int32_t e = 1; e <= a.n; ++e) {
    int32_t matno = 0;
    benchmark::DoNotOptimize(pread(fd2, &matno, 4, a.elmt + 4LL * (e - 1)));
    benchmark::DoNotOptimize(pread(fd2, mat, sizeof mat, a.matl));
    benchmark::DoNotOptimize(pread(fd2, rec.data(), a.rec_len, a.rec + (e - 1) * a.rec_len));
    for (int32_t nd : a.nodes[static_cast<size_t>(e - 1)]) {
      benchmark::DoNotOptimize(pread(fd2, xyz, sizeof xyz, a.cord + (nd - 1) * a.cord_len));
      for (int c = 1; c <= 6; ++c) {
        const int64_t eq = 6LL * (nd - 1) + c;
        benchmark::DoNotOptimize(
            pread(fd, h.data(), 8LL * values, a.dmed + (3 * eq - 1) * dreclen));
      }
    }
  }
  close(fd);
  close(fd2);
}

void plain_read(benchmark::State& st, const PlateArchive& a, int32_t values) {
  if (!plain_read_reaches(a, values)) st.SkipWithError("the plain read misses the histories");
  std::vector<double> rec, h;
  for (auto _ : st) read_bytes(a, values, rec, h);
}

// The history of row COMP of element 1 beside the plain read of its bytes,
// in alternation.
void history_beside_read(benchmark::State& st, const std::string& label, const PlateArchive& a,
                         int32_t elem_type, int32_t comp) {
  if (!plain_read_reaches(a, a.nsteps)) st.SkipWithError("the plain read misses the histories");
  const Request q = history_request(a.base, elem_type, comp, a.nsteps);
  Kernel k;
  std::vector<double> out, rec, h;
  alternate(
      st, label + ", kernel / plain read", [&] { run_into(k, q, out); },
      [&] { read_bytes(a, a.nsteps, rec, h); }, 15);
}

PlateArchive& long_archive() {
  static PlateArchive a = make_archive("plate100k", 1, 1, 100000, false);
  return a;
}
PlateArchive& grid_archive() {
  static PlateArchive a = make_archive("plate5000", 100, 50, 10, false);
  return a;
}
PlateArchive& high_archive() {
  static PlateArchive a = make_archive("plate8", 0, 0, 10000, true);
  return a;
}

void BM_PlateHistory(benchmark::State& st) {
  history_beside_read(st, "plate, 100000 steps", long_archive(), 3, 25);  // sx top, centre
}
BENCHMARK(BM_PlateHistory)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_PlateSnapshot_Kernel(benchmark::State& st) {
  PlateArchive& a = grid_archive();
  run_each_iteration(st, snapshot_request(a.base, 3, 7, a.n, 7));  // sx top, every point
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_PlateSnapshot_Kernel)->Unit(benchmark::kMillisecond);

void BM_PlateSnapshot_PlainRead(benchmark::State& st) {
  PlateArchive& a = grid_archive();
  plain_read(st, a, 7);
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_PlateSnapshot_PlainRead)->Unit(benchmark::kMillisecond);

void BM_PlateHighHistory(benchmark::State& st) {
  history_beside_read(st, "eight-node plate, 10000 steps", high_archive(), 7, 49);
}
BENCHMARK(BM_PlateHighHistory)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
