// Writer of result archives: the format's other half.
//
// An archive is a base name and three kinds of file: the first file (".PA1"
// under the product tag "P.R.W"), the second file (".PA2") and numbered
// direct files (".PAT1", ".PAT2", ...). Each file is an indexed direct-access
// file: a chain of directory blocks (a head record and 20 entries each) that
// lists sections by a four-character tag and a serial, followed by the
// sections, each a run of fixed-length records.
//
// The typed writers lay the records the kernel reads (archive_records.hpp)
// into their sections:
//
//   respcore::ArchiveWriter w("/tmp/model", "P.R.W");
//   w.history_cases({{2, 1, 100, 0, 0}});   // case 1: direct file 1, 100 steps
//   w.node_transforms({{{1, 2, 3, 4, 5, 6}, {}}});
//   w.direct_histories(1, histories, 100);
//   w.write();
//
// and any section can be laid word by word:
//
//   respcore::Section& thif = w.second().add(respcore::sections::THIF, 3, 5, 1);
//   thif.put_i32(1, 0, 2);  // record 1, word 0: direct storage
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "respcore/archive_records.hpp"
#include "respcore/export.hpp"
#include "respcore/sections.hpp"

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
  Section& add(const SectionName& name, int32_t serial, int32_t reclen_words, int64_t nrec) {
    return add(std::string_view(name.tag, 4), serial, reclen_words, nrec);
  }
  // A section of records of as many doubles as the longest row (at least
  // MIN_DOUBLES), one record per row.
  Section& add_f64_rows(std::string_view tag, int32_t serial,
                        const std::vector<std::vector<double>>& rows, int32_t min_doubles = 0);
  Section& add_f64_rows(const SectionName& name, int32_t serial,
                        const std::vector<std::vector<double>>& rows, int32_t min_doubles = 0) {
    return add_f64_rows(std::string_view(name.tag, 4), serial, rows, min_doubles);
  }
  // The same for rows of 32-bit integers.
  Section& add_i32_rows(const SectionName& name, int32_t serial,
                        const std::vector<std::vector<int32_t>>& rows, int32_t min_words = 0);
  // An entry of four blanks at this place of the directory: it ends every
  // search, and hides what follows it.
  void add_blank_entry();
  // An entry as given, pointing wherever the caller says (for broken files).
  void add_raw_entry(std::string_view tag, int32_t serial, int64_t first, int64_t last,
                     int32_t reclen_words);
  void add_raw_entry(const SectionName& name, int32_t serial, int64_t first, int64_t last,
                     int32_t reclen_words) {
    add_raw_entry(std::string_view(name.tag, 4), serial, first, last, reclen_words);
  }

  Section* find(std::string_view tag, int32_t serial);
  Section* find(const SectionName& name, int32_t serial) {
    return find(std::string_view(name.tag, 4), serial);
  }

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

  // Typed writers, one section each (two for the pairs), records from 1.
  // History cases (THIF, serial 3).
  Section& history_cases(const std::vector<HistoryCase>& cases);
  // The element form of each case (THLG, serial 1, first file).
  Section& element_forms(const std::vector<int32_t>& form_of_case);
  // Node transforms (NDSP, serial 3), node 1 first; with SEVENTH_DOF each
  // record holds seven equation numbers and the archive says so (MTKM).
  Section& node_transforms(const std::vector<NodeTransform>& nodes, bool seventh_dof = false);
  // Modal coordinates of modal set 1 and mode shapes (MDSP, MSHP, serial 3).
  void modal_histories(const ModalHistory& modal);
  // Direct histories (DMED, serial 1, direct file FILE_NO): acceleration,
  // velocity and displacement of each equation from 1, NSTEPS values each.
  Section& direct_histories(int32_t file_no, const std::vector<EquationHistory>& equations,
                            int32_t nsteps);
  // Displacement of every equation at activation (DSPL, serial 1, direct
  // file 1), equation 1 first.
  Section& activation_displacements(const std::vector<double>& by_equation);
  // Support motion of a case (MSES and MSER, serial HIST_CASE).
  void support_motion(int32_t hist_case, const SupportMotion& motion, int32_t nsteps);
  // Ground motion (GRMT, serial 3), case 1 first.
  Section& ground_motion(const std::vector<GroundMotion>& by_case);
  // Skew systems of nodes (NSKI, serial 3).
  Section& skew_systems(const std::vector<SkewSystem>& systems);
  // Elements activated during a case (IASI with one flag per case, IASE;
  // serial 4, first file).
  void inactive_elements(const std::vector<int32_t>& case_flags,
                         const std::vector<InactiveEntry>& entries);
  // Initial end forces of a case (ITTR, ITBM or ITBW, serial HIST_CASE), one
  // record per element.
  Section& initial_forces(const SectionName& name, int32_t hist_case,
                          const std::vector<std::vector<double>>& by_element);
  // Element records (serial 3, or 4 under element form 2).
  Section& truss_records(int32_t serial, const std::vector<TrussRecord>& records);
  Section& extended_truss_records(int32_t serial, const std::vector<ExtendedTrussRecord>& records);
  Section& beam_records(int32_t serial, const std::vector<BeamRecord>& records);
  Section& wall_beam_records(int32_t serial, const std::vector<WallBeamRecord>& records);
  Section& solid_records(int32_t serial, const std::vector<SolidRecord>& records);
  Section& solid_high_records(int32_t serial, const std::vector<SolidHighRecord>& records);
  // Plate records (PLAT; under the tag "J.W.U" the general form; PLTH).
  Section& plate_records(int32_t serial, const std::vector<PlateRecord>& records);
  Section& general_plate_records(int32_t serial, const std::vector<GeneralPlateRecord>& records);
  Section& plate_high_records(int32_t serial, const std::vector<PlateHighRecord>& records);
  // Plane element records: PSTR or PSRN (three- and four-node), PSTH or
  // PSRH (six- and eight-node); NAME is the section.
  Section& plane_records(const SectionName& name, int32_t serial,
                         const std::vector<PlaneRecord>& records);
  Section& plane_high_records(const SectionName& name, int32_t serial,
                              const std::vector<PlaneHighRecord>& records);
  // Node coordinates (CORD, serial 3), node 1 first.
  Section& node_coordinates(const std::vector<std::array<double, 3>>& xyz);
  // Element table (ELMT, serial 3): per element its words, the material
  // number first.
  Section& element_table(const std::vector<std::vector<int32_t>>& rows);
  // Materials (MATL, serial 3).
  Section& materials(const std::vector<MaterialRecord>& records);

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
