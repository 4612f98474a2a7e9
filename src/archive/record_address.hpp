// Record numbers, section indices and byte offsets, formed in 64-bit
// arithmetic that detects overflow. Every place that turns a section's first
// record and an index, a block and an offset, or a record number and a record
// length into a position goes through here. The numbers come from the
// archive's directory and records, so any of them may be absurd: a position
// that cannot be formed is kNoRecord (or kNoIndex), which no read reaches,
// and the read fails as a read past the end of the file does.
#pragma once

#include <cstdint>
#include <limits>

namespace respcore {

// No record: what a position that cannot be formed becomes.
inline constexpr int64_t kNoRecord = -1;
// No index: an index into a section that cannot be formed. Its record is
// kNoRecord, whatever the section's first record.
inline constexpr int64_t kNoIndex = std::numeric_limits<int64_t>::min();

// Record number of entry INDEX (from 1) of a section whose first record is
// FIRST: FIRST + INDEX - 1, or kNoRecord when that is below 1 or overflows.
// (An index below 1 or past the section's records is a record all the same,
// as long as it lies within the file.)
constexpr int64_t record_number(int64_t first, int64_t index) {
  int64_t r = 0;
  if (index == kNoIndex || __builtin_add_overflow(first, index - 1, &r) || r < 1) return kNoRecord;
  return r;
}

// The first record of a run of records from entry INDEX on: FIRST + INDEX - 1
// as it is, also below 1 (the run may reach record 1 further on), or
// kNoIndex when it overflows.
constexpr int64_t run_start(int64_t first, int64_t index) {
  int64_t r = 0;
  if (index == kNoIndex || __builtin_add_overflow(first, index - 1, &r) || r == kNoIndex)
    return kNoIndex;
  return r;
}

// Byte offset of record REC in a file of RECLEN-byte records:
// (REC - 1) x RECLEN, or kNoRecord when REC is below 1, RECLEN is negative or
// the product overflows.
constexpr int64_t record_offset(int64_t rec, int64_t reclen) {
  int64_t off = 0;
  if (rec < 1 || reclen < 0 || __builtin_mul_overflow(rec - 1, reclen, &off)) return kNoRecord;
  return off;
}

// Index OFFSET of block BLOCK (from 1) when each block holds LENGTH entries:
// (BLOCK - 1) x LENGTH + OFFSET, or kNoIndex when it overflows.
constexpr int64_t block_index(int64_t block, int64_t length, int64_t offset) {
  int64_t i = 0;
  if (block == kNoIndex || offset == kNoIndex || __builtin_sub_overflow(block, 1, &i) ||
      __builtin_mul_overflow(i, length, &i) || __builtin_add_overflow(i, offset, &i) ||
      i == kNoIndex) {
    return kNoIndex;
  }
  return i;
}

// Index in a section whose first record is FIRST of record REC:
// REC - FIRST + 1, or kNoIndex when it overflows.
constexpr int64_t index_of_record(int64_t first, int64_t rec) {
  int64_t i = 0;
  if (__builtin_sub_overflow(rec, first, &i) || __builtin_add_overflow(i, 1, &i) || i == kNoIndex)
    return kNoIndex;
  return i;
}

// Largest R such that NBYTES bytes from the start of record R lie within a
// file of SIZE bytes with RECLEN-byte records, or 0 when no record holds them
// (NBYTES longer than a record, or than the file).
constexpr int64_t last_record_within(int64_t size, int64_t reclen, int64_t nbytes) {
  if (reclen <= 0 || nbytes < 0 || nbytes > reclen || size < nbytes) return 0;
  return (size - nbytes) / reclen + 1;
}

}  // namespace respcore
