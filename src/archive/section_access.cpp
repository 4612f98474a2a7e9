#include "archive/section_access.hpp"

#include <cstring>
#include <string>
#include <vector>

#include "archive/directory.hpp"
#include "archive/section_tables.hpp"
#include "archive/units.hpp"
#include "core/diagnostics.hpp"
#include "core/kernel_state.hpp"

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

Tag4 table_row(const char* const* table, int rows, const char* table_name, int32_t row) {
  if (row < 1 || row > rows) {
    report_bound_failure(table_name, row, 1, rows);
    return to_tag("    ");
  }
  return to_tag(table[row - 1]);
}

std::string base_name(const KernelState& K) {
  return K.archive.FNAME.substr(0, static_cast<size_t>(K.archive.FNAME_LEN));
}

enum class FileKind { First, Second };

void access(KernelState& K, FileKind kind, int32_t ID_M, int32_t ID_S, int64_t& start,
            int32_t& found) {
  ArchiveState& A = K.archive;
  A.SEC_TAG = kind == FileKind::First ? table_row(ID_MAIN, ID_MAIN_ROWS, "ID_MAIN", ID_S)
                                      : table_row(ID_MAIN_T, ID_MAIN_T_ROWS, "ID_MAIN_T", ID_S);
  A.SEC_SERIAL = ID_M;
  set_extensions(K);
  const auto& ext = kind == FileKind::First ? A.EXT_FIRST : A.EXT_SECOND;
  const std::string name = base_name(K) + std::string(ext.data(), 4);
  const int32_t name_len = A.FNAME_LEN + 4;
  const int32_t unit = kind == FileKind::First ? UNIT_FIRST : UNIT_SECOND;
  int32_t status = 0;
  if (A.READ_METHOD == 0) {
    int32_t& work = kind == FileKind::First ? A.rf_bin_work : A.rf_bin_t_work;
    if (kind == FileKind::First) {
      READ_F(K, unit, name, name_len, 2, A.SEC_TAG, A.SEC_SERIAL, work, A.SEC_RECLEN, A.SEC_NREC,
             status);
    } else {
      READ_F_TIME(K, unit, name, name_len, 2, A.SEC_TAG, A.SEC_SERIAL, work, A.SEC_RECLEN,
                  A.SEC_NREC, status);
    }
    start = work;
  } else if (A.READ_METHOD == 1) {
    if (kind == FileKind::First) {
      READ_F_8(K, unit, name, name_len, 2, A.SEC_TAG, A.SEC_SERIAL, start, A.SEC_RECLEN, A.SEC_NREC,
               status);
    } else {
      READ_F_TIME_8(K, unit, name, name_len, 2, A.SEC_TAG, A.SEC_SERIAL, start, A.SEC_RECLEN,
                    A.SEC_NREC, status);
    }
  }
  found = status == LOOKUP_NOT_FOUND ? 0 : 1;
}

}  // namespace

void set_extensions(KernelState& K) {
  ArchiveState& A = K.archive;
  for (const ExtensionRow& row : kExtensions) {
    if (std::memcmp(A.PRODUCT_TAG.data(), row.tag, 5) == 0) {
      std::memcpy(A.EXT_FIRST.data(), row.first, 4);
      std::memcpy(A.EXT_SECOND.data(), row.second, 4);
      std::memcpy(A.EXT_DIRECT.data(), row.direct, 4);
      return;
    }
  }
}

void RF_BIN(KernelState& K, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found) {
  access(K, FileKind::First, ID_M, ID_S, start, found);
}

void RF_BIN_T(KernelState& K, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found) {
  access(K, FileKind::Second, ID_M, ID_S, start, found);
}

