// Which archive a command means: the product tags, the files found under a
// base name (read through the library's archive inspector), and the listing
// of a file's directory.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "respcore/archive_inspector.hpp"

namespace respcore::cli {

// Prints a listing: the file, its form and size, then one line per entry.
void print_directory(std::ostream& out, const FileInspection& f, const std::string& role);

// Product tags: the ten known to the archive's file names, and the eight
// that a request can name (index 1..8).
const std::vector<std::string>& all_product_tags();
const std::vector<std::string>& request_product_tags();
// Index 1..8 of a tag, 0 if a request cannot name it.
int product_index(const std::string& tag);
// "P.R.W", "prw", "1": the tag, or an empty string.
std::string parse_product(const std::string& text);

// The archive BASE and its files. With an empty PRODUCT the tag is the one
// whose first file exists (among the tags a request can name when
// REQUESTABLE, else among all ten). Throws CliError when none or several do.
ArchiveInspection locate_archive(const std::string& base, const std::string& product,
                                 bool requestable);

}  // namespace respcore::cli
