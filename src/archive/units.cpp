#include "archive/units.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <vector>

#include "archive/record_address.hpp"

namespace respcore {

OpenFile::~OpenFile() {
  if (fd >= 0) ::close(fd);
}

namespace {

// RESPCORE_FILE_CACHE=0 starts every unit table with files closed at the end
// of each call.
bool keep_files_by_default() {
  static const bool keep = [] {
    const char* v = std::getenv("RESPCORE_FILE_CACHE");
    return v == nullptr || std::strcmp(v, "0") != 0;
  }();
  return keep;
}

}  // namespace

UnitTable::UnitTable() : keep_files(keep_files_by_default()) {}

namespace {

// Trailing blanks of a file name do not count.
std::string trimmed(const std::string& path) {
  size_t n = path.size();
  while (n > 0 && path[n - 1] == ' ') --n;
  return path.substr(0, n);
}

int64_t nanoseconds(const timespec& t) {
  return static_cast<int64_t>(t.tv_sec) * 1000000000 + static_cast<int64_t>(t.tv_nsec);
}

FileStamp stamp_of(const struct stat& st) {
  return FileStamp{static_cast<uint64_t>(st.st_dev), static_cast<uint64_t>(st.st_ino),
                   static_cast<int64_t>(st.st_size), nanoseconds(st.st_mtim),
                   nanoseconds(st.st_ctim)};
}

// File time stamps come from a clock that advances by ticks of at most 10 ms
// (and may lag the real-time clock by one); a stamp older than the opening
// by more than this is one that no later write can repeat.
constexpr int64_t kStampTickNs = 20'000'000;

// The file at PATH for the current call: the kept one if it was checked in
// this call, or if its stamp is settled and the file at PATH still has it;
// otherwise the file opened afresh (null when it cannot be opened, which
// holds for the rest of the call).
std::shared_ptr<OpenFile> open_path(UnitTable& U, const std::string& raw_path) {
  // The kept file is found by the name without its trailing blanks, which
  // is copied only when it has some.
  std::string_view view(raw_path);
  while (!view.empty() && view.back() == ' ') view.remove_suffix(1);
  auto it = U.files.find(view);
  if (it != U.files.end()) {
    KeptFile& k = it->second;
    if (k.used_in_call == U.call) return k.file;
    struct stat st {};
    const char* name = view.size() == raw_path.size() ? raw_path.c_str() : it->first.c_str();
    if (k.file && k.settled && ::stat(name, &st) == 0 && stamp_of(st) == k.stamp) {
      k.used_in_call = U.call;
      return k.file;
    }
  }
  const std::string path(view);
  KeptFile& k = U.files[path];
  k = KeptFile{};
  k.used_in_call = U.call;
  if (path.empty()) return nullptr;
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return nullptr;
  ++U.opened;
  struct stat st {};
  if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
    ::close(fd);
    return nullptr;
  }
  k.file = std::make_shared<OpenFile>();
  k.file->fd = fd;
  k.file->size = static_cast<int64_t>(st.st_size);
  k.file->read_whole = U.keep_files;
  k.stamp = stamp_of(st);
  k.settled = std::max(k.stamp.mtime_ns, k.stamp.ctime_ns) < nanoseconds(now) - kStampTickNs;
  return k.file;
}

// open_path through the paths taken last in this call.
std::shared_ptr<OpenFile> open_cached(UnitTable& U, const std::string& raw_path) {
  for (const UnitTable::Recent& r : U.recent)
    if (r.usable && r.path == raw_path) return r.file;
  std::shared_ptr<OpenFile> f = open_path(U, raw_path);
  UnitTable::Recent& r = U.recent[static_cast<size_t>(U.recent_next)];
  U.recent_next = (U.recent_next + 1) % static_cast<int32_t>(U.recent.size());
  r.path = raw_path;
  r.file = f;
  r.usable = true;
  return f;
}

void forget_recent(UnitTable& U) {
  for (UnitTable::Recent& r : U.recent) {
    r.usable = false;
    r.file.reset();
  }
  for (UnitTable::LookupMemo& m : U.memo) {
    m.used = false;
    m.conn = Connection{};
  }
}

bool pread_all(int fd, void* dst, int64_t nbytes, int64_t off) {
  char* p = static_cast<char*>(dst);
  while (nbytes > 0) {
    const ssize_t got = ::pread(fd, p, static_cast<size_t>(nbytes), off);
    if (got <= 0) return false;
    p += got;
    off += got;
    nbytes -= got;
  }
  return true;
}

// Small reads that come close behind others (records or values of
// neighbouring records, as a snapshot of many items reads them) are served
// from blocks read at once. A run of such reads, each within kNearBytes of
// the end of the one before, reads a block from its third read on: of 8 KB,
// doubling with each further read up to 64 KB. So a few neighbouring reads
// cost about what they would alone, a long run costs a read per 64 KB (at
// the widest spacing followed, 4 KB, a block serves 16 reads, for about
// what they cost alone), and scattered reads go to the file alone. Runs are followed in four places of
// the file at once (a snapshot reads element records and history records
// in turn). The blocks stay with the open file, and serve later calls that
// find the file unchanged.
constexpr int64_t kSmallRead = 8 << 10;
constexpr int64_t kBlockBytes = 64 << 10;
constexpr int64_t kNearBytes = 4 << 10;
// Kept files up to this size are read whole by their first small read.
constexpr int64_t kWholeFile = 16 << 10;

// NBYTES at OFF of F (which lie within the file) into DST.
bool read_at(OpenFile& f, void* dst, int64_t nbytes, int64_t off) {
  if (nbytes > kSmallRead) return pread_all(f.fd, dst, nbytes, off);
  ++f.reads;
  for (ReadBlock& b : f.blocks) {
    if (b.len > 0 && off >= b.off && off - b.off <= b.len - nbytes) {
      const char* src = b.bytes.get() + (off - b.off);
      // A single value (the commonest read) is copied as one.
      if (nbytes == 8)
        std::memcpy(dst, src, 8);
      else
        std::memcpy(dst, src, static_cast<size_t>(nbytes));
      b.used = f.reads;
      return true;
    }
  }
  // The run this read continues, or the one longest unused, which it starts.
  OpenFile::ReadRun* run = nullptr;
  for (OpenFile::ReadRun& r : f.runs)
    if (r.end >= 0 && off >= r.end - kNearBytes && off <= r.end + kNearBytes) run = &r;
  if (run == nullptr) {
    run = &*std::min_element(f.runs.begin(), f.runs.end(),
                             [](const auto& x, const auto& y) { return x.used < y.used; });
    run->count = 0;
  }
  run->count = std::min(run->count + 1, 8);
  run->end = off + nbytes;
  run->used = f.reads;
  const bool whole = f.read_whole && f.size <= kWholeFile;
  if (whole) run->count = 3;
  if (run->count >= 3) {
    ReadBlock& b = *std::min_element(
        f.blocks.begin(), f.blocks.end(),
        [](const ReadBlock& x, const ReadBlock& y) { return x.used < y.used; });
    const int64_t want = std::min(kBlockBytes, int64_t{8 << 10} << (run->count - 3));
    int64_t len = std::min(want, f.size - off);
    int64_t start = off;
    if (whole) {
      start = 0;
      len = f.size;
    }
    if (!b.bytes) b.bytes.reset(new char[kBlockBytes]);
    b.len = 0;
    if (len >= nbytes && pread_all(f.fd, b.bytes.get(), len, start)) {
      b.off = start;
      b.len = len;
      b.used = f.reads;
      // The reads the block serves continue the run; the next miss comes
      // behind it.
      run->end = start + len;
      std::memcpy(dst, b.bytes.get() + (off - start), static_cast<size_t>(nbytes));
      return true;
    }
  }
  return pread_all(f.fd, dst, nbytes, off);
}

}  // namespace

