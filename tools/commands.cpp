// The subcommands: find and check the archive, turn the arguments into
// kernel requests, run them, and hand the results to the output formats.
#include "commands.hpp"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>

#include "archive_directory.hpp"
#include "cli_error.hpp"
#include "components.hpp"
#include "frame_demo.hpp"
#include "output.hpp"
#include "query.hpp"
#include "respcore/kernel.hpp"
#include "svg_plot.hpp"

namespace respcore::cli {

namespace {

// The archive, case and family section of a query, checked.
struct Opened {
  ArchiveView archive;
  CaseInfo c;
  FamilySection section;
};

Opened open_query(const QueryOptions& o, const Family& fam) {
  Opened q{open_archive_view(o.base, o.product), {}, {}};
  q.c = case_info(q.archive, o.hist_case);
  q.section = family_section(q.archive, q.c, fam);
  return q;
}

QueryInfo info_of(const QueryOptions& o, const Family& fam, const Opened& a, const Component& comp) {
  QueryInfo q;
  q.archive = o.base;
  q.product = a.archive.files.product_tag;
  q.family = fam.name;
  q.elem_type = fam.elem_type;
  q.hist_case = o.hist_case;
  q.storage = a.c.storage;
  q.component = comp.name;
  q.component_number = comp.number;
  q.component_meaning = comp.meaning;
  q.mode = o.mode;
  q.global = o.global;
  return q;
}

Query query_of(const QueryOptions& o, const Family& fam, const Opened& a, int comp) {
  if (o.mode < 0) throw usage_error("--mode must be 0 (all modes) or a mode number");
  Query q;
  q.base = o.base;
  q.product_index = product_index(a.archive.files.product_tag);
  q.family = &fam;
  q.comp = comp;
  q.hist_case = o.hist_case;
  q.mode = o.mode;
  q.global = o.global;
  return q;
}

// A kernel for the tool: a quiet one keeps its lines for the tool to print
// on standard error, item by item.
Kernel tool_kernel(const QueryOptions& o) {
  Kernel k;
  k.set_quiet(o.quiet);
  return k;
}

std::string item_text(const Item& it) {
  return it.serial == it.number ? std::to_string(it.serial) : std::to_string(it.serial) + ":" + std::to_string(it.number);
}

// After the output: the kernel's lines of a quiet run go to standard error,
// each with its item; any line makes the exit status 1.
int finish(const QueryOptions& o, const KernelLines& lines, const std::vector<Item>& items) {
  std::cout.flush();
  if (o.quiet) {
    for (const KernelLine& l : lines.output) {
      const bool one = l.item >= 0 && static_cast<size_t>(l.item) < items.size();
      std::cerr << (one ? "item " + item_text(items[static_cast<size_t>(l.item)]) : std::string("items")) << ": " << l.text << "\n";
    }
    for (const std::string& l : lines.diagnostics) std::cerr << l << "\n";
  }
  const size_t n = lines.output.size();
  if (n == 0) return 0;
  std::cerr << "respcore: the kernel reported " << n << " error line" << (n == 1 ? "" : "s")
            << (o.quiet ? "" : " (above)") << "; the values may be incomplete\n";
  return EXIT_ARCHIVE;
}

// A progress line on standard error for requests that run longer than a
// second, when standard error is a terminal.
class ProgressLine {
 public:
  ProgressLine() : start_(std::chrono::steady_clock::now()), tty_(isatty(STDERR_FILENO) != 0) {
    fn_ = [this](size_t done, size_t total) { update(done, total); };
  }
  ~ProgressLine() {
    if (shown_) std::cerr << "\n";
  }
  // Null when standard error is not a terminal: the request then runs in one go.
  const Progress* progress() const { return tty_ ? &fn_ : nullptr; }

 private:
  void update(size_t done, size_t total) {
    const auto now = std::chrono::steady_clock::now();
    if (now - start_ < std::chrono::seconds(1) || now - last_ < std::chrono::milliseconds(200)) {
      if (!(shown_ && done == total)) return;
    }
    last_ = now;
    shown_ = true;
    std::cerr << "\rrespcore: " << done << " of " << total << " items (" << (100 * done / std::max<size_t>(total, 1)) << "%)" << std::flush;
  }

  std::chrono::steady_clock::time_point start_, last_{};
  bool tty_ = false;
  bool shown_ = false;
  Progress fn_;
};

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
  const Opened a = open_query(o, fam);
  check_item(fam, a.section, item);
  if (o.relative_to != 0) check_item(fam, a.section, Item{o.relative_to, o.relative_to});
  const int steps = steps_of(o.steps, a.c);

