// Result families and the names of their components.
//
// A family is an element type of the kernel (1 to 14). Its components come in
// two tables: the result rows that a history returns one at a time (the
// component is the row), and the selectors of a snapshot, each of which
// returns one value per point of an element (both ends of a beam, the centre
// and nodes of a plate).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "respcore/sections.hpp"

namespace respcore::cli {

struct Family {
  int elem_type = 0;
  std::string name;         // e.g. "beam"
  std::string description;  // one line
  SectionName section;      // element or node section in the second file
  bool node = false;        // node results (serial section NDSP, item = node)
};

// The fourteen families, in element-type order.
const std::vector<Family>& families();
// By name (case-insensitive, '_' as '-') or by number 1..14.
const Family* find_family(std::string_view text);

struct Component {
  int number = 0;
  std::string name;
  std::string meaning;
};

struct ComponentTable {
  std::vector<Component> rows;       // history rows; empty: any row 1..350 by number
  std::vector<Component> selectors;  // snapshot selectors; empty: any selector by number
  bool numbered_selectors = false;   // selectors past the named ones are taken by number
};

const ComponentTable& component_table(int elem_type);

// Labels of the M points that snapshot selector C returns for one item.
std::vector<std::string> point_labels(int elem_type, int selector, int m);

// The row of a history component, by name or number. Throws CliError with
// a one-line message when it is neither.
Component resolve_row(const Family& f, std::string_view text);
// The selector of a snapshot component, by name or number.
Component resolve_selector(const Family& f, std::string_view text);

}  // namespace respcore::cli