bool unit_open(UnitTable& U, int32_t unit, const std::string& path, int64_t reclen) {
  std::shared_ptr<OpenFile> f = reclen > 0 ? open_cached(U, path) : nullptr;
  if (!f) {
    unit_close(U, unit);
    return false;
  }
  Connection& c = U.units[unit];
  c.file = std::move(f);
  c.reclen = reclen;
  return true;
}

void unit_close(UnitTable& U, int32_t unit) {
  auto it = U.units.find(unit);
  if (it != U.units.end()) it->second = Connection{};
}

namespace {

// The connection of UNIT, or none. (This and the next are on the path of
// every record read.)
[[gnu::always_inline]] inline const Connection* connection(const UnitTable& U, int32_t unit) {
  if (U.found_conn == nullptr || U.found_unit != unit) {
    auto it = U.units.find(unit);
    if (it == U.units.end()) return nullptr;
    U.found_unit = unit;
    U.found_conn = &it->second;
  }
  return U.found_conn->file ? U.found_conn : nullptr;
}

// The byte offset of record REC of UNIT when NBYTES of it can be read, or -1.
[[gnu::always_inline]] inline int64_t readable_offset(const UnitTable& U, int32_t unit, int64_t rec,
                                                      int64_t nbytes, const Connection*& c) {
  c = connection(U, unit);
  if (c == nullptr || nbytes < 0 || nbytes > c->reclen) return kNoRecord;
  const int64_t off = record_offset(rec, c->reclen);
  if (off == kNoRecord || off > c->file->size - nbytes) return kNoRecord;
  return off;
}

}  // namespace

