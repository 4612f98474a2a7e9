// Writes the seed corpus of the fuzz targets into DIR/request and
// DIR/directory: archives of every family written by the archive writer, in
// both directory forms, with requests that reach every road through them,
// and the spoiled archives of known faults (fault-*), each a regression case.
//
//   make_fuzz_seeds tests/fuzz/corpus
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "fuzz_input.hpp"

namespace {

using namespace respcore;
namespace fs = std::filesystem;

constexpr int32_t kSteps = 4;
constexpr int32_t kNodes = 4;  // node n: equations 6(n-1)+1 .. 6n
constexpr int32_t kModes = 3;

// Deterministic values: V(I), and N of them, a different run for each SALT.
double v(int i) { return std::sin(1.0 + 0.37 * i) * (1 + i % 7); }
std::vector<double> values(int n, int salt) {
  std::vector<double> out;
  for (int i = salt * 31; i < salt * 31 + n; ++i) out.push_back(v(i));
  return out;
}
std::vector<double> count_up(int n, int from = 1) {
  std::vector<double> out;
  for (int i = 0; i < n; ++i) out.push_back(from + i);
  return out;
}

// The records of the line families, sound.
TrussRecord truss(std::vector<double> lm, int salt) {
  TrussRecord t;
  t.strs = values(4 * static_cast<int>(lm.size()), salt);
  t.lm = std::move(lm);
  return t;
}
BeamRecord beam() {
  BeamRecord b;
  b.lm = count_up(12);
  b.strs = values(26 * 12, 3);
  return b;
}
WallBeamRecord wall_beam() {
  WallBeamRecord b;
  b.lm = count_up(14);
  b.strs = values(72 * 14, 6);
  return b;
}
// WORDS as the one record of section NAME, word WORD (from 1) set to VALUE.
void spoiled(ArchiveWriter& w, const SectionName& name, std::vector<double> words, int word, double value) {
  words[static_cast<size_t>(word - 1)] = value;
  w.second().add_f64_rows(name, 3, {words});
}

// The request fields of fuzz_input.hpp; the items are 1, 2, 3, 4.
struct Ask {
  int32_t type, comp, mode = 1, items = 1, steps = kSteps, step = 1, mode_no = 0, axis = 1;
};

// NODE_COUNT nodes, case 1 and its motion: modal (MODAL), or direct in file
// 1; the ground motion and a skew system for the node requests. With SUPPORT
// the translations of node 1 are constrained.
void motion(ArchiveWriter& w, bool modal, bool support = false, int node_count = kNodes,
            int steps = kSteps) {
  std::vector<NodeTransform> nodes;
  for (int n = 1; n <= node_count; ++n) nodes.push_back({count_up(6, 6 * (n - 1) + 1), {}});
  if (support) nodes[0].equations = {0, 0, 0, 4, 5, 6};
  w.node_transforms(nodes);
  if (modal) {
    w.history_cases({{1, 1, steps, kModes, 0}});
    ModalHistory h;
    for (int m = 0; m < kModes; ++m) {
      h.coords.emplace_back();
      for (int s = 0; s < steps; ++s) h.coords.back().push_back({v(m * 9 + s), v(m + s), v(s)});
    }
    for (int e = 0; e < 6 * node_count; ++e) h.shapes.push_back(values(kModes, e));
    w.modal_histories(h);
  } else {
    w.history_cases({{2, 1, steps, 0, 0}});
    std::vector<EquationHistory> eqs;
    for (int e = 0; e < 6 * node_count; ++e)
      eqs.push_back({values(steps, 3 * e), values(steps, 3 * e + 1), values(steps, 3 * e + 2)});
    w.direct_histories(1, eqs, steps);
  }
  GroundMotion g;
  for (size_t d = 0; d < 3; ++d)
    for (size_t q = 0; q < 3; ++q) g[d][q] = values(steps, static_cast<int>(9 * d + q));
  w.ground_motion({g});
  w.skew_systems({{2, {0, 1, 0, -1, 0, 0, 0, 0, 1}}});
}

void materials(ArchiveWriter& w) {
  w.element_table({{1}, {1}});
  w.materials({{1, 2.0e5, 0.3, 0, {}}});
}

// Panels and plates: nine nodes in the plane z = 0.5 (the corners and
// midsides of a unit square, node 9 its centre); a quadrilateral on the
// corners, a triangle on nodes 1, 2, 4, and their eight- and six-node forms.
const std::vector<double> kQuad = {1, 2, 3, 4}, kTri = {1, 2, 4}, kQuad8 = {1, 2, 3, 4, 5, 6, 7, 8},
                          kTri6 = {1, 2, 4, 5, 9, 8};
const std::vector<std::array<double, 3>> kPanelXyz = {{0, 0, .5},  {1, 0, .5},  {1, 1, .5}, {0, 1, .5}, {.5, 0, .5},
                                                      {1, .5, .5}, {.5, 1, .5}, {0, .5, .5}, {.5, .5, .5}};
std::array<double, 3> xyz_of(double node) { return kPanelXyz[static_cast<size_t>(node) - 1]; }
std::vector<double> equations_of(const std::vector<double>& nodes) {
  std::vector<double> lm;
  for (double n : nodes)
    for (int k = 1; k <= 6; ++k) lm.push_back(6 * (n - 1) + k);
  return lm;
}
const PlaneMaterial kPanelMaterial{{0.1}, 2.0e5, 0.3, 0, {}};
// A three- or four-node panel of OPTION (PLANE_KIND, plus 100 with drilling).
PlaneRecord panel(const std::vector<double>& nodes, int32_t option, int salt) {
  const auto n = static_cast<int32_t>(nodes.size());
  PlaneRecord r;
  r.lm = equations_of(nodes), r.strs = values(27 * 6 * n, salt), r.nodes_count = n;
  for (size_t k = 0; k < 4; ++k) r.xyz[k] = xyz_of(r.nodes[k] = k < nodes.size() ? nodes[k] : nodes.back());
  r.material = kPanelMaterial, r.option = option, r.angle = 30.0 * salt;
  return r;
}
// A three- or four-node plate of formulation FORM and section VARIANT
// (PLATE_PROP(11)); RELEASE frees the rotations of its second node.
PlateRecord plate(const std::vector<double>& nodes, int32_t form, int32_t variant, bool release, int salt) {
  PlateRecord r;
  r.lm = equations_of(nodes), r.forces = values(24 * 6 * static_cast<int>(nodes.size()), salt), r.nodes = nodes;
  for (double n : nodes) r.offset_xyz.push_back(xyz_of(n));
  r.prop = {0.1, 0.1, 0.2, 0.2, 0.2, 0.05, -0.05, 0.05, -0.05, 0.0, static_cast<double>(variant)};
  r.young = 2.0e5, r.poisson = 0.3, r.release_flag = release, r.release_codes[1] = 111, r.form = form;
  return r;
}
GeneralPlateRecord general_plate(const std::vector<double>& nodes, int32_t form, int salt) {
  const int n = static_cast<int>(nodes.size());
  return {nodes, {.1, .1, .1, .1, .1}, 1, {0, 0, .01, 0, 0, .01, 0, 0, .01, 0, 0, .01}, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
          0.5, -0.5, equations_of(nodes), values(36 * n * n, salt), values((8 * n + 8) * 6 * n, salt + 1), form};
}
PlateHighRecord plate_high(const std::vector<double>& n) { return {equations_of(n), n, {0.1, 0.1}, 2.0e5, 0.3, 0, {}}; }
// The node coordinates and the element table of the panels and plates.
void panel_model(ArchiveWriter& w) {
  w.node_coordinates(kPanelXyz);
  w.element_table({{1}, {1}, {1}, {1}});
  w.materials({{1, 2.0e5, 0.3, 0, {}}});
}

// An archive of one family: its records beside the motion, its requests.
struct Family {
  std::string name;
  int32_t product = 1;  // PRODUCT_INDEX
  bool modal_too = true;
  std::function<void(ArchiveWriter&)> records;
  std::vector<Ask> asks;
  int32_t nodes = kNodes;  // of the motion
  int32_t steps = kSteps;  // stored
};

std::vector<Family> families() {
  std::vector<Family> out;
  out.push_back({"node", 1, true, [](ArchiveWriter&) {},
                 {{9, 1}, {10, 5, 2, 3}, {11, 2, 3, 2}, {9, 3, 1, 1, kSteps, 2}, {9, 2, 1, 2, kSteps, 3},
                  {9, 1, 3, 2, kSteps, 1, 0, 0}}});
  out.push_back({"support", 1, false,
                 [](ArchiveWriter& w) {
                   SupportMotion sm;
                   for (int c = 1; c <= 3; ++c) {
                     sm.rows.push_back({1, c});
                     sm.histories.push_back({values(kSteps, c), values(kSteps, c + 1), values(kSteps, c + 2)});
                   }
                   w.support_motion(1, sm, kSteps);
                   w.truss_records(3, {truss({0, 0, 0, 7, 8, 9}, 5)});
                 },
                 {{9, 1}, {9, 2, 2, 1}, {12, 1}}});
  out.push_back({"truss", 1, true,
                 [](ArchiveWriter& w) {
                   TrussRecord u = truss(count_up(6, 7), 1);
                   u.scale = 2.0;
                   w.truss_records(3, {truss(count_up(6), 1), u});
                   w.initial_forces(sections::ITTR, 1, {{1.5, -1.5}, {0.5, 0.25}});
                   w.inactive_elements({1}, {{0, 1, 2}});
                   w.activation_displacements(values(6 * kNodes, 7));
                 },
                 {{12, 1}, {12, 3, 2, 2}, {12, 2, 1, 1}}});
  out.push_back({"truss-extended", 4, false,  // "H.N.Q"
                 [](ArchiveWriter& w) {
                   ExtendedTrussRecord x;
                   x.truss = truss(count_up(12), 2);
                   x.truss.scale = -1.0;
                   x.nodes_a = {1};
                   x.nodes_b = {2};
                   w.truss_records(3, {x.truss});
                   w.extended_truss_records(3, {x});
                 },
                 {{12, 1}, {12, 4, 2, 1}, {12, 1, 2, 20}}});
  out.push_back({"beam", 1, true,
                 [](ArchiveWriter& w) {
                   w.beam_records(3, {beam(), beam()});
                   w.initial_forces(sections::ITBM, 1, {values(12, 4), values(12, 5)});
                 },
                 {{13, 1}, {13, 27}, {13, 14, 2, 2}, {13, 30, 1, 1, kSteps, 1, 2}, {13, 2, 2, 20}}});
  out.push_back({"wall-beam", 1, false, [](ArchiveWriter& w) { w.wall_beam_records(3, {wall_beam()}); },
                 {{14, 1}, {14, 31}, {14, 20, 2, 1}, {14, 3, 2, 20}}});
  out.push_back({"solid", 1, false,
                 [](ArchiveWriter& w) {
                   w.solid_records(3, {{count_up(24), 78, values(78 * 24, 8), 8,
                                        {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}}});
                   materials(w);
                 },
                 {{4, 30}, {4, 80, 1, 1, kSteps, 1, 0, 0}, {4, 5, 2, 1}}});
  out.push_back({"solid-high", 1, false,
                 [](ArchiveWriter& w) {
                   w.node_coordinates({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.5, 0, 0},
                                       {0.5, 0.5, 0}, {0, 0.5, 0}, {0, 0, 0.5}, {0.5, 0, 0.5}, {0, 0.5, 0.5}});
                   std::vector<double> equations = count_up(24);
                   equations.resize(30, 0.0);
                   w.solid_high_records(3, {{count_up(10), equations, {2.0e5, 0.3}}});
                   materials(w);
                 },
                 {{8, 70}, {8, 2, 2, 1}}});
  // Panels and plates, items 1..4 the records of serials 1..4; a history of
  // more than 64 steps takes its own road through the panels.
  out.push_back({"plane", 1, true,
                 [](ArchiveWriter& w) {
                   w.plane_records(sections::PSTR, 3, {panel(kQuad, 0, 1), panel(kTri, 100, 2), panel(kTri, 0, 3)});
                   w.plane_records(sections::PSRN, 3, {panel(kQuad, 1, 0), panel(kTri, 101, 2), panel(kTri, 1, 0)});
                   w.plane_high_records(sections::PSTH, 3, {{equations_of(kQuad8), kQuad8, kPanelMaterial}});
                   w.plane_high_records(sections::PSRH, 3, {{equations_of(kTri6), kTri6, kPanelMaterial}});
                   panel_model(w);
                 },
                 {{1, 14, 1, 3}, {2, 14, 1, 3, kSteps, 1, 0, 0}, {5, 30}, {6, 50, 1, 1, kSteps, 1, 0, 1}, {1, 3, 2, 3},
                  {1, 16, 1, 1, 70}, {2, 40, 2, 2}, {2, 33, 1, 1, 70}, {5, 40, 1, 1, 70}, {6, 2, 3, 1}},
                 9});
  out.push_back({"plate", 1, true,
                 [](ArchiveWriter& w) {
                   w.plate_records(3, {plate(kQuad, 0, 0, false, 1), plate(kTri, 1, 0, true, 2),
                                       plate(kQuad, 3, 1, true, 3), plate(kTri, 2, 2, false, 4)});
                   w.plate_high_records(3, {plate_high(kQuad8), plate_high(kTri6)});
                   panel_model(w);
                 },
                 {{3, 30, 1, 4}, {7, 60, 1, 2}, {3, 70, 2, 2}, {7, 10, 2, 2}, {3, 5, 3, 4}, {7, 150, 3, 1}}, 9});
  // The general form; its tag turns the strain-state panels' results alike.
  out.push_back({"plate-general", 6, false,  // "J.W.U"
                 [](ArchiveWriter& w) {
                   w.general_plate_records(3, {general_plate(kQuad, 1, 1), general_plate(kTri, 0, 2)});
                   w.plate_high_records(3, {plate_high(kQuad8), plate_high(kTri6)});
                   w.plane_records(sections::PSRN, 3, {panel(kQuad, 1, 1), panel(kTri, 101, 2)});
                   panel_model(w);
                 },
                 {{3, 40, 1, 2}, {7, 100, 1, 2}, {2, 35, 3, 1}, {3, 80, 2, 2}, {2, 14, 1, 2}}, 9});
  // Histories of more than 64 stored steps: one row of a long history is
  // combined from the displacement histories as they are read.
  out.push_back({"line-long", 1, true,
                 [](ArchiveWriter& w) {
                   w.beam_records(3, {beam()});
                   w.solid_records(3, {{count_up(24), 78, values(78 * 24, 8), 8,
                                        {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}}});
                   materials(w);
                 },
                 {{13, 1, 1, 1, 70}, {13, 30, 1, 1, 70, 1, 2}, {4, 30, 1, 1, 70}, {4, 80, 1, 1, 66}},
                 kNodes, 70});
  out.push_back({"panel-long", 1, true,
                 [](ArchiveWriter& w) {
                   w.plane_records(sections::PSTR, 3, {panel(kQuad, 100, 1)});
                   w.plate_records(3, {plate(kQuad, 0, 0, false, 1), plate(kTri, 1, 0, true, 2)});
                   w.plate_high_records(3, {plate_high(kQuad8)});
                   panel_model(w);
                 },
                 {{1, 14, 1, 1, 70}, {3, 30, 1, 1, 70}, {3, 70, 1, 1, 70, 1, 0, 0}, {7, 60, 1, 1, 70}},
                 9, 70});
  return out;
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
  const auto plain = DirectoryForm::Plain;
  BeamRecord empty;  // no equations, no rows
  empty.neq = empty.nrow = 0;
  return {
      // Count words of 5.0e9 (two digits 0, whatever the size), an NDOF of 1.3e8.
      {"fault-1-beam-count-word", plain, false,
       [](ArchiveWriter& w) { spoiled(w, sections::BEAM, beam().words(), 325, 5.0e9); }, {13, 1, 1, 1, 200}},
      {"fault-1-wall-beam-count-word", plain, false,
       [](ArchiveWriter& w) { spoiled(w, sections::WBMM, wall_beam().words(), 1051, 5.0e9); }, {14, 1, 1, 1, 200}},
      {"fault-1-truss-ndof-word", plain, false,
       [](ArchiveWriter& w) { spoiled(w, sections::TRUS, truss(count_up(6), 1).words(), 61, 1.3e8); },
       {12, 1, 1, 1, 200}},
      // No equations and 3e9 rows.
      {"fault-2-beam-rows", plain, false,
       [empty](ArchiveWriter& w) { spoiled(w, sections::BEAM, empty.words(), 326, 3.0e9); }, {13, 1, 1, 1, 200}},
      // A modal case of 44,000,000 stored steps and one mode.
      {"fault-3-modal-steps-history", plain, true,
       [](ArchiveWriter& w) { w.history_cases({{1, 1, 44000000, 1, 0}}); }, {9, 1, 1, 1, 200}},
      {"fault-3-modal-steps-envelope", plain, true,
       [](ArchiveWriter& w) { w.history_cases({{1, 1, 44000000, 1, 0}}); }, {9, 1, 3, 4, 200}},
      // A plane record whose matrix columns lie 10^6 words apart.
      {"fault-plane-matrix-stride", plain, false,
       [](ArchiveWriter& w) { spoiled(w, sections::PSTR, panel(kQuad, 0, 1).words(), 674, 1.0e6); },
       {1, 14, 1, 1, 200}},
      // A 64-bit entry whose first record is 2^63 - 1.
      {"fault-4-first-record", DirectoryForm::Wide, false,
       [](ArchiveWriter& w) { w.second().add_raw_entry(sections::BEAM, 3, INT64_MAX, INT64_MAX, 654); },
       {13, 1, 1, 1, 200}},
  };
}

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return in ? std::string((std::istreambuf_iterator<char>(in)), {}) : std::string();
}
void spit(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
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
  int n_request = 0, n_directory = 0;
  // Seeds of the archive BASE: one per request, and with FILES_TOO its files.
  auto emit = [&](const std::string& name, const std::string& base, int32_t product,
                  const std::vector<Ask>& asks, bool files_too) {
    const auto paths = fuzz::file_paths(base, product);
    for (size_t i = 0; i < asks.size(); ++i) {
      const Ask& a = asks[i];
      fuzz::RequestInput in;
      in.fields = {a.type, a.comp, 1, a.steps, a.items, a.step, a.mode, product, a.mode_no, a.axis,
                   1, 2, 3, 4, 1, 2, 3, 4};
      for (size_t f = 0; f < fuzz::kFiles; ++f) {
        in.files[f] = slurp(paths[f]);
        in.present[f] = true;
      }
      const auto bytes = fuzz::pack(in);
      spit(out / "request" / (name + "-" + std::to_string(i + 1)), std::string(bytes.begin(), bytes.end()));
      ++n_request;
    }
    for (size_t kind = 0; files_too && kind < 3; ++kind) {
      const std::string b = slurp(paths[kind]);
      if (b.empty()) continue;
      spit(out / "directory" / (name + "-" + std::to_string(kind + 1)), b);
      ++n_directory;
    }
  };
  const std::string work = fuzz::scratch_dir() + "/";
  for (const Family& f : families()) {
    for (const DirectoryForm form : {DirectoryForm::Plain, DirectoryForm::Wide}) {
      for (const bool modal : {false, true}) {
        if (modal && !f.modal_too) continue;
        const std::string name =
            f.name + (form == DirectoryForm::Wide ? "-wide" : "-plain") + (modal ? "-modal" : "");
        ArchiveWriter w(work + name, fuzz::kProductTags[f.product - 1], form);
        w.first();
        motion(w, modal, f.name == "support", f.nodes, f.steps);
        f.records(w);
        w.write();
        emit(name, work + name, f.product, f.asks, !modal);
      }
    }
  }
  for (const Fault& f : faults()) {
    ArchiveWriter w(work + f.name, "P.R.W", f.form);
    w.first();
    if (f.modal) {
      // One node and two stored steps of one mode; the case comes with the fault.
      w.node_transforms({{count_up(6), {}}});
      w.modal_histories({{{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}},
                         {values(1, 1), values(1, 2), values(1, 3), values(1, 4), values(1, 5), values(1, 6)}});
    } else {
      motion(w, false);
    }
    f.records(w);
    w.write();
    emit(f.name, work + f.name, 1, {f.ask}, f.form == DirectoryForm::Wide);
  }
  std::printf("%d request seeds, %d directory seeds in %s\n", n_request, n_directory, out.string().c_str());
  return 0;
}
