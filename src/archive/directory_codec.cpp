#include "archive/directory_codec.hpp"

#include <cstring>

namespace respcore {

namespace {

template <class T>
void put(unsigned char* p, int at, T v) {
  std::memcpy(p + at, &v, sizeof v);
}

template <class T>
T get(const unsigned char* p, int at) {
  T v;
  std::memcpy(&v, p + at, sizeof v);
  return v;
}

}  // namespace

DirHead make_head(int32_t file_code, float version, int64_t next) {
  DirHead h;
  std::memcpy(h.identifier.data(), DIR_IDENTIFIER, 4);
  h.file_code = file_code;
  h.version = version;
  h.entries = DIR_ENTRIES_PER_BLOCK;
  h.next = next;
  return h;
}

DirEntry own_entry() {
  DirEntry e;
  e.tag = HEAD_TAG;
  e.serial = 1;
  e.first = 2;
  e.last = DIR_ENTRIES_PER_BLOCK + 1;
  e.reclen = DIR_WORDS_PLAIN;
  return e;
}

void encode_head(const DirHead& h, bool wide, unsigned char* out) {
  std::memset(out, 0, static_cast<size_t>(dir_record_bytes(wide)));
  std::memcpy(out, h.identifier.data(), 4);
  put<int32_t>(out, 4, h.file_code);
  put<float>(out, 8, h.version);
  put<int32_t>(out, 12, h.entries);
  if (wide)
    put<int64_t>(out, 16, h.next);
  else
    put<int32_t>(out, 16, static_cast<int32_t>(h.next));
}

void encode_entry(const DirEntry& e, bool wide, unsigned char* out) {
  std::memset(out, 0, static_cast<size_t>(dir_record_bytes(wide)));
  std::memcpy(out, e.tag.data(), 4);
  put<int32_t>(out, 4, e.serial);
  if (wide) {
    put<int64_t>(out, 8, e.first);
    put<int64_t>(out, 16, e.last);
    put<int32_t>(out, 24, e.reclen);
  } else {
    put<int32_t>(out, 8, static_cast<int32_t>(e.first));
    put<int32_t>(out, 12, static_cast<int32_t>(e.last));
    put<int32_t>(out, 16, e.reclen);
  }
}

DirHead decode_head(const unsigned char* in, bool wide) {
  DirHead h;
  std::memcpy(h.identifier.data(), in, 4);
  h.file_code = get<int32_t>(in, 4);
  h.version = get<float>(in, 8);
  h.entries = get<int32_t>(in, 12);
  h.next = wide ? get<int64_t>(in, 16) : get<int32_t>(in, 16);
  return h;
}

DirEntry decode_entry(const unsigned char* in, bool wide) {
  DirEntry e;
  std::memcpy(e.tag.data(), in, 4);
  e.serial = get<int32_t>(in, 4);
  if (wide) {
    e.first = get<int64_t>(in, 8);
    e.last = get<int64_t>(in, 16);
    e.reclen = get<int32_t>(in, 24);
  } else {
    e.first = get<int32_t>(in, 8);
    e.last = get<int32_t>(in, 12);
    e.reclen = get<int32_t>(in, 16);
  }
  return e;
}

float head_version(const unsigned char* in) { return get<float>(in, 8); }

}  // namespace respcore
