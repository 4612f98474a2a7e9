#include "archive/section_window.hpp"

#include <algorithm>
#include <cstring>

#include "archive/record_address.hpp"
#include "archive/units.hpp"

namespace respcore {

SectionWindow::SectionWindow(const PinnedSection& s)
    : s_(s), file_(s.conn.file.get()), reclen_(s.conn.reclen) {
  if (file_ != nullptr) size_ = file_->size;
}

const char* SectionWindow::chunk_bytes(int64_t off, int64_t nbytes) {
  if (reclen_ < 1 || reclen_ > kChunkedRecord) return nullptr;
  Chunk* c = nullptr;
  for (Chunk& k : chunks_)
    if (off >= k.start && off + nbytes <= k.start + k.len) c = &k;
  if (c == nullptr) {
    const bool near =
        read_end_ >= 0 && off >= read_end_ - kNearBytes && off <= read_end_ + kNearBytes;
    run_ = near ? std::min(run_ + 1, 8) : 0;
    read_end_ = off + nbytes;
    if (run_ < 2) return nullptr;
    c = &*std::min_element(chunks_.begin(), chunks_.end(),
                           [](const Chunk& x, const Chunk& y) { return x.used < y.used; });
    // Whole records from the one OFF lies in, as many as the chunk holds
    // (at least that one).
    const int64_t want = std::min(kChunkBytes, int64_t{8 << 10} << (run_ - 2));
    const int64_t start = off / reclen_ * reclen_;
    const int64_t len = std::min(std::max<int64_t>(1, want / reclen_) * reclen_, size_ - start);
    if (!c->bytes) c->bytes.reset(new char[static_cast<size_t>(kChunkBytes)]);
    if (c->bytes.get() == held_) held_lo_ = held_hi_ = 0;
    c->start = c->len = 0;
    if (!read_file_span(s_.conn, start, len, c->bytes.get())) return nullptr;
    c->start = start;
    c->len = len;
    read_end_ = start + len;
  }
  c->used = ++uses_;
  held_ = c->bytes.get();
  held_lo_ = c->start;
  held_hi_ = c->start + c->len;
  return held_ + (off - c->start);
}

const char* SectionWindow::record_slow(int64_t index, int64_t off, int64_t nbytes) {
  if (const char* p = chunk_bytes(off, nbytes)) return p;
  // Not held in a chunk: read alone, as the unit would read it.
  if (one_len_ < nbytes) {
    one_.reset(new char[static_cast<size_t>(nbytes)]);
    one_len_ = nbytes;
  }
  return read_record_part(s_.conn, record_number(s_.first, index), nbytes, 0, one_.get(), nbytes)
             ? one_.get()
             : nullptr;
}

bool SectionWindow::value_slow(int64_t index, int64_t at, int64_t nbytes, int64_t byte_offset,
                               double& out) {
  if (const char* p = chunk_bytes(at, 8)) {
    std::memcpy(&out, p, 8);
    return true;
  }
  return read_record_part(s_.conn, record_number(s_.first, index), nbytes, byte_offset, &out, 8);
}

}  // namespace respcore
