// Reading an archive's directories without the kernel: which files an archive
// has, the sections each file lists, and whether a file is missing or broken,
// with the reason in words. The tool's `sections` command and the Python
// package list archives through this.
//
//   respcore::ArchiveInspection a = respcore::inspect_archive("/data/model", "P.R.W");
//   for (const auto& f : a.files) {
//     if (!f.sound()) std::cerr << f.path << ": " << f.problem << "\n";
//     for (const auto& s : f.sections) std::cout << s.tag << " " << s.serial << "\n";
//   }
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "respcore/archive_writer.hpp"
#include "respcore/export.hpp"
#include "respcore/sections.hpp"

namespace respcore {

// One entry of a directory.
struct SectionInfo {
  std::string tag;     // four characters; a byte that does not print shows as \xNN
  int32_t serial = 0;  // the section's ID beside its tag
  int64_t first = 0;   // first record, in units of the section's record length
  int64_t last = 0;    // last record
  int32_t reclen = 0;  // record length in 4-byte words
  // Records of the section (as the kernel counts them: an entry whose last
  // record lies before its first gives a count of zero or below).
  int64_t records() const {
    return static_cast<int64_t>(static_cast<uint64_t>(last) - static_cast<uint64_t>(first) + 1u);
  }
  // Byte offset in the file of record REC (from 1) of the section,
  // (first + REC - 2) x 4 x reclen, or -1 when it cannot be formed (below 0,
  // or past what 64 bits hold).
  int64_t offset(int64_t rec) const {
    int64_t r = 0, off = 0;
    if (__builtin_add_overflow(first, rec - 2, &r) || r < 0 || reclen < 0 ||
        __builtin_mul_overflow(r, int64_t{4} * reclen, &off)) {
      return -1;
    }
    return off;
  }
};

// One file and its directory, followed through its chained blocks and
// checked against the file's size.
struct RESPCORE_API FileInspection {
  std::string path;
  ArchiveFileKind kind = ArchiveFileKind::First;
  int32_t direct_no = 0;  // the number of a direct file
  bool exists = false;
  DirectoryForm form = DirectoryForm::Plain;
  int32_t file_code = 0;
  int32_t blocks = 0;  // directory blocks read
  uint64_t size = 0;   // bytes
  // In directory order up to the first blank entry, the directory's own
  // entry ("HEAD") first.
  std::vector<SectionInfo> sections;
  // Empty when the file exists and its whole directory is sound; otherwise
  // what is wrong, e.g. "head record 22 lies beyond the end of the file".
  // The sections read before the fault are kept.
  std::string problem;

  bool sound() const { return problem.empty(); }
  const SectionInfo* find(std::string_view tag, int32_t serial) const;
  const SectionInfo* find(const SectionName& name, int32_t serial) const {
    return find(std::string_view(name.tag, 4), serial);
  }
};

// The files of an archive: the first and the second file (listed whether or
// not they exist) and the direct files 1 to 99 that exist.
struct RESPCORE_API ArchiveInspection {
  std::string base;
  std::string product_tag;
  std::vector<FileInspection> files;

  const FileInspection* file(ArchiveFileKind kind, int32_t direct_no = 0) const;
};

// Reads the directory of the file at PATH. Never throws for a bad file.
RESPCORE_API FileInspection inspect_file(const std::string& path);

// Lists the archive BASE under PRODUCT_TAG ("P.R.W" and the other nine tags).
// Throws std::invalid_argument for an unknown tag.
RESPCORE_API ArchiveInspection inspect_archive(const std::string& base,
                                               const std::string& product_tag);

// NBYTES from record REC (from 1) of SECTION of FILE; nothing when the record
// lies outside the section or the file.
RESPCORE_API std::optional<std::vector<unsigned char>> read_section_record(
    const FileInspection& file, const SectionInfo& section, int64_t rec, size_t nbytes);

}  // namespace respcore
