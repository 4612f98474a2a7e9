// The archive's files as the tool sees them: which tag an archive has, and
// the listing of a directory read by the library's archive inspector, so that
// a broken file can be told apart from a missing section.
#include "archive_directory.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>

#include "cli_error.hpp"
#include "respcore/archive_writer.hpp"

namespace respcore::cli {

void print_directory(std::ostream& out, const FileInspection& f, const std::string& role) {
  out << f.path << "  (" << role << ")\n";
  if (f.blocks == 0 && !f.sound()) return;
  out << "  " << (f.form == DirectoryForm::Wide ? "64-bit form (version 2.0, 28-byte directory records)"
                                               : "plain form (version 1.0, 20-byte directory records)")
      << ", file code " << f.file_code << ", " << f.blocks << " directory block"
      << (f.blocks == 1 ? "" : "s") << ", " << f.size << " bytes\n";
  char line[160];
  std::snprintf(line, sizeof line, "  %-6s %8s %14s %14s %8s %12s\n", "tag", "serial", "first", "last",
                "reclen", "records");
  out << line;
  for (const SectionInfo& e : f.sections) {
    std::snprintf(line, sizeof line, "  %-6s %8d %14lld %14lld %8d %12lld\n", e.tag.c_str(), e.serial,
                  static_cast<long long>(e.first), static_cast<long long>(e.last), e.reclen,
                  static_cast<long long>(e.records()));
    out << line;
  }
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

ArchiveInspection locate_archive(const std::string& base, const std::string& product,
                                 bool requestable) {
  namespace fs = std::filesystem;
  auto exists = [](const std::string& p) {
    std::error_code ec;
    return fs::is_regular_file(p, ec);
  };
  std::string tag;
  if (!product.empty()) {
    tag = parse_product(product);
    if (tag.empty()) throw usage_error("unknown product tag '" + product + "' (e.g. P.R.W, or 1 to 8)");
    if (requestable && product_index(tag) == 0) {
      throw usage_error("product tag " + tag + " cannot be named in a request (only " + request_product_tags().front() + " ... " + request_product_tags().back() + ")");
    }
    const std::string first = base + ArchiveWriter::extension(tag, 1);
    if (!exists(first)) throw CliError("no archive at " + base + " for product " + tag + " (" + first + " does not exist)");
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
    tag = found.front();
  }
  return inspect_archive(base, tag);
}

}  // namespace respcore::cli
