// Snapshots of many items at one step: the kernel beside the plain work of
// reading each section it needs with one read and gathering the values, and
// beside one pread per record and per value (the reads a snapshot makes when
// nothing is read together). The line elements also as an envelope request
// (REQUEST_MODE 3) over all stored steps, which delivers the rows of the one
// step STEP_NO and so has the same plain work.
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

using respcore::bench::Alternation;
using respcore::bench::alternate_pairs;
using respcore::bench::bench_dir;
using respcore::bench::run_into;
using respcore::bench::snapshot_request;

// N trusses along a line of nodes, three dof per node, NSTEPS stored steps.
struct TrussArchive {
  std::string base;
  int32_t n = 0, nsteps = 0, neq = 0;
  int64_t trus = 0, dmed = 0;  // byte offsets of the sections
};

TrussArchive make_truss_archive(int32_t n, int32_t nsteps) {
  TrussArchive a;
  a.base = bench_dir() + "/snap" + std::to_string(n) + "x" + std::to_string(nsteps);
  a.n = n;
  a.nsteps = nsteps;
  a.neq = 3 * (n + 1);
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, nsteps, 0, 0}});
  std::vector<TrussRecord> trusses;
  for (int32_t e = 1; e <= n; ++e) {
    TrussRecord t;
    for (int i = 0; i < 6; ++i) t.lm.push_back(3 * (e - 1) + 1 + i);
    t.strs.assign(24, 0.0);
    t.strs[0] = -1.0;
    t.strs[2] = 0.01;
    t.strs[3] = 0.01;
    t.strs[4 * 3 + 1] = 1.0;
    trusses.push_back(std::move(t));
  }
  const Section& trus = w.truss_records(3, trusses);
  std::vector<EquationHistory> eqs(static_cast<size_t>(a.neq));
  for (int32_t e = 1; e <= a.neq; ++e) {
    for (int32_t s = 0; s < nsteps; ++s) {
      eqs[e - 1].acc.push_back(0.0);
      eqs[e - 1].vel.push_back(0.0);
      eqs[e - 1].disp.push_back(e * 1e-3 + s);
    }
  }
  const Section& dmed = w.direct_histories(1, eqs, nsteps);
  w.second().build();
  w.direct(1).build();
  a.trus = (trus.first - 1) * 4LL * trus.reclen_words();
  a.dmed = (dmed.first - 1) * 4LL * dmed.reclen_words();
  w.write();
  return a;
}

constexpr int64_t kTrussBytes = 504;  // 63 doubles

// Elements 1..N of family TYPE at step 7, component 1: a snapshot (MODE 2) or
// an envelope request over all stored steps (MODE 3).
Request line_request(const TrussArchive& a, int32_t type, int32_t mode) {
  Request q = snapshot_request(a.base, type, 1, a.n, 7);
  q.request_mode = mode;
  if (mode == 3) q.num_steps = a.nsteps;
  return q;
}

std::string request_name(const Request& q) {
  return q.request_mode == 3 ? ", envelope request" : " at one step";
}

// Trusses 1..N at step 7 (axial force) by REQUEST_MODE M: the kernel; the two
// sections read whole, then the six displacements of each truss gathered and
// combined; one pread per truss record and per displacement (snapshots).
void BM_TrussSnapshot(benchmark::State& st) {
  const TrussArchive a = make_truss_archive(static_cast<int32_t>(st.range(0)),
                                            static_cast<int32_t>(st.range(1)));
  const Request q = line_request(a, 12, static_cast<int32_t>(st.range(2)));
  Kernel k;
  std::vector<double> out;
  auto kernel = [&] { run_into(k, q, out); };
  const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
  const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
  const int64_t hist = 8LL * a.nsteps;
  std::vector<double> trus(static_cast<size_t>(a.n) * 63),
      dmed(static_cast<size_t>(3LL * a.neq * a.nsteps)), force(static_cast<size_t>(a.n));
  auto sections = [&] {
    benchmark::DoNotOptimize(pread(fd2, trus.data(), trus.size() * 8, a.trus));
    benchmark::DoNotOptimize(pread(fd, dmed.data(), dmed.size() * 8, a.dmed));
    for (int32_t e = 0; e < a.n; ++e) {
      const double* r = trus.data() + 63LL * e;
      double f = 0.0;
      for (int i = 0; i < 6; ++i) {
        const int64_t eq = static_cast<int64_t>(r[i]);
        f += r[6 + 4 * i] * dmed[static_cast<size_t>((3 * eq - 1) * a.nsteps + 6)];
      }
      force[static_cast<size_t>(e)] = f;
    }
    benchmark::DoNotOptimize(force.data());
  };
  auto per_record = [&] {
    double r[63], v;
    for (int32_t e = 0; e < a.n; ++e) {
      benchmark::DoNotOptimize(pread(fd2, r, sizeof r, a.trus + e * kTrussBytes));
      for (int i = 0; i < 6; ++i) {
        const int64_t eq = static_cast<int64_t>(r[i]);
        benchmark::DoNotOptimize(pread(fd, &v, 8, a.dmed + (3 * eq - 2) * hist + 6 * 8));
      }
    }
  };
  const std::string name = std::to_string(a.n) + " trusses of " + std::to_string(a.nsteps) +
                           " steps" + request_name(q);
  Alternation s;
  for (auto _ : st) {
    s = alternate_pairs(name + ", kernel / one read per section", kernel, sections, 9);
    if (q.request_mode != 2) continue;
    const Alternation p = alternate_pairs(name + ", kernel / one pread per record", kernel,
                                          per_record, 5);
    st.counters["ratio_vs_per_record"] = p.ratio;
  }
  respcore::bench::put_counters(st, s);
  close(fd);
  close(fd2);
}
BENCHMARK(BM_TrussSnapshot)
    ->Args({10000, 10, 2})
    ->Args({10000, 100, 2})
    ->Args({10000, 10, 3})
    ->Args({10000, 100, 3})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// N beams along a line of nodes, six dof per node, NSTEPS stored steps.
