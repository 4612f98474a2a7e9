// The demo frame: geometry, members, sections, masses, equation numbers and
// member stiffness.
#include <cmath>
#include <stdexcept>

#include "frame_demo.hpp"

namespace respcore::demo {

namespace {

using Vec3 = std::array<double, 3>;

Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vec3 unit(const Vec3& a) {
  const double n = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
  return {a[0] / n, a[1] / n, a[2] / n};
}

// Rolled sections, kN and m.
SectionProps column_section() {
  SectionProps s;
  s.name = "HEB 300";
  s.A = 149.1e-4;
  s.Iy = 25170e-8;
  s.Iz = 8563e-8;
  s.J = 185.0e-8;
  s.Avz = 47.43e-4;           // web
  s.Avy = 2.0 * 0.300 * 0.019;  // flanges
  s.cy = 0.150;
  s.cz = 0.150;
  return s;
}

SectionProps beam_section() {
  SectionProps s;
  s.name = "IPE 400";
  s.A = 84.46e-4;
  s.Iy = 23130e-8;
  s.Iz = 1318e-8;
  s.J = 51.08e-8;
  s.Avz = 42.69e-4;
  s.Avy = 2.0 * 0.180 * 0.0135;
  s.cy = 0.090;
  s.cz = 0.200;
  return s;
}

SectionProps brace_section() {
  SectionProps s;
  s.name = "CHS 139.7x8";
  s.A = 33.1e-4;
  s.Iy = s.Iz = 720.3e-8;
  s.J = 1441e-8;
  s.Avy = s.Avz = 2.0 * s.A / M_PI;
  s.cy = s.cz = 0.06985;
  return s;
}

// Local axes of a member from node i to node j: x along the member; a
// vertical member has y along global X and z along global Y, any other has
// z in the vertical plane through x, pointing up.
std::array<Vec3, 3> member_axes(const Node& a, const Node& b) {
  const Vec3 x = unit({b.x - a.x, b.y - a.y, b.z - a.z});
  if (std::abs(x[0]) < 1e-12 && std::abs(x[1]) < 1e-12) {
    const Vec3 y{1.0, 0.0, 0.0};
    return {x, y, cross(x, y)};
  }
  const Vec3 y = unit(cross({0.0, 0.0, 1.0}, x));
  return {x, y, cross(x, y)};
}

}  // namespace

int FrameModel::count(Role r) const {
  int n = 0;
  for (const Member& m : members) n += m.role == r ? 1 : 0;
  return n;
}

FrameModel build_frame(const DemoOptions& opt) {
  if (opt.storeys < 1 || opt.bays_x < 1 || opt.bays_y < 1) {
    throw std::runtime_error("the frame needs at least one storey and one bay each way");
  }
  FrameModel model;
  model.sections = {column_section(), beam_section(), brace_section()};
  Material steel;
  steel.number = 1;
  steel.name = "S355";
  steel.E = 2.1e8;
  steel.nu = 0.3;
  steel.density = 7.85;
  steel.fy = 355e3;
  Material brace_steel = steel;
  brace_steel.number = 2;
  brace_steel.name = "S460";
  brace_steel.fy = 460e3;
  model.materials = {steel, brace_steel};

  const int nx = opt.bays_x + 1, ny = opt.bays_y + 1;
  auto node_no = [&](int level, int ix, int iy) { return level * nx * ny + iy * nx + ix + 1; };

  // Nodes, level by level; ground nodes are fixed, every other node has six
  // equations in node order.
  int eq = 0;
  for (int level = 0; level <= opt.storeys; ++level) {
    for (int iy = 0; iy < ny; ++iy) {
      for (int ix = 0; ix < nx; ++ix) {
        Node n;
        n.number = node_no(level, ix, iy);
        n.x = ix * opt.bay_x;
        n.y = iy * opt.bay_y;
        n.z = level * opt.storey_height;
        n.level = level;
        n.fixed = level == 0;
        if (!n.fixed) {
          for (int c = 0; c < 6; ++c) n.eq[static_cast<size_t>(c)] = ++eq;
          // Floor mass by tributary area: 0.8 t/m2 on floors, 0.6 t/m2 on the roof.
          const double tx = (ix == 0 || ix == nx - 1) ? opt.bay_x / 2 : opt.bay_x;
          const double ty = (iy == 0 || iy == ny - 1) ? opt.bay_y / 2 : opt.bay_y;
          n.mass = (level == opt.storeys ? 0.6 : 0.8) * tx * ty;
        }
        model.nodes.push_back(n);
      }
    }
  }
  model.num_equations = eq;
  model.mass_of_equation.assign(static_cast<size_t>(eq), 0.0);
  for (const Node& n : model.nodes) {
    if (n.fixed) continue;
    for (int c = 0; c < 2; ++c) {
      model.mass_equations.push_back(n.eq[static_cast<size_t>(c)]);
      model.mass_of_equation[static_cast<size_t>(n.eq[static_cast<size_t>(c)] - 1)] = n.mass;
    }
  }

  int number = 0, beam_serial = 0, truss_serial = 0;
  auto add = [&](Role role, int a, int b, int storey) {
    Member m;
    m.number = ++number;
    m.role = role;
    m.elem_type = role == Role::Brace ? 12 : 13;
    m.serial = role == Role::Brace ? ++truss_serial : ++beam_serial;
    m.node_i = a;
    m.node_j = b;
    m.storey = storey;
    m.section = role == Role::Column ? 0 : role == Role::Beam ? 1 : 2;
    m.material = role == Role::Brace ? 2 : 1;
    const Node& na = model.node(a);
    const Node& nb = model.node(b);
    m.length = std::sqrt((nb.x - na.x) * (nb.x - na.x) + (nb.y - na.y) * (nb.y - na.y) +
                         (nb.z - na.z) * (nb.z - na.z));
    m.axes = member_axes(na, nb);
    model.members.push_back(m);
  };

  // Columns, storey by storey, bottom to top.
  for (int s = 1; s <= opt.storeys; ++s) {
    for (int iy = 0; iy < ny; ++iy) {
      for (int ix = 0; ix < nx; ++ix) add(Role::Column, node_no(s - 1, ix, iy), node_no(s, ix, iy), s);
    }
  }
  // Floor beams: along X, then along Y.
  for (int s = 1; s <= opt.storeys; ++s) {
    for (int iy = 0; iy < ny; ++iy) {
      for (int ix = 0; ix + 1 < nx; ++ix) add(Role::Beam, node_no(s, ix, iy), node_no(s, ix + 1, iy), s);
    }
    for (int ix = 0; ix < nx; ++ix) {
      for (int iy = 0; iy + 1 < ny; ++iy) add(Role::Beam, node_no(s, ix, iy), node_no(s, ix, iy + 1), s);
    }
  }
  // Diagonal braces above the ground storey, so that the ground storey's
  // columns carry the whole base shear: in the end frames along Y and in the
  // first bay of the outer frames along X, alternating from storey to storey.
  for (int s = 2; s <= opt.storeys; ++s) {
    const bool up = s % 2 == 0;
    for (int ix : {0, nx - 1}) {
      for (int iy = 0; iy + 1 < ny; ++iy) {
        if (up) add(Role::Brace, node_no(s - 1, ix, iy), node_no(s, ix, iy + 1), s);
        else add(Role::Brace, node_no(s - 1, ix, iy + 1), node_no(s, ix, iy), s);
      }
    }
    for (int iy : {0, ny - 1}) {
      if (up) add(Role::Brace, node_no(s - 1, 0, iy), node_no(s, 1, iy), s);
      else add(Role::Brace, node_no(s - 1, 1, iy), node_no(s, 0, iy), s);
    }
  }
  return model;
}

Dense member_stiffness_local(const SectionProps& s, const Material& mat, double L) {
  Dense k(12, 12);
  const double E = mat.E, G = mat.G();
  auto put = [&](const std::array<int, 4>& idx, const std::array<std::array<double, 4>, 4>& v) {
    for (int r = 0; r < 4; ++r) {
      for (int c = 0; c < 4; ++c) k(idx[static_cast<size_t>(r)], idx[static_cast<size_t>(c)]) += v[static_cast<size_t>(r)][static_cast<size_t>(c)];
    }
  };
  const double ea = E * s.A / L, gj = G * s.J / L;
  k(0, 0) += ea; k(0, 6) -= ea; k(6, 0) -= ea; k(6, 6) += ea;
  k(3, 3) += gj; k(3, 9) -= gj; k(9, 3) -= gj; k(9, 9) += gj;
  // Bending in the x-y plane (v, rz), about z.
  {
    const double c = E * s.Iz / (L * L * L);
    put({1, 5, 7, 11}, {{{12 * c, 6 * L * c, -12 * c, 6 * L * c},
                         {6 * L * c, 4 * L * L * c, -6 * L * c, 2 * L * L * c},
                         {-12 * c, -6 * L * c, 12 * c, -6 * L * c},
                         {6 * L * c, 2 * L * L * c, -6 * L * c, 4 * L * L * c}}});
  }
  // Bending in the x-z plane (w, ry), about y: a positive ry lowers w ahead.
  {
    const double c = E * s.Iy / (L * L * L);
    put({2, 4, 8, 10}, {{{12 * c, -6 * L * c, -12 * c, -6 * L * c},
                         {-6 * L * c, 4 * L * L * c, 6 * L * c, 2 * L * L * c},
                         {-12 * c, 6 * L * c, 12 * c, 6 * L * c},
                         {-6 * L * c, 2 * L * L * c, 6 * L * c, 4 * L * L * c}}});
  }
  return k;
}

namespace {

// T (12x12): the member's axes on each of the four triples.
Dense rotation12(const Member& m) {
  Dense T(12, 12);
  for (int b = 0; b < 4; ++b) {
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c) T(3 * b + r, 3 * b + c) = m.axes[static_cast<size_t>(r)][static_cast<size_t>(c)];
    }
  }
  return T;
}

}  // namespace

