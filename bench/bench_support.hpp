// Shared pieces of the benchmark programs: a scratch directory for their
// archives and the many-items request they time.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "respcore/archive_writer.hpp"
#include "respcore/kernel.hpp"

namespace respcore::bench {

// The byte offset of record REC of SEC in its file.
inline int64_t offset(const Section& sec, int64_t rec) {
  return (sec.first - 1 + rec - 1) * 4LL * sec.reclen_words();
}

// A temporary directory, made on first use and removed at exit.
inline std::string bench_dir() {
  static std::string dir = [] {
    std::string t = (std::filesystem::temp_directory_path() / "respcore-bench-XXXXXX").string();
    if (mkdtemp(t.data()) == nullptr) std::abort();
    std::atexit([] { std::filesystem::remove_all(bench_dir()); });
    return t;
  }();
  return dir;
}

// Item 1 of ELEM_TYPE over NSTEPS steps (REQUEST_MODE 1).
inline Request history_request(const std::string& base, int32_t elem_type, int32_t comp,
                               int32_t nsteps) {
  Request q;
  q.base = base;
  q.elem_type = elem_type;
  q.result_comp = comp;
  q.num_steps = nsteps;
  q.serials = {1};
  q.elements = {1};
  return q;
}

// Runs Q through the C entry's road into OUT, the caller's own array kept
// between calls, as a post-processor calls it.
inline void run_into(Kernel& k, const Request& q, std::vector<double>& out) {
  const int64_t n = result_size(q.elem_type, q.result_comp, q.num_steps, q.num_items,
                                q.request_mode);
  if (static_cast<int64_t>(out.size()) < n) out.resize(static_cast<size_t>(n));
  k.request(q.base.c_str(), static_cast<int32_t>(q.base.size()), q.elem_type, q.result_comp,
            q.hist_case, q.num_steps, q.num_items, q.step_no, q.request_mode, q.product_index,
            q.mode_no, out.data(), q.serials.data(), q.elements.data(), q.axis_flag);
  benchmark::DoNotOptimize(out.data());
}

// Runs Q once per iteration of ST.
inline void run_each_iteration(benchmark::State& st, const Request& q) {
  Kernel k;
  for (auto _ : st) {
    auto r = k.run(q);
    benchmark::DoNotOptimize(r.values.data());
  }
}

// Elements 1..N of ELEM_TYPE at one step (REQUEST_MODE 2).
inline Request snapshot_request(const std::string& base, int32_t elem_type, int32_t comp,
                                int32_t n, int32_t step) {
  Request q;
  q.base = base;
  q.elem_type = elem_type;
  q.result_comp = comp;
  q.request_mode = 2;
  q.num_items = n;
  q.step_no = step;
  for (int32_t e = 1; e <= n; ++e) {
    q.serials.push_back(e);
    q.elements.push_back(e);
  }
  return q;
}

// Medians of an alternation of a kernel and its baseline.
struct Alternation {
  double kernel_ms = 0, base_ms = 0, ratio = 0, ratio_min = 0, ratio_max = 0;
};

// Runs KERNEL and BASELINE in alternation, ROUNDS pairs after one warm-up
// pair: the median time of each (ms), the median of the per-pair ratios
// kernel / baseline and its spread (the smallest and the largest ratio).
// The line is printed under LABEL.
template <class Kernel, class Baseline>
Alternation alternate_pairs(const std::string& label, Kernel kernel, Baseline baseline,
                            int rounds = 9) {
  using Clock = std::chrono::steady_clock;
  auto time = [](auto& f) {
    const auto t0 = Clock::now();
    f();
    return std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
  };
  std::vector<double> tk, tb, ratio;
  time(kernel);
  time(baseline);
  for (int i = 0; i < rounds; ++i) {
    const double k = time(kernel);
    const double b = time(baseline);
    tk.push_back(k);
    tb.push_back(b);
    ratio.push_back(k / b);
  }
  auto median = [](std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
  };
  Alternation a{median(tk), median(tb), median(ratio),
                *std::min_element(ratio.begin(), ratio.end()),
                *std::max_element(ratio.begin(), ratio.end())};
  std::printf("%s: kernel %.3f ms, baseline %.3f ms, ratio %.2f (%.2f..%.2f)\n", label.c_str(),
              a.kernel_ms, a.base_ms, a.ratio, a.ratio_min, a.ratio_max);
  return a;
}

// alternate_pairs as the one iteration of ST, its figures as ST's counters.
// The figures of A as the counters of ST.
inline void put_counters(benchmark::State& st, const Alternation& a) {
  st.counters["kernel_ms"] = a.kernel_ms;
  st.counters["base_ms"] = a.base_ms;
  st.counters["ratio"] = a.ratio;
  st.counters["ratio_min"] = a.ratio_min;
  st.counters["ratio_max"] = a.ratio_max;
}

template <class Kernel, class Baseline>
void alternate(benchmark::State& st, const std::string& label, Kernel kernel, Baseline baseline,
               int rounds = 9) {
  Alternation a;
  for (auto _ : st) a = alternate_pairs(label, kernel, baseline, rounds);
  put_counters(st, a);
}

}  // namespace respcore::bench
