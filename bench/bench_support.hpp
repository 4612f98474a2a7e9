// Shared pieces of the benchmark programs: a scratch directory for their
// archives and the many-items request they time.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "respcore/kernel.hpp"

namespace respcore::bench {

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

}  // namespace respcore::bench