Dense member_stiffness_global(const FrameModel& model, const Member& m) {
  const Dense k = member_stiffness_local(model.sections.at(static_cast<size_t>(m.section)),
                                         model.materials.at(static_cast<size_t>(m.material - 1)), m.length);
  const Dense T = rotation12(m);
  Dense kt(12, 12), K(12, 12);
  for (int i = 0; i < 12; ++i) {
    for (int j = 0; j < 12; ++j) {
      double v = 0;
      for (int l = 0; l < 12; ++l) v += k(i, l) * T(l, j);
      kt(i, j) = v;
    }
  }
  for (int i = 0; i < 12; ++i) {
    for (int j = 0; j < 12; ++j) {
      double v = 0;
      for (int l = 0; l < 12; ++l) v += T(l, i) * kt(l, j);
      K(i, j) = v;
    }
  }
  return K;
}

Dense truss_stiffness_global(const FrameModel& model, const Member& m) {
  const SectionProps& s = model.sections.at(static_cast<size_t>(m.section));
  const Material& mat = model.materials.at(static_cast<size_t>(m.material - 1));
  const double k = mat.E * s.A / m.length;
  const auto& e = m.axes[0];
  Dense K(6, 6);
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b) {
      const double v = k * e[static_cast<size_t>(a)] * e[static_cast<size_t>(b)];
      K(a, b) = v;
      K(a + 3, b + 3) = v;
      K(a, b + 3) = -v;
      K(a + 3, b) = -v;
    }
  }
  return K;
}