void RF_BIN_DIRECT(KernelState& K, int32_t ID_M, int32_t ID_S, int32_t file_no, int32_t& reclen,
                   int64_t& start) {
  ArchiveState& A = K.archive;
  A.SEC_TAG = table_row(ID_DIRECT, 2, "ID_DIRECT", ID_S);
  A.SEC_SERIAL = ID_M;
  set_extensions(K);
  if (file_no < 10) {
    A.DIRECT_DIGITS = format_int(file_no, 1);
    A.DIRECT_SUFFIX_LEN = 5;
  } else if (file_no <= 99) {
    A.DIRECT_DIGITS = format_int(file_no, 2);
    A.DIRECT_SUFFIX_LEN = 6;
  }
  std::string name = base_name(K) + std::string(A.EXT_DIRECT.data(), 4) + A.DIRECT_DIGITS;
  const int32_t name_len = A.FNAME_LEN + A.DIRECT_SUFFIX_LEN;
  int32_t status = 0;
  if (A.READ_METHOD == 0) {
    READ_F_TIME(K, UNIT_DIRECT, name, name_len, 2, A.SEC_TAG, A.SEC_SERIAL, A.rf_bin_direct_work,
                reclen, A.SEC_NREC, status);
    start = A.rf_bin_direct_work;
  } else if (A.READ_METHOD == 1) {
    READ_F_TIME_8(K, UNIT_DIRECT, name, name_len, 2, A.SEC_TAG, A.SEC_SERIAL, start, reclen,
                  A.SEC_NREC, status);
  }
}

void FIND_READING_RESULT_METHOD(KernelState& K) {
  ArchiveState& A = K.archive;
  set_extensions(K);
  std::string path = base_name(K) + std::string(A.EXT_FIRST.data(), 4);
  unit_close(K, UNIT_FIRST);
  int result = 0;
  if (!unit_open(K, UNIT_FIRST, path, 20)) {
    result = 1;
  } else {
    unsigned char head[12];
    if (!read_record(K, UNIT_FIRST, 1, head, 12)) {
      result = 2;
    } else {
      float version;
      std::memcpy(&version, head + 8, 4);
      if (version == 2.0f) {
        A.READ_METHOD = 1;
        A.dir.version = 2.0f;
      } else {
        A.READ_METHOD = 0;
      }
    }
    unit_close(K, UNIT_FIRST);
  }
  if (result != 0 && result != 4) print_line(K.diag, "   OPENING ERROR READ-F IN RESP CORE ");
}

void READING_ELEMENT_MATERIAL_DATA(KernelState& K, int32_t element_serial) {
  ArchiveState& A = K.archive;
  int64_t first = 0;
  int32_t found = 0;
  RF_BIN_T(K, 3, 35, first, found);
  int32_t mat_no = A.material_number;
  if (read_record(K, UNIT_SECOND, first + element_serial - 1, &mat_no, 4)) {
    A.material_number = mat_no;
  }
  RF_BIN_T(K, 3, 40, first, found);
  // Records past the end of the file cannot be read, so a count larger than
  // the file holds is cut there rather than tried record by record.
  const int64_t count =
      std::min<int64_t>(A.SEC_NREC, unit_last_record(K, UNIT_SECOND, 13 * 8) - first + 1);
  constexpr int64_t kBatch = 4096;
  std::vector<double> recs;
  std::vector<char> ok;
  for (int64_t done = 0; done < count; done += kBatch) {
    const int64_t n = std::min(kBatch, count - done);
    recs.assign(static_cast<size_t>(n * 13), 0.0);
    read_records(K, UNIT_SECOND, first + done, n, 13 * 8, recs.data(), &ok);
    for (int64_t i = 0; i < n; ++i) {
      if (!ok[static_cast<size_t>(i)]) continue;
      const double* r = recs.data() + i * 13;
      if (trunc_i32(r[0]) != A.material_number) continue;
      ElementMaterial& M = K.ELEM_MATERIAL;
      M.MAT_YOUNG = r[1];
      M.MAT_POISSON = r[2];
      M.MAT_TYPE = trunc_i32(r[3]);
      for (int v = 0; v < 9; ++v) M.MAT_VALS[v] = r[4 + v];
      return;
    }
  }
}

void RSET(double value, VecRef<double> arr, int64_t n) {
  const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(n & 0xffffffff));
  for (int32_t i = 1; i <= count; ++i) arr(i) = value;
}

void R4SET(int32_t value, VecRef<int32_t> arr, int64_t n) {
  const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(n & 0xffffffff));
  for (int32_t i = 1; i <= count; ++i) arr(i) = value;
}

void R4SET(float value, VecRef<float> arr, int64_t n) {
  const int32_t count = static_cast<int32_t>(static_cast<uint32_t>(n & 0xffffffff));
  for (int32_t i = 1; i <= count; ++i) arr(i) = value;
}

}  // namespace respcore
