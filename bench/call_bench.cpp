// The fixed cost of a call: many short calls beside the plain reads of the
// same bytes from files opened once, and one call on archives whose
// directories hold thousands of other sections beside the same call with a
// short directory.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "bench_support.hpp"
#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"

namespace {

using namespace respcore;

using respcore::bench::alternate;
using respcore::bench::alternate_pairs;
using respcore::bench::bench_dir;
using respcore::bench::history_request;
using respcore::bench::run_into;

// A node on equations 1..6 over NSTEPS direct steps, behind EXTRA other
// sections in the directory of each of its three files.
struct NodeArchive {
  std::string base;
  int32_t nsteps = 0;
  int64_t node = 0, dmed = 0;  // byte offsets of the node record and of DMED
};

NodeArchive make_node_archive(int32_t nsteps, int32_t extra) {
  NodeArchive a{bench_dir() + "/calls" + std::to_string(nsteps) + "x" + std::to_string(extra),
                nsteps};
  ArchiveWriter w(a.base);
  for (ArchiveFile* f : {&w.first(), &w.second(), &w.direct(1)})
    for (int32_t i = 1; i <= extra; ++i) f->add_raw_entry("XTRA", i, 1, 1, 1);
  w.history_cases({{2, 1, nsteps, 0, 0}});
  const Section& node = w.node_transforms({{{1, 2, 3, 4, 5, 6}, {}}});
  std::vector<EquationHistory> eqs(6);
  for (int e = 1; e <= 6; ++e) {
    for (int32_t s = 0; s < nsteps; ++s) {
      eqs[e - 1].acc.push_back(e + 1e-6 * s);
      eqs[e - 1].vel.push_back(e + 2e-6 * s);
      eqs[e - 1].disp.push_back(e + 3e-6 * s);
    }
  }
  const Section& dmed = w.direct_histories(1, eqs, nsteps);
  w.second().build();
  w.direct(1).build();
  a.node = (node.first - 1) * 4LL * node.reclen_words();
  a.dmed = (dmed.first - 1) * 4LL * dmed.reclen_words();
  w.write();
  return a;
}

// CALLS separate single-node calls of 100 steps (x translation), beside the
// plain reads of what each needs (the node record and the x displacement
// history, the row's one term) from files opened once; and beside the reads
// a call made before it read only what its row uses (the six histories).
void BM_SeparateCalls(benchmark::State& st) {
  constexpr int kCalls = 10000;
  const NodeArchive a = make_node_archive(100, 0);
  // Let the files' time stamps age, so the kernel may keep them open.
  usleep(50000);
  const Request q = history_request(a.base, 9, 1, a.nsteps);
  Kernel k;
  std::vector<double> out;
  auto kernel = [&] {
    for (int i = 0; i < kCalls; ++i) run_into(k, q, out);
  };
  const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
  const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
  std::vector<double> buf(static_cast<size_t>(a.nsteps));
  const int64_t reclen = 8LL * a.nsteps;
  auto reads = [&](int histories) {
    for (int i = 0; i < kCalls; ++i) {
      double node[27];
      benchmark::DoNotOptimize(pread(fd2, node, sizeof node, a.node));
      for (int e = 1; e <= histories; ++e)
        benchmark::DoNotOptimize(
            pread(fd, buf.data(), static_cast<size_t>(reclen), a.dmed + (3 * e - 1) * reclen));
    }
  };
  auto plain = [&] { reads(1); };
  alternate(st, "10,000 calls of one node x 100 steps, kernel / plain read from open files", kernel,
            plain, 7);
  st.counters["kernel_us_per_call"] = st.counters["kernel_ms"] * 1000.0 / kCalls;
  st.counters["ratio_six_histories"] =
      alternate_pairs("  the same, beside reads of all six histories", kernel, [&] { reads(6); }, 5)
          .ratio;
  k.set_file_cache(false);
  st.counters["ratio_files_closed"] =
      alternate_pairs("  the same, the kernel's files closed after each call", kernel, plain, 3).ratio;
  close(fd);
  close(fd2);
}
BENCHMARK(BM_SeparateCalls)->Iterations(1)->Unit(benchmark::kMillisecond);

// One call of one node x 100 steps on an archive with EXTRA other sections
// per file, beside the same call on the archive with a short directory: in
// the same kernel (files kept between calls) and in a new kernel per call.
void BM_LongDirectory(benchmark::State& st) {
  const int32_t extra = static_cast<int32_t>(st.range(0));
  const NodeArchive longer = make_node_archive(100, extra);
  const NodeArchive shorter = make_node_archive(100, 0);
  usleep(50000);
  const Request ql = history_request(longer.base, 9, 1, 100);
  const Request qs = history_request(shorter.base, 9, 1, 100);
  Kernel kl, ks;
  std::vector<double> out;
  constexpr int kCalls = 100;
  alternate(
      st, std::to_string(extra) + " other sections per file, kept files, long / short",
      [&] {
        for (int i = 0; i < kCalls; ++i) run_into(kl, ql, out);
      },
      [&] {
        for (int i = 0; i < kCalls; ++i) run_into(ks, qs, out);
      },
      9);
  st.counters["ratio_new_kernel"] = alternate_pairs(
      std::to_string(extra) + " other sections per file, new kernel per call, long / short",
      [&] {
        Kernel k;
        run_into(k, ql, out);
      },
      [&] {
        Kernel k;
        run_into(k, qs, out);
      },
      9).ratio;
}
BENCHMARK(BM_LongDirectory)->Arg(2000)->Arg(20000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