Dense assemble_stiffness(const FrameModel& model) {
  const int n = model.num_equations;
  Dense K(n, n);
  for (const Member& m : model.members) {
    const Node& a = model.node(m.node_i);
    const Node& b = model.node(m.node_j);
    std::vector<int> lm;
    Dense ke;
    if (m.role == Role::Brace) {
      for (int c = 0; c < 3; ++c) lm.push_back(a.eq[static_cast<size_t>(c)]);
      for (int c = 0; c < 3; ++c) lm.push_back(b.eq[static_cast<size_t>(c)]);
      ke = truss_stiffness_global(model, m);
    } else {
      for (int c = 0; c < 6; ++c) lm.push_back(a.eq[static_cast<size_t>(c)]);
      for (int c = 0; c < 6; ++c) lm.push_back(b.eq[static_cast<size_t>(c)]);
      ke = member_stiffness_global(model, m);
    }
    const int nd = static_cast<int>(lm.size());
    for (int i = 0; i < nd; ++i) {
      if (lm[static_cast<size_t>(i)] <= 0) continue;
      for (int j = 0; j < nd; ++j) {
        if (lm[static_cast<size_t>(j)] <= 0) continue;
        K(lm[static_cast<size_t>(i)] - 1, lm[static_cast<size_t>(j)] - 1) += ke(i, j);
      }
    }
  }
  return K;
}

}  // namespace respcore::demo
