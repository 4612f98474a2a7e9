// One node over a long direct history, many trusses at one step, and the
// peak memory of one node over a million steps: the kernel beside the plain
// pread of the bytes each request needs.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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
using respcore::bench::history_request;
using respcore::bench::run_each_iteration;
using respcore::bench::snapshot_request;

// A node with equations 1..6 over NSTEPS direct steps.
struct NodeArchive {
  std::string base;
  int32_t nsteps;
  int64_t dmed_first = 0;  // first record of DMED in the direct file
};

NodeArchive make_node_archive(int32_t nsteps) {
  NodeArchive a{bench_dir() + "/node" + std::to_string(nsteps), nsteps};
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, nsteps, 0, 0}});
  w.node_transforms({{{1, 2, 3, 4, 5, 6}, {}}});
  // Record x of the section holds x + 1e-6 s at step s.
  std::vector<EquationHistory> eqs(6);
  for (int e = 1; e <= 6; ++e) {
    std::vector<double>* h[3] = {&eqs[e - 1].acc, &eqs[e - 1].vel, &eqs[e - 1].disp};
    for (int r = 0; r < 3; ++r) {
      const int x = 3 * (e - 1) + r + 1;
      for (int s = 0; s < nsteps; ++s) h[r]->push_back(x + 1e-6 * s);
    }
  }
  Section& dmed = w.direct_histories(1, eqs, nsteps);
  w.direct(1).build();
  a.dmed_first = dmed.first;
  w.write();
  return a;
}

// Row 2 (y translation) of one node over 100,000 steps, as a post-processor
// calls it (into its own array, kept between calls), beside the plain read of
// what the row needs: the node record and, the node's transform being the
// identity, the one displacement history of dof 2; and beside a read of all
// six histories, which the kernel once made for any row.
void BM_NodeHistory(benchmark::State& st) {
  static NodeArchive a = make_node_archive(100000);
  Kernel k;
  const Request q = history_request(a.base, 9, 2, a.nsteps);
  std::vector<double> out;
  const int64_t reclen = 8LL * a.nsteps;
  std::vector<double> buf(static_cast<size_t>(a.nsteps));
  auto plain = [&](int first, int last) {
    const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
    const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
    double node[27];
    benchmark::DoNotOptimize(pread(fd2, node, sizeof node, 0));
    for (int e = first; e <= last; ++e)
      benchmark::DoNotOptimize(pread(fd, buf.data(), static_cast<size_t>(reclen),
                                     (a.dmed_first - 1 + 3 * e - 1) * reclen));
    close(fd);
    close(fd2);
  };
  constexpr int kRepeat = 50;
  auto kernel = [&] {
    for (int i = 0; i < kRepeat; ++i) respcore::bench::run_into(k, q, out);
  };
  respcore::bench::alternate(st, "node, 100000 steps, kernel / plain read", kernel, [&] {
    for (int i = 0; i < kRepeat; ++i) plain(2, 2);
  }, 15);
  st.counters["ratio_six_histories"] =
      respcore::bench::alternate_pairs("  the same, beside a read of all six histories", kernel,
                                       [&] {
                                         for (int i = 0; i < kRepeat; ++i) plain(1, 6);
                                       },
                                       9)
          .ratio;
}
BENCHMARK(BM_NodeHistory)->Iterations(1)->Unit(benchmark::kMillisecond);

// 10,000 trusses along a line of nodes, three dof per node, 10 stored steps.
struct TrussArchive {
  std::string base;
  int32_t n = 10000;
  int32_t nsteps = 10;
  int64_t trus_first = 0, dmed_first = 0;
};

TrussArchive make_truss_archive() {
  TrussArchive a;
  a.base = bench_dir() + "/trusses";
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{2, 1, a.nsteps, 0, 0}});
  std::vector<TrussRecord> trusses;
  for (int32_t e = 1; e <= a.n; ++e) {
    TrussRecord t;
    for (int i = 0; i < 6; ++i) t.lm.push_back(3 * (e - 1) + 1 + i);
    // STRS(4, 6): axial forces from dof 1 and 4, stress factors in column 1.
    t.strs.assign(24, 0.0);
    t.strs[0] = -1.0;
    t.strs[2] = 0.01;
    t.strs[3] = 0.01;
    t.strs[4 * 3 + 1] = 1.0;
    trusses.push_back(std::move(t));
  }
  Section& trus = w.truss_records(3, trusses);
  // Record x of the section holds x / 1000 + s at step s.
  const int32_t neq = 3 * (a.n + 1);
  std::vector<EquationHistory> eqs(static_cast<size_t>(neq));
  for (int32_t e = 1; e <= neq; ++e) {
    std::vector<double>* h[3] = {&eqs[e - 1].acc, &eqs[e - 1].vel, &eqs[e - 1].disp};
    for (int r = 0; r < 3; ++r) {
      const int32_t x = 3 * (e - 1) + r + 1;
      for (int s = 0; s < a.nsteps; ++s) h[r]->push_back(x * 1e-3 + s);
    }
  }
  Section& dmed = w.direct_histories(1, eqs, a.nsteps);
  w.second().build();
  w.direct(1).build();
  a.trus_first = trus.first;
  a.dmed_first = dmed.first;
  w.write();
  return a;
}

TrussArchive& truss_archive() {
  static TrussArchive a = make_truss_archive();
  return a;
}

void BM_Trusses_Kernel(benchmark::State& st) {
  TrussArchive& a = truss_archive();
  run_each_iteration(st, snapshot_request(a.base, 12, 1, a.n, 7));
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_Trusses_Kernel)->Unit(benchmark::kMillisecond);

void BM_Trusses_PlainRead(benchmark::State& st) {
  TrussArchive& a = truss_archive();
  const int64_t dreclen = 8LL * a.nsteps;
  for (auto _ : st) {
    const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
    const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
    double sa[63];
    double h[16];
    for (int32_t e = 1; e <= a.n; ++e) {
      benchmark::DoNotOptimize(pread(fd2, sa, sizeof sa, (a.trus_first - 1 + e - 1) * 504));
      for (int i = 0; i < 6; ++i) {
        const int64_t eq = static_cast<int64_t>(sa[i]);
        benchmark::DoNotOptimize(pread(fd, h, 7 * 8, (a.dmed_first - 1 + 3 * eq - 1) * dreclen));
      }
    }
    close(fd);
    close(fd2);
  }
  st.SetItemsProcessed(st.iterations() * a.n);
}
BENCHMARK(BM_Trusses_PlainRead)->Unit(benchmark::kMillisecond);

// Peak resident memory of one node over a million steps (reported as a
// counter; run it alone to read a clean figure).
void BM_NodeMillionSteps_PeakMemory(benchmark::State& st) {
  // The archive is written by a child process, so that this process's peak
  // is the kernel's own (plus the benchmark's small start-up).
  static NodeArchive a = [] {
    NodeArchive na{bench_dir() + "/node1000000", 1000000};
    const pid_t pid = fork();
    if (pid == 0) {
      make_node_archive(1000000);
      _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return na;
  }();
  run_each_iteration(st, history_request(a.base, 9, 1, a.nsteps));
  rusage ru{};
  getrusage(RUSAGE_SELF, &ru);
  st.counters["peak_MB"] = static_cast<double>(ru.ru_maxrss) / 1024.0;
}
BENCHMARK(BM_NodeMillionSteps_PeakMemory)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
