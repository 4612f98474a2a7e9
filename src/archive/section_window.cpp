#include "archive/section_window.hpp"

#include <algorithm>
#include <cstring>

#include "archive/record_address.hpp"
#include "archive/units.hpp"

namespace respcore {

SectionWindow::SectionWindow(const PinnedSection& s)
    : s_(s), file_(s.conn.file.get()), reclen_(s.conn.reclen) {
  if (file_ != nullptr) size_ = file_->size;
  if (reclen_ > 0) per_chunk_ = std::max<int64_t>(1, kChunkBytes / reclen_);
}

const char* SectionWindow::chunk_bytes(int64_t off, int64_t nbytes) {
  if (per_chunk_ < 1 || reclen_ > kChunkedRecord) return nullptr;
  const int64_t no = off / reclen_ / per_chunk_;
  Chunk* c = nullptr;
  for (Chunk& k : chunks_)
    if (k.no == no) c = &k;
  if (c == nullptr) {
    c = &*std::min_element(chunks_.begin(), chunks_.end(),
                           [](const Chunk& x, const Chunk& y) { return x.used < y.used; });
    const int64_t start = no * per_chunk_ * reclen_;
    const int64_t len = std::min(per_chunk_ * reclen_, size_ - start);
    if (!c->bytes) c->bytes.reset(new char[static_cast<size_t>(per_chunk_ * reclen_)]);
    c->no = -1;
    if (c->bytes.get() == held_) held_lo_ = held_hi_ = 0;
    if (!read_file_span(s_.conn, start, len, c->bytes.get())) return nullptr;
    c->no = no;
    c->len = len;
  }
  c->used = ++uses_;
  const int64_t start = c->no * per_chunk_ * reclen_;
  held_ = c->bytes.get();
  held_lo_ = start;
  held_hi_ = start + c->len;
  const int64_t at = off - start;
  return at + nbytes <= c->len ? held_ + at : nullptr;
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