bool read_record(UnitTable& U, int32_t unit, int64_t rec, void* dst, int64_t nbytes) {
  const Connection* c = nullptr;
  const int64_t off = readable_offset(U, unit, rec, nbytes, c);
  if (off == kNoRecord) return false;
  if (nbytes == 0) return true;
  return read_at(*c->file, dst, nbytes, off);
}

void unit_reconnect(UnitTable& U, int32_t unit, const Connection& c) {
  if (!c.file) {
    unit_close(U, unit);
    return;
  }
  Connection& now = U.units[unit];
  if (now.file != c.file) now.file = c.file;
  now.reclen = c.reclen;
}

Connection unit_connection(const UnitTable& U, int32_t unit) {
  const Connection* c = connection(U, unit);
  return c == nullptr ? Connection{} : *c;
}

int64_t read_records(UnitTable& U, int32_t unit, int64_t first, int64_t count, int64_t nbytes,
                     void* dst, std::vector<char>* ok) {
  const Connection* conn = connection(U, unit);
  if (conn == nullptr) {
    ok->assign(static_cast<size_t>(std::max<int64_t>(count, 0)), 0);
    return 0;
  }
  return read_records(*conn, first, count, nbytes, dst, ok);
}

int64_t read_records(const Connection& c, int64_t first, int64_t count, int64_t nbytes, void* dst,
                     std::vector<char>* ok) {
  ok->assign(static_cast<size_t>(std::max<int64_t>(count, 0)), 0);
  if (count <= 0 || !c.file) return 0;
  if (nbytes < 0 || nbytes > c.reclen) return 0;
  // Records that exist lie in one contiguous span of the file: from record 1
  // (or FIRST) to the last that holds NBYTES.
  const int64_t lo = std::max<int64_t>(first, 1);
  int64_t hi = 0;
  if (__builtin_add_overflow(first, count - 1, &hi)) hi = std::numeric_limits<int64_t>::max();
  hi = std::min(hi, last_record_within(c.file->size, c.reclen, nbytes));
  if (hi < lo) return 0;
  const int64_t span_off = record_offset(lo, c.reclen);
  // Within the file, so neither can overflow.
  const int64_t span_len = (hi - lo) * c.reclen + nbytes;
  char* out = static_cast<char*>(dst) + (lo - first) * nbytes;
  if (nbytes == c.reclen) {
    // Whole records lie in the file as they lie in DST: one read, no copy.
    if (!pread_all(c.file->fd, out, span_len, span_off)) return 0;
  } else {
    std::vector<char> buf(static_cast<size_t>(checked_count(1, span_len)));
    if (!pread_all(c.file->fd, buf.data(), span_len, span_off)) return 0;
    for (int64_t r = lo; r <= hi && nbytes > 0; ++r) {
      std::memcpy(out + (r - lo) * nbytes, buf.data() + (r - lo) * c.reclen,
                  static_cast<size_t>(nbytes));
    }
  }
  std::fill(ok->begin() + (lo - first), ok->begin() + (hi - first) + 1, 1);
  return hi - lo + 1;
}

namespace {

// N values of record REC into DST(1..N); what does not fit DST is dropped
// with a bound report.
template <class T>
bool read_values(UnitTable& U, int32_t unit, int64_t rec, VecRef<T> dst, int64_t n) {
  if (n <= 0) return read_record(U, unit, rec, nullptr, 0);
  const int64_t count = checked_count(sizeof(T), n);
  // A record's worth of values goes through the table's buffer; a longer
  // read takes its own.
  std::vector<T> own;
  T* tmp = reinterpret_cast<T*>(U.values.data());
  if (count > static_cast<int64_t>(U.values.size() * sizeof(double) / sizeof(T))) {
    own.resize(static_cast<size_t>(count));
    tmp = own.data();
  }
  if (!read_record(U, unit, rec, tmp, n * static_cast<int64_t>(sizeof(T)))) return false;
  const int64_t fit = std::min<int64_t>(n, dst.size());
  if (fit > 0) std::memcpy(dst.data(), tmp, static_cast<size_t>(fit) * sizeof(T));
  if (fit < n) report_bound_failure(dst.name(), dst.lo() + fit, dst.lo(), dst.hi());
  return true;
}

}  // namespace

