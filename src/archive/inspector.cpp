// The archive inspector: the directories of an archive's files, read with
// the directory codec the kernel uses, checked entry by entry against the
// file, and every fault put in words.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include "archive/directory_codec.hpp"
#include "archive/record_address.hpp"
#include "respcore/archive_inspector.hpp"

namespace respcore {

namespace {

std::string show_tag(const Tag4& t) {
  std::string s;
  for (const char ch : t) {
    const auto c = static_cast<unsigned char>(ch);
    if (std::isprint(c)) {
      s.push_back(ch);
    } else {
      static const char* hex = "0123456789abcdef";
      s += "\\x";
      s.push_back(hex[c >> 4]);
      s.push_back(hex[c & 15]);
    }
  }
  return s;
}

std::string fmt_float(float v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%g", static_cast<double>(v));
  return buf;
}

class RecordReader {
 public:
  explicit RecordReader(const std::string& path) : in_(path, std::ios::binary) {}
  bool ok() const { return static_cast<bool>(in_); }
  // Bytes [offset, offset + n) or false if the file is shorter.
  bool read(uint64_t offset, void* dst, size_t n) {
    in_.clear();
    in_.seekg(static_cast<std::streamoff>(offset));
    in_.read(static_cast<char*>(dst), static_cast<std::streamsize>(n));
    return static_cast<size_t>(in_.gcount()) == n;
  }

