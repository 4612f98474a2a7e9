#include "archive/directory.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <unordered_set>

#include "archive/record_address.hpp"
#include "archive/section_access.hpp"
#include "archive/units.hpp"
#include "core/diagnostics.hpp"

namespace respcore {

namespace {

std::string file_path(const std::string& name, int32_t name_len) {
  std::string path = name.substr(0, std::min<size_t>(name.size(), static_cast<size_t>(name_len)));
  if (path.size() < static_cast<size_t>(name_len)) path.resize(static_cast<size_t>(name_len), ' ');
  return path;
}

void error_line(Diagnostics& D, const Tag4& tag, int32_t serial) {
  std::string line = "   ERROR READ-F IN RESP CORE , ID_M, ID_S=";
  line.append(tag.data(), 4);
  line += "  ";
  line += format_int(serial, 5);
  print_line(D, line);
}

uint64_t entry_key(const Tag4& tag, int32_t serial) {
  uint32_t t;
  std::memcpy(&t, tag.data(), 4);
  return (uint64_t{t} << 32) | static_cast<uint32_t>(serial);
}

// Walks the directory of the file connected to UNIT from record 1 and records
// every entry up to where the search of any tag would end. Records are read
// in windows of kWindow, with the outcome of reading them one by one: a
// chain of blocks laid one behind the other (as they usually are) costs a
// read per window, not two per block.
std::shared_ptr<DirWalk> walk_directory(UnitTable& U, int32_t unit, bool wide, int32_t file_code,
                                        float expected_version) {
  ++U.walked;
  auto walk = std::make_shared<DirWalk>();
  auto finish = [&](int32_t status) {
    walk->end_status = status;
    walk->first_of.reserve(walk->entries.size());
    for (size_t i = 0; i < walk->entries.size(); ++i) {
      const DirEntry& e = walk->entries[i];
      walk->first_of.emplace(entry_key(e.tag, e.serial), i);
    }
    return walk;
  };
  constexpr int64_t kWindow = 512;
  const int64_t rec_bytes = dir_record_bytes(wide);
  std::vector<unsigned char> window(static_cast<size_t>(kWindow * rec_bytes));
  std::vector<char> ok;
  int64_t window_first = 0;  // no window yet
  // Record R whole, or null when it cannot be read.
  auto record = [&](int64_t r) -> const unsigned char* {
    if (r == kNoRecord) return nullptr;
    if (window_first == 0 || r < window_first || r - window_first >= kWindow) {
      read_records(U, unit, r, kWindow, rec_bytes, window.data(), &ok);
      window_first = r;
    }
    const int64_t i = r - window_first;
    return ok[static_cast<size_t>(i)] ? window.data() + i * rec_bytes : nullptr;
  };
  std::unordered_set<int64_t> visited;
  int64_t H = 1;
  for (;;) {
    // A chain that comes back to a head already read would be searched
    // forever; it ends the search as the end of the chain does.
    if (!visited.insert(H).second) return finish(LOOKUP_NOT_FOUND);
    // The head needs only its fields (the 64-bit head has spare bytes at the
    // end, which a file may cut).
    unsigned char rec[DIR_WORDS_64 * DIR_BYTES_PER_WORD];
    const unsigned char* h = record(H);
    if (h == nullptr) {
      if (!read_record(U, unit, H, rec, dir_head_bytes(wide))) return finish(LOOKUP_READ_ERROR);
      h = rec;
    }
    const DirHead head = decode_head(h, wide);
    if (std::memcmp(head.identifier.data(), DIR_IDENTIFIER, 4) != 0 ||
        head.version != expected_version || head.file_code != file_code ||
        head.entries != DIR_ENTRIES_PER_BLOCK) {
      return finish(LOOKUP_BAD_HEAD);
    }
    // Entry N of the block lies at record H + N.
    for (int64_t n = 1; n <= DIR_ENTRIES_PER_BLOCK; ++n) {
      const unsigned char* p = record(record_number(H, n + 1));
      if (p == nullptr) return finish(LOOKUP_READ_ERROR);
      const DirEntry e = decode_entry(p, wide);
      if (e.tag == BLANK_TAG) return finish(LOOKUP_NOT_FOUND);
      walk->entries.push_back(e);
    }
    H = head.next;
    if (H == 0) return finish(LOOKUP_NOT_FOUND);
  }
}

// The look-up of TAG/SERIAL in the file PATH connected to UNIT, as made the
// first time in a call.
void lookup_afresh(ArchiveReader A, int32_t unit, const std::string& path, int32_t file_code,
                   const Tag4& tag, int32_t serial, bool wide, int64_t& first, int32_t& reclen,
                   int64_t& nrec, int32_t& status) {
  first = 0;
  nrec = 0;
  reclen = 0;
  if (!unit_open(A.units, unit, path, dir_record_bytes(wide))) {
    status = LOOKUP_OPEN_FAILED;
    error_line(A.diag, tag, serial);
    return;
  }
  // The walk depends on the file, the form, the file code and the version
  // expected; it is kept with the open file as long as the file is unchanged.
  WalkKey key{wide, file_code, 0};
  std::memcpy(&key.version_bits, &A.state.dir.version, 4);
  std::shared_ptr<DirWalk> fresh;
  std::shared_ptr<DirWalk>* slot = kept_walk(A.units, unit, key);
  std::shared_ptr<DirWalk>& cached = slot != nullptr ? *slot : fresh;
  if (!cached) cached = walk_directory(A.units, unit, wide, file_code, A.state.dir.version);
  const DirWalk& walk = *cached;
  const auto hit = walk.first_of.find(entry_key(tag, serial));
  if (hit != walk.first_of.end()) {
    const DirEntry& e = walk.entries[hit->second];
    first = e.first;
    nrec =
        static_cast<int64_t>(static_cast<uint64_t>(e.last) - static_cast<uint64_t>(e.first) + 1u);
    reclen = e.reclen;
    if (!unit_open(A.units, unit, path, int64_t{DIR_BYTES_PER_WORD} * reclen)) {
      status = LOOKUP_OPEN_FAILED;
      error_line(A.diag, tag, serial);
      return;
    }
    status = LOOKUP_FOUND;
    return;
  }
  status = walk.end_status;
  if (status != LOOKUP_NOT_FOUND) error_line(A.diag, tag, serial);
}

void lookup(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
            int32_t file_code, const Tag4& tag, int32_t serial, bool wide, int64_t& first,
            int32_t& reclen, int64_t& nrec, int32_t& status) {
  if (name_len < 1 || tag == BLANK_TAG || tag == HEAD_TAG) {
    status = LOOKUP_BAD_REQUEST;
    error_line(A.diag, tag, serial);
    return;
  }
  // The name as the look-up gives it (cut or blank padded to NAME_LEN).
  std::string padded;
  if (name.size() != static_cast<size_t>(name_len)) padded = file_path(name, name_len);
  const std::string& path = padded.empty() ? name : padded;
  uint32_t version_bits;
  std::memcpy(&version_bits, &A.state.dir.version, 4);
  UnitTable& U = A.units;
  for (UnitTable::LookupMemo& m : U.memo) {
    if (!m.used || m.unit != unit || m.serial != serial || m.tag != tag ||
        m.file_code != file_code || m.wide != wide || m.version_bits != version_bits ||
        m.path != path)
      continue;
    first = m.first;
    reclen = m.reclen;
    nrec = m.nrec;
    status = m.status;
    unit_reconnect(U, unit, m.conn);
    if (status != LOOKUP_FOUND && status != LOOKUP_NOT_FOUND) error_line(A.diag, tag, serial);
    return;
  }
  lookup_afresh(A, unit, path, file_code, tag, serial, wide, first, reclen, nrec, status);
  UnitTable::LookupMemo& m = U.memo[static_cast<size_t>(U.memo_next)];
  U.memo_next = (U.memo_next + 1) % static_cast<int32_t>(U.memo.size());
  m.used = true;
  m.unit = unit;
  m.wide = wide;
  m.file_code = file_code;
  m.version_bits = version_bits;
  m.tag = tag;
  m.serial = serial;
  m.path = path;
  m.first = first;
  m.nrec = nrec;
  m.reclen = reclen;
  m.status = status;
  m.conn = unit_connection(U, unit);
}

void lookup_plain(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
                  int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first,
                  int32_t& reclen, int64_t& nrec, int32_t& status) {
  int64_t first64 = first;
  lookup(A, unit, name, name_len, file_code, tag, serial, false, first64, reclen, nrec, status);
  first = static_cast<int32_t>(first64);
}

}  // namespace

void READ_F(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
            int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first, int32_t& reclen,
            int64_t& nrec, int32_t& status) {
  lookup_plain(A, unit, name, name_len, file_code, tag, serial, first, reclen, nrec, status);
}

void READ_F_TIME(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
                 int32_t file_code, const Tag4& tag, int32_t serial, int32_t& first,
                 int32_t& reclen, int64_t& nrec, int32_t& status) {
  lookup_plain(A, unit, name, name_len, file_code, tag, serial, first, reclen, nrec, status);
}

void READ_F_8(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
              int32_t file_code, const Tag4& tag, int32_t serial, int64_t& first, int32_t& reclen,
              int64_t& nrec, int32_t& status) {
  lookup(A, unit, name, name_len, file_code, tag, serial, true, first, reclen, nrec, status);
}

void READ_F_TIME_8(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
                   int32_t file_code, const Tag4& tag, int32_t serial, int64_t& first,
                   int32_t& reclen, int64_t& nrec, int32_t& status) {
  lookup(A, unit, name, name_len, file_code, tag, serial, true, first, reclen, nrec, status);
}

void CREATE_F(ArchiveReader A, int32_t unit, const std::string& name, int32_t name_len,
              int32_t file_code, int32_t& status) {
  if (name_len < 1) {
    status = 6;
    return;
  }
  const bool wide = A.state.READ_METHOD == 1;
  if (A.state.READ_METHOD != 0 && !wide) {
    status = 0;
    return;
  }
  if (wide) A.state.dir.version = 2.0f;
  const int64_t reclen = dir_record_bytes(wide);
  std::string path = file_path(name, name_len);
  while (!path.empty() && path.back() == ' ') path.pop_back();

  // Replace any file of that name with a new, empty one.
  unit_close(A.units, unit);
  forget_file(A.units, path);
  ::unlink(path.c_str());
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) {
    status = 1;
    return;
  }
  status = 0;
  const int64_t base = wide ? A.state.dir.create_base64 : 1;
  unsigned char rec[DIR_WORDS_64 * DIR_BYTES_PER_WORD];
  // Directory record K (0 the head) at record BASE + K.
  auto write_rec = [&](int64_t k) {
    const int64_t off = record_offset(record_number(base, k + 1), reclen);
    if (off == kNoRecord || ::pwrite(fd, rec, static_cast<size_t>(reclen), off) != reclen) {
      status = 3;
    }
  };
  encode_head(make_head(file_code, A.state.dir.version, 0), wide, rec);
  write_rec(0);
  encode_entry(own_entry(), wide, rec);
  write_rec(1);
  DirEntry blank;
  blank.tag = BLANK_TAG;
  encode_entry(blank, wide, rec);
  for (int64_t k = 2; k <= DIR_ENTRIES_PER_BLOCK; ++k) write_rec(k);
  ::close(fd);
  unit_open(A.units, unit, path, reclen);
}

}  // namespace respcore
