// Result families and component names, after the kernel's result rows.
#include "components.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <map>

#include "cli_error.hpp"

namespace respcore::cli {

namespace {

std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (c == '_') c = '-';
  }
  return out;
}

std::optional<int> parse_int(std::string_view s) {
  int v = 0;
  if (s.empty()) return std::nullopt;
  const auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), v);
  if (ec != std::errc() || p != s.data() + s.size()) return std::nullopt;
  return v;
}

void add(std::vector<Component>& v, std::string name, std::string meaning) {
  const int n = static_cast<int>(v.size()) + 1;
  v.push_back({n, std::move(name), std::move(meaning)});
}

std::string node_label(int n) { return "n" + std::to_string(n); }
std::string point_label(int p) { return p == 1 ? "c" : node_label(p - 1); }
std::string point_words(int p) { return p == 1 ? "centre" : "node " + std::to_string(p - 1); }

// Nodes: translations, rotations and the warping dof. QUANTITY is
// "displacement", "velocity" or "acceleration".
ComponentTable node_table(const std::string& quantity) {
  ComponentTable t;
  const std::string turn = quantity == "displacement" ? "rotation" : "angular " + quantity;
  const char* axes[3] = {"x", "y", "z"};
  for (const char* a : axes) add(t.rows, a, quantity + " along " + a);
  for (const char* a : axes) add(t.rows, std::string("r") + a, turn + " about " + a);
  add(t.rows, "warp", quantity == "displacement" ? "warping" : "warping " + quantity);
  t.selectors = t.rows;
  return t;
}

ComponentTable truss_table() {
  ComponentTable t;
  add(t.rows, "N-i", "axial force at end i, tension positive");
  add(t.rows, "N-j", "axial force at end j, tension positive");
  add(t.rows, "s-i", "axial stress at end i");
  add(t.rows, "s-j", "axial stress at end j");
  add(t.selectors, "N", "axial force");
  add(t.selectors, "s", "axial stress");
  return t;
}

// Beams and wall beams deliver the same 34 rows: end forces, section
// stresses and the combined stress at four corners, end i then end j.
ComponentTable beam_table() {
  ComponentTable t;
  const char* forces[6] = {"N", "Vy", "Vz", "T", "My", "Mz"};
  const char* force_words[6] = {"axial force (tension positive)", "shear force along local y",
                                "shear force along local z", "torsional moment",
                                "bending moment about local y", "bending moment about local z"};
  const char* stresses[7] = {"sx", "tauy", "tauz", "sMz1", "sMz2", "sMy1", "sMy2"};
  const char* stress_words[7] = {"axial stress",
                                 "shear stress from Vy",
                                 "shear stress from Vz",
                                 "bending stress from Mz, fibre 1",
                                 "bending stress from Mz, fibre 2",
                                 "bending stress from My, fibre 1",
                                 "bending stress from My, fibre 2"};
  for (const char* end : {"i", "j"}) {
    for (int k = 0; k < 6; ++k) add(t.rows, std::string(forces[k]) + "-" + end, std::string(force_words[k]) + ", end " + end);
  }
  for (const char* end : {"i", "j"}) {
    for (int k = 0; k < 7; ++k) add(t.rows, std::string(stresses[k]) + "-" + end, std::string(stress_words[k]) + ", end " + end);
  }
  for (const char* end : {"i", "j"}) {
    for (int c = 1; c <= 4; ++c) {
      add(t.rows, "corner" + std::to_string(c) + "-" + end,
          "combined stress at corner " + std::to_string(c) + ", end " + end);
    }
  }
  for (int k = 0; k < 6; ++k) add(t.selectors, forces[k], force_words[k]);
  for (int k = 0; k < 7; ++k) add(t.selectors, stresses[k], stress_words[k]);
  for (int c = 1; c <= 4; ++c) add(t.selectors, "corner" + std::to_string(c), "combined stress at corner " + std::to_string(c));
  return t;
}

// Plane and solid elements: a force triple per node, then the stress
// components at the centre and at each node, then (for the families that
// have them) the strain components in the same order. SELECTORS names the
// snapshot selectors after the three forces: the stress components that the
// many-items form addresses at every point.
struct ContinuumLayout {
  int nodes = 4;
  std::vector<const char*> stresses;
  std::vector<const char*> strains;
  int stress_selectors = 0;  // leading stress components that are selectors
};