bool read_f64(UnitTable& U, int32_t unit, int64_t rec, VecRef<double> dst, int64_t n) {
  return read_values(U, unit, rec, dst, n);
}

bool read_i32(UnitTable& U, int32_t unit, int64_t rec, VecRef<int32_t> dst, int64_t n) {
  return read_values(U, unit, rec, dst, n);
}

void close_all_units(UnitTable& U) {
  U.units.clear();
  U.found_conn = nullptr;
  forget_recent(U);
  if (!U.keep_files) {
    U.files.clear();
  } else {
    // Kept: files open and settled, with the walks that did not end in a
    // read error (which may not recur). The rest is opened afresh when used.
    for (auto it = U.files.begin(); it != U.files.end();) {
      KeptFile& k = it->second;
      if (!k.file || !k.settled) {
        it = U.files.erase(it);
        continue;
      }
      std::erase_if(k.file->walks, [](const auto& w) { return w.second->end_status == 2; });
      // The blocks hold the file's bytes as the walks hold its directory:
      // they serve the next call once the stat finds the file unchanged.
      k.file->runs = {};
      ++it;
    }
    if (U.files.size() > UnitTable::kKeptFiles) {
      std::vector<std::pair<uint64_t, std::string>> by_use;
      for (const auto& [path, k] : U.files) by_use.emplace_back(k.used_in_call, path);
      std::sort(by_use.begin(), by_use.end());
      for (size_t i = 0; i + UnitTable::kKeptFiles < by_use.size(); ++i) U.files.erase(by_use[i].second);
    }
  }
  ++U.call;
}

void release_files(UnitTable& U) {
  U.units.clear();
  U.found_conn = nullptr;
  forget_recent(U);
  U.files.clear();
}

void forget_file(UnitTable& U, const std::string& path) {
  forget_recent(U);
  U.files.erase(trimmed(path));
}

std::shared_ptr<DirWalk>* kept_walk(UnitTable& U, int32_t unit, const WalkKey& key) {
  const Connection* c = connection(U, unit);
  if (c == nullptr) return nullptr;
  auto& walks = c->file->walks;
  for (auto& [k, w] : walks)
    if (k == key) return &w;
  return &walks.emplace_back(key, nullptr).second;
}

bool read_lead(UnitTable& U, int32_t unit, void* dst, int64_t nbytes) {
  const Connection* c = connection(U, unit);
  if (nbytes < 0 || nbytes > static_cast<int64_t>(sizeof(OpenFile::lead)))
    return read_record(U, unit, 1, dst, nbytes);
  if (c == nullptr || nbytes > c->reclen || nbytes > c->file->size) return false;
  OpenFile& f = *c->file;
  if (!f.lead_read) {
    const int64_t n = std::min<int64_t>(f.size, sizeof f.lead);
    if (!pread_all(f.fd, f.lead.data(), n, 0)) return false;
    f.lead_read = true;
  }
  std::memcpy(dst, f.lead.data(), static_cast<size_t>(nbytes));
  return true;
}

bool read_record_part(UnitTable& U, int32_t unit, int64_t rec, int64_t nbytes, int64_t byte_offset,
                      void* dst, int64_t len) {
  const Connection* c = connection(U, unit);
  return c != nullptr && read_record_part(*c, rec, nbytes, byte_offset, dst, len);
}

bool read_record_part(const Connection& c, int64_t rec, int64_t nbytes, int64_t byte_offset,
                      void* dst, int64_t len) {
  if (!c.file || nbytes < 0 || nbytes > c.reclen) return false;
  const int64_t off = record_offset(rec, c.reclen);
  if (off == kNoRecord || off > c.file->size - nbytes) return false;
  if (byte_offset < 0 || len <= 0 || byte_offset > nbytes - len) return true;
  return read_at(*c.file, dst, len, off + byte_offset);
}

bool read_file_span(const Connection& c, int64_t off, int64_t len, void* dst) {
  return c.file && off >= 0 && len >= 0 && off <= c.file->size - len &&
         pread_all(c.file->fd, dst, len, off);
}

int64_t unit_last_record(const UnitTable& U, int32_t unit, int64_t nbytes) {
  const Connection* c = connection(U, unit);
  if (c == nullptr) return 0;
  return last_record_within(c->file->size, c->reclen, nbytes);
}

}  // namespace respcore
