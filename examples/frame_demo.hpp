// A small dynamic analysis that writes a real result archive: a steel frame
// of a few storeys (columns and beams as beam elements, diagonal braces as
// trusses), lumped floor masses, modes from LAPACK's generalised symmetric
// eigensolver, a seeded synthetic two-component ground acceleration, and the
// response by exact integration of each modal equation for a piecewise-linear
// ground acceleration.
//
// Units: kN, m, s, t (kN s^2/m); stresses in kN/m^2.
//
// The archive holds two history cases of the same response:
//   case 1  modal storage: modal coordinates (MDSP) and mode shapes (MSHP);
//   case 2  direct storage: displacement, velocity and acceleration of every
//           equation in a direct file (DMED).
// Both cases share the node records (NDSP), the node coordinates (CORD), the
// element records (BEAM for columns and beams, TRUS for braces), the ground
// motion (GRMT), the element table (ELMT) and the materials (MATL).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace respcore::demo {

struct DemoOptions {
  int storeys = 3;            // 2 or 3 make a sensible demo
  int bays_x = 2;             // bays along global X
  int bays_y = 1;             // bays along global Y
  double bay_x = 6.0;         // m
  double bay_y = 5.0;         // m
  double storey_height = 3.5; // m
  double damping = 0.02;      // modal damping ratio, every mode
  int num_steps = 1000;       // stored steps
  double dt = 0.01;           // s; step s lies at time s*dt, the structure is at rest at 0
  uint32_t seed = 20240611;   // ground-motion generator
  double pga_x = 0.20 * 9.81; // peak ground acceleration, m/s^2
  double pga_y = 0.15 * 9.81;
  std::string base_name = "frame";  // archive base name inside the output directory
};

// Cross-section of a member, in the member's local axes: x along the
// member, bending about y (strong axis) and about z.
struct SectionProps {
  std::string name;
  double A = 0, Iy = 0, Iz = 0, J = 0;  // m^2, m^4
  double Avy = 0, Avz = 0;              // shear areas for shear along y and z
  double cy = 0, cz = 0;                // distance of the extreme fibres from the axis
};

struct Material {
  int number = 1;
  std::string name;
  double E = 0, nu = 0, density = 0, fy = 0;
  double G() const { return E / (2.0 * (1.0 + nu)); }
};

struct Node {
  int number = 0;  // also its record in the node section
  double x = 0, y = 0, z = 0;
  int level = 0;   // 0 at the ground
  bool fixed = false;
  std::array<int, 6> eq{};  // equation of each dof (x, y, z, rx, ry, rz); 0 when fixed
  double mass = 0;          // lumped, on the x and y translations
};

enum class Role { Column, Beam, Brace };

struct Member {
  int number = 0;      // element number, unique over the model
  Role role = Role::Beam;
  int elem_type = 13;  // 13 beam record, 12 truss record
  int serial = 0;      // record in its family's section (BEAM or TRUS)
  int node_i = 0, node_j = 0;  // columns run upwards, node_i at the bottom
  int storey = 0;
  int section = 0;     // index into FrameModel::sections
  int material = 1;
  double length = 0;
  // Local axes in global components, row k is axis k (x, y, z).
  std::array<std::array<double, 3>, 3> axes{};
};

struct FrameModel {
  std::vector<Node> nodes;      // nodes[n-1] is node n
  std::vector<Member> members;  // in element-number order
  std::vector<SectionProps> sections;
  std::vector<Material> materials;
  int num_equations = 0;
  std::vector<int> mass_equations;  // equations that carry mass, ascending
  std::vector<double> mass_of_equation;  // per equation (index e-1), 0 without mass

  const Node& node(int n) const { return nodes.at(static_cast<size_t>(n - 1)); }
  int count(Role r) const;
};

// Column-major dense matrix, 0-based.
struct Dense {
  int rows = 0, cols = 0;
  std::vector<double> a;
  Dense() = default;
  Dense(int r, int c) : rows(r), cols(c), a(static_cast<size_t>(r) * static_cast<size_t>(c), 0.0) {}
  double& operator()(int i, int j) { return a[static_cast<size_t>(i) + static_cast<size_t>(j) * static_cast<size_t>(rows)]; }
  double operator()(int i, int j) const { return a[static_cast<size_t>(i) + static_cast<size_t>(j) * static_cast<size_t>(rows)]; }
};

// The frame's geometry, members, sections, masses and equation numbers.
FrameModel build_frame(const DemoOptions& opt);

// 12x12 stiffness of a two-node space frame member in its local axes, dof
// order (u, v, w, rx, ry, rz) at node i then node j.
Dense member_stiffness_local(const SectionProps& s, const Material& m, double length);
// The same turned to global axes (K = T' k T).
Dense member_stiffness_global(const FrameModel& model, const Member& m);
// 6x6 axial stiffness of a truss in global translations (x, y, z of i, then j).
Dense truss_stiffness_global(const FrameModel& model, const Member& m);
// Global stiffness over the equations.
Dense assemble_stiffness(const FrameModel& model);

struct ModalBasis {
  std::vector<double> omega;  // rad/s, ascending
  Dense shapes;               // (equations, modes), mass-orthonormal, expanded to all equations
  Dense participation;        // (modes, 2): phi' M r for ground directions x and y
};

// Modes of the frame: the massless equations are condensed out exactly, the
// condensed problem K phi = w^2 M phi is solved with LAPACK (dsygv), and the
// shapes are expanded back to every equation. Throws std::runtime_error when
// LAPACK fails.
ModalBasis solve_modes(const FrameModel& model);

// Seeded synthetic ground acceleration: a sum of cosines with random phases
// and a smooth spectral shape, under a build-up / strong / decay envelope,
// scaled to PGA. Returns num_steps + 1 samples at times 0, dt, 2 dt, ...;
// the first is 0.
std::vector<double> synthetic_ground_acceleration(int num_steps, double dt, double pga,
                                                  uint32_t seed);

// Exact response of q'' + 2 z w q' + w^2 q = p(t) over one step H when p is
// linear from P0 to P1; (q, v) in and out, the acceleration at the end out.
void exact_modal_step(double omega, double zeta, double h, double p0, double p1, double& q,
                      double& v, double& a);

struct Response {
  int num_steps = 0;
  double dt = 0;
  std::vector<double> ground_x, ground_y;  // samples 0..num_steps
  // Ground motion at stored steps 1..num_steps, [direction][quantity][step-1],
  // quantity 0 acceleration, 1 velocity, 2 displacement.
  std::array<std::array<std::vector<double>, 3>, 3> ground{};
  // Modal coordinates [mode][step-1] of displacement, velocity, acceleration.
  std::vector<std::vector<double>> q, qd, qdd;
};

Response modal_response(const ModalBasis& basis, const DemoOptions& opt);

struct DemoSummary {
  std::string base;  // archive base name written (directory + base_name)
  std::vector<std::string> files;
  int nodes = 0, columns = 0, beams = 0, braces = 0, equations = 0, modes = 0, steps = 0;
  double dt = 0, first_period = 0, last_period = 0, damping = 0;
  double peak_ground_x = 0, peak_ground_y = 0;
  int sample_column = 0;  // record of a ground-storey column, for examples
};

// Runs the analysis and writes the archive DIR/base_name (directory made if
// missing). Throws std::runtime_error on failure.
DemoSummary write_demo_archive(const std::string& dir, const DemoOptions& opt = {});

}  // namespace respcore::demo
