// The archive's files and directories, read independently of the kernel so
// that a broken file can be told apart from a missing section.
#include "archive_directory.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "cli_error.hpp"
#include "respcore/archive_writer.hpp"

namespace respcore::cli {

namespace {

constexpr int kEntriesPerBlock = 20;

int32_t get_i32(const unsigned char* p) {
  int32_t v;
  std::memcpy(&v, p, 4);
  return v;
}
int64_t get_i64(const unsigned char* p) {
  int64_t v;
  std::memcpy(&v, p, 8);
  return v;
}
float get_f32(const unsigned char* p) {
  float v;
  std::memcpy(&v, p, 4);
  return v;
}

std::string show_tag(const unsigned char* p) {
  std::string s;
  for (int i = 0; i < 4; ++i) {
    const unsigned char c = p[i];
    if (std::isprint(c)) {
      s.push_back(static_cast<char>(c));
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

}  // namespace

const DirEntry* DirListing::find(const std::string& tag, int32_t serial) const {
  for (const DirEntry& e : entries) {
    if (e.tag == tag && e.serial == serial) return &e;
  }
  return nullptr;
}

DirListing read_directory(const std::string& path) {
  DirListing d;
  d.path = path;
  std::error_code ec;
  const auto size = std::filesystem::file_size(path, ec);
  if (ec) {
    d.error = "cannot read the file: " + ec.message();
    return d;
  }
  d.size = size;
  RecordReader in(path);
  if (!in.ok()) {
    d.error = "cannot open the file";
    return d;
  }

  // The form: the version in the first head record (offset 8 in both forms).
  unsigned char head[28] = {};
  if (!in.read(0, head, 20)) {
    d.error = "too short for a directory (" + std::to_string(size) + " bytes)";
    return d;
  }
  if (std::memcmp(head, "QVX ", 4) != 0) {
    d.error = "not an archive file: the head record starts with '" + show_tag(head) + "', not 'QVX '";
    return d;
  }
  const float version = get_f32(head + 8);
  if (version == 2.0f) {
    d.wide = true;
  } else if (version != 1.0f) {
    d.error = "unknown directory version " + fmt_float(version) + " in head record 1 (1.0 or 2.0 expected)";
    return d;
  }
  d.file_code = get_i32(head + 4);
  const uint64_t L = d.wide ? 28 : 20;

  std::set<int64_t> seen;
  int64_t H = 1;
  while (H != 0) {
    const std::string where = "head record " + std::to_string(H);
    if (H < 0 || !seen.insert(H).second) {
      d.error = H < 0 ? "directory chain points to record " + std::to_string(H)
                      : "directory chain loops back to record " + std::to_string(H);
      return d;
    }
    if (!in.read(static_cast<uint64_t>(H - 1) * L, head, L)) {
      d.error = where + " lies beyond the end of the file (" + std::to_string(size) + " bytes)";
      return d;
    }
    if (std::memcmp(head, "QVX ", 4) != 0) {
      d.error = where + " starts with '" + show_tag(head) + "', not 'QVX '";
      return d;
    }
    if (get_f32(head + 8) != version) {
      d.error = where + " has version " + fmt_float(get_f32(head + 8)) + ", the first " + fmt_float(version);
      return d;
    }
    if (get_i32(head + 4) != d.file_code) {
      d.error = where + " has file code " + std::to_string(get_i32(head + 4)) + ", the first " + std::to_string(d.file_code);
      return d;
    }
    if (get_i32(head + 12) != kEntriesPerBlock) {
      d.error = where + " announces " + std::to_string(get_i32(head + 12)) + " entries, 20 expected";
      return d;
    }
    ++d.blocks;
    const int64_t next = d.wide ? get_i64(head + 16) : get_i32(head + 16);
    unsigned char rec[28] = {};
    for (int n = 1; n <= kEntriesPerBlock; ++n) {
      const int64_t r = H + n;
      if (!in.read(static_cast<uint64_t>(r - 1) * L, rec, L)) {
        d.error = "directory entry at record " + std::to_string(r) + " lies beyond the end of the file";
        return d;
      }
      if (std::memcmp(rec, "    ", 4) == 0) return d;  // a blank entry ends the directory
      DirEntry e;
      e.tag = show_tag(rec);
      e.serial = get_i32(rec + 4);
      if (d.wide) {
        e.first = get_i64(rec + 8);
        e.last = get_i64(rec + 16);
        e.reclen = get_i32(rec + 24);
      } else {
        e.first = get_i32(rec + 8);
        e.last = get_i32(rec + 12);
        e.reclen = get_i32(rec + 16);
      }
      d.entries.push_back(e);
      if (e.tag == "HEAD") continue;  // the directory's own entry
      const std::string name = "section " + e.tag + "/" + std::to_string(e.serial);
      if (e.reclen < 1) {
        d.error = name + " has record length " + std::to_string(e.reclen);
        return d;
      }
      if (e.first < 1 || e.last < e.first - 1) {
        d.error = name + " has records " + std::to_string(e.first) + " to " + std::to_string(e.last);
        return d;
      }
      const long double end = static_cast<long double>(e.last) * 4.0L * e.reclen;
      if (end > static_cast<long double>(size)) {
        d.error = name + " needs " + std::to_string(static_cast<unsigned long long>(end)) +
                  " bytes (records " + std::to_string(e.first) + " to " + std::to_string(e.last) +
                  " of " + std::to_string(e.reclen) + " words), the file holds " + std::to_string(size);
        return d;
      }
    }
    H = next;
  }
  return d;
}

void print_directory(std::ostream& out, const DirListing& d, const std::string& role) {
  out << d.path << "  (" << role << ")\n";
  if (d.blocks == 0 && !d.error.empty()) return;
  out << "  " << (d.wide ? "64-bit form (version 2.0, 28-byte directory records)"
                         : "plain form (version 1.0, 20-byte directory records)")
      << ", file code " << d.file_code << ", " << d.blocks << " directory block"
      << (d.blocks == 1 ? "" : "s") << ", " << d.size << " bytes\n";
  char line[160];
  std::snprintf(line, sizeof line, "  %-6s %8s %14s %14s %8s %12s\n", "tag", "serial", "first", "last",
                "reclen", "records");
  out << line;
  for (const DirEntry& e : d.entries) {
    std::snprintf(line, sizeof line, "  %-6s %8d %14lld %14lld %8d %12lld\n", e.tag.c_str(), e.serial,
                  static_cast<long long>(e.first), static_cast<long long>(e.last), e.reclen,
                  static_cast<long long>(e.records()));
    out << line;
  }
}

std::optional<std::vector<unsigned char>> read_section_record(const DirListing& file,
                                                              const DirEntry& section, int64_t rec,
                                                              size_t nbytes) {
  if (rec < 1 || rec > section.records() || section.reclen < 1) return std::nullopt;
  RecordReader in(file.path);
  std::vector<unsigned char> buf(nbytes);
  const uint64_t offset = static_cast<uint64_t>(section.first + rec - 2) * 4u * static_cast<uint64_t>(section.reclen);
  if (!in.ok() || !in.read(offset, buf.data(), nbytes)) return std::nullopt;
  return buf;
}

const std::vector<std::string>& all_product_tags() {
  static const std::vector<std::string> tags = {"P.R.W", "Q.L.D", "R.H.V", "U.K.Y", "W.M.Z",
                                                "Y.J.P", "D.X.K", "H.N.Q", "Z.B.T", "J.W.U"};
  return tags;
}

const std::vector<std::string>& request_product_tags() {
  static const std::vector<std::string> tags = {"P.R.W", "Y.J.P", "U.K.Y", "H.N.Q",
                                                "W.M.Z", "J.W.U", "Q.L.D", "R.H.V"};
  return tags;
}

int product_index(const std::string& tag) {
  const auto& t = request_product_tags();
  const auto it = std::find(t.begin(), t.end(), tag);
  return it == t.end() ? 0 : static_cast<int>(it - t.begin()) + 1;
}

std::string parse_product(const std::string& text) {
  if (text.size() == 1 && text[0] >= '1' && text[0] <= '8') {
    return request_product_tags()[static_cast<size_t>(text[0] - '1')];
  }
  std::string letters;
  for (char c : text) {
    if (std::isalpha(static_cast<unsigned char>(c))) letters.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
    else if (c != '.') return "";
  }
  for (const std::string& t : all_product_tags()) {
    if (letters.size() == 3 && t[0] == letters[0] && t[2] == letters[1] && t[4] == letters[2]) return t;
  }
  return "";
}

ArchiveFiles locate_archive(const std::string& base, const std::string& product, bool requestable) {
  namespace fs = std::filesystem;
  auto exists = [](const std::string& p) {
    std::error_code ec;
    return fs::is_regular_file(p, ec);
  };
  ArchiveFiles a;
  a.base = base;
  if (!product.empty()) {
    a.tag = parse_product(product);
    if (a.tag.empty()) throw usage_error("unknown product tag '" + product + "' (e.g. P.R.W, or 1 to 8)");
    if (requestable && product_index(a.tag) == 0) {
      throw usage_error("product tag " + a.tag + " cannot be named in a request (only " + request_product_tags().front() + " ... " + request_product_tags().back() + ")");
    }
    const std::string first = base + ArchiveWriter::extension(a.tag, 1);
    if (!exists(first)) throw CliError("no archive at " + base + " for product " + a.tag + " (" + first + " does not exist)");
  } else {
    const auto& tags = requestable ? request_product_tags() : all_product_tags();
    std::vector<std::string> found;
    std::string looked;
    for (const std::string& t : tags) {
      const std::string ext = ArchiveWriter::extension(t, 1);
      looked += (looked.empty() ? "" : ", ") + ext;
      if (exists(base + ext)) found.push_back(t);
    }
    if (found.empty()) throw CliError("no archive at " + base + " (no file " + base + " with " + looked + ")");
    if (found.size() > 1) {
      std::string list;
      for (const auto& t : found) list += (list.empty() ? "" : ", ") + t;
      throw usage_error("several archives at " + base + " (" + list + "); choose one with --product");
    }
    a.tag = found.front();
  }
  a.first = base + ArchiveWriter::extension(a.tag, 1);
  a.second = base + ArchiveWriter::extension(a.tag, 2);
  for (int n = 1; n <= 99; ++n) {
    const std::string p = base + ArchiveWriter::extension(a.tag, 3) + std::to_string(n);
    if (exists(p)) a.direct.emplace_back(n, p);
  }
  return a;
}

}  // namespace respcore::cli
