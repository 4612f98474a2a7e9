#include "archive/section_access.hpp"

#include <cstring>
#include <string>
#include <vector>

#include "archive/directory.hpp"
#include "archive/record_address.hpp"
#include "archive/section_tables.hpp"
#include "archive/units.hpp"

namespace respcore {

namespace {

struct ExtensionRow {
  const char* tag;
  const char* first;
  const char* second;
  const char* direct;
};

constexpr ExtensionRow kExtensions[] = {
    {"P.R.W", ".PA1", ".PA2", ".PAT"}, {"Q.L.D", ".QA1", ".QA2", ".QAT"},
    {"R.H.V", ".RA1", ".RA2", ".RAT"}, {"U.K.Y", ".UA1", ".UA2", ".UAT"},
    {"W.M.Z", ".WA1", ".WA2", ".WAT"}, {"Y.J.P", ".YA1", ".YA2", ".YAT"},
    {"D.X.K", ".DA1", ".DA2", ".DAT"}, {"H.N.Q", ".HA1", ".HA2", ".HAT"},
    {"Z.B.T", ".ZA1", ".ZA2", ".ZAT"}, {"J.W.U", ".JA1", ".JA2", ".JAT"},
};

Tag4 to_tag(const char* s) {
  Tag4 t;
  std::memcpy(t.data(), s, 4);
  return t;
}

// Row ROW of a tag table; a row outside it is a bound failure and reads as
// four blanks, which no look-up accepts.
Tag4 table_row(std::span<const char* const> table, const char* table_name, int32_t row) {
  return to_tag(table_entry(table, row, table_name, "    "));
}

std::string base_name(const ArchiveState& S) {
  return S.FNAME.substr(0, static_cast<size_t>(S.FNAME_LEN));
}

// The look-up of TAG/SERIAL in the first or second file. The first record
// starts from START, which a look-up that refuses the request leaves as it is.
SectionRef lookup_main(ArchiveReader A, ArchiveFileKind kind, const Tag4& tag, int32_t serial,
                       int64_t start) {
  ArchiveState& S = A.state;
  const bool first_file = kind == ArchiveFileKind::First;
  S.SEC_TAG = tag;
  S.SEC_SERIAL = serial;
  set_extensions(S);
  const auto& ext = first_file ? S.EXT_FIRST : S.EXT_SECOND;
  std::string& name = S.lookup_name;
  name.assign(S.FNAME, 0, static_cast<size_t>(S.FNAME_LEN)).append(ext.data(), 4);
  const int32_t name_len = S.FNAME_LEN + 4;
  SectionRef r;
  r.unit = first_file ? UNIT_FIRST : UNIT_SECOND;
  r.first = start;
  r.status = LOOKUP_FOUND;
  if (S.READ_METHOD == 0) {
    int32_t& work = first_file ? S.rf_bin_work : S.rf_bin_t_work;
    if (first_file) {
      READ_F(A, r.unit, name, name_len, 2, tag, serial, work, S.SEC_RECLEN, S.SEC_NREC, r.status);
    } else {
      READ_F_TIME(A, r.unit, name, name_len, 2, tag, serial, work, S.SEC_RECLEN, S.SEC_NREC,
                  r.status);
    }
    r.first = work;
  } else if (S.READ_METHOD == 1) {
    if (first_file) {
      READ_F_8(A, r.unit, name, name_len, 2, tag, serial, r.first, S.SEC_RECLEN, S.SEC_NREC,
               r.status);
    } else {
      READ_F_TIME_8(A, r.unit, name, name_len, 2, tag, serial, r.first, S.SEC_RECLEN, S.SEC_NREC,
                    r.status);
    }
  }
  r.nrec = S.SEC_NREC;
  r.reclen = S.SEC_RECLEN;
  return r;
}

// The look-up of TAG/SERIAL in direct file FILE_NO; START and RECLEN as above.
SectionRef lookup_direct(ArchiveReader A, const Tag4& tag, int32_t serial, int32_t file_no,
                         int32_t reclen, int64_t start) {
  ArchiveState& S = A.state;
  S.SEC_TAG = tag;
  S.SEC_SERIAL = serial;
  set_extensions(S);
  // A number of three digits or more keeps the digits of the last name.
  if (S.direct_digits_set && file_no == S.direct_digits_no) {
    // The digits and suffix length of this number are in place.
  } else if (file_no < 10) {
    S.DIRECT_DIGITS = format_int(file_no, 1);
    S.DIRECT_SUFFIX_LEN = 5;
    S.direct_digits_set = true;
    S.direct_digits_no = file_no;
  } else if (file_no <= 99) {
    S.DIRECT_DIGITS = format_int(file_no, 2);
    S.DIRECT_SUFFIX_LEN = 6;
    S.direct_digits_set = true;
    S.direct_digits_no = file_no;
  }
  std::string& name = S.lookup_name;
  name.assign(S.FNAME, 0, static_cast<size_t>(S.FNAME_LEN))
      .append(S.EXT_DIRECT.data(), 4)
      .append(S.DIRECT_DIGITS);
  const int32_t name_len = S.FNAME_LEN + S.DIRECT_SUFFIX_LEN;
  SectionRef r;
  r.unit = UNIT_DIRECT;
  r.first = start;
  r.reclen = reclen;
  r.status = LOOKUP_FOUND;
  if (S.READ_METHOD == 0) {
    READ_F_TIME(A, r.unit, name, name_len, 2, tag, serial, S.rf_bin_direct_work, r.reclen,
                S.SEC_NREC, r.status);
    r.first = S.rf_bin_direct_work;
  } else if (S.READ_METHOD == 1) {
    READ_F_TIME_8(A, r.unit, name, name_len, 2, tag, serial, r.first, r.reclen, S.SEC_NREC,
                  r.status);
  }
  r.nrec = S.SEC_NREC;
  return r;
}

}  // namespace

SectionRef ArchiveReader::find(const SectionName& name, int32_t serial) {
  if (name.file == ArchiveFileKind::Direct) return SectionRef{};
  return lookup_main(*this, name.file, to_tag(name.tag), serial, 0);
}

SectionRef ArchiveReader::find_direct(const SectionName& name, int32_t serial, int32_t file_no) {
  if (name.file != ArchiveFileKind::Direct) return SectionRef{};
  return lookup_direct(*this, to_tag(name.tag), serial, file_no, 0, 0);
}

int64_t ArchiveReader::record_of(const SectionRef& s, int64_t index) {
  return record_number(s.first, index);
}

bool ArchiveReader::read(const SectionRef& s, int64_t index, void* dst, int64_t nbytes) {
  return read_record(units, s.unit, record_of(s, index), dst, nbytes);
}

bool ArchiveReader::read_f64(const SectionRef& s, int64_t index, VecRef<double> dst, int64_t n) {
  return respcore::read_f64(units, s.unit, record_of(s, index), dst, n);
}

bool ArchiveReader::read_i32(const SectionRef& s, int64_t index, VecRef<int32_t> dst, int64_t n) {
  return respcore::read_i32(units, s.unit, record_of(s, index), dst, n);
}

bool ArchiveReader::read_f64_at(const SectionRef& s, int64_t index, int64_t nbytes,
                                int64_t byte_offset, double& out) {
  return read_part(s, index, nbytes, byte_offset, &out, 8);
}

bool ArchiveReader::read_part(const SectionRef& s, int64_t index, int64_t nbytes,
                              int64_t byte_offset, void* dst, int64_t len) {
  return read_record_part(units, s.unit, record_of(s, index), nbytes, byte_offset, dst, len);
}

int64_t ArchiveReader::read_run(const SectionRef& s, int64_t index, int64_t count, int64_t nbytes,
                                void* dst, std::vector<char>& ok) {
  const int64_t start = run_start(s.first, index);
  if (start == kNoIndex) {
    ok.assign(static_cast<size_t>(std::max<int64_t>(count, 0)), 0);
    return 0;
  }
  return read_records(units, s.unit, start, count, nbytes, dst, &ok);
}

PinnedSection ArchiveReader::pin(const SectionRef& s) const {
  return PinnedSection{unit_connection(units, s.unit), s.first};
}

bool ArchiveReader::read_part(const PinnedSection& s, int64_t index, int64_t nbytes,
                              int64_t byte_offset, void* dst, int64_t len) {
  return read_record_part(s.conn, record_number(s.first, index), nbytes, byte_offset, dst, len);
}

int64_t ArchiveReader::read_run(const PinnedSection& s, int64_t index, int64_t count,
                                int64_t nbytes, void* dst, std::vector<char>& ok) {
  const int64_t start = run_start(s.first, index);
  if (start == kNoIndex) {
    ok.assign(static_cast<size_t>(std::max<int64_t>(count, 0)), 0);
    return 0;
  }
  return read_records(s.conn, start, count, nbytes, dst, &ok);
}

int64_t ArchiveReader::readable(const SectionRef& s, int64_t nbytes) const {
  const int64_t last = unit_last_record(units, s.unit, nbytes);
  if (last < 1) return 0;
  const int64_t index = index_of_record(s.first, last);
  return index == kNoIndex ? 0 : std::max<int64_t>(index, 0);
}

std::pair<int64_t, int64_t> ArchiveReader::readable_indices(const SectionRef& s,
                                                            int64_t nbytes) const {
  const int64_t last = unit_last_record(units, s.unit, nbytes);
  const int64_t lo = index_of_record(s.first, 1);
  const int64_t hi = index_of_record(s.first, last);
  if (last < 1 || lo == kNoIndex || hi == kNoIndex) return {1, 0};
  return {lo, hi};
}

void ArchiveReader::close(const SectionRef& s) { unit_close(units, s.unit); }

void set_extensions(ArchiveState& S) {
  // Every look-up sets them; the tag rarely changes between two.
  if (S.PRODUCT_TAG == S.EXT_TAG) return;
  for (const ExtensionRow& row : kExtensions) {
    if (std::memcmp(S.PRODUCT_TAG.data(), row.tag, 5) == 0) {
      S.EXT_TAG = S.PRODUCT_TAG;
      std::memcpy(S.EXT_FIRST.data(), row.first, 4);
      std::memcpy(S.EXT_SECOND.data(), row.second, 4);
      std::memcpy(S.EXT_DIRECT.data(), row.direct, 4);
      return;
    }
  }
}

bool product_is(const ArchiveState& S, const char* tag) {
  return std::memcmp(S.PRODUCT_TAG.data(), tag, 5) == 0;
}

void RF_BIN(ArchiveReader A, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found) {
  const SectionRef r =
      lookup_main(A, ArchiveFileKind::First, table_row(ID_MAIN, "ID_MAIN", ID_S), ID_M, start);
  start = r.first;
  found = r.found() ? 1 : 0;
}

void RF_BIN_T(ArchiveReader A, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found) {
  const SectionRef r =
      lookup_main(A, ArchiveFileKind::Second, table_row(ID_MAIN_T, "ID_MAIN_T", ID_S), ID_M, start);
  start = r.first;
  found = r.found() ? 1 : 0;
}

void RF_BIN_DIRECT(ArchiveReader A, int32_t ID_M, int32_t ID_S, int32_t file_no, int32_t& reclen,
                   int64_t& start) {
  const SectionRef r =
      lookup_direct(A, table_row(ID_DIRECT, "ID_DIRECT", ID_S), ID_M, file_no, reclen, start);
  reclen = r.reclen;
  start = r.first;
}

void FIND_READING_RESULT_METHOD(ArchiveReader A) {
  ArchiveState& S = A.state;
  set_extensions(S);
  const std::string path = base_name(S) + std::string(S.EXT_FIRST.data(), 4);
  unit_close(A.units, UNIT_FIRST);
  int result = 0;
  if (!unit_open(A.units, UNIT_FIRST, path, dir_record_bytes(false))) {
    result = 1;
  } else {
    unsigned char head[12];
    if (!read_lead(A.units, UNIT_FIRST, head, 12)) {
      result = 2;
    } else if (head_version(head) == dir_version(true)) {
      S.READ_METHOD = 1;
      S.dir.version = dir_version(true);
    } else {
      S.READ_METHOD = 0;
    }
    unit_close(A.units, UNIT_FIRST);
  }
  if (result != 0 && result != 4) print_line(A.diag, "   OPENING ERROR READ-F IN RESP CORE ");
}

void READING_ELEMENT_MATERIAL_DATA(ArchiveReader A, ElementMaterial& M, int32_t element_serial) {
  ArchiveState& S = A.state;
  const SectionRef elmt = A.find(sections::ELMT, 3);
  int32_t mat_no = S.material_number;
  if (A.read(elmt, element_serial, &mat_no, 4)) S.material_number = mat_no;
  const SectionRef matl = A.find(sections::MATL, 3);
  // Records outside the file cannot be read, so the scan runs over those the
  // file holds rather than trying every record the count claims.
  constexpr int64_t kWords = 13;
  const auto [first, last] = A.readable_among(matl, kWords * 8, matl.nrec);
  constexpr int64_t kBatch = 4096;
  std::vector<double> recs;
  std::vector<char> ok;
  for (int64_t done = first - 1; done < last; done += kBatch) {
    const int64_t n = std::min(kBatch, last - done);
    recs.assign(static_cast<size_t>(n * kWords), 0.0);
    A.read_run(matl, 1 + done, n, kWords * 8, recs.data(), ok);
    for (int64_t i = 0; i < n; ++i) {
      if (!ok[static_cast<size_t>(i)]) continue;
      const double* r = recs.data() + i * kWords;
      if (trunc_i32(r[0]) != S.material_number) continue;
      M.MAT_YOUNG = r[1];
      M.MAT_POISSON = r[2];
      M.MAT_TYPE = trunc_i32(r[3]);
      for (int v = 0; v < 9; ++v) M.MAT_VALS[v] = r[4 + v];
      return;
    }
  }
}

namespace {

// The fill of RSET and R4SET: N entries (the low 32 bits of N count), the
// ones past the array reported once.
template <class T>
void fill_entries(T value, VecRef<T> arr, int64_t n) {
  const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(n & 0xffffffff));
  const int64_t fit = arr.fit(1, count);
  for (int64_t i = 1; i <= fit; ++i) arr(i) = value;
}

}  // namespace

void RSET(double value, VecRef<double> arr, int64_t n) { fill_entries(value, arr, n); }
void R4SET(int32_t value, VecRef<int32_t> arr, int64_t n) { fill_entries(value, arr, n); }
void R4SET(float value, VecRef<float> arr, int64_t n) { fill_entries(value, arr, n); }

}  // namespace respcore
