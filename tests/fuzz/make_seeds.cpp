// Writes the seed corpus of the fuzz targets into DIR/request and
// DIR/directory: archives of every family written by the archive writer, in
// both directory forms, with requests that reach every road through them,
// and the spoiled archives of known faults (fault-*), each a regression case.
//
//   make_fuzz_seeds tests/fuzz/corpus
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz_input.hpp"
#include "respcore/archive_writer.hpp"

namespace {

using namespace respcore;
namespace fs = std::filesystem;

constexpr int32_t kSteps = 4;
constexpr int32_t kNodes = 4;  // node n: equations 6(n-1)+1 .. 6n
constexpr int32_t kModes = 3;

// A deterministic value for position I of a table.
double v(int i) { return std::sin(1.0 + 0.37 * i) * (1 + i % 7); }
std::vector<double> values(int n, int salt) {
  std::vector<double> out;
  for (int i = 0; i < n; ++i) out.push_back(v(i + 31 * salt));
  return out;
}
std::vector<double> count_up(int n, int from = 1) {
  std::vector<double> out;
  for (int i = 0; i < n; ++i) out.push_back(from + i);
  return out;
}

// The request fields of fuzz_input.hpp.
struct Ask {
  int32_t type, comp, mode = 1, items = 1, steps = kSteps, step = 1, mode_no = 0, axis = 1;
  std::vector<int32_t> items_list = {1, 2, 3, 4};
};

// Nodes, case 1 and its motion: modal (MODAL), or direct in file 1; the
// ground motion and a skew system for the node requests. With SUPPORT the
// translations of node 1 are constrained.
void motion(ArchiveWriter& w, bool modal, bool support = false) {
  std::vector<NodeTransform> nodes;
  for (int n = 1; n <= kNodes; ++n) nodes.push_back({count_up(6, 6 * (n - 1) + 1), {}});
  if (support) nodes[0].equations = {0, 0, 0, 4, 5, 6};
  w.node_transforms(nodes);
  const int32_t neq = 6 * kNodes;
  if (modal) {
    w.history_cases({{1, 1, kSteps, kModes, 0}});
    ModalHistory h;
    for (int m = 0; m < kModes; ++m) {
      h.coords.emplace_back();
      for (int s = 0; s < kSteps; ++s) h.coords.back().push_back({v(m * 9 + s), v(m + s), v(s)});
    }
    for (int e = 0; e < neq; ++e) h.shapes.push_back(values(kModes, e));
    w.modal_histories(h);
  } else {
    w.history_cases({{2, 1, kSteps, 0, 0}});
    std::vector<EquationHistory> eqs;
    for (int e = 0; e < neq; ++e)
      eqs.push_back({values(kSteps, 3 * e), values(kSteps, 3 * e + 1), values(kSteps, 3 * e + 2)});
    w.direct_histories(1, eqs, kSteps);
  }
  GroundMotion g;
  for (int d = 0; d < 3; ++d)
    for (int q = 0; q < 3; ++q) g[static_cast<size_t>(d)][static_cast<size_t>(q)] = values(kSteps, 9 * d + q);
  w.ground_motion({g});
  SkewSystem sk;
  sk.node = 2;
  sk.matrix = {0, 1, 0, -1, 0, 0, 0, 0, 1};
  w.skew_systems({sk});
}

void materials(ArchiveWriter& w) {
  w.element_table({{1}, {1}});
  MaterialRecord m;
  m.number = 1;
  m.young = 2.0e5;
  m.poisson = 0.3;
  w.materials({m});
}

struct Family {
  std::string name;
  std::string tag = "P.R.W";
  bool modal_too = true;
  std::function<void(ArchiveWriter&)> records;
  std::vector<Ask> asks;
};

std::vector<Family> families() {
  std::vector<Family> out;
  out.push_back({"node", "P.R.W", true, [](ArchiveWriter&) {},
                 {{9, 1}, {10, 5, 2, 3}, {11, 2, 3, 2}, {9, 3, 1, 1, kSteps, 2}, {9, 2, 1, 2, kSteps, 3},
                  {9, 1, 3, 2, kSteps, 1, 0, 0}}});
  out.push_back({"support", "P.R.W", false,
                 [](ArchiveWriter& w) {
                   SupportMotion sm;
                   for (int c = 1; c <= 3; ++c) {
                     sm.rows.push_back({1, c});
                     sm.histories.push_back({values(kSteps, c), values(kSteps, c + 1), values(kSteps, c + 2)});
                   }
                   w.support_motion(1, sm, kSteps);
                   TrussRecord t;
                   t.lm = {0, 0, 0, 7, 8, 9};
                   t.strs = values(24, 5);
                   w.truss_records(3, {t});
                 },
                 {{9, 1}, {9, 2, 2, 1}, {12, 1}}});
  out.push_back({"truss", "P.R.W", true,
                 [](ArchiveWriter& w) {
                   TrussRecord t;
                   t.lm = count_up(6);
                   t.strs = values(24, 1);
                   TrussRecord u = t;
                   u.lm = count_up(6, 7);
                   u.scale = 2.0;
                   w.truss_records(3, {t, u});
                   w.initial_forces(sections::ITTR, 1, {{1.5, -1.5}, {0.5, 0.25}});
                   w.inactive_elements({1}, {{0, 1, 2}});
                   w.activation_displacements(values(6 * kNodes, 7));
                 },
                 {{12, 1}, {12, 3, 2, 2}, {12, 2, 1, 1}}});
  out.push_back({"truss-extended", "H.N.Q", false,
                 [](ArchiveWriter& w) {
                   ExtendedTrussRecord x;
                   x.truss.lm = count_up(12);
                   x.truss.strs = values(48, 2);
                   x.truss.scale = -1.0;
                   x.nodes_a = {1};
                   x.nodes_b = {2};
                   w.truss_records(3, {x.truss});
                   w.extended_truss_records(3, {x});
                 },
                 {{12, 1}, {12, 4, 2, 1}}});
  out.push_back({"beam", "P.R.W", true,
                 [](ArchiveWriter& w) {
                   BeamRecord b;
                   b.lm = count_up(12);
                   b.strs = values(26 * 12, 3);
                   w.beam_records(3, {b, b});
                   w.initial_forces(sections::ITBM, 1, {values(12, 4), values(12, 5)});
                 },
                 {{13, 1}, {13, 27}, {13, 14, 2, 2}, {13, 30, 1, 1, kSteps, 1, 2}}});
  out.push_back({"wall-beam", "P.R.W", false,
                 [](ArchiveWriter& w) {
                   WallBeamRecord b;
                   b.lm = count_up(14);
                   b.strs = values(72 * 14, 6);
                   w.wall_beam_records(3, {b});
                 },
                 {{14, 1}, {14, 31}, {14, 20, 2, 1}}});
  out.push_back({"solid", "P.R.W", false,
                 [](ArchiveWriter& w) {
                   SolidRecord s;
                   s.lm = count_up(24);
                   s.nr = 78;
                   s.strs = values(78 * 24, 8);
                   s.nn = 8;
                   s.axes = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
                   w.solid_records(3, {s});
                   materials(w);
                 },
                 {{4, 30}, {4, 80, 1, 1, kSteps, 1, 0, 0}, {4, 5, 2, 1}}});
  out.push_back({"solid-high", "P.R.W", false,
                 [](ArchiveWriter& w) {
                   const std::vector<std::array<double, 3>> tet10 = {
                       {0, 0, 0},     {1, 0, 0},   {0, 1, 0},   {0, 0, 1},     {0.5, 0, 0},
                       {0.5, 0.5, 0}, {0, 0.5, 0}, {0, 0, 0.5}, {0.5, 0, 0.5}, {0, 0.5, 0.5}};
                   w.node_coordinates(tet10);
                   SolidHighRecord s;
                   s.nodes = count_up(10);
                   s.equations = count_up(24);
                   s.equations.resize(30, 0.0);
                   s.mat_vals = {2.0e5, 0.3};
                   w.solid_high_records(3, {s});
                   materials(w);
                 },
                 {{8, 70}, {8, 2, 2, 1}}});
  return out;
}

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  return std::string((std::istreambuf_iterator<char>(in)), {});
}

