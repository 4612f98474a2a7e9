// The subcommands: find and check the archive, turn the arguments into
// kernel requests, run them, and hand the results to the output formats.
#include "commands.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>

#include "archive_directory.hpp"
#include "cli_error.hpp"
#include "components.hpp"
#include "frame_demo.hpp"
#include "output.hpp"
#include "respcore/kernel.hpp"
#include "svg_plot.hpp"

namespace respcore::cli {

namespace {

std::optional<int> to_int(std::string_view s) {
  int v = 0;
  if (s.empty()) return std::nullopt;
  const auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (ec != std::errc() || p != s.data() + s.size()) return std::nullopt;
  return v;
}

const Family& family_of(const std::string& type) {
  const Family* f = find_family(type);
  if (f == nullptr) {
    throw usage_error("unknown type '" + type + "' (a name such as beam, truss, node-displacement, or 1 to 14; see 'respcore components')");
  }
  return *f;
}

// SERIAL or SERIAL:NUMBER, both positive.
Item parse_item(std::string_view text) {
  const size_t colon = text.find(':');
  const auto serial = to_int(text.substr(0, colon));
  const auto number = colon == std::string_view::npos ? serial : to_int(text.substr(colon + 1));
  if (!serial || !number || *serial < 1 || *number < 1) {
    throw usage_error("bad item '" + std::string(text) + "' (SERIAL or SERIAL:NUMBER, positive integers)");
  }
  return {*serial, *number};
}

// "1,4,7-9,12:112", or "all" (every record of a section of NREC records).
std::vector<Item> parse_items(const std::string& text, int64_t nrec) {
  std::vector<Item> items;
  if (text == "all") {
    for (int64_t r = 1; r <= nrec; ++r) items.push_back({static_cast<int>(r), static_cast<int>(r)});
    return items;
  }
  size_t pos = 0;
  while (pos <= text.size()) {
    const size_t comma = text.find(',', pos);
    const std::string_view part(text.data() + pos, (comma == std::string::npos ? text.size() : comma) - pos);
    const size_t dash = part.find('-');
    if (dash != std::string_view::npos && part.find(':') == std::string_view::npos) {
      const auto a = to_int(part.substr(0, dash)), b = to_int(part.substr(dash + 1));
      if (!a || !b || *a < 1 || *b < *a) throw usage_error("bad item range '" + std::string(part) + "'");
      if (*b - *a > 1000000) throw usage_error("item range '" + std::string(part) + "' is too long");
      for (int v = *a; v <= *b; ++v) items.push_back({v, v});
    } else {
      items.push_back(parse_item(part));
    }
    if (comma == std::string::npos) break;
    pos = comma + 1;
  }
  if (items.empty()) throw usage_error("no items given");
  return items;
}

// What a query needs to know of its archive before it asks the kernel.
struct ArchiveContext {
  ArchiveInspection files;
  const FileInspection* first = nullptr;
  const FileInspection* second = nullptr;
  std::array<int32_t, 5> ithif{};
  int num_cases = 0;
  int elem_form = 1;
  int stored_steps = 0;
  std::string storage;
  SectionInfo element_section;
  std::string element_section_name;
};

const FileInspection& checked(const FileInspection* f) {
  if (!f->sound()) throw CliError(f->path + ": " + f->problem);
  return *f;
}

ArchiveContext open_archive(const QueryOptions& o, const Family& fam) {
  ArchiveContext c;
  c.files = locate_archive(o.base, o.product, true);
  c.first = &checked(c.files.file(ArchiveFileKind::First));
  c.second = &checked(c.files.file(ArchiveFileKind::Second));
  const std::string& second_path = c.second->path;

  const SectionInfo* thif = c.second->find(sections::THIF, 3);
  if (thif == nullptr) throw CliError(second_path + ": no history cases (section THIF, serial 3)");
  c.num_cases = static_cast<int>(thif->records());
  if (o.hist_case < 1 || o.hist_case > c.num_cases) {
    throw usage_error("case " + std::to_string(o.hist_case) + " is not in the archive (it holds " +
                      std::to_string(c.num_cases) + " case" + (c.num_cases == 1 ? "" : "s") + ")");
  }
  const auto rec = read_section_record(*c.second, *thif, o.hist_case, 20);
  if (!rec) throw CliError(second_path + ": cannot read history case " + std::to_string(o.hist_case));
  std::memcpy(c.ithif.data(), rec->data(), 20);

  const std::string& tag = c.files.product_tag;
  if (tag != "J.W.U" && tag != "H.N.Q") {
    if (const SectionInfo* thlg = c.first->find(sections::THLG, 1)) {
      if (const auto r = read_section_record(*c.first, *thlg, o.hist_case, 4)) std::memcpy(&c.elem_form, r->data(), 4);
    }
  }

  if (c.ithif[0] == 1) {
    c.storage = "modal";
    for (const SectionName& t : {sections::MDSP, sections::MSHP}) {
      if (c.second->find(t, 3) == nullptr) throw CliError(second_path + ": case " + std::to_string(o.hist_case) + " is modal but section " + t.tag + " is missing");
    }
  } else if (c.ithif[0] == 2 || c.ithif[0] == 3) {
    c.storage = "direct";
    const int no = c.ithif[1];
    const FileInspection* direct = c.files.file(ArchiveFileKind::Direct, no);
    if (direct == nullptr) {
      throw CliError("case " + std::to_string(o.hist_case) + " keeps its histories in direct file " + std::to_string(no) + ", which does not exist at " + o.base);
    }
    checked(direct);
    const SectionInfo* dmed = direct->find(sections::DMED, 1);
    if (dmed == nullptr) throw CliError(direct->path + ": no direct histories (section DMED)");
    if (c.ithif[2] <= 0) c.stored_steps = dmed->reclen / 2;
  } else {
    c.storage = "unknown (" + std::to_string(c.ithif[0]) + ")";
  }
  if (c.ithif[2] > 0) c.stored_steps = c.ithif[2];

  const int serial = fam.node ? 3 : (c.elem_form == 2 ? 4 : 3);
  const std::string section_tag = fam.section.tag;
  c.element_section_name = section_tag + "/" + std::to_string(serial);
  const SectionInfo* sec = c.second->find(fam.section, serial);
  if (sec == nullptr) {
    throw CliError(second_path + ": no " + fam.name + " results here (no section " + section_tag + ", serial " + std::to_string(serial) + ")");
  }
  c.element_section = *sec;
  return c;
}

// The number of steps of a query: all stored steps unless asked otherwise.
int steps_of(const QueryOptions& o, const ArchiveContext& c) {
  if (o.steps < 0) throw usage_error("--steps must be positive");
  if (o.steps == 0) {
    if (c.stored_steps <= 0) throw usage_error("the archive does not tell how many steps case " + std::to_string(o.hist_case) + " holds; give --steps");
    return c.stored_steps;
  }
  if (c.stored_steps > 0 && o.steps > c.stored_steps) {
    throw usage_error("--steps " + std::to_string(o.steps) + " exceeds the " + std::to_string(c.stored_steps) +
                      " steps stored for case " + std::to_string(o.hist_case));
  }
  return o.steps;
}

void check_item(const Family& fam, const ArchiveContext& c, const Item& it) {
  const int key = fam.node ? it.number : it.serial;
  const int64_t n = c.element_section.records();
  if (key > n) {
    throw usage_error(std::string(fam.node ? "node " : "item ") + std::to_string(key) + " is past the " +
                      c.element_section_name + " section of " + c.second->path + " (" + std::to_string(n) + " records)");
  }
}

QueryInfo info_of(const QueryOptions& o, const Family& fam, const ArchiveContext& c, const Component& comp) {
  QueryInfo q;
  q.archive = o.base;
  q.product = c.files.product_tag;
  q.family = fam.name;
  q.elem_type = fam.elem_type;
  q.hist_case = o.hist_case;
  q.storage = c.storage;
  q.component = comp.name;
  q.component_number = comp.number;
  q.component_meaning = comp.meaning;
  q.mode = o.mode;
  q.global = o.global;
  return q;
}

Request base_request(const QueryOptions& o, const Family& fam, const ArchiveContext& c, int comp) {
  if (o.mode < 0) throw usage_error("--mode must be 0 (all modes) or a mode number");
  Request r;
  r.base = o.base;
  r.elem_type = fam.elem_type;
  r.result_comp = comp;
  r.hist_case = o.hist_case;
  r.product_index = product_index(c.files.product_tag);
  r.mode_no = o.mode;
  r.axis_flag = o.global ? 1 : 0;
  return r;
}

// Runs a request; a stopped run ends the command, error lines of the kernel
// (already on standard output) are counted.
Result run_kernel(Kernel& k, const Request& r, int& error_lines) {
  Result res = k.run(r);
  if (res.status != STATUS_DONE) {
    throw CliError(res.status == STATUS_STOPPED ? "the kernel stopped the run (a singular element)"
                                                : "the kernel failed on the request (status " + std::to_string(res.status) + ")");
  }
  error_lines += static_cast<int>(res.output_lines.size());
  return res;
}

int finish(int error_lines) {
  if (error_lines == 0) return 0;
  std::cerr << "respcore: the kernel reported " << error_lines << " error line" << (error_lines == 1 ? "" : "s")
            << " (above); the values may be incomplete\n";
  return EXIT_ARCHIVE;
}

std::vector<Item> checked_items(const std::string& text, const Family& fam, const ArchiveContext& c) {
  std::vector<Item> items = parse_items(text, c.element_section.records());
  for (const Item& it : items) check_item(fam, c, it);
  return items;
}

}  // namespace

int run_sections(const std::string& base, const std::string& product, std::ostream& out) {
  const ArchiveInspection archive = locate_archive(base, product, false);
  std::vector<std::pair<const FileInspection*, std::string>> list;
  for (const FileInspection& f : archive.files) {
    switch (f.kind) {
      case ArchiveFileKind::First:
        list.emplace_back(&f, "first file");
        break;
      case ArchiveFileKind::Second:
        if (f.exists) list.emplace_back(&f, "second file");
        else std::cerr << "respcore: " << f.path << ": missing (the second file)\n";
        break;
      case ArchiveFileKind::Direct:
        list.emplace_back(&f, "direct file " + std::to_string(f.direct_no));
        break;
    }
  }
  out << "archive " << base << " (" << archive.product_tag << "), " << list.size() << " files\n";
  int broken = 0;
  for (const auto& [f, role] : list) {
    out << "\n";
    print_directory(out, *f, role);
    if (!f->sound()) {
      out.flush();
      std::cerr << "respcore: " << f->path << ": " << f->problem << "\n";
      ++broken;
    }
  }
  return broken > 0 || list.size() < 2 ? EXIT_ARCHIVE : 0;
}

int run_history(const HistoryOptions& o, std::ostream& out) {
  const Family& fam = family_of(o.type);
  const Component comp = resolve_row(fam, o.comp);
  const Format format = parse_format(o.format);
  const Item item = parse_item(o.item);
  if (o.every < 1) throw usage_error("--every must be positive");
  if (!fam.node && (o.absolute || o.relative_to != 0)) {
    throw usage_error("--absolute and --relative-to apply to node results only");
  }
  if (o.absolute && o.relative_to != 0) throw usage_error("--absolute and --relative-to exclude each other");
  if (o.relative_to < 0) throw usage_error("--relative-to takes a node number");
  const ArchiveContext c = open_archive(o, fam);
  check_item(fam, c, item);
  const int steps = steps_of(o, c);

  Request r = base_request(o, fam, c, comp.number);
  r.num_steps = steps;
  r.request_mode = 1;
  r.step_no = 1;
  r.serials = {item.serial};
  r.elements = {item.number};
  QueryInfo info = info_of(o, fam, c, comp);
  if (fam.node) info.motion = "relative";
  if (o.absolute) {
    r.step_no = 2;
    info.motion = "absolute";
  } else if (o.relative_to != 0) {
    const Item other{o.relative_to, o.relative_to};
    check_item(fam, c, other);
    r.step_no = 3;
    r.num_items = 2;
    r.serials.push_back(other.serial);
    r.elements.push_back(other.number);
    info.motion = "relative to node " + std::to_string(o.relative_to);
  }
  Kernel k;
  int error_lines = 0;
  const Result res = run_kernel(k, r, error_lines);

  HistoryResult h;
  h.info = info;
  h.item = item;
  h.values = res.values;
  print_history(out, h, format, o.every);
  out.flush();

  if (!o.plot.empty()) {
    PlotText t;
    const std::string what = fam.node ? "node " + std::to_string(item.number) : fam.name + " " + std::to_string(item.number) + " (record " + std::to_string(item.serial) + ")";
    t.title = what + ": " + comp.name + " over time";
    t.subtitle = "archive " + o.base + " (" + c.files.product_tag + "), case " + std::to_string(o.hist_case) + ", " +
                 c.storage + " storage" + (comp.meaning.empty() ? "" : "; " + comp.meaning);
    t.x_label = "time step";
    t.y_label = comp.name + " (row " + std::to_string(comp.number) + ")";
    write_svg_line_plot(o.plot, h.values, t);
  }
  return finish(error_lines);
}

int run_snapshot(const SnapshotOptions& o, std::ostream& out) {
  const Family& fam = family_of(o.type);
  const Component comp = resolve_selector(fam, o.comp);
  const Format format = parse_format(o.format);
  const ArchiveContext c = open_archive(o, fam);
  const std::vector<Item> items = checked_items(o.items, fam, c);
  if (o.step < 1) throw usage_error("--step must be a step number from 1");
  if (c.stored_steps > 0 && o.step > c.stored_steps) {
    throw usage_error("--step " + std::to_string(o.step) + " is past the " + std::to_string(c.stored_steps) +
                      " steps stored for case " + std::to_string(o.hist_case));
  }

  SnapshotResult s;
  s.info = info_of(o, fam, c, comp);
  s.step = o.step;
  s.items = items;
  Kernel k;
  int error_lines = 0;
  if (fam.node) {
    // The kernel's many-items form of node results reads its one fetched
    // step at column STEP_NO, which only step 1 meets; a history up to the
    // step gives the value for any step.
    s.points = point_labels(fam.elem_type, comp.number, 1);
    for (const Item& it : items) {
      Request r = base_request(o, fam, c, comp.number);
      r.request_mode = 1;
      r.num_steps = o.step;
      r.serials = {it.serial};
      r.elements = {it.number};
      const Result res = run_kernel(k, r, error_lines);
      s.values.push_back({res.values.empty() ? 0.0 : res.values.back()});
    }
  } else {
    Request r = base_request(o, fam, c, comp.number);
    r.request_mode = 2;
    r.num_steps = 1;
    r.step_no = o.step;
    r.num_items = static_cast<int32_t>(items.size());
    for (const Item& it : items) {
      r.serials.push_back(it.serial);
      r.elements.push_back(it.number);
    }
    const int m = static_cast<int>(result_size(fam.elem_type, comp.number, 1, 1, 2));
    s.points = point_labels(fam.elem_type, comp.number, m);
    const Result res = run_kernel(k, r, error_lines);
    for (size_t i = 0; i < items.size(); ++i) {
      std::vector<double> v;
      for (int p = 0; p < m; ++p) {
        const size_t at = i * static_cast<size_t>(m) + static_cast<size_t>(p);
        v.push_back(at < res.values.size() ? res.values[at] : 0.0);
      }
      s.values.push_back(std::move(v));
    }
  }
  print_snapshot(out, s, format);
  out.flush();
  return finish(error_lines);
}

int run_envelope(const EnvelopeOptions& o, std::ostream& out) {
  const Family& fam = family_of(o.type);
  if (!fam.node) throw usage_error("envelopes are node results: use node-displacement, node-velocity or node-acceleration");
  const Component comp = resolve_row(fam, o.comp);
  if (comp.number > 6) throw usage_error("an envelope scans one of the six components x, y, z, rx, ry, rz");
  const Format format = parse_format(o.format);
  const ArchiveContext c = open_archive(o, fam);
  const std::vector<Item> items = checked_items(o.items, fam, c);
  const int steps = steps_of(o, c);

  Request r = base_request(o, fam, c, comp.number);
  r.request_mode = 3;
  r.num_steps = steps;
  r.num_items = static_cast<int32_t>(items.size());
  for (const Item& it : items) {
    r.serials.push_back(it.serial);
    r.elements.push_back(it.number);
  }
  Kernel k;
  int error_lines = 0;
  const Result res = run_kernel(k, r, error_lines);

  EnvelopeResult e;
  e.info = info_of(o, fam, c, comp);
  e.info.motion = "relative";
  e.steps = steps;
  e.items = items;
  for (size_t i = 0; i < items.size(); ++i) {
    std::vector<double> mx(6), mn(6);
    for (size_t q = 0; q < 6; ++q) {
      mx[q] = res.values.at(12 * i + q);
      mn[q] = res.values.at(12 * i + 6 + q);
    }
    e.at_max.push_back(mx);
    e.at_min.push_back(mn);
  }
  print_envelope(out, e, format);
  out.flush();
  return finish(error_lines);
}

int run_components(const std::string& type, const std::string& format_text, std::ostream& out) {
  const Format format = parse_format(format_text);
  if (type.empty()) {
    const auto& list = families();
    switch (format) {
      case Format::Table:
        for (const Family& f : list) {
          char line[200];
          std::snprintf(line, sizeof line, "%3d  %-18s %-5s %s\n", f.elem_type, f.name.c_str(), f.section.tag, f.description.c_str());
          out << line;
        }
        break;
      case Format::Csv:
        out << "type,name,section,description\n";
        for (const Family& f : list) out << f.elem_type << "," << f.name << "," << f.section.tag << "," << csv_field(f.description) << "\n";
        break;
      case Format::Json:
        out << "{\"families\": [";
        for (size_t i = 0; i < list.size(); ++i) {
          out << (i ? ", " : "") << "{\"type\": " << list[i].elem_type << ", \"name\": " << json_string(list[i].name)
              << ", \"section\": " << json_string(list[i].section.tag) << ", \"description\": " << json_string(list[i].description) << "}";
        }
        out << "]}\n";
        break;
    }
    return 0;
  }
  const Family& fam = family_of(type);
  const ComponentTable& t = component_table(fam.elem_type);
  auto points_of = [&](const Component& c) {
    const int m = static_cast<int>(result_size(fam.elem_type, c.number, 1, 1, 2));
    return point_labels(fam.elem_type, c.number, m);
  };
  switch (format) {
    case Format::Table: {
      out << fam.name << " (type " << fam.elem_type << "): " << fam.description << "\n";
      if (t.rows.empty()) {
        out << "no component names: give the row (history) or selector (snapshot) by number\n";
        return 0;
      }
      out << "\nhistory rows (--comp of 'respcore history'):\n";
      char line[240];
      std::snprintf(line, sizeof line, "  %4s  %-14s %s\n", "row", "name", "meaning");
      out << line;
      for (const Component& c : t.rows) {
        std::snprintf(line, sizeof line, "  %4d  %-14s %s\n", c.number, c.name.c_str(), c.meaning.c_str());
        out << line;
      }
      out << "\nsnapshot selectors (--comp of 'respcore snapshot'), one value per point:\n";
      std::snprintf(line, sizeof line, "  %4s  %-10s %-24s %s\n", "sel", "name", "points", "meaning");
      out << line;
      for (const Component& c : t.selectors) {
        std::string pts;
        for (const auto& p : points_of(c)) pts += (pts.empty() ? "" : " ") + p;
        std::snprintf(line, sizeof line, "  %4d  %-10s %-24s %s\n", c.number, c.name.c_str(), pts.c_str(), c.meaning.c_str());
        out << line;
      }
      break;
    }
    case Format::Csv:
      out << "table,number,name,points,meaning\n";
      for (const Component& c : t.rows) out << "row," << c.number << "," << csv_field(c.name) << ",1," << csv_field(c.meaning) << "\n";
      for (const Component& c : t.selectors) {
        out << "selector," << c.number << "," << csv_field(c.name) << "," << points_of(c).size() << "," << csv_field(c.meaning) << "\n";
      }
      break;
    case Format::Json: {
      out << "{\"family\": " << json_string(fam.name) << ", \"type\": " << fam.elem_type << ", \"rows\": [";
      for (size_t i = 0; i < t.rows.size(); ++i) {
        out << (i ? ", " : "") << "{\"number\": " << t.rows[i].number << ", \"name\": " << json_string(t.rows[i].name)
            << ", \"meaning\": " << json_string(t.rows[i].meaning) << "}";
      }
      out << "], \"selectors\": [";
      for (size_t i = 0; i < t.selectors.size(); ++i) {
        out << (i ? ", " : "") << "{\"number\": " << t.selectors[i].number << ", \"name\": " << json_string(t.selectors[i].name)
            << ", \"meaning\": " << json_string(t.selectors[i].meaning) << ", \"points\": [";
        const auto pts = points_of(t.selectors[i]);
        for (size_t p = 0; p < pts.size(); ++p) out << (p ? ", " : "") << json_string(pts[p]);
        out << "]}";
      }
      out << "]}\n";
      break;
    }
  }
  return 0;
}

int run_demo(const DemoCommandOptions& o, std::ostream& out) {
  demo::DemoOptions opt;
  if (!(o.damping >= 0 && o.damping < 1)) throw usage_error("--damping must lie in [0, 1)");
  if (o.steps < 2 || o.steps > 100000) throw usage_error("--steps must lie from 2 to 100000");
  opt.damping = o.damping;
  opt.seed = o.seed;
  opt.dt = opt.dt * opt.num_steps / o.steps;  // the record lasts the same time
  opt.num_steps = o.steps;
  demo::DemoSummary s;
  try {
    s = demo::write_demo_archive(o.dir, opt);
  } catch (const std::exception& e) {
    throw CliError(std::string("demo: ") + e.what());
  }
  char line[256];
  out << "wrote the demo archive " << s.base << " (P.R.W):\n";
  for (const auto& f : s.files) out << "  " << f << "\n";
  std::snprintf(line, sizeof line,
                "a %d-node steel frame: %d columns and %d beams (beam records), %d braces (truss records); %d equations\n",
                s.nodes, s.columns, s.beams, s.braces, s.equations);
  out << line;
  std::snprintf(line, sizeof line, "%d modes, periods %.3f s to %.4f s; %.1f%% modal damping\n", s.modes,
                s.first_period, s.last_period, 100 * s.damping);
  out << line;
  std::snprintf(line, sizeof line, "ground motion: %d steps of %.4g s, peak %.3g m/s2 along x and %.3g m/s2 along y\n",
                s.steps, s.dt, s.peak_ground_x, s.peak_ground_y);
  out << line;
  out << "case 1: modal storage; case 2: the same response stored directly\n";
  out << "units: kN, m, s; stresses in kN/m2\n";
  out << "try:  respcore history " << s.base << " --type beam --item " << s.sample_column
      << " --comp My-i --every 50 --plot column.svg\n";
  return 0;
}

}  // namespace respcore::cli
