// Access to the archive's sections, and the routines that read the archive's
// run-wide tables (the directory form, the element material).
//
// Three files make an archive: the first (RF_BIN, unit 63), the second
// (RF_BIN_T, unit 32) and the numbered direct files (RF_BIN_DIRECT, unit 36).
// Their names are the base name plus an extension chosen by the product tag.
// A look-up leaves the unit positioned on the section, with the section's
// record length; the section's records are then read by their index in the
// section. A look-up of another section on the same unit moves the unit.
//
// Everything above the archive subsystem reads the archive through an
// ArchiveReader: a look-up returns what it found as a SectionRef, and the
// reads take the SectionRef and an index in the section. The record number
// and the byte offset of a read are formed here, with overflow detected
// (archive/record_address.hpp): an index, a first record or a record length
// that no file could hold makes the read fail, as a read past the end of the
// file does. An index computed from several numbers of the archive is formed
// with block_index, which detects overflow the same way.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "archive/archive_state.hpp"
#include "archive/directory.hpp"
#include "archive/record_address.hpp"
#include "core/arrays.hpp"
#include "core/diagnostics.hpp"
#include "core/element_material.hpp"
#include "respcore/sections.hpp"

namespace respcore {

// What a look-up found.
struct SectionRef {
  int32_t unit = 0;                   // the connection the look-up positioned
  int64_t first = 0;                  // first record, in units of the section's record length
  int64_t nrec = 0;                   // number of records
  int32_t reclen = 0;                 // record length in words
  int32_t status = LOOKUP_NOT_FOUND;  // the look-up status

  // The system's sense of "found": only a missing section is not found; a
  // file that could not be opened or read counts as found (its error line was
  // printed) and its reads then fail.
  bool found() const { return status != LOOKUP_NOT_FOUND; }
};

// A section's records as its look-up left them to be read: the connection
// of its unit and its first record. Kept by a caller that must look up
// another section of the same file before it reads this one's records.
struct PinnedSection {
  Connection conn;
  int64_t first = 0;
};

// The archive as one call sees it: the shared archive state, the units and the
// diagnostics that receive the error lines. Made from the kernel's state; it
// holds references only.
class ArchiveReader {
 public:
  ArchiveReader(ArchiveState& state, UnitTable& units, Diagnostics& diag)
      : state(state), units(units), diag(diag) {}

  // Looks up section NAME with serial SERIAL in the first or second file.
  SectionRef find(const SectionName& name, int32_t serial);
  // Looks up section NAME with serial SERIAL in direct file FILE_NO.
  SectionRef find_direct(const SectionName& name, int32_t serial, int32_t file_no);

  // Record INDEX of section S (record first + INDEX - 1 of its unit). A read
  // that needs more bytes than the record or the file holds fails as a whole
  // and leaves DST unchanged.
  bool read(const SectionRef& s, int64_t index, void* dst, int64_t nbytes);
  // N doubles or 32-bit integers of record INDEX into DST(1..N); what does not
  // fit in DST is a bound failure and is dropped.
  bool read_f64(const SectionRef& s, int64_t index, VecRef<double> dst, int64_t n);
  bool read_i32(const SectionRef& s, int64_t index, VecRef<int32_t> dst, int64_t n);
  // The outcome of a read of NBYTES from record INDEX, of which only the
  // double at BYTE_OFFSET is fetched into OUT.
  bool read_f64_at(const SectionRef& s, int64_t index, int64_t nbytes, int64_t byte_offset,
                   double& out);
  // The same, fetching the LEN bytes at BYTE_OFFSET into DST (none when they
  // do not lie within the NBYTES).
  bool read_part(const SectionRef& s, int64_t index, int64_t nbytes, int64_t byte_offset, void* dst,
                 int64_t len);
  // The first NBYTES of COUNT records from record INDEX on, record i at
  // DST + i * NBYTES, with one flag per record in OK; as COUNT single reads.
  int64_t read_run(const SectionRef& s, int64_t index, int64_t count, int64_t nbytes, void* dst,
                   std::vector<char>& ok);
  // The connection S's look-up left on its unit, for reads after the unit moved on.
  PinnedSection pin(const SectionRef& s) const;
  // As read_part, on a pinned section.
  bool read_part(const PinnedSection& s, int64_t index, int64_t nbytes, int64_t byte_offset,
                 void* dst, int64_t len);
  // As read_run, on a pinned section.
  int64_t read_run(const PinnedSection& s, int64_t index, int64_t count, int64_t nbytes, void* dst,
                   std::vector<char>& ok);
  // The last record index of S from which NBYTES can be read (past the end of
  // the file no record can); at most 0 when none can. (A section whose first
  // record lies before the file's has unreadable indices below that of
  // record 1 too: a loop over its records takes readable_among.)
  int64_t readable(const SectionRef& s, int64_t nbytes) const;
  // The indices of S whose records hold NBYTES within the file: from that of
  // record 1 (which lies before the section's own records, at an index of 0
  // or below, unless the section starts at record 1) to that of the last
  // record that does; an empty range (LO > HI) when none can.
  std::pair<int64_t, int64_t> readable_indices(const SectionRef& s, int64_t nbytes) const;
  // Of the indices 1..COUNT of S (the count a directory or record claims),
  // the run FIRST..LAST whose records hold NBYTES within the file (empty when
  // FIRST > LAST). A loop over a section's records runs over this run, and an
  // array of them holds no more, whatever the count claims.
  std::pair<int64_t, int64_t> readable_among(const SectionRef& s, int64_t nbytes,
                                             int64_t count) const {
    const auto [lo, hi] = readable_indices(s, nbytes);
    return {std::max<int64_t>(lo, 1), std::min(hi, count)};
  }
  // Closes the unit of S.
  void close(const SectionRef& s);

  ArchiveState& state;
  UnitTable& units;
  Diagnostics& diag;

 private:
  // Record number of INDEX in S, or -1 when it cannot be addressed.
  static int64_t record_of(const SectionRef& s, int64_t index);
};

// The system's look-up routines by table row: they set the shared fields
// SEC_TAG, SEC_SERIAL, SEC_RECLEN (not RF_BIN_DIRECT) and SEC_NREC, and give the
// first record and the found flag (1 for every status but "not found").
void RF_BIN(ArchiveReader A, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found);
void RF_BIN_T(ArchiveReader A, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found);
// Direct file FILE_NO: row 1 "DMED", row 2 "DSPL". Reports nothing.
void RF_BIN_DIRECT(ArchiveReader A, int32_t ID_M, int32_t ID_S, int32_t file_no, int32_t& reclen,
                   int64_t& start);

// Decides the directory form of the run from the first file's head record.
void FIND_READING_RESULT_METHOD(ArchiveReader A);

// Fills M from the element table and the material records.
void READING_ELEMENT_MATERIAL_DATA(ArchiveReader A, ElementMaterial& M, int32_t element_serial);

// Set N entries (the low 32 bits of N count) of ARR to VALUE.
void RSET(double value, VecRef<double> arr, int64_t n);
void R4SET(int32_t value, VecRef<int32_t> arr, int64_t n);
void R4SET(float value, VecRef<float> arr, int64_t n);

// Sets the three extensions from the product tag; an unknown tag keeps them.
void set_extensions(ArchiveState& A);

// Whether the run's product tag is TAG (five characters).
bool product_is(const ArchiveState& A, const char* tag);

}  // namespace respcore
