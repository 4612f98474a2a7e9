// One beam over a long history, modal and direct: the kernel in alternation
// with its baselines in the same process. Modal: one DGEMM of the shapes the
// recovery needs, (12 x M)(M x S), and the plain read of the coordinates and
// mode rows; direct: the plain read of the record and the twelve histories.
// The modal runs also report the kernel's peak memory beside the bytes of
// the coordinates of one quantity and of the output.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "bench_support.hpp"
#include "numeric/blas.hpp"
#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"

namespace {

using namespace respcore;

using respcore::bench::alternate;
using respcore::bench::bench_dir;
using respcore::bench::offset;
using respcore::bench::history_request;
using respcore::bench::run_into;

BeamRecord beam() {
  BeamRecord b;
  for (int i = 1; i <= 12; ++i) b.lm.push_back(i);
  for (int q = 0; q < 26 * 12; ++q) b.strs.push_back(std::sin(0.37 * q + 1.0));
  return b;
}

struct BeamArchive {
  std::string base;
  int32_t modes = 0, nsteps = 0;
  int64_t beam = 0, mdsp = 0, mshp = 0, mshp_len = 0, dmed = 0;
};

// One beam on equations 1..12, modal with MODES modes (MODES > 0) or direct.
BeamArchive make_beam_archive(int32_t modes, int32_t nsteps) {
  BeamArchive a;
  a.base = bench_dir() + "/beam" + std::to_string(modes) + "x" + std::to_string(nsteps);
  a.modes = modes;
  a.nsteps = nsteps;
  ArchiveWriter w(a.base);
  w.first();
  w.history_cases({{modes > 0 ? 1 : 2, 1, nsteps, modes, 0}});
  Section& rec = w.beam_records(3, {beam()});
  if (modes > 0) {
    ModalHistory mh;
    mh.coords.resize(static_cast<size_t>(modes));
    for (int32_t m = 0; m < modes; ++m) {
      auto& c = mh.coords[static_cast<size_t>(m)];
      c.resize(static_cast<size_t>(nsteps));
      for (int32_t s = 0; s < nsteps; ++s) {
        const double d = std::sin(0.001 * (m + 1) * s) / (m + 1);
        c[static_cast<size_t>(s)] = {d, 2.0 * d, 3.0 * d};
      }
    }
    for (int e = 1; e <= 12; ++e) {
      std::vector<double> row;
      for (int32_t m = 0; m < modes; ++m) row.push_back(std::cos(0.7 * e + 0.3 * m));
      mh.shapes.push_back(row);
    }
    w.modal_histories(mh);
    w.second().build();
    a.mdsp = offset(*w.second().find(sections::MDSP, 3), 1);
    const Section& mshp = *w.second().find(sections::MSHP, 3);
    a.mshp = offset(mshp, 1);
    a.mshp_len = 4LL * mshp.reclen_words();
  } else {
    std::vector<EquationHistory> eqs(12);
    for (int e = 1; e <= 12; ++e)
      for (int32_t s = 0; s < nsteps; ++s) eqs[e - 1].disp.push_back(1e-3 * std::sin(0.01 * s * e));
    Section& dmed = w.direct_histories(1, eqs, nsteps);
    w.second().build();
    w.direct(1).build();
    a.dmed = offset(dmed, 1);
  }
  a.beam = offset(rec, 1);
  w.write();
  return a;
}

// Resident memory now and its peak since the last reset, in bytes.
int64_t status_kb(const char* key) {
  std::ifstream f("/proc/self/status");
  std::string k;
  while (f >> k) {
    if (k == key) {
      int64_t v = 0;
      f >> v;
      return v * 1024;
    }
  }
  return 0;
}

// Peak memory a run of Q adds to the process, in MB.
double peak_extra_mb(const Request& q) {
  Kernel k;
  std::ofstream("/proc/self/clear_refs") << "5";
  const int64_t before = status_kb("VmRSS:");
  auto r = k.run(q);
  benchmark::DoNotOptimize(r.values.data());
  return static_cast<double>(status_kb("VmHWM:") - before) / 1e6;
}

void BM_BeamModal(benchmark::State& st) {
  const int32_t modes = static_cast<int32_t>(st.range(0));
  const int32_t nsteps = static_cast<int32_t>(st.range(1));
  const BeamArchive a = make_beam_archive(modes, nsteps);
  const Request q = history_request(a.base, 13, 27, nsteps);  // corner 1 of end i
  Kernel k;
  std::vector<double> out;
  auto kernel = [&] { run_into(k, q, out); };
  std::vector<double> S(12 * static_cast<size_t>(modes), 0.5), Q(static_cast<size_t>(modes) * nsteps, 0.25),
      Y(12 * static_cast<size_t>(nsteps));
  auto dgemm = [&] {
    DGEMM('N', 'N', 12, nsteps, modes, 1.0, S.data(), 12, Q.data(), modes, 0.0, Y.data(), 12);
    benchmark::DoNotOptimize(Y.data());
  };
  std::vector<double> buf(3 * static_cast<size_t>(nsteps)), row(static_cast<size_t>(modes));
  auto plain = [&] {
    const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
    double rec[327];
    benchmark::DoNotOptimize(pread(fd2, rec, sizeof rec, a.beam));
    for (int e = 0; e < 12; ++e)
      benchmark::DoNotOptimize(pread(fd2, row.data(), row.size() * 8, a.mshp + e * a.mshp_len));
    for (int32_t m = 0; m < modes; ++m)
      benchmark::DoNotOptimize(
          pread(fd2, buf.data(), buf.size() * 8, a.mdsp + int64_t{m} * nsteps * 24));
    close(fd2);
  };
  const std::string name =
      "beam modal " + std::to_string(modes) + " modes x " + std::to_string(nsteps) + " steps";
  alternate(st, name + ", kernel / DGEMM", kernel, dgemm);
  const double vs_dgemm = st.counters["ratio"];
  // The plain read, in its own alternation.
  std::vector<double> ratios;
  for (int i = 0; i < 7; ++i) {
    const auto t0 = std::chrono::steady_clock::now();
    kernel();
    const auto t1 = std::chrono::steady_clock::now();
    plain();
    const auto t2 = std::chrono::steady_clock::now();
    ratios.push_back(std::chrono::duration<double>(t1 - t0).count() /
                     std::chrono::duration<double>(t2 - t1).count());
  }
  std::sort(ratios.begin(), ratios.end());
  st.counters["ratio_vs_read"] = ratios[ratios.size() / 2];
  st.counters["ratio"] = vs_dgemm;
  st.counters["peak_MB"] = peak_extra_mb(q);
  st.counters["coord_MB"] = 8.0 * modes * nsteps / 1e6;
  st.counters["out_MB"] = 8.0 * nsteps / 1e6;
  std::printf("%s: vs plain read %.2f (%.2f..%.2f); peak %.1f MB, coordinates %.1f MB, output %.1f MB\n",
              name.c_str(), ratios[ratios.size() / 2], ratios.front(), ratios.back(),
              st.counters["peak_MB"].value, st.counters["coord_MB"].value,
              st.counters["out_MB"].value);
  std::filesystem::remove(a.base + ".PA2");
}
BENCHMARK(BM_BeamModal)
    ->Args({20, 10000})
    ->Args({20, 100000})
    ->Args({200, 20000})
    ->Args({1000, 10000})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

void BM_BeamDirect(benchmark::State& st) {
  const int32_t nsteps = static_cast<int32_t>(st.range(0));
  const BeamArchive a = make_beam_archive(0, nsteps);
  const Request q = history_request(a.base, 13, 27, nsteps);
  Kernel k;
  std::vector<double> out;
  auto kernel = [&] { run_into(k, q, out); };
  std::vector<double> buf(static_cast<size_t>(nsteps));
  auto plain = [&] {
    const int fd2 = open((a.base + ".PA2").c_str(), O_RDONLY);
    const int fd = open((a.base + ".PAT1").c_str(), O_RDONLY);
    double rec[327];
    benchmark::DoNotOptimize(pread(fd2, rec, sizeof rec, a.beam));
    for (int e = 1; e <= 12; ++e)
      benchmark::DoNotOptimize(
          pread(fd, buf.data(), buf.size() * 8, a.dmed + (3LL * e - 1) * 8 * nsteps));
    close(fd);
    close(fd2);
  };
  alternate(st, "beam direct " + std::to_string(nsteps) + " steps, kernel / plain read", kernel,
            plain, 15);
}
BENCHMARK(BM_BeamDirect)->Arg(10000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
