// Output of the tool's results: an aligned table for people, CSV and JSON
// for programs.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace respcore::cli {

enum class Format { Table, Csv, Json };

// "table", "csv", "json"; throws a usage error otherwise.
Format parse_format(const std::string& text);

struct Item {
  int serial = 0;  // record in the family's section
  int number = 0;  // element or node number
};

// What a query was: shown in every format.
struct QueryInfo {
  std::string archive;  // base name
  std::string product;  // tag
  std::string family;   // name
  int elem_type = 0;
  int hist_case = 1;
  std::string storage;  // "modal" or "direct"
  std::string component;  // name
  int component_number = 0;
  std::string component_meaning;
  std::string motion;  // "relative", "absolute", "relative to node N" for node histories
  int mode = 0;        // modal filter, 0 all modes
  bool global = false;
};

struct HistoryResult {
  QueryInfo info;
  Item item;
  std::vector<double> values;  // step 1..n
};

struct SnapshotResult {
  QueryInfo info;
  int step = 1;
  std::vector<std::string> points;     // labels of the values of one item
  std::vector<Item> items;
  std::vector<std::vector<double>> values;  // per item, one per point
};

struct EnvelopeResult {
  QueryInfo info;
  int steps = 0;
  bool node = true;  // node results: items are nodes
  std::vector<Item> items;
  // The values given at each extreme: the six components of a node, or the
  // component of an element.
  std::vector<std::string> columns;
  // Per item: the values at the step of the largest value of the component,
  // then at the step of the smallest, and those steps.
  std::vector<std::vector<double>> at_max, at_min;
  std::vector<int> step_max, step_min;
};

// EVERY: print every n-th step in a table (CSV and JSON always hold all).
void print_history(std::ostream& out, const HistoryResult& r, Format f, int every = 1);
void print_snapshot(std::ostream& out, const SnapshotResult& r, Format f);
void print_envelope(std::ostream& out, const EnvelopeResult& r, Format f);

// Shortest text that reads back as the same double; "nan", "inf" as such.
std::string number_text(double v);
// A JSON string literal.
std::string json_string(const std::string& s);
// A CSV field, quoted when needed.
std::string csv_field(const std::string& s);

}  // namespace respcore::cli
