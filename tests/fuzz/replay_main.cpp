// Replays inputs through a fuzz target without libFuzzer: each argument is a
// file or a directory of files (all of them, in name order). A target that
// finds a fault aborts, which fails the run.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> inputs;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path p = argv[i];
    if (std::filesystem::is_directory(p)) {
      for (const auto& e : std::filesystem::directory_iterator(p))
        if (e.is_regular_file()) inputs.push_back(e.path());
    } else {
      inputs.push_back(p);
    }
  }
  std::sort(inputs.begin(), inputs.end());
  for (const auto& p : inputs) {
    std::ifstream in(p, std::ios::binary);
    const std::vector<char> b((std::istreambuf_iterator<char>(in)), {});
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(b.data()), b.size());
  }
  std::printf("%zu inputs replayed\n", inputs.size());
  return inputs.empty() ? 1 : 0;
}