ComponentTable continuum_table(const ContinuumLayout& L) {
  ComponentTable t;
  const char* f[3] = {"Fx", "Fy", "Fz"};
  for (int n = 1; n <= L.nodes; ++n) {
    for (int k = 0; k < 3; ++k) add(t.rows, std::string(f[k]) + "-" + node_label(n), std::string("nodal force ") + f[k] + ", node " + std::to_string(n));
  }
  for (const auto& [names, word] : {std::pair{&L.stresses, "stress "}, std::pair{&L.strains, "strain "}}) {
    for (int p = 1; p <= L.nodes + 1; ++p) {
      for (const char* c : *names) add(t.rows, std::string(c) + "-" + point_label(p), word + std::string(c) + ", " + point_words(p));
    }
  }
  for (int k = 0; k < 3; ++k) add(t.selectors, f[k], std::string("nodal force ") + f[k]);
  for (int k = 0; k < L.stress_selectors; ++k) add(t.selectors, L.stresses[static_cast<size_t>(k)], std::string("stress ") + L.stresses[static_cast<size_t>(k)]);
  return t;
}

// Plates: six nodal forces per node, then a result block of 14 per point.
ComponentTable plate_table(int nodes) {
  ComponentTable t;
  const char* f[6] = {"Fx", "Fy", "Fz", "FMx", "FMy", "FMz"};
  const char* r[14] = {"sx-top", "sy-top", "sxy-top", "sx-bot", "sy-bot", "sxy-bot", "Nx",
                       "Ny",     "Nxy",    "Mx",      "My",     "Mxy",    "Vxz",    "Vyz"};
  const char* rw[14] = {"stress sx, top fibre", "stress sy, top fibre", "stress sxy, top fibre",
                        "stress sx, bottom fibre", "stress sy, bottom fibre", "stress sxy, bottom fibre",
                        "membrane force Nx", "membrane force Ny", "membrane force Nxy",
                        "moment Mx", "moment My", "moment Mxy", "shear force Vxz", "shear force Vyz"};
  for (int n = 1; n <= nodes; ++n) {
    for (int k = 0; k < 6; ++k) add(t.rows, std::string(f[k]) + "-" + node_label(n), std::string("nodal force ") + f[k] + ", node " + std::to_string(n));
  }
  for (int p = 1; p <= nodes + 1; ++p) {
    for (int k = 0; k < 14; ++k) add(t.rows, std::string(r[k]) + "-" + point_label(p), std::string(rw[k]) + ", " + point_words(p));
  }
  for (int k = 0; k < 6; ++k) add(t.selectors, f[k], std::string("nodal force ") + f[k]);
  for (int k = 0; k < 14; ++k) add(t.selectors, r[k], rw[k]);
  return t;
}

std::string available(const std::vector<Component>& v) {
  std::string s;
  for (size_t i = 0; i < v.size() && i < 8; ++i) s += (i ? ", " : "") + v[i].name;
  if (v.size() > 8) s += ", ...";
  return s;
}

Component resolve(const Family& f, std::string_view text, const std::vector<Component>& table,
                  const std::vector<Component>& other, const char* what, int open_limit,
                  bool numbered_past_names = false) {
  if (const auto n = parse_int(text)) {
    if (table.empty() || (numbered_past_names && *n > static_cast<int>(table.size()))) {
      if (*n < 1 || *n > open_limit) {
        throw usage_error(std::string(what) + " " + std::string(text) + " is out of range for " + f.name + " (1 to " + std::to_string(open_limit) + ")");
      }
      return {*n, std::string(what) + std::to_string(*n), ""};
    }
    if (*n < 1 || *n > static_cast<int>(table.size())) {
      throw usage_error(std::string(what) + " " + std::string(text) + " is not one of " + f.name + "'s (1 to " + std::to_string(table.size()) + "; see 'respcore components " + f.name + "')");
    }
    return table[static_cast<size_t>(*n - 1)];
  }
  const std::string key = lower(text);
  for (const Component& c : table) {
    if (lower(c.name) == key) return c;
  }
  for (const Component& c : other) {
    if (lower(c.name) == key) {
      throw usage_error("component '" + std::string(text) + "' of " + f.name + " is a " +
                        (std::string(what) == "row" ? "snapshot selector" : "history row") +
                        " here; this command takes " + available(table));
    }
  }
  if (table.empty()) {
    throw usage_error(f.name + " has no component names; give the row number (1 to " + std::to_string(open_limit) + ")");
  }
  throw usage_error("unknown component '" + std::string(text) + "' of " + f.name + "; it has " + available(table) + " (see 'respcore components " + f.name + "')");
}

}  // namespace

