// The byte layout of an archive file's directory, in one place: the head
// record of a block and its entry records, in the plain form (20-byte
// records, 32-bit record numbers, version 1.0) and the 64-bit form (28-byte
// records, 64-bit record numbers, version 2.0). The kernel's look-ups, the
// directory writer CREATE_F, the archive writer and the archive inspector all
// encode and decode through here.
//
// Head record:  0 identifier "QVX ", 4 file code, 8 version (real32),
//               12 entries in the block, 16 next head record (int32 or int64;
//               0 ends the chain); the 64-bit form leaves bytes 24..27 unused.
// Entry record: 0 tag, 4 serial, 8 first record, then the last record and the
//               record length in words (int32, int32 or int64, int64, int32).
#pragma once

#include <array>
#include <cstdint>

namespace respcore {

using Tag4 = std::array<char, 4>;

inline constexpr char DIR_HEAD_TAG[5] = "HEAD";
inline constexpr char DIR_IDENTIFIER[5] = "QVX ";
inline constexpr int32_t DIR_ENTRIES_PER_BLOCK = 20;
inline constexpr int32_t DIR_WORDS_PLAIN = 5;
inline constexpr int32_t DIR_WORDS_64 = 7;
inline constexpr int32_t DIR_BYTES_PER_WORD = 4;

inline constexpr Tag4 BLANK_TAG{' ', ' ', ' ', ' '};
inline constexpr Tag4 HEAD_TAG{'H', 'E', 'A', 'D'};

// Bytes of one directory record of the form.
constexpr int64_t dir_record_bytes(bool wide) {
  return int64_t{wide ? DIR_WORDS_64 : DIR_WORDS_PLAIN} * DIR_BYTES_PER_WORD;
}
// Bytes of a head record that carry fields (the 64-bit head has 4 spare bytes).
constexpr int64_t dir_head_bytes(bool wide) { return wide ? 24 : 20; }

// Version of each form.
constexpr float dir_version(bool wide) { return wide ? 2.0f : 1.0f; }

struct DirHead {
  Tag4 identifier{};
  int32_t file_code = 0;
  float version = 0.0f;
  int32_t entries = 0;
  int64_t next = 0;
};

struct DirEntry {
  Tag4 tag{};
  int32_t serial = 0;
  int64_t first = 0;
  int64_t last = 0;
  int32_t reclen = 0;  // words
};

// A new head record of the form: identifier, FILE_CODE, the form's version
// unless VERSION is given, 20 entries, NEXT.
DirHead make_head(int32_t file_code, float version, int64_t next);

// The directory's own entry, the first of the first block: "HEAD", 1, 2, 21, 5
// (the record length is that of the plain form in both forms).
DirEntry own_entry();

// Encode into OUT, which holds dir_record_bytes(WIDE) bytes; every byte of the
// record is written (spare bytes as zeros). In the plain form, record numbers
// are stored in their low 32 bits.
void encode_head(const DirHead& h, bool wide, unsigned char* out);
void encode_entry(const DirEntry& e, bool wide, unsigned char* out);

// Decode from IN, which holds at least dir_head_bytes (head) or
// dir_record_bytes (entry) bytes of the form.
DirHead decode_head(const unsigned char* in, bool wide);
DirEntry decode_entry(const unsigned char* in, bool wide);

// The version field of a head record, at the same offset in both forms.
float head_version(const unsigned char* in);

}  // namespace respcore
