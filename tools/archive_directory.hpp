// Reading an archive's files as the tool sees them: which files exist under
// a base name, the directory of each (followed through its chained blocks
// and checked against the file's size), and single records of a section.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace respcore::cli {

struct DirEntry {
  std::string tag;  // four characters, shown with non-printing bytes escaped
  int32_t serial = 0;
  int64_t first = 0, last = 0;
  int32_t reclen = 0;  // words
  int64_t records() const { return last - first + 1; }
};

struct DirListing {
  std::string path;
  bool wide = false;        // 64-bit form (version 2.0, 28-byte directory records)
  int32_t file_code = 0;
  int blocks = 0;           // directory blocks read
  uint64_t size = 0;        // bytes
  std::vector<DirEntry> entries;  // in directory order, up to the first blank entry
  std::string error;        // empty when the whole directory is sound

  const DirEntry* find(const std::string& tag, int32_t serial) const;
};

// Reads the directory of PATH. Never throws for a bad file: the listing holds
// what could be read and ERROR says what is wrong ("head record 1 has ...").
DirListing read_directory(const std::string& path);

// Prints a listing: the file, its form and size, then one line per entry.
void print_directory(std::ostream& out, const DirListing& d, const std::string& role);

// Reads NBYTES from record REC of a section (records of the section's own
// length, from 1). Returns nothing if the file is shorter.
std::optional<std::vector<unsigned char>> read_section_record(const DirListing& file,
                                                              const DirEntry& section, int64_t rec,
                                                              size_t nbytes);

// Product tags: the ten known to the archive's file names, and the eight
// that a request can name (index 1..8).
const std::vector<std::string>& all_product_tags();
const std::vector<std::string>& request_product_tags();
// Index 1..8 of a tag, 0 if a request cannot name it.
int product_index(const std::string& tag);
// "P.R.W", "prw", "1": the tag, or an empty string.
std::string parse_product(const std::string& text);

struct ArchiveFiles {
  std::string base;
  std::string tag;
  std::string first, second;                     // paths; first exists
  std::vector<std::pair<int, std::string>> direct;  // existing direct files by number
};

// The files of the archive BASE. With an empty PRODUCT the tag is the one
// whose first file exists (among the tags a request can name when
// REQUESTABLE, else among all ten). Throws CliError when none or several do.
ArchiveFiles locate_archive(const std::string& base, const std::string& product, bool requestable);

}  // namespace respcore::cli