const std::vector<Family>& families() {
  static const std::vector<Family> list = {
      {1, "plane-stress", "plane stress elements: nodal forces and stresses", sections::PSTR, false},
      {2, "plane-strain", "plane strain elements: nodal forces, stresses and strains", sections::PSRN, false},
      {3, "plate", "plate and shell elements: nodal forces and result blocks", sections::PLAT, false},
      {4, "solid", "solid elements: nodal forces, stresses and strains", sections::SOLD, false},
      {5, "plane-stress-high", "high-order plane stress elements", sections::PSTH, false},
      {6, "plane-strain-high", "high-order plane strain elements", sections::PSRH, false},
      {7, "plate-high", "high-order plate elements", sections::PLTH, false},
      {8, "solid-high", "high-order solid elements", sections::PSOH, false},
      {9, "node-displacement", "node displacements in node axes", sections::NDSP, true},
      {10, "node-velocity", "node velocities in node axes", sections::NDSP, true},
      {11, "node-acceleration", "node accelerations in node axes", sections::NDSP, true},
      {12, "truss", "truss elements: axial force and stress at both ends", sections::TRUS, false},
      {13, "beam", "beam elements: end forces, section stresses, corner stresses", sections::BEAM, false},
      {14, "wall-beam", "wall beams (with warping): end forces and stresses", sections::WBMM, false},
  };
  return list;
}

const Family* find_family(std::string_view text) {
  if (const auto n = parse_int(text)) {
    for (const Family& f : families()) {
      if (f.elem_type == *n) return &f;
    }
    return nullptr;
  }
  const std::string key = lower(text);
  static const std::map<std::string, int> aliases = {
      {"node", 9}, {"displacement", 9}, {"velocity", 10}, {"acceleration", 11}, {"wbeam", 14}};
  for (const Family& f : families()) {
    if (f.name == key) return &f;
  }
  if (const auto it = aliases.find(key); it != aliases.end()) return &families()[static_cast<size_t>(it->second - 1)];
  return nullptr;
}

const ComponentTable& component_table(int elem_type) {
  static const std::map<int, ComponentTable> tables = [] {
    std::map<int, ComponentTable> m;
    const std::vector<const char*> solid_stress = {"sxx", "syy", "szz", "sxy", "syz", "szx"};
    const std::vector<const char*> solid_strain = {"exx", "eyy", "ezz", "exy", "eyz", "ezx"};
    m[1] = continuum_table({4, {"sx", "sy", "sxy"}, {}, 3});
    // Plane strain keeps four stress components a point, the out-of-plane
    // one last; its many-items form steps through them three at a time, so
    // only the forces have selector names (larger selectors by number).
    // (Global results under the products "H.N.Q" and "J.W.U" order them by
    // the panel's global plane instead: xx, yy, zz, xy in the xy plane.)
    m[2] = continuum_table({4, {"sx", "sy", "sxy", "sz"}, {"ex", "ey", "ez", "exy"}, 0});
    m[2].numbered_selectors = true;
    m[3] = plate_table(4);
    m[4] = continuum_table({8, solid_stress, solid_strain, 6});
    m[5] = continuum_table({8, {"sx", "sy", "sxy"}, {}, 3});
    m[6] = continuum_table({8, {"sx", "sy", "sz", "sxy"}, {"ex", "ey", "ez", "exy"}, 4});
    m[7] = plate_table(8);
    m[8] = continuum_table({20, solid_stress, solid_strain, 6});
    m[9] = node_table("displacement");
    m[10] = node_table("velocity");
    m[11] = node_table("acceleration");
    m[12] = truss_table();
    m[13] = beam_table();
    m[14] = beam_table();
    return m;
  }();
  static const ComponentTable empty;
  const auto it = tables.find(elem_type);
  return it == tables.end() ? empty : it->second;
}

std::vector<std::string> point_labels(int elem_type, int selector, int m) {
  std::vector<std::string> out;
  auto nodes_then = [&](bool centre_first) {
    for (int p = 1; p <= m; ++p) out.push_back(centre_first ? point_label(p) : node_label(p));
  };
  switch (elem_type) {
    case 9:
    case 10:
    case 11:
      out.push_back("value");
      break;
    case 12:
    case 13:
    case 14:
      out = {"end-i", "end-j"};
      break;
    case 1:
    case 2:
    case 4:
    case 5:
    case 6:
    case 8:
      nodes_then(selector >= 4);
      break;
    case 3:
    case 7:
      nodes_then(selector >= 7);
      break;
    default:
      for (int p = 1; p <= m; ++p) out.push_back("p" + std::to_string(p));
  }
  out.resize(static_cast<size_t>(std::max(m, 0)), "");
  for (int p = 0; p < m; ++p) {
    if (out[static_cast<size_t>(p)].empty()) out[static_cast<size_t>(p)] = "p" + std::to_string(p + 1);
  }
  return out;
}

Component resolve_row(const Family& f, std::string_view text) {
  const ComponentTable& t = component_table(f.elem_type);
  return resolve(f, text, t.rows, t.selectors, "row", 350);
}

Component resolve_selector(const Family& f, std::string_view text) {
  const ComponentTable& t = component_table(f.elem_type);
  return resolve(f, text, t.selectors, t.rows, "selector", 350, t.numbered_selectors);
}

}  // namespace respcore::cli
