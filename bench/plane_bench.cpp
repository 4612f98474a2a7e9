// Plane elements: one four-node element over 100,000 steps in alternation
// with the plain pread of the bytes its request needs, and 10,000 four-node
// elements at one step beside that read, measured in the same run.
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
using respcore::bench::run_into;
using respcore::bench::run_each_iteration;
using respcore::bench::snapshot_request;

// A mesh of NX by NY four-node elements in a panel inclined to every global
// plane, six equations a node, NSTEPS direct steps.
struct MeshArchive {
  std::string base;
  int32_t n = 0, nsteps = 0;
  int64_t pstr = 0, ndsp = 0, dmed = 0, elmt = 0, matl = 0;
  int64_t pstr_len = 0, ndsp_len = 0;
  std::vector<std::array<int32_t, 4>> nodes;
};

MeshArchive make_mesh(const std::string& name, int nx, int ny, int nsteps) {
  MeshArchive a;
  a.base = bench_dir() + "/" + name;
  a.n = nx * ny;
  a.nsteps = nsteps;
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, nsteps, 0, 0}});
  Section& elmt = w.element_table(std::vector<std::vector<int32_t>>(static_cast<size_t>(a.n), {1}));
  Section& matl = w.materials({{1, 2.0e5, 0.3, 0, {}}});
  auto node = [&](int i, int j) { return 1 + i + (nx + 1) * j; };
  auto xyz = [](int i, int j) {
    const double x = 0.5 * i + 0.05 * j, y = 0.4 * j;
    return std::array<double, 3>{0.8 * x - 0.36 * y, 0.6 * x + 0.48 * y, 0.8 * y};
  };
  std::vector<NodeTransform> nt;
  for (int j = 0; j <= ny; ++j)
    for (int i = 0; i <= nx; ++i) {
      const double e = 6.0 * (node(i, j) - 1);
      nt.push_back({{e + 1, e + 2, e + 3, e + 4, e + 5, e + 6}, {}});
    }
  Section& ndsp = w.node_transforms(nt);
  Section& pstr = w.second().add(sections::PSTR, 3, 2 * PlaneRecord::kWords, a.n);
  PlaneRecord rec;
  rec.nrow = 12;
  rec.material.plate_prop[0] = 0.1;
  rec.material.young = 2.0e5;
  rec.material.poisson = 0.3;
  for (int j = 0; j < ny; ++j)
    for (int i = 0; i < nx; ++i) {
      const std::array<int32_t, 4> ns = {node(i, j), node(i + 1, j), node(i + 1, j + 1),
                                         node(i, j + 1)};
      const std::array<int, 4> ci = {i, i + 1, i + 1, i}, cj = {j, j, j + 1, j + 1};
      rec.lm.clear();
      for (int k = 0; k < 4; ++k) {
        rec.nodes[k] = ns[k];
        rec.xyz[k] = xyz(ci[k], cj[k]);
        for (int c = 1; c <= 6; ++c) rec.lm.push_back(6 * (ns[k] - 1) + c);
      }
      rec.strs.assign(12 * 24, 0.0);
      for (size_t q = 0; q < rec.strs.size(); ++q) rec.strs[q] = std::sin(0.37 * q + i - j);
      pstr.put_f64s(static_cast<int64_t>(a.nodes.size()) + 1, 0, rec.words());
      a.nodes.push_back(ns);
    }
  std::vector<EquationHistory> eqs(nt.size() * 6);
  for (size_t e = 0; e < eqs.size(); ++e)
    for (int s = 0; s < nsteps; ++s) eqs[e].disp.push_back(1e-3 * std::sin(0.01 * s * (e % 7 + 1) + e));
  Section& dmed = w.direct_histories(1, eqs, nsteps);
  w.second().build();
  w.direct(1).build();
  a.pstr = offset(pstr, 1);
  a.pstr_len = 4LL * pstr.reclen_words();
  a.ndsp = offset(ndsp, 1);
  a.ndsp_len = 4LL * ndsp.reclen_words();
  a.dmed = offset(dmed, 1);
  a.elmt = offset(elmt, 1);
  a.matl = offset(matl, 1);
  w.write();
  return a;
}