 private:
  std::ifstream in_;
};

// What is wrong with the head record at WHERE against the first head
// (identifier, version, file code, entries per block), or nothing.
std::string head_problem(const DirHead& head, const DirHead& first, const std::string& where) {
  if (std::memcmp(head.identifier.data(), DIR_IDENTIFIER, 4) != 0) {
    return where + " starts with '" + show_tag(head.identifier) + "', not 'QVX '";
  }
  if (head.version != first.version) {
    return where + " has version " + fmt_float(head.version) + ", the first " +
           fmt_float(first.version);
  }
  if (head.file_code != first.file_code) {
    return where + " has file code " + std::to_string(head.file_code) + ", the first " +
           std::to_string(first.file_code);
  }
  if (head.entries != DIR_ENTRIES_PER_BLOCK) {
    return where + " announces " + std::to_string(head.entries) + " entries, 20 expected";
  }
  return {};
}

// What is wrong with the place of section S in a file of SIZE bytes, or
// nothing.
std::string section_problem(const SectionInfo& s, uint64_t size) {
  const std::string name = "section " + s.tag + "/" + std::to_string(s.serial);
  if (s.reclen < 1) return name + " has record length " + std::to_string(s.reclen);
  if (s.first < 1 || s.last < s.first - 1) {
    return name + " has records " + std::to_string(s.first) + " to " + std::to_string(s.last);
  }
  // Where its last record ends (in long double: an absurd entry may point
  // past what 64 bits hold).
  const long double end = static_cast<long double>(s.last) * 4.0L * s.reclen;
  if (end > static_cast<long double>(size)) {
    char bytes[64];
    std::snprintf(bytes, sizeof bytes, "%.0Lf", end);
    return name + " needs " + bytes +
           " bytes (records " + std::to_string(s.first) + " to " + std::to_string(s.last) + " of " +
           std::to_string(s.reclen) + " words), the file holds " + std::to_string(size);
  }
  return {};
}

// The blocks of the directory from record 1 on, into F; stops at the first
// fault, which it states.
void read_directory(FileInspection& f) {
  RecordReader in(f.path);
  if (!in.ok()) {
    f.problem = "cannot open the file";
    return;
  }
  const uint64_t size = f.size;
  unsigned char rec[DIR_WORDS_64 * DIR_BYTES_PER_WORD] = {};
  // The form: the version in the first head record, at the same place in both.
  if (!in.read(0, rec, static_cast<size_t>(dir_record_bytes(false)))) {
    f.problem = "too short for a directory (" + std::to_string(size) + " bytes)";
    return;
  }
  const DirHead first = decode_head(rec, false);
  if (std::memcmp(first.identifier.data(), DIR_IDENTIFIER, 4) != 0) {
    f.problem = "not an archive file: the head record starts with '" + show_tag(first.identifier) +
                "', not 'QVX '";
    return;
  }
  const bool wide = first.version == dir_version(true);
  if (!wide && first.version != dir_version(false)) {
    f.problem = "unknown directory version " + fmt_float(first.version) +
                " in head record 1 (1.0 or 2.0 expected)";
    return;
  }
  f.form = wide ? DirectoryForm::Wide : DirectoryForm::Plain;
  f.file_code = first.file_code;
  const auto L = static_cast<uint64_t>(dir_record_bytes(wide));

  std::set<int64_t> seen;
  int64_t H = 1;
  while (H != 0) {
    const std::string where = "head record " + std::to_string(H);
    if (H < 0 || !seen.insert(H).second) {
      f.problem = H < 0 ? "directory chain points to record " + std::to_string(H)
                        : "directory chain loops back to record " + std::to_string(H);
      return;
    }
    const int64_t head_off = record_offset(H, static_cast<int64_t>(L));
    if (head_off == kNoRecord || !in.read(static_cast<uint64_t>(head_off), rec, L)) {
      f.problem = where + " lies beyond the end of the file (" + std::to_string(size) + " bytes)";
      return;
    }
    const DirHead head = decode_head(rec, wide);
    f.problem = head_problem(head, first, where);
    if (!f.sound()) return;
    ++f.blocks;
    for (int64_t n = 1; n <= DIR_ENTRIES_PER_BLOCK; ++n) {
      const int64_t r = record_number(H, n + 1);
      const int64_t off = record_offset(r, static_cast<int64_t>(L));
      if (off == kNoRecord || !in.read(static_cast<uint64_t>(off), rec, L)) {
        f.problem = "directory entry at record " +
                    std::to_string(static_cast<uint64_t>(H) + static_cast<uint64_t>(n)) +
                    " lies beyond the end of the file";
        return;
      }
      const DirEntry e = decode_entry(rec, wide);
      if (e.tag == BLANK_TAG) return;  // a blank entry ends the directory
      SectionInfo s;
      s.tag = show_tag(e.tag);
      s.serial = e.serial;
      s.first = e.first;
      s.last = e.last;
      s.reclen = e.reclen;
      f.sections.push_back(s);
      if (e.tag == HEAD_TAG) continue;  // the directory's own entry
      f.problem = section_problem(s, size);
      if (!f.sound()) return;
    }
    H = head.next;
  }
}

}  // namespace

const SectionInfo* FileInspection::find(std::string_view tag, int32_t serial) const {
  for (const SectionInfo& s : sections) {
    if (s.tag == tag && s.serial == serial) return &s;
  }
  return nullptr;
}

const FileInspection* ArchiveInspection::file(ArchiveFileKind kind, int32_t direct_no) const {
  for (const FileInspection& f : files) {
    if (f.kind == kind && (kind != ArchiveFileKind::Direct || f.direct_no == direct_no)) return &f;
  }
  return nullptr;
}

FileInspection inspect_file(const std::string& path) {
  FileInspection f;
  f.path = path;
  std::error_code ec;
  const auto size = std::filesystem::file_size(path, ec);
  if (ec) {
    f.exists = std::filesystem::exists(path);
    f.problem = "cannot read the file: " + ec.message();
    return f;
  }
  f.exists = true;
  f.size = size;
  read_directory(f);
  return f;
}

ArchiveInspection inspect_archive(const std::string& base, const std::string& product_tag) {
  if (ArchiveWriter::extension(product_tag, 1).empty()) {
    throw std::invalid_argument("unknown product tag " + product_tag);
  }
  ArchiveInspection a;
  a.base = base;
  a.product_tag = product_tag;
  auto add = [&](ArchiveFileKind kind, int32_t no, const std::string& path) {
    FileInspection f = inspect_file(path);
    f.kind = kind;
    f.direct_no = no;
    a.files.push_back(std::move(f));
  };
  add(ArchiveFileKind::First, 0, base + ArchiveWriter::extension(product_tag, 1));
  add(ArchiveFileKind::Second, 0, base + ArchiveWriter::extension(product_tag, 2));
  for (int32_t n = 1; n <= 99; ++n) {
    const std::string path = base + ArchiveWriter::extension(product_tag, 3) + std::to_string(n);
    std::error_code ec;
    if (std::filesystem::is_regular_file(path, ec)) add(ArchiveFileKind::Direct, n, path);
  }
  return a;
}

std::optional<std::vector<unsigned char>> read_section_record(const FileInspection& file,
                                                              const SectionInfo& section,
                                                              int64_t rec, size_t nbytes) {
  if (rec < 1 || rec > section.records() || section.reclen < 1) return std::nullopt;
  RecordReader in(file.path);
  std::vector<unsigned char> buf(nbytes);
  const int64_t offset = section.offset(rec);
  if (offset < 0 || !in.ok() || !in.read(static_cast<uint64_t>(offset), buf.data(), nbytes))
    return std::nullopt;
  return buf;
}

}  // namespace respcore
