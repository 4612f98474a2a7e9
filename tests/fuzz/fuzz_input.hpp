// The inputs of the fuzz targets, shared by the targets, the replay driver
// and the seed writer.
//
// The whole-request target takes a request and its archive as one input:
//   18 little-endian int32: ELEM_TYPE, RESULT_COMP, HIST_CASE, NUM_STEPS,
//   NUM_ITEMS, STEP_NO, REQUEST_MODE, PRODUCT_INDEX, MODE_NO, AXIS_FLAG, then
//   four record serials and four element (or node) numbers of the items;
//   then the first file, the second file and direct files 1 and 2, each as a
//   32-bit length and its bytes (a length past the input takes what is left;
//   a file the input does not reach is absent).
// The directory target takes the bytes of one archive file.
#pragma once

#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "respcore/archive_writer.hpp"

namespace respcore::fuzz {

inline constexpr int kFields = 18;
inline constexpr int kFiles = 4;

// The product tags by PRODUCT_INDEX 1..8.
inline constexpr const char* kProductTags[8] = {"P.R.W", "Y.J.P", "U.K.Y", "H.N.Q",
                                                "W.M.Z", "J.W.U", "Q.L.D", "R.H.V"};

// The paths of the four files of an input for the archive BASE under the tag
// of PRODUCT (that of "P.R.W" for an index outside 1..8).
inline std::array<std::string, kFiles> file_paths(const std::string& base, int32_t product) {
  const std::string tag = product >= 1 && product <= 8 ? kProductTags[product - 1] : "P.R.W";
  const std::string direct = base + ArchiveWriter::extension(tag, 3);
  return {base + ArchiveWriter::extension(tag, 1), base + ArchiveWriter::extension(tag, 2),
          direct + "1", direct + "2"};
}

struct RequestInput {
  std::array<int32_t, kFields> fields{};
  std::array<std::string, kFiles> files;  // first, second, direct 1, direct 2
  std::array<bool, kFiles> present{};
};

inline std::vector<uint8_t> pack(const RequestInput& in) {
  std::vector<uint8_t> out(sizeof(int32_t) * kFields);
  std::memcpy(out.data(), in.fields.data(), out.size());
  for (int f = 0; f < kFiles; ++f) {
    if (!in.present[static_cast<size_t>(f)]) break;
    const std::string& b = in.files[static_cast<size_t>(f)];
    const auto n = static_cast<uint32_t>(b.size());
    const size_t at = out.size();
    out.resize(at + 4 + b.size());
    std::memcpy(out.data() + at, &n, 4);
    std::memcpy(out.data() + at + 4, b.data(), b.size());
  }
  return out;
}

inline RequestInput unpack(const uint8_t* data, size_t size) {
  RequestInput in;
  const size_t head = std::min(size, sizeof(int32_t) * kFields);
  std::memcpy(in.fields.data(), data, head);
  size_t at = head;
  for (int f = 0; f < kFiles && at + 4 <= size; ++f) {
    uint32_t n = 0;
    std::memcpy(&n, data + at, 4);
    at += 4;
    const size_t len = std::min<size_t>(n, size - at);
    in.files[static_cast<size_t>(f)].assign(reinterpret_cast<const char*>(data + at), len);
    in.present[static_cast<size_t>(f)] = true;
    at += len;
  }
  return in;
}

// A directory of this process for the files of one input (in /dev/shm when
// there is one, so that an input costs no disk writes), removed at exit.
inline const std::string& scratch_dir() {
  // Made once and never freed: the removal at exit runs after the statics
  // are gone.
  static const std::string* dir = [] {
    std::error_code ec;
    const std::filesystem::path root = std::filesystem::is_directory("/dev/shm", ec)
                                           ? std::filesystem::path("/dev/shm")
                                           : std::filesystem::temp_directory_path();
    auto* t = new std::string((root / "respcore-fuzz-XXXXXX").string());
    if (mkdtemp(t->data()) == nullptr) std::abort();
    std::atexit([] {
      std::error_code e;
      std::filesystem::remove_all(*dir, e);
    });
    return t;
  }();
  return *dir;
}

// Makes PATH hold BYTES, or removes it.
inline void put_file(const std::string& path, const std::string* bytes);

// Writes the files of IN for the archive BASE (those it lacks are removed).
inline void put_files(const RequestInput& in, const std::string& base) {
  const auto paths = file_paths(base, in.fields[7]);
  for (size_t i = 0; i < kFiles; ++i) put_file(paths[i], in.present[i] ? &in.files[i] : nullptr);
}

// Makes PATH hold BYTES, or removes it.
inline void put_file(const std::string& path, const std::string* bytes) {
  if (bytes == nullptr) {
    ::unlink(path.c_str());
    return;
  }
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) std::abort();
  if (!bytes->empty()) std::fwrite(bytes->data(), 1, bytes->size(), f);
  std::fclose(f);
}

}  // namespace respcore::fuzz
