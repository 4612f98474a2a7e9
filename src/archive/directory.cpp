#include "archive/directory.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <unordered_set>

#include "archive/units.hpp"
#include "core/diagnostics.hpp"
#include "core/kernel_state.hpp"

namespace respcore {

namespace {

constexpr Tag4 kBlankTag{' ', ' ', ' ', ' '};
constexpr Tag4 kHeadTag{'H', 'E', 'A', 'D'};

int32_t get_i32(const unsigned char* p) {
  int32_t v;
  std::memcpy(&v, p, 4);
  return v;
}
int64_t get_i64(const unsigned char* p) {
  int64_t v;
  std::memcpy(&v, p, 8);
  return v;
}
float get_f32(const unsigned char* p) {
  float v;
  std::memcpy(&v, p, 4);
  return v;
}

std::string file_path(const std::string& name, int32_t name_len) {
  std::string path = name.substr(0, std::min<size_t>(name.size(), static_cast<size_t>(name_len)));
  if (path.size() < static_cast<size_t>(name_len)) path.resize(static_cast<size_t>(name_len), ' ');
  return path;
}

void error_line(KernelState& K, const Tag4& tag, int32_t serial) {
  std::string line = "   ERROR READ-F IN RESP CORE , ID_M, ID_S=";
  line.append(tag.data(), 4);
  line += "  ";
  line += format_int(serial, 5);
  print_line(K.diag, line);
}

// Walks the directory of the file connected to UNIT from record 1 and records
// every entry up to where the search of any tag would end.
std::shared_ptr<DirWalk> walk_directory(KernelState& K, int32_t unit, bool wide,
                                        int32_t file_code) {
  auto walk = std::make_shared<DirWalk>();
  const int64_t head_bytes = wide ? 24 : 20;
  const int64_t entry_bytes = wide ? 28 : 20;
  const float expected_version = K.archive.dir.version;
  std::unordered_set<int64_t> visited;
  int64_t H = 1;
  for (;;) {
    // A chain that comes back to a head already read would be searched
    // forever; it ends the search as the end of the chain does.
    if (!visited.insert(H).second) {
      walk->end_status = LOOKUP_NOT_FOUND;
      return walk;
    }
    unsigned char head[24];
    if (!read_record(K, unit, H, head, head_bytes)) {
      walk->end_status = LOOKUP_READ_ERROR;
      return walk;
    }
    const int32_t entries = get_i32(head + 12);
    const float version = get_f32(head + 8);
    if (std::memcmp(head, DIR_IDENTIFIER, 4) != 0 || version != expected_version ||
        get_i32(head + 4) != file_code || entries != DIR_ENTRIES_PER_BLOCK) {
      walk->end_status = LOOKUP_BAD_HEAD;
      return walk;
    }
    for (int32_t n = 1; n <= entries; ++n) {
      unsigned char rec[28];
      if (!read_record(K, unit, H + n, rec, entry_bytes)) {
        walk->end_status = LOOKUP_READ_ERROR;
        return walk;
      }
      DirEntry e;
      std::memcpy(e.tag.data(), rec, 4);
      if (e.tag == kBlankTag) {
        walk->end_status = LOOKUP_NOT_FOUND;
        return walk;
      }
      e.serial = get_i32(rec + 4);
      if (wide) {
        e.first = get_i64(rec + 8);
        e.last = get_i64(rec + 16);
        e.reclen = get_i32(rec + 24);
      } else {
        e.first = get_i32(rec + 8);
        e.last = get_i32(rec + 12);
        e.reclen = get_i32(rec + 16);
      }
      walk->entries.push_back(e);
    }
    H = wide ? get_i64(head + 16) : get_i32(head + 16);
    if (H == 0) {
      walk->end_status = LOOKUP_NOT_FOUND;
      return walk;
    }
  }
}

void lookup(KernelState& K, int32_t unit, const std::string& name, int32_t name_len,
            int32_t file_code, const Tag4& tag, int32_t serial, bool wide, int64_t& first,
            int32_t& reclen, int64_t& nrec, int32_t& status) {
  if (name_len < 1 || tag == kBlankTag || tag == kHeadTag) {
    status = LOOKUP_BAD_REQUEST;
    error_line(K, tag, serial);
    return;
  }
  first = 0;
  nrec = 0;
  reclen = 0;
  const int64_t dir_reclen =
      wide ? DIR_WORDS_64 * DIR_BYTES_PER_WORD : DIR_WORDS_PLAIN * DIR_BYTES_PER_WORD;
  const std::string path = file_path(name, name_len);
  if (!unit_open(K, unit, path, dir_reclen)) {
    status = LOOKUP_OPEN_FAILED;
    error_line(K, tag, serial);
    return;
  }
  // The walk depends on the file, the form, the file code and the version
  // expected; within a call the file does not change.
  std::string key = path;
  key.push_back('\0');
  key += wide ? 'W' : 'P';
  key += std::to_string(file_code);
  key.push_back('/');
  uint32_t vbits;
  std::memcpy(&vbits, &K.archive.dir.version, 4);
  key += std::to_string(vbits);
  auto& cached = K.units.walks[key];
  if (!cached) cached = walk_directory(K, unit, wide, file_code);
  for (const DirEntry& e : cached->entries) {
    if (e.tag == tag && e.serial == serial) {
      first = e.first;
      nrec =
          static_cast<int64_t>(static_cast<uint64_t>(e.last) - static_cast<uint64_t>(e.first) + 1u);
      reclen = e.reclen;
      if (!unit_open(K, unit, path, int64_t{DIR_BYTES_PER_WORD} * reclen)) {
        status = LOOKUP_OPEN_FAILED;
        error_line(K, tag, serial);
        return;
      }
      status = LOOKUP_FOUND;
      return;
    }
  }
  status = cached->end_status;
  if (status != LOOKUP_NOT_FOUND) error_line(K, tag, serial);
}

void lookup_plain(KernelState& K, int32_t unit, const std::string& name, int32_t name_len,
                  int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first,
                  int32_t& reclen, int64_t& nrec, int32_t& status) {
  int64_t first64 = first;
  lookup(K, unit, name, name_len, file_code, tag, serial, false, first64, reclen, nrec, status);
  first = static_cast<int32_t>(first64);
}

}  // namespace

void READ_F(KernelState& K, int32_t unit, const std::string& name, int32_t name_len,
            int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first, int32_t& reclen,
            int64_t& nrec, int32_t& status) {
  lookup_plain(K, unit, name, name_len, file_code, tag, serial, first, reclen, nrec, status);
}

void READ_F_TIME(KernelState& K, int32_t unit, const std::string& name, int32_t name_len,
                 int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first,
                 int32_t& reclen, int64_t& nrec, int32_t& status) {
  lookup_plain(K, unit, name, name_len, file_code, tag, serial, first, reclen, nrec, status);
}

void READ_F_8(KernelState& K, int32_t unit, const std::string& name, int32_t name_len,
              int32_t file_code, const Tag4& tag, int32_t serial, int64_t& first, int32_t& reclen,
              int64_t& nrec, int32_t& status) {
  lookup(K, unit, name, name_len, file_code, tag, serial, true, first, reclen, nrec, status);
}

void READ_F_TIME_8(KernelState& K, int32_t unit, const std::string& name, int32_t name_len,
                   int32_t file_code, const Tag4& tag, int32_t serial, int64_t& first,
                   int32_t& reclen, int64_t& nrec, int32_t& status) {
  lookup(K, unit, name, name_len, file_code, tag, serial, true, first, reclen, nrec, status);
}

void CREATE_F(KernelState& K, int32_t unit, const std::string& name, int32_t name_len,
              int32_t file_code, int32_t& status) {
  if (name_len < 1) {
    status = 6;
    return;
  }
  const bool wide = K.archive.READ_METHOD == 1;
  if (K.archive.READ_METHOD != 0 && !wide) {
    status = 0;
    return;
  }
  if (wide) K.archive.dir.version = 2.0f;
  const int64_t reclen = wide ? 28 : 20;
  std::string path = file_path(name, name_len);
  while (!path.empty() && path.back() == ' ') path.pop_back();

  // Replace any file of that name with a new, empty one.
  unit_close(K, unit);
  K.units.files.erase(path);
  K.units.walks.clear();
  ::unlink(path.c_str());
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) {
    status = 1;
    return;
  }
  status = 0;
  const int64_t base = wide ? K.archive.dir.create_base64 : 1;
  auto write_rec = [&](int64_t rec, const unsigned char* bytes) {
    int64_t off = 0;
    if (rec < 1 || __builtin_mul_overflow(rec - 1, reclen, &off) ||
        ::pwrite(fd, bytes, static_cast<size_t>(reclen), off) != reclen) {
      status = 3;
    }
  };
  unsigned char rec[28] = {};
  auto put32 = [&](int at, int32_t v) { std::memcpy(rec + at, &v, 4); };
  auto put64 = [&](int at, int64_t v) { std::memcpy(rec + at, &v, 8); };

  std::memcpy(rec, DIR_IDENTIFIER, 4);
  put32(4, file_code);
  const float version = K.archive.dir.version;
  std::memcpy(rec + 8, &version, 4);
  put32(12, DIR_ENTRIES_PER_BLOCK);
  if (wide)
    put64(16, 0);
  else
    put32(16, 0);
  write_rec(base, rec);

  std::memset(rec, 0, sizeof rec);
  std::memcpy(rec, DIR_HEAD_TAG, 4);
  put32(4, 1);
  if (wide) {
    put64(8, 2);
    put64(16, DIR_ENTRIES_PER_BLOCK + 1);
    put32(24, DIR_WORDS_PLAIN);
  } else {
    put32(8, 2);
    put32(12, DIR_ENTRIES_PER_BLOCK + 1);
    put32(16, DIR_WORDS_PLAIN);
  }
  write_rec(base + 1, rec);

  std::memset(rec, 0, sizeof rec);
  std::memcpy(rec, "    ", 4);
  for (int64_t r = 2; r <= DIR_ENTRIES_PER_BLOCK; ++r) write_rec(base + r, rec);
  ::close(fd);
  unit_open(K, unit, path, reclen);
}

}  // namespace respcore
