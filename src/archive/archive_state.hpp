// Shared state of the result archive: the base name, the product tag and the
// three file extensions, the directory form of the run, what the last section
// look-up found, and the unit table with its per-call caches.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "archive/directory_codec.hpp"

namespace respcore {

// The walk of a directory from its first head record: every entry passed
// before the walk ended, and how it ended (4: a blank entry or the end of the
// chain; 2: a read error; 7: a head that does not fit). A look-up replays it
// instead of reading the directory again; FIRST_OF gives the position in
// ENTRIES of the first entry of each tag and serial.
struct DirWalk {
  std::vector<DirEntry> entries;
  std::unordered_map<uint64_t, size_t> first_of;
  int32_t end_status = 4;
};

// What a walk depends on besides the file: the form, the file code and the
// version the head must carry.
struct WalkKey {
  bool wide = false;
  int32_t file_code = 0;
  uint32_t version_bits = 0;
  bool operator==(const WalkKey&) const = default;
};

// A span of a file read at once, from which the small reads that fall in
// it are served while the file is unchanged.
struct ReadBlock {
  int64_t off = 0;
  int64_t len = 0;  // 0: empty
  std::unique_ptr<char[]> bytes;  // kBlockBytes once made
  uint64_t used = 0;  // when it last served a read
};

// An open archive file, shared by every unit connected to the same path,
// with what was read from it once: the walks of its directory, its first
// bytes and the blocks of its small reads (kept while the file is
// unchanged), and the runs of the current call's small reads.
struct OpenFile {
  int fd = -1;
  int64_t size = 0;
  std::vector<std::pair<WalkKey, std::shared_ptr<DirWalk>>> walks;
  std::array<unsigned char, 16> lead{};
  // A small file is read whole by its first small read (when the file is
  // kept between calls, so that the read serves them all).
  bool read_whole = false;
  bool lead_read = false;
  std::array<ReadBlock, 4> blocks;
  // Runs of small reads, each close behind the one before: where the last
  // ended, how many it counts, when it last grew.
  struct ReadRun {
    int64_t end = -1;
    int32_t count = 0;
    uint64_t used = 0;
  };
  std::array<ReadRun, 4> runs;
  uint64_t reads = 0;
  OpenFile() = default;
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile();
};

// A unit number's connection: a file and the record length it was opened
// with. Records are read at x reclen bytes.
struct Connection {
  std::shared_ptr<OpenFile> file;  // null: not connected
  int64_t reclen = 0;              // bytes
};

// What tells one content of a file from another between calls: a file
// rewritten or replaced has another inode, size or time stamp.
struct FileStamp {
  uint64_t dev = 0, ino = 0;
  int64_t size = 0;
  int64_t mtime_ns = 0, ctime_ns = 0;
  bool operator==(const FileStamp&) const = default;
};

// A file as the unit table keeps it: open, with its stamp. A null FILE is a
// path that could not be opened in the current call.
struct KeptFile {
  std::shared_ptr<OpenFile> file;
  FileStamp stamp;
  // The stamp was older than the opening by more than the file system's
  // clock tick, so any later write gives the file another stamp. A file
  // written moments before it was opened could be written again under the
  // same stamp: it is opened and read afresh in the next call.
  bool settled = false;
  uint64_t used_in_call = 0;  // the last call that checked the stamp and used the file
};

// Directory constants and the last records read, shared by the look-ups and
// the directory writer.
struct DirectoryBlock {
  float version = 1.0f;  // becomes 2.0 once the 64-bit form was recognised
  int64_t create_base64 = 0;  // record base of the 64-bit directory writer
};

struct ArchiveState {
  std::string FNAME = std::string(1024, ' ');
  int32_t FNAME_LEN = 0;
  std::array<char, 5> PRODUCT_TAG{' ', ' ', ' ', ' ', ' '};
  // Extensions of the first, second and direct file, set from the tag.
  std::array<char, 4> EXT_FIRST{' ', ' ', ' ', ' '};
  std::array<char, 4> EXT_SECOND{' ', ' ', ' ', ' '};
  std::array<char, 4> EXT_DIRECT{' ', ' ', ' ', ' '};
  // The tag the extensions were last set from (none yet: blanks never match
  // a row), and the file name of the last look-up, made in place.
  std::array<char, 5> EXT_TAG{' ', ' ', ' ', ' ', ' '};
  std::string lookup_name;
  // Digits and suffix length of the last direct-file name.
  std::string DIRECT_DIGITS;
  int32_t DIRECT_SUFFIX_LEN = 4;
  // The file number DIRECT_DIGITS was last formed from, if any.
  bool direct_digits_set = false;
  int32_t direct_digits_no = 0;
  int32_t READ_METHOD = 0;
  Tag4 SEC_TAG{' ', ' ', ' ', ' '};
  int32_t SEC_SERIAL = 0;
  int32_t SEC_RECLEN = 0;
  int64_t SEC_NREC = 0;
  DirectoryBlock dir;
  // 32-bit work fields of the plain-form access routines (they keep their
  // value between calls, as the routines' locals do).
  int32_t rf_bin_work = 0;
  int32_t rf_bin_t_work = 0;
  int32_t rf_bin_direct_work = 0;
  // Material number of the last element whose table entry could be read.
  int32_t material_number = 0;
};

// Units and the files behind them. The connections last one call; the open
// files and their directory walks are kept between calls (unless KEEP_FILES
// is off), each checked against the file's stamp in the first call that uses
// it, and at most kKeptFiles of them, the most recently used.
struct UnitTable {
  UnitTable();
  UnitTable(const UnitTable&) = delete;
  UnitTable& operator=(const UnitTable&) = delete;

  static constexpr size_t kKeptFiles = 32;

  std::map<int32_t, Connection> units;
  // The entry of units last found, tried first (entries stay where they are
  // until the table is cleared, which forgets it).
  mutable int32_t found_unit = 0;
  mutable const Connection* found_conn = nullptr;
  // Looked up by a view of the name, without making a string of it.
  struct PathHash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  std::unordered_map<std::string, KeptFile, PathHash, std::equal_to<>> files;  // by path
  // The last paths taken in this call, as the look-ups name them (with any
  // trailing blanks) and the file each gave: a look-up that reconnects a
  // unit to one of them needs no search.
  struct Recent {
    std::string path;
    std::shared_ptr<OpenFile> file;
    bool usable = false;
  };
  std::array<Recent, 2> recent;
  int32_t recent_next = 0;
  // The last look-ups of this call and what each left: within a call a
  // look-up with the same unit, file, form, file code, version, tag and
  // serial finds the same (the files and their walks do not change), so it
  // is replayed from here rather than made again.
  struct LookupMemo {
    bool used = false;
    int32_t unit = 0;
    bool wide = false;
    int32_t file_code = 0;
    uint32_t version_bits = 0;
    Tag4 tag{};
    int32_t serial = 0;
    std::string path;
    // Its outcome and the connection it left on the unit.
    int64_t first = 0, nrec = 0;
    int32_t reclen = 0, status = 0;
    Connection conn;
  };
  std::array<LookupMemo, 8> memo;
  // The values of a record on their way to the caller's array.
  std::vector<double> values = std::vector<double>(2048);
  int32_t memo_next = 0;
  bool keep_files = true;
  uint64_t call = 1;  // counts the calls closed by close_all_units
  // Files opened and directories walked (read from the file), for the tests
  // of the keeping.
  uint64_t opened = 0;
  uint64_t walked = 0;
};

}  // namespace respcore
