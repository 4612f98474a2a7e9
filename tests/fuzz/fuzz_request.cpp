// Fuzz target: one whole request on an archive taken from the input
// (fuzz_input.hpp). The counts that size the caller's array (steps, items)
// are held small; everything else, and every byte of the archive, is as the
// input has it. The run must leave the guard entries around the caller's
// array as they were; the sanitizers and the fuzzer's time and memory limits
// judge the rest.
#include <algorithm>
#include <cstdlib>

#include "fuzz_input.hpp"
#include "respcore/kernel.hpp"

namespace {

constexpr double kGuard = -7.25e300;
constexpr int kGuards = 8;
// Entries of the item lists: more than any extent a request of at most 400
// steps or 24 items can give them. Up to 24 items reach the road of long
// snapshots.
constexpr int kListLength = 1024;

// V taken into LO..HI, wrapping, so that a mutated count stays a count.
int32_t wrap(int32_t v, int32_t lo, int32_t hi) {
  const int64_t span = int64_t{hi} - lo + 1;
  return static_cast<int32_t>(lo + ((int64_t{v} - lo) % span + span) % span);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace respcore;
  const fuzz::RequestInput in = fuzz::unpack(data, size);
  const auto& f = in.fields;
  const std::string base = fuzz::scratch_dir() + "/a";
  fuzz::put_files(in, base);

  const int32_t steps = wrap(f[3], -1, 400);
  const int32_t items = wrap(f[4], -1, 24);
  std::vector<int32_t> serials(kListLength), elements(kListLength);
  for (int i = 0; i < kListLength; ++i) {
    serials[static_cast<size_t>(i)] = f[10 + static_cast<size_t>(i % 4)];
    elements[static_cast<size_t>(i)] = f[14 + static_cast<size_t>(i % 4)];
  }
  const int64_t n = std::max<int64_t>(0, result_size(f[0], f[1], steps, items, f[6]));
  std::vector<double> out(static_cast<size_t>(n) + 2 * kGuards, kGuard);

  Kernel k;
  k.set_quiet(true);
  k.request(base.c_str(), static_cast<int32_t>(base.size()), f[0], f[1], f[2], steps, items, f[5],
            f[6], f[7], f[8], out.data() + kGuards, serials.data(), elements.data(), f[9]);
  for (int g = 0; g < kGuards; ++g) {
    if (out[static_cast<size_t>(g)] != kGuard || out[out.size() - 1 - static_cast<size_t>(g)] != kGuard)
      std::abort();
  }
  return 0;
}
