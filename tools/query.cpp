// Checking requests against the archive, and running them through the
// kernel.
#include "query.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "cli_error.hpp"

namespace respcore::cli {

namespace {

std::optional<int> to_int(std::string_view s) {
  int v = 0;
  if (s.empty()) return std::nullopt;
  const auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (ec != std::errc() || p != s.data() + s.size()) return std::nullopt;
  return v;
}

const FileInspection& checked(const FileInspection* f) {
  if (!f->sound()) throw CliError(f->path + ": " + f->problem);
  return *f;
}

Request base_request(const Query& q) {
  if (q.mode < 0) throw usage_error("the mode must be 0 (all modes) or a mode number");
  Request r;
  r.base = q.base;
  r.elem_type = q.family->elem_type;
  r.result_comp = q.comp;
  r.hist_case = q.hist_case;
  r.product_index = q.product_index;
  r.mode_no = q.mode;
  r.axis_flag = q.global ? 1 : 0;
  return r;
}

void set_items(Request& r, const std::vector<Item>& items, size_t b, size_t e) {
  r.serials.clear();
  r.elements.clear();
  for (size_t i = b; i < e; ++i) {
    r.serials.push_back(items[i].serial);
    r.elements.push_back(items[i].number);
  }
  r.num_items = static_cast<int32_t>(e - b);
}

// Runs a request; a stopped or failed run ends the query. The lines go to
// LINES under item ITEM (-1: not one item).
Result run_kernel(Kernel& k, const Request& r, KernelLines& lines, int item) {
  Result res = k.run(r);
  if (res.status != STATUS_DONE) {
    throw CliError(res.status == STATUS_STOPPED
                       ? "the kernel stopped the run (a singular element)"
                       : "the kernel failed on the request (status " + std::to_string(res.status) + ")");
  }
  for (std::string& l : res.output_lines) lines.output.push_back({std::move(l), item});
  for (std::string& l : res.diagnostic_lines) lines.diagnostics.push_back(std::move(l));
  return res;
}

// Runs R for items [B, E); with ATTRIBUTE, a call over several items that
// reported lines is repeated item by item to tell whose lines they are.
Result run_slice(Kernel& k, Request& r, const std::vector<Item>& items, size_t b, size_t e,
                 KernelLines& lines, bool attribute) {
  set_items(r, items, b, e);
  if (!attribute || e - b == 1) return run_kernel(k, r, lines, e - b == 1 ? static_cast<int>(b) : -1);
  KernelLines bulk;
  Result res = run_kernel(k, r, bulk, -1);
  lines.diagnostics.insert(lines.diagnostics.end(), bulk.diagnostics.begin(), bulk.diagnostics.end());
  if (bulk.output.empty()) return res;
  Request one = r;
  for (size_t i = b; i < e; ++i) {
    set_items(one, items, i, i + 1);
    KernelLines each;
    run_kernel(k, one, each, static_cast<int>(i));
    lines.output.insert(lines.output.end(), each.output.begin(), each.output.end());
  }
  return res;
}

// Slices of a many-item request: one slice unless progress is reported.
size_t slice_size(size_t total, const RunOptions& run) {
  if (run.progress == nullptr || total < 2) return std::max<size_t>(total, 1);
  return std::max<size_t>(total / 100, 1);
}

void report(const RunOptions& run, size_t done, size_t total) {
  if (run.progress != nullptr) (*run.progress)(done, total);
}

}  // namespace

ArchiveView open_archive_view(const std::string& base, const std::string& product) {
  ArchiveView a;
  a.files = locate_archive(base, product, true);
  checked(a.files.file(ArchiveFileKind::First));
  checked(a.files.file(ArchiveFileKind::Second));
  return a;
}

int case_count(const ArchiveView& a) {
  const SectionInfo* thif = a.second().find(sections::THIF, 3);
  if (thif == nullptr) throw CliError(a.second().path + ": no history cases (section THIF, serial 3)");
  return static_cast<int>(thif->records());
}

CaseInfo case_info(const ArchiveView& a, int hist_case) {
  CaseInfo c;
  c.hist_case = hist_case;
  const int n = case_count(a);
  if (hist_case < 1 || hist_case > n) {
    throw usage_error("case " + std::to_string(hist_case) + " is not in the archive (it holds " + std::to_string(n) +
                      " case" + (n == 1 ? "" : "s") + ")");
  }
  const auto rec = read_section_record(a.second(), *a.second().find(sections::THIF, 3), hist_case, 20);
  if (!rec) throw CliError(a.second().path + ": cannot read history case " + std::to_string(hist_case));
  std::memcpy(c.ithif.data(), rec->data(), 20);

  const std::string& tag = a.files.product_tag;
  if (tag != "J.W.U" && tag != "H.N.Q") {
    if (const SectionInfo* thlg = a.first().find(sections::THLG, 1)) {
      if (const auto r = read_section_record(a.first(), *thlg, hist_case, 4)) std::memcpy(&c.elem_form, r->data(), 4);
    }
  }

  if (c.ithif[0] == 1) {
    c.storage = "modal";
    for (const SectionName& t : {sections::MDSP, sections::MSHP}) {
      if (a.second().find(t, 3) == nullptr) {
        throw CliError(a.second().path + ": case " + std::to_string(hist_case) + " is modal but section " + t.tag + " is missing");
      }
    }
  } else if (c.ithif[0] == 2 || c.ithif[0] == 3) {
    c.storage = "direct";
    const int no = c.ithif[1];
    const FileInspection* direct = a.files.file(ArchiveFileKind::Direct, no);
    if (direct == nullptr) {
      throw CliError("case " + std::to_string(hist_case) + " keeps its histories in direct file " + std::to_string(no) +
                     ", which does not exist at " + a.files.base);
    }
    checked(direct);
    const SectionInfo* dmed = direct->find(sections::DMED, 1);
    if (dmed == nullptr) throw CliError(direct->path + ": no direct histories (section DMED)");
    if (c.ithif[2] <= 0) c.stored_steps = dmed->reclen / 2;
  } else {
    c.storage = "unknown (" + std::to_string(c.ithif[0]) + ")";
  }
  if (c.ithif[2] > 0) c.stored_steps = c.ithif[2];
  return c;
}

FamilySection family_section(const ArchiveView& a, const CaseInfo& c, const Family& f) {
  const int serial = f.node ? 3 : (c.elem_form == 2 ? 4 : 3);
  FamilySection s;
  const std::string tag = f.section.tag;
  s.name = tag + "/" + std::to_string(serial);
  const SectionInfo* e = a.second().find(f.section, serial);
  if (e == nullptr) {
    throw CliError(a.second().path + ": no " + f.name + " results here (no section " + tag + ", serial " +
                   std::to_string(serial) + ")");
  }
  s.entry = *e;
  return s;
}

const Family& family_of(const std::string& text) {
  const Family* f = find_family(text);
  if (f == nullptr) {
    throw usage_error("unknown type '" + text + "' (a name such as beam, truss, node-displacement, or 1 to 14; see 'respcore components')");
  }
  return *f;
}

Item parse_item(std::string_view text) {
  const size_t colon = text.find(':');
  const auto serial = to_int(text.substr(0, colon));
  const auto number = colon == std::string_view::npos ? serial : to_int(text.substr(colon + 1));
  if (!serial || !number || *serial < 1 || *number < 1) {
    throw usage_error("bad item '" + std::string(text) + "' (SERIAL or SERIAL:NUMBER, positive integers)");
  }
  return {*serial, *number};
}

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

void check_item(const Family& f, const FamilySection& s, const Item& it) {
  const int key = f.node ? it.number : it.serial;
  if (key < 1) throw usage_error(std::string(f.node ? "node " : "item ") + std::to_string(key) + " is not positive");
  if (key > s.records()) {
    throw usage_error(std::string(f.node ? "node " : "item ") + std::to_string(key) + " is past the " + s.name +
                      " section (" + std::to_string(s.records()) + " records)");
  }
}

int steps_of(int steps, const CaseInfo& c) {
  if (steps < 0) throw usage_error("the number of steps must be positive");
  if (steps == 0) {
    if (c.stored_steps <= 0) {
      throw usage_error("the archive does not tell how many steps case " + std::to_string(c.hist_case) + " holds; give the steps");
    }
    return c.stored_steps;
  }
  if (c.stored_steps > 0 && steps > c.stored_steps) {
    throw usage_error(std::to_string(steps) + " steps exceed the " + std::to_string(c.stored_steps) +
                      " steps stored for case " + std::to_string(c.hist_case));
  }
  return steps;
}

std::vector<double> query_history(Kernel& k, const Query& q, const Item& item, int steps,
                                  const NodeMotion& motion, KernelLines& lines) {
  const Family& f = *q.family;
  if (!f.node && (motion.absolute || motion.relative_to != 0)) {
    throw usage_error("absolute and relative motion apply to node results only");
  }
  if (motion.absolute && motion.relative_to != 0) throw usage_error("absolute and relative motion exclude each other");
  if (motion.relative_to < 0) throw usage_error("the node of relative motion must be a node number");
  Request r = base_request(q);
  r.request_mode = 1;
  r.num_steps = steps;
  r.step_no = 1;
  r.serials = {item.serial};
  r.elements = {item.number};
  if (motion.absolute) {
    r.step_no = 2;
  } else if (motion.relative_to != 0) {
    r.step_no = 3;
    r.num_items = 2;
    r.serials.push_back(motion.relative_to);
    r.elements.push_back(motion.relative_to);
  }
  return std::move(run_kernel(k, r, lines, 0).values);
}

SnapshotValues query_snapshot(Kernel& k, const Query& q, const std::vector<Item>& items, int step,
                              KernelLines& lines, const RunOptions& run) {
  if (step < 1) throw usage_error("the step must be a step number from 1");
  const Family& f = *q.family;
  SnapshotValues s;
  const size_t n = items.size();
  if (f.node && step > 1) {
    // The kernel's many-items form of node results reads its one fetched
    // step at column STEP_NO, which only step 1 meets; a history up to the
    // step gives the value for any step.
    s.points = 1;
    s.values.resize(n);
    Request r = base_request(q);
    r.request_mode = 1;
    r.num_steps = step;
    const size_t slice = slice_size(n, run);
    for (size_t i = 0; i < n; ++i) {
      set_items(r, items, i, i + 1);
      const Result res = run_kernel(k, r, lines, static_cast<int>(i));
      s.values[i] = res.values.empty() ? 0.0 : res.values.back();
      if ((i + 1) % slice == 0 || i + 1 == n) report(run, i + 1, n);
    }
    return s;
  }
  Request r = base_request(q);
  r.request_mode = 2;
  r.num_steps = 1;
  r.step_no = step;
  s.points = static_cast<int>(result_size(f.elem_type, q.comp, 1, 1, 2));
  const size_t slice = slice_size(n, run);
  if (slice >= n) {
    s.values = std::move(run_slice(k, r, items, 0, n, lines, run.attribute_lines).values);
    report(run, n, n);
    return s;
  }
  const size_t m = static_cast<size_t>(std::max(s.points, 0));
  s.values.assign(n * m, 0.0);
  for (size_t b = 0; b < n; b += slice) {
    const size_t e = std::min(n, b + slice);
    const Result res = run_slice(k, r, items, b, e, lines, run.attribute_lines);
    std::copy_n(res.values.begin(), std::min(res.values.size(), (e - b) * m), s.values.begin() + static_cast<ptrdiff_t>(b * m));
    report(run, e, n);
  }
  return s;
}

EnvelopeValues query_envelope(Kernel& k, const Query& q, const std::vector<Item>& items, int steps,
                              KernelLines& lines, const RunOptions& run) {
  const Family& f = *q.family;
  EnvelopeValues e;
  const size_t n = items.size();
  e.step_max.assign(n, 0);
  e.step_min.assign(n, 0);
  const size_t slice = slice_size(n, run);
  if (f.node) {
    if (q.comp > 6) throw usage_error("a node envelope scans one of the six components x, y, z, rx, ry, rz");
    e.width = 6;
    e.at_max.assign(6 * n, 0.0);
    e.at_min.assign(6 * n, 0.0);
    Request r = base_request(q);
    r.request_mode = 3;
    r.num_steps = steps;
    for (size_t b = 0; b < n; b += slice) {
      const size_t end = std::min(n, b + slice);
      const Result res = run_slice(k, r, items, b, end, lines, run.attribute_lines);
      for (size_t i = b; i < end; ++i) {
        const size_t at = 12 * (i - b);
        for (size_t c = 0; c < 6; ++c) {
          e.at_max[6 * i + c] = at + c < res.values.size() ? res.values[at + c] : 0.0;
          e.at_min[6 * i + c] = at + 6 + c < res.values.size() ? res.values[at + 6 + c] : 0.0;
        }
        if (2 * (i - b) + 1 < res.extreme_steps.size()) {
          e.step_max[i] = res.extreme_steps[2 * (i - b)];
          e.step_min[i] = res.extreme_steps[2 * (i - b) + 1];
        }
      }
      report(run, end, n);
    }
    return e;
  }
  // Element families: each item's history, scanned as the kernel scans node
  // histories (a later step wins only when strictly larger or smaller).
  e.width = 1;
  e.at_max.assign(n, 0.0);
  e.at_min.assign(n, 0.0);
  Request r = base_request(q);
  r.request_mode = 1;
  r.num_steps = steps;
  for (size_t i = 0; i < n; ++i) {
    set_items(r, items, i, i + 1);
    const Result res = run_kernel(k, r, lines, static_cast<int>(i));
    if (!res.values.empty()) {
      size_t smax = 0, smin = 0;
      for (size_t s = 1; s < res.values.size(); ++s) {
        if (res.values[s] > res.values[smax]) smax = s;
        if (res.values[s] < res.values[smin]) smin = s;
      }
      e.at_max[i] = res.values[smax];
      e.at_min[i] = res.values[smin];
      e.step_max[i] = static_cast<int32_t>(smax + 1);
      e.step_min[i] = static_cast<int32_t>(smin + 1);
    }
    if ((i + 1) % slice == 0 || i + 1 == n) report(run, i + 1, n);
  }
  return e;
}

}  // namespace respcore::cli