TrussArchive make_beam_archive(int32_t n, int32_t nsteps) {
  TrussArchive a;
  a.base = bench_dir() + "/beams" + std::to_string(n) + "x" + std::to_string(nsteps);
  a.n = n;
  a.nsteps = nsteps;
  a.neq = 6 * (n + 1);
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, nsteps, 0, 0}});
  std::vector<BeamRecord> beams(static_cast<size_t>(n));
  for (int32_t e = 1; e <= n; ++e) {
    BeamRecord& b = beams[static_cast<size_t>(e - 1)];
    for (int i = 1; i <= 12; ++i) b.lm.push_back(6 * (e - 1) + i);
    for (int q = 0; q < 26 * 12; ++q) b.strs.push_back(std::sin(0.37 * q + e));
    b.node_i = e;
    b.node_j = e + 1;
  }
  const Section& beam = w.beam_records(3, beams);
  std::vector<EquationHistory> eqs(static_cast<size_t>(a.neq));
  for (int32_t e = 1; e <= a.neq; ++e) {
    for (int32_t s = 0; s < nsteps; ++s) {
      eqs[e - 1].acc.push_back(0.0);
      eqs[e - 1].vel.push_back(0.0);
      eqs[e - 1].disp.push_back(1e-3 * std::sin(0.01 * s * e));
    }
  }
  const Section& dmed = w.direct_histories(1, eqs, nsteps);
  w.second().build();
  w.direct(1).build();
  a.trus = (beam.first - 1) * 4LL * beam.reclen_words();
  a.dmed = (dmed.first - 1) * 4LL * dmed.reclen_words();
  w.write();
  return a;
}

// Beams 1..N at step 7 (row 1) by REQUEST_MODE M: the kernel beside the two
// sections read whole, then the twelve displacements of each beam gathered
// and multiplied by the first row of its matrix.
void BM_BeamSnapshot(benchmark::State& st) {
  const TrussArchive a = make_beam_archive(static_cast<int32_t>(st.range(0)),
                                           static_cast<int32_t>(st.range(1)));
  const Request q = line_request(a, 13, static_cast<int32_t>(st.range(2)));
  Kernel k;
  std::vector<double> out;
  auto kernel = [&] { run_into(k, q, out); };
  const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
  const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
  constexpr int64_t kWords = BeamRecord::kWords;
  std::vector<double> recs(static_cast<size_t>(a.n * kWords)),
      dmed(static_cast<size_t>(3LL * a.neq * a.nsteps)), row(static_cast<size_t>(a.n));
  auto sections = [&] {
    benchmark::DoNotOptimize(pread(fd2, recs.data(), recs.size() * 8, a.trus));
    benchmark::DoNotOptimize(pread(fd, dmed.data(), dmed.size() * 8, a.dmed));
    for (int32_t e = 0; e < a.n; ++e) {
      const double* r = recs.data() + kWords * e;
      double f = 0.0;
      for (int j = 0; j < 12; ++j) {
        const int64_t eq = static_cast<int64_t>(r[j]);
        f += r[12 + 26 * j] * dmed[static_cast<size_t>((3 * eq - 1) * a.nsteps + 6)];
      }
      row[static_cast<size_t>(e)] = f;
    }
    benchmark::DoNotOptimize(row.data());
  };
  const std::string name = std::to_string(a.n) + " beams of " + std::to_string(a.nsteps) +
                           " steps" + request_name(q);
  Alternation s;
  for (auto _ : st) s = alternate_pairs(name + ", kernel / one read per section", kernel, sections, 9);
  respcore::bench::put_counters(st, s);
  close(fd);
  close(fd2);
}
BENCHMARK(BM_BeamSnapshot)
    ->Args({10000, 10, 2})
    ->Args({10000, 100, 2})
    ->Args({10000, 10, 3})
    ->Args({10000, 100, 3})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
