// File connections by unit number.
//
// A unit is a file plus the record length it was opened with; record R starts
// at byte x length. Every path is opened once and kept, so that
// reconnecting a unit (which every section look-up does) costs no system
// call. close_all_units() ends a call: the connections go, the open files
// and their directory walks stay for the next call, which takes them only
// after a stat of the path shows the same file with the same size and time
// stamps (archive_state.hpp, UnitTable).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "archive/archive_state.hpp"
#include "core/arrays.hpp"

namespace respcore {

// Units of the archive files.
inline constexpr int32_t UNIT_SECOND = 32;  // second file, RF_BIN_T
inline constexpr int32_t UNIT_DIRECT = 36;  // direct files, RF_BIN_DIRECT
inline constexpr int32_t UNIT_FIRST = 63;   // first file, RF_BIN

// Connects UNIT to the existing file PATH with RECLEN bytes per record,
// closing whatever the unit held. Fails (and leaves the unit closed) when
// the file cannot be opened or RECLEN is not positive.
bool unit_open(UnitTable& U, int32_t unit, const std::string& path, int64_t reclen);
void unit_close(UnitTable& U, int32_t unit);

// Reads NBYTES from the start of record REC into DST. A read that needs more
// bytes than the record length or the file holds fails as a whole and leaves
// DST unchanged.
bool read_record(UnitTable& U, int32_t unit, int64_t rec, void* dst, int64_t nbytes);

// Reads the first NBYTES of COUNT consecutive records starting at FIRST into
// DST, record i at DST + i*NBYTES, with one system call. Returns a flag per
// record in OK (size COUNT): the same outcome as COUNT separate reads.
int64_t read_records(UnitTable& U, int32_t unit, int64_t first, int64_t count, int64_t nbytes,
                     void* dst, std::vector<char>* ok);

// The connection UNIT holds now (none: a default Connection). A caller that
// keeps it reads the records of the section the unit was positioned on after
// the unit has moved to another section of the same file.
Connection unit_connection(const UnitTable& U, int32_t unit);
// Gives UNIT the connection C (none: closes it), as a look-up that is
// replayed left it.
void unit_reconnect(UnitTable& U, int32_t unit, const Connection& c);
// As read_records, on a kept connection.
int64_t read_records(const Connection& c, int64_t first, int64_t count, int64_t nbytes, void* dst,
                     std::vector<char>* ok);

// Reads N doubles from record REC into DST(1..N). A target shorter than N is
// a bound failure: what does not fit is dropped.
bool read_f64(UnitTable& U, int32_t unit, int64_t rec, VecRef<double> dst, int64_t n);
// Reads N 32-bit integers from record REC into DST(1..N).
bool read_i32(UnitTable& U, int32_t unit, int64_t rec, VecRef<int32_t> dst, int64_t n);

// Checks that a read of NBYTES from record REC of UNIT would succeed, and
// then reads only the LEN bytes at BYTE_OFFSET of the record into DST (none
// when they do not lie within the NBYTES). The outcome is that of the whole
// read; only the bytes used are fetched.
bool read_record_part(UnitTable& U, int32_t unit, int64_t rec, int64_t nbytes, int64_t byte_offset,
                      void* dst, int64_t len);
// As read_record_part, on a kept connection.
bool read_record_part(const Connection& c, int64_t rec, int64_t nbytes, int64_t byte_offset,
                      void* dst, int64_t len);

// LEN bytes at byte OFF of the file of C into DST, straight from the file.
bool read_file_span(const Connection& c, int64_t off, int64_t len, void* dst);

// The last record of UNIT from which NBYTES can be read (0 if none): records
// behind it lie past the end of the file, so loops over a section may stop
// there whatever count the directory claims.
int64_t unit_last_record(const UnitTable& U, int32_t unit, int64_t nbytes);

// Ends a call: closes every unit, keeps the files that may serve the next
// call (all are closed when U.keep_files is off).
void close_all_units(UnitTable& U);
// Closes every unit and every kept file.
void release_files(UnitTable& U);
// Drops the kept file at PATH (about to be replaced): the next use opens it.
void forget_file(UnitTable& U, const std::string& path);
// The walk under KEY of the directory of the file connected to UNIT, kept
// with the open file (null until one is made and stored there); no place at
// all when UNIT is not connected.
std::shared_ptr<DirWalk>* kept_walk(UnitTable& U, int32_t unit, const WalkKey& key);
// As read_record of record 1 (NBYTES from the start of the file); the first
// bytes are read once per open file and kept with it.
bool read_lead(UnitTable& U, int32_t unit, void* dst, int64_t nbytes);

}  // namespace respcore