// The bytes of element E's request: its material, record, node records and
// the first NVALS values of each of its 24 equations.
void plain_element(const MeshArchive& a, int fd2, int fd, int32_t e, double* buf, int64_t nvals) {
  int32_t matno = 0;
  double mat[13], rec[725], node[27];
  benchmark::DoNotOptimize(pread(fd2, &matno, 4, a.elmt + 4LL * (e - 1)));
  benchmark::DoNotOptimize(pread(fd2, mat, sizeof mat, a.matl));
  benchmark::DoNotOptimize(pread(fd2, rec, sizeof rec, a.pstr + (e - 1) * a.pstr_len));
  const int64_t dreclen = 8LL * a.nsteps;
  for (const int32_t n : a.nodes[static_cast<size_t>(e - 1)]) {
    benchmark::DoNotOptimize(pread(fd2, node, sizeof node, a.ndsp + (n - 1) * a.ndsp_len));
    for (int c = 1; c <= 6; ++c) {
      const int64_t eq = 6LL * (n - 1) + c;
      benchmark::DoNotOptimize(
          pread(fd, buf, static_cast<size_t>(8 * nvals), a.dmed + (3 * eq - 1) * dreclen));
    }
  }
}

// One read of the bytes of every element's request.
void read_bytes(const MeshArchive& a, int64_t nvals, std::vector<double>& buf) {
  buf.resize(static_cast<size_t>(nvals));
  const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
  const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
  for (int32_t e = 1; e <= a.n; ++e) plain_element(a, fd2, fd, e, buf.data(), nvals);
  close(fd);
  close(fd2);
}

void plain_read(benchmark::State& st, const MeshArchive& a, int64_t nvals) {
  std::vector<double> buf;
  for (auto _ : st) read_bytes(a, nvals, buf);
}

// One element, 100,000 steps.
MeshArchive& quad_archive() {
  static MeshArchive a = make_mesh("quad", 1, 1, 100000);
  return a;
}

// Row COMP of the element over all steps beside the plain read of its
// bytes, in alternation.
void history_beside_read(benchmark::State& st, const std::string& label, int32_t comp) {
  MeshArchive& a = quad_archive();
  const Request q = history_request(a.base, 1, comp, a.nsteps);
  Kernel k;
  std::vector<double> out, buf;
  alternate(
      st, label + ", kernel / plain read", [&] { run_into(k, q, out); },
      [&] { read_bytes(a, a.nsteps, buf); }, 15);
}

void BM_QuadHistory(benchmark::State& st) {
  history_beside_read(st, "quad, 100000 steps, centre xx", 13);
}
BENCHMARK(BM_QuadHistory)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_QuadHistoryForce(benchmark::State& st) {
  history_beside_read(st, "quad, 100000 steps, node 2 force x", 4);
}
BENCHMARK(BM_QuadHistoryForce)->Iterations(1)->Unit(benchmark::kMillisecond);

// 10,000 elements (100 by 100), 10 stored steps; the request asks for step 7.
MeshArchive& mesh_archive() {
  static MeshArchive a = make_mesh("mesh", 100, 100, 10);
  return a;
}

void BM_QuadSnapshot_Kernel(benchmark::State& st) {
  MeshArchive& a = mesh_archive();
  run_each_iteration(st, snapshot_request(a.base, 1, 4, a.n, 7));  // xx at the centre and nodes
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_QuadSnapshot_Kernel)->Unit(benchmark::kMillisecond);

void BM_QuadSnapshot_PlainRead(benchmark::State& st) {
  MeshArchive& a = mesh_archive();
  plain_read(st, a, 7);
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_QuadSnapshot_PlainRead)->Unit(benchmark::kMillisecond);

}  // namespace