void spit(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

int32_t product_index(const std::string& tag) {
  const char* tags[8] = {"P.R.W", "Y.J.P", "U.K.Y", "H.N.Q", "W.M.Z", "J.W.U", "Q.L.D", "R.H.V"};
  for (int i = 0; i < 8; ++i)
    if (tag == tags[i]) return i + 1;
  return 1;
}

// The files of the archive BASE under TAG, with the request ASK.
fuzz::RequestInput input_of(const std::string& base, const std::string& tag, const Ask& a) {
  fuzz::RequestInput in;
  in.fields = {a.type, a.comp, 1, a.steps, a.items, a.step, a.mode, product_index(tag), a.mode_no,
               a.axis};
  for (int i = 0; i < 4; ++i) {
    in.fields[static_cast<size_t>(10 + i)] = a.items_list[static_cast<size_t>(i)];
    in.fields[static_cast<size_t>(14 + i)] = a.items_list[static_cast<size_t>(i)];
  }
  const std::string paths[4] = {base + ArchiveWriter::extension(tag, 1), base + ArchiveWriter::extension(tag, 2),
                                base + ArchiveWriter::extension(tag, 3) + "1",
                                base + ArchiveWriter::extension(tag, 3) + "2"};
  for (size_t f = 0; f < 4; ++f) {
    in.files[f] = slurp(paths[f]);
    in.present[f] = true;
  }
  return in;
}

// Archives of known faults: one word (or entry) of a sound archive spoiled.
struct Fault {
  std::string name;
  DirectoryForm form;
  bool modal;
  std::function<void(ArchiveWriter&)> records;
  Ask ask;
};

std::vector<Fault> faults() {
  auto beam = [](int word, double value) {
    return [=](ArchiveWriter& w) {
      BeamRecord b;
      b.lm = count_up(12);
      b.strs = values(26 * 12, 3);
      std::vector<double> words = b.words();
      words[static_cast<size_t>(word - 1)] = value;
      w.second().add_f64_rows(sections::BEAM, 3, {words});
    };
  };
  std::vector<Fault> out;
  // A count word of 5.0e9: its two digits are 0, whatever its size.
  out.push_back({"fault-1-beam-count-word", DirectoryForm::Plain, false, beam(325, 5.0e9), {13, 1, 1, 1, 200}});
  out.push_back({"fault-1-wall-beam-count-word", DirectoryForm::Plain, false,
                 [](ArchiveWriter& w) {
                   WallBeamRecord b;
                   b.lm = count_up(14);
                   b.strs = values(72 * 14, 6);
                   std::vector<double> words = b.words();
                   words[1050] = 5.0e9;
                   w.second().add_f64_rows(sections::WBMM, 3, {words});
                 },
                 {14, 1, 1, 1, 200}});
  out.push_back({"fault-1-truss-ndof-word", DirectoryForm::Plain, false,
                 [](ArchiveWriter& w) {
                   TrussRecord t;
                   t.lm = count_up(6);
                   t.strs = values(24, 1);
                   std::vector<double> words = t.words();
                   words[60] = 1.3e8;
                   w.second().add_f64_rows(sections::TRUS, 3, {words});
                 },
                 {12, 1, 1, 1, 200}});
  // No equations and 3e9 rows.
  out.push_back({"fault-2-beam-rows", DirectoryForm::Plain, false,
                 [](ArchiveWriter& w) {
                   BeamRecord b;
                   b.neq = 0;
                   b.nrow = 0;
                   std::vector<double> words = b.words();
                   words[325] = 3.0e9;
                   w.second().add_f64_rows(sections::BEAM, 3, {words});
                 },
                 {13, 1, 1, 1, 200}});
  // A modal case of 44,000,000 stored steps and one mode.
  for (int mode : {1, 3}) {
    out.push_back({mode == 1 ? "fault-3-modal-steps-history" : "fault-3-modal-steps-envelope",
                   DirectoryForm::Plain, true,
                   [](ArchiveWriter& w) { w.history_cases({{1, 1, 44000000, 1, 0}}); },
                   {9, 1, mode, mode == 1 ? 1 : 4, 200}});
  }
  // A 64-bit entry whose first record is 2^63 - 1.
  out.push_back({"fault-4-first-record", DirectoryForm::Wide, false,
                 [](ArchiveWriter& w) {
                   w.second().add_raw_entry(sections::BEAM, 3, INT64_MAX, INT64_MAX, 654);
                 },
                 {13, 1, 1, 1, 200}});
  return out;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUTDIR\n", argv[0]);
    return 2;
  }
  const fs::path out = argv[1];
  fs::create_directories(out / "request");
  fs::create_directories(out / "directory");
  const fs::path work = fuzz::scratch_dir();
  int n_request = 0, n_directory = 0;
  auto emit = [&](const std::string& name, const std::string& base, const std::string& tag,
                  const std::vector<Ask>& asks, bool files_too) {
    for (size_t i = 0; i < asks.size(); ++i) {
      const auto bytes = fuzz::pack(input_of(base, tag, asks[i]));
      spit(out / "request" / (name + "-" + std::to_string(i + 1)),
           std::string(bytes.begin(), bytes.end()));
      ++n_request;
    }
    if (!files_too) return;
    for (int kind = 1; kind <= 3; ++kind) {
      const std::string path = base + ArchiveWriter::extension(tag, kind) + (kind == 3 ? "1" : "");
      const std::string b = slurp(path);
      if (b.empty()) continue;
      spit(out / "directory" / (name + "-" + std::to_string(kind)), b);
      ++n_directory;
    }
  };
  for (const Family& f : families()) {
    for (const DirectoryForm form : {DirectoryForm::Plain, DirectoryForm::Wide}) {
      for (const bool modal : {false, true}) {
        if (modal && !f.modal_too) continue;
        const std::string name = f.name + (form == DirectoryForm::Wide ? "-wide" : "-plain") +
                                 (modal ? "-modal" : "");
        const std::string base = (work / name).string();
        ArchiveWriter w(base, f.tag, form);
        w.first();
        motion(w, modal, f.name == "support");
        f.records(w);
        w.write();
        // The directory seeds: one archive of each family and form.
        emit(name, base, f.tag, f.asks, !modal);
      }
    }
  }
  for (const Fault& f : faults()) {
    const std::string base = (work / f.name).string();
    ArchiveWriter w(base, "P.R.W", f.form);
    w.first();
    if (f.modal) {
      // The case's own THIF replaces the one of the motion.
      w.node_transforms({{count_up(6), {}}});
      ModalHistory h;
      h.coords = {{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}};
      h.shapes = {values(1, 1), values(1, 2), values(1, 3), values(1, 4), values(1, 5), values(1, 6)};
      w.modal_histories(h);
    } else {
      motion(w, false);
    }
    f.records(w);
    w.write();
    emit(f.name, base, "P.R.W", {f.ask}, f.form == DirectoryForm::Wide);
  }
  std::printf("%d request seeds, %d directory seeds in %s\n", n_request, n_directory,
              out.string().c_str());
  return 0;
}
