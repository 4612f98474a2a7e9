// Writer of result archives: the format's other half.
//
// An archive is a base name and three kinds of file: the first file (".PA1"
// under the product tag "P.R.W"), the second file (".PA2") and numbered
// direct files (".PAT1", ".PAT2", ...). Each file is an indexed direct-access
// file: a chain of directory blocks (a head record and 20 entries each) that
// lists sections by a four-character tag and a serial, followed by the
// sections, each a run of fixed-length records.
//
//   respcore::ArchiveWriter w("/tmp/model", "P.R.W");
//   respcore::Section& thif = w.second().add("THIF", 3, 5, 1);  // 5 words, 1 record
//   thif.put_i32(1, 0, 2);  // record 1, word 0: direct storage
//   w.write();
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "respcore/export.hpp"

namespace respcore {

enum class DirectoryForm {
  Plain,  // 20-byte directory records, 32-bit record numbers, version 1.0
  Wide,   // 28-byte directory records, 64-bit record numbers, version 2.0
};

// One section: NREC records of RECLEN_WORDS 4-byte words, zero when made.
// Records and words are addressed from 1 and from 0 respectively.
class RESPCORE_API Section {
 public:
  Section(std::string tag, int32_t serial, int32_t reclen_words, int64_t nrec);

  void put_i32(int64_t rec, int64_t word, int32_t v);
  void put_f32(int64_t rec, int64_t word, float v);
  // A double takes two words; WORD need not be even.
  void put_f64(int64_t rec, int64_t word, double v);
  void put_f64s(int64_t rec, int64_t word, std::span<const double> v);
  void put_i32s(int64_t rec, int64_t word, std::span<const int32_t> v);
  void put_bytes(int64_t rec, int64_t byte_offset, const void* data, size_t n);
  // Doubles at 1-based double index I of record REC (I = 1 is word 0).
  void set_f64(int64_t rec, int64_t i, double v) { put_f64(rec, 2 * (i - 1), v); }

  const std::string& tag() const { return tag_; }
  int32_t serial() const { return serial_; }
  int32_t reclen_words() const { return reclen_words_; }
  int64_t nrec() const { return nrec_; }
  const std::vector<unsigned char>& bytes() const { return bytes_; }

  // Position in the file, set when the file is laid out: the first record in
  // units of this section's record length.
  int64_t first = 0;

 private:
  unsigned char* at(int64_t rec, int64_t byte_offset, size_t n);

  std::string tag_;
  int32_t serial_;
  int32_t reclen_words_;
  int64_t nrec_;
  std::vector<unsigned char> bytes_;
};

// One indexed direct-access file.
class RESPCORE_API ArchiveFile {
 public:
  explicit ArchiveFile(DirectoryForm form = DirectoryForm::Plain, int32_t file_code = 2);

  // Adds a section; tags shorter than four characters are blank padded.
  Section& add(std::string_view tag, int32_t serial, int32_t reclen_words, int64_t nrec);
  // Convenience: a section of records of N doubles each, one per row.
  Section& add_f64_rows(std::string_view tag, int32_t serial,
                        const std::vector<std::vector<double>>& rows, int32_t min_doubles = 0);
  // An entry of four blanks at this place of the directory: it ends every
  // search, and hides what follows it.
  void add_blank_entry();
  // An entry as given, pointing wherever the caller says (for broken files).
  void add_raw_entry(std::string_view tag, int32_t serial, int64_t first, int64_t last,
                     int32_t reclen_words);

  Section* find(std::string_view tag, int32_t serial);

  // Lays the file out: directory blocks first (as many as the entries need,
  // chained), then each section at the first record of its own length that
  // lies behind everything before it. Returns the file's bytes.
  std::vector<unsigned char> build();
  void write(const std::string& path);

  DirectoryForm form() const { return form_; }

 private:
  struct Entry {
    std::string tag;
    int32_t serial = 0;
    int64_t first = 0, last = 0;
    int32_t reclen = 0;
    int section = -1;  // index into sections_, -1 for a raw or blank entry
  };
  DirectoryForm form_;
  int32_t file_code_;
  std::vector<std::unique_ptr<Section>> sections_;
  std::vector<Entry> entries_;
};

// A whole archive: the three kinds of file under one base name.
class RESPCORE_API ArchiveWriter {
 public:
  // PRODUCT_TAG picks the extensions (e.g. "P.R.W": ".PA1", ".PA2", ".PAT").
  ArchiveWriter(std::string base, std::string product_tag = "P.R.W",
                DirectoryForm form = DirectoryForm::Plain);

  ArchiveFile& first();
  ArchiveFile& second();
  ArchiveFile& direct(int32_t file_no);

  // Paths of the files.
  std::string first_path() const;
  std::string second_path() const;
  std::string direct_path(int32_t file_no) const;

  // Writes every file that was touched.
  void write();

  // The extensions of a product tag: kind 1 first, 2 second, 3 direct; empty
  // for an unknown tag.
  static std::string extension(std::string_view product_tag, int kind);

 private:
  std::string base_;
  std::string tag_;
  DirectoryForm form_;
  std::unique_ptr<ArchiveFile> first_, second_;
  std::map<int32_t, std::unique_ptr<ArchiveFile>> direct_;
};

}  // namespace respcore
