// The records of one section, read from the file in chunks while the reads
// run on through it and kept in memory for the rest of a request: for loops
// that visit many records of a section looked up once (a snapshot of many
// elements reads every element's record and the displacement records of
// its equations). Every answer is the one a read through the section's unit
// would give: where a record cannot be read that way, the window gives
// nothing either.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>

#include "archive/record_address.hpp"
#include "archive/section_access.hpp"

namespace respcore {

class SectionWindow {
 public:
  SectionWindow() = default;
  explicit SectionWindow(const PinnedSection& s);

  // The first NBYTES (at least 1) of record INDEX, or null where a read of
  // them fails. Valid until the next call.
  const char* record(int64_t index, int64_t nbytes) {
    const int64_t off = offset_of(index, nbytes);
    if (off == kNoRecord || nbytes < 1) return nullptr;
    if (off >= held_lo_ && off + nbytes <= held_hi_) return held_ + (off - held_lo_);
    return record_slow(index, off, nbytes);
  }
  // As ArchiveReader::read_part of the 8 bytes at BYTE_OFFSET of a read of
  // NBYTES from record INDEX: the outcome of the whole read; OUT is set
  // only when it succeeds.
  bool value(int64_t index, int64_t nbytes, int64_t byte_offset, double& out) {
    const int64_t off = offset_of(index, nbytes);
    if (off == kNoRecord) return false;
    // A value that does not lie within the bytes read is not fetched.
    if (byte_offset < 0 || byte_offset > nbytes - 8) return true;
    const int64_t at = off + byte_offset;
    if (at >= held_lo_ && at + 8 <= held_hi_) {
      std::memcpy(&out, held_ + (at - held_lo_), 8);
      return true;
    }
    return value_slow(index, at, nbytes, byte_offset, out);
  }

 private:
  // Records not held are read in chunks of whole records once a run of
  // reads goes on through the section, each read within kNearBytes of the
  // end of the one before: from the third such read on, in chunks of 8 KB
  // that double with each further one up to kChunkBytes. So a few records
  // scattered over a large section cost their own reads, and a long run a
  // read per chunk.
  static constexpr int64_t kChunkBytes = 128 << 10;
  static constexpr int64_t kNearBytes = 16 << 10;
  // Records longer than this are read alone: a chunk of them would mostly
  // hold bytes nobody asked for.
  static constexpr int64_t kChunkedRecord = 4 << 10;

  struct Chunk {
    int64_t start = 0, len = 0;  // file bytes START..START + LEN - 1
    uint64_t used = 0;
    std::unique_ptr<char[]> bytes;
  };
  // The byte offset of record INDEX when NBYTES of it can be read, or -1.
  int64_t offset_of(int64_t index, int64_t nbytes) const {
    if (file_ == nullptr || nbytes < 0 || nbytes > reclen_) return kNoRecord;
    const int64_t off = record_offset(record_number(s_.first, index), reclen_);
    if (off == kNoRecord || off > size_ - nbytes) return kNoRecord;
    return off;
  }
  const char* record_slow(int64_t index, int64_t off, int64_t nbytes);
  bool value_slow(int64_t index, int64_t at, int64_t nbytes, int64_t byte_offset, double& out);
  // The bytes at OFF (NBYTES of which lie within the file) in memory, or
  // null when the chunk could not be read.
  const char* chunk_bytes(int64_t off, int64_t nbytes);

  PinnedSection s_;
  const OpenFile* file_ = nullptr;
  int64_t reclen_ = 0, size_ = 0;
  // The bytes of the chunk used last, file bytes HELD_LO..HELD_HI - 1.
  const char* held_ = nullptr;
  int64_t held_lo_ = 0, held_hi_ = 0;
  uint64_t uses_ = 0;
  std::array<Chunk, 4> chunks_;
  int64_t read_end_ = -1;        // the end of the bytes read last
  int32_t run_ = 0;              // reads of the run they end
  std::unique_ptr<char[]> one_;  // a record read alone
  int64_t one_len_ = 0;
};

}  // namespace respcore