  QueryInfo info = info_of(o, fam, a, comp);
  if (fam.node) {
    info.motion = o.absolute ? "absolute" : o.relative_to != 0 ? "relative to node " + std::to_string(o.relative_to) : "relative";
  }
  Kernel k = tool_kernel(o);
  KernelLines lines;
  HistoryResult h;
  h.info = info;
  h.item = item;
  h.values = query_history(k, query_of(o, fam, a, comp.number), item, steps, {o.absolute, o.relative_to}, lines);
  print_history(out, h, format, o.every);
  out.flush();

  if (!o.plot.empty()) {
    PlotText t;
    const std::string what = fam.node ? "node " + std::to_string(item.number) : fam.name + " " + std::to_string(item.number) + " (record " + std::to_string(item.serial) + ")";
    t.title = what + ": " + comp.name + " over time";
    t.subtitle = "archive " + o.base + " (" + a.archive.files.product_tag + "), case " + std::to_string(o.hist_case) + ", " +
                 a.c.storage + " storage" + (comp.meaning.empty() ? "" : "; " + comp.meaning);
    t.x_label = "time step";
    t.y_label = comp.name + " (row " + std::to_string(comp.number) + ")";
    write_svg_line_plot(o.plot, h.values, t);
  }
  return finish(o, lines, {item});
}

int run_snapshot(const SnapshotOptions& o, std::ostream& out) {
  const Family& fam = family_of(o.type);
  const Component comp = resolve_selector(fam, o.comp);
  const Format format = parse_format(o.format);
  const Opened a = open_query(o, fam);
  const std::vector<Item> items = parse_items(o.items, a.section.records());
  for (const Item& it : items) check_item(fam, a.section, it);
  if (o.step < 1) throw usage_error("--step must be a step number from 1");
  if (a.c.stored_steps > 0 && o.step > a.c.stored_steps) {
    throw usage_error("--step " + std::to_string(o.step) + " is past the " + std::to_string(a.c.stored_steps) +
                      " steps stored for case " + std::to_string(o.hist_case));
  }

  Kernel k = tool_kernel(o);
  KernelLines lines;
  SnapshotValues v;
  {
    ProgressLine progress;
    v = query_snapshot(k, query_of(o, fam, a, comp.number), items, o.step, lines, {o.quiet, progress.progress()});
  }
  SnapshotResult s;
  s.info = info_of(o, fam, a, comp);
  s.step = o.step;
  s.items = items;
  s.points = point_labels(fam.elem_type, comp.number, v.points);
  const size_t m = static_cast<size_t>(std::max(v.points, 0));
  for (size_t i = 0; i < items.size(); ++i) {
    s.values.emplace_back(v.values.begin() + static_cast<ptrdiff_t>(i * m), v.values.begin() + static_cast<ptrdiff_t>((i + 1) * m));
  }
  print_snapshot(out, s, format);
  out.flush();
  return finish(o, lines, items);
}

int run_envelope(const EnvelopeOptions& o, std::ostream& out) {
  const Family& fam = family_of(o.type);
  const Component comp = resolve_row(fam, o.comp);
  if (fam.node && comp.number > 6) throw usage_error("a node envelope scans one of the six components x, y, z, rx, ry, rz");
  const Format format = parse_format(o.format);
  const Opened a = open_query(o, fam);
  const std::vector<Item> items = parse_items(o.items, a.section.records());
  for (const Item& it : items) check_item(fam, a.section, it);
  const int steps = steps_of(o.steps, a.c);

  Kernel k = tool_kernel(o);
  KernelLines lines;
  EnvelopeValues v;
  {
    ProgressLine progress;
    v = query_envelope(k, query_of(o, fam, a, comp.number), items, steps, lines, {o.quiet, progress.progress()});
  }
  EnvelopeResult e;
  e.info = info_of(o, fam, a, comp);
  if (fam.node) e.info.motion = "relative";
  e.steps = steps;
  e.node = fam.node;
  e.items = items;
  if (fam.node) e.columns = {"x", "y", "z", "rx", "ry", "rz"};
  else e.columns = {comp.name};
  const size_t w = static_cast<size_t>(v.width);
  for (size_t i = 0; i < items.size(); ++i) {
    e.at_max.emplace_back(v.at_max.begin() + static_cast<ptrdiff_t>(i * w), v.at_max.begin() + static_cast<ptrdiff_t>((i + 1) * w));
    e.at_min.emplace_back(v.at_min.begin() + static_cast<ptrdiff_t>(i * w), v.at_min.begin() + static_cast<ptrdiff_t>((i + 1) * w));
    e.step_max.push_back(v.step_max[i]);
    e.step_min.push_back(v.step_min[i]);
  }
  print_envelope(out, e, format);
  out.flush();
  return finish(o, lines, items);
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
