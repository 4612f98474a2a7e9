// Writes the demo analysis as a result archive: the analysis side of the
// format, with the record layouts the kernel reads.
#include <array>
#include <cmath>
#include <filesystem>
#include <stdexcept>

#include "frame_demo.hpp"
#include "respcore/archive_writer.hpp"

namespace respcore::demo {

namespace {

constexpr int kModalFile = 0;   // history case 1: modal storage
constexpr int kDirectFile = 2;  // history case 2: direct file number
constexpr int kCases = 2;

// Rows of the beam's recovery matrix: 12 end forces, then the section
// factors of both ends.
constexpr int kBeamRows = 26;

std::vector<int> member_equations(const FrameModel& model, const Member& m, int per_node) {
  std::vector<int> lm;
  for (int n : {m.node_i, m.node_j}) {
    for (int c = 0; c < per_node; ++c) lm.push_back(model.node(n).eq[c]);
  }
  return lm;
}

// The beam record of a column or beam. The recovery matrix gives the end
// forces acting on the member in the axis convention of the stored records:
// each triple (x, y, z) of the member's axes is kept as (x, z, -y), which the
// kernel turns back. The section factors are chosen so that the kernel's
// stress rows come out as N/A, V/Av and the bending stresses at the extreme
// fibres, tension positive.
BeamRecord beam_record(const FrameModel& model, const Member& m) {
  const SectionProps& s = model.sections.at(static_cast<size_t>(m.section));
  const Dense k = member_stiffness_local(s, model.materials.at(static_cast<size_t>(m.material - 1)), m.length);
  BeamRecord rec;
  for (const int e : member_equations(model, m, 6)) rec.lm.push_back(e);

  // k T, member forces per global displacement.
  Dense kt(12, 12);
  for (int i = 0; i < 12; ++i) {
    for (int j = 0; j < 12; ++j) {
      double v = 0;
      const int b = j / 3, c = j % 3;
      for (int r = 0; r < 3; ++r) v += k(i, 3 * b + r) * m.axes[r][c];
      kt(i, j) = v;
    }
  }
  Dense S(kBeamRows, 12);
  for (int b = 0; b < 4; ++b) {
    for (int j = 0; j < 12; ++j) {
      S(3 * b + 0, j) = kt(3 * b + 0, j);
      S(3 * b + 1, j) = kt(3 * b + 2, j);
      S(3 * b + 2, j) = -kt(3 * b + 1, j);
    }
  }
  // Section factors: end i in column 1 (rows 13..19), end j in column 4
  // (rows 20..26), in the stored order (the two shear rows exchanged, the
  // bending factors negated, as the kernel reads them).
  const double cyz = s.cy / s.Iz, czy = s.cz / s.Iy;
  const double fi[7] = {-1 / s.A, -1 / s.Avz, -1 / s.Avy, -cyz, cyz, czy, -czy};
  const double fj[7] = {1 / s.A, 1 / s.Avz, 1 / s.Avy, cyz, -cyz, -czy, czy};
  for (int r = 0; r < 7; ++r) {
    S(12 + r, 0) = fi[r];
    S(19 + r, 3) = fj[r];
  }
  rec.strs = S.a;
  rec.node_i = m.node_i;
  rec.node_j = m.node_j;
  return rec;
}

// The truss record of a brace: rows 1 and 2 the axial end forces acting on
// the member (opposite signs), rows 3 and 4 of column 1 the stress factors.
TrussRecord truss_record(const FrameModel& model, const Member& m) {
  const SectionProps& s = model.sections.at(static_cast<size_t>(m.section));
  const Material& mat = model.materials.at(static_cast<size_t>(m.material - 1));
  const double kax = mat.E * s.A / m.length;
  TrussRecord rec;
  for (const int e : member_equations(model, m, 3)) rec.lm.push_back(e);
  Dense S(rec.nstr, 6);
  for (int c = 0; c < 3; ++c) {
    const double e = m.axes[0][c];
    S(0, c) = kax * e;
    S(0, c + 3) = -kax * e;
    S(1, c) = -kax * e;
    S(1, c + 3) = kax * e;
  }
  S(2, 0) = 1 / s.A;
  S(3, 0) = 1 / s.A;
  rec.strs = S.a;
  return rec;
}

// The archive of the analysis: the cases, the modal and the direct storage
// of the response, the node records and coordinates, the element records,
// the ground motion, the element table and the materials.
void write_records(ArchiveWriter& w, const FrameModel& model, const ModalBasis& basis,
                   const Response& resp, int N) {
  const int nm = static_cast<int>(basis.omega.size());
  const int neq = model.num_equations;
  // First file: the element form of each case.
  w.element_forms(std::vector<int32_t>(kCases, 1));

  // History cases: 1 modal (set 1), 2 direct (file 2).
  w.history_cases({{1, 1, N, nm, kModalFile}, {2, kDirectFile, N, 0, 0}});
  // Modal coordinates (d, v, a) per mode and step; mode shapes per equation.
  {
    ModalHistory modal;
    modal.coords.resize(static_cast<size_t>(nm));
    for (int m = 0; m < nm; ++m) {
      for (int s = 0; s < N; ++s) modal.coords[m].push_back({resp.q[m][s], resp.qd[m][s], resp.qdd[m][s]});
    }
    for (int e = 1; e <= neq; ++e) {
      std::vector<double> row(static_cast<size_t>(nm));
      for (int m = 0; m < nm; ++m) row[m] = basis.shapes(e - 1, m);
      modal.shapes.push_back(std::move(row));
    }
    w.modal_histories(modal);
  }
  // Node records: the six equation numbers; node axes are global axes.
  {
    std::vector<NodeTransform> nodes;
    for (const Node& n : model.nodes) nodes.push_back({std::vector<double>(n.eq.begin(), n.eq.end()), {}});
    w.node_transforms(nodes);
  }
  // Node coordinates: x, y, z of each node, record = node number.
  {
    std::vector<std::array<double, 3>> xyz;
    for (const Node& n : model.nodes) xyz.push_back({n.x, n.y, n.z});
    w.node_coordinates(xyz);
  }
  // Element records, by serial in each family's section.
  {
    std::vector<BeamRecord> beams;
    std::vector<TrussRecord> trusses;
    for (const Member& m : model.members) {
      if (m.role == Role::Brace) trusses.push_back(truss_record(model, m));
      else beams.push_back(beam_record(model, m));
    }
    w.beam_records(3, beams);
    if (!trusses.empty()) w.truss_records(3, trusses);
  }
  // Ground motion of each case: 3 directions x (acceleration, velocity,
  // displacement), one record of all steps each.
  w.ground_motion(std::vector<GroundMotion>(kCases, resp.ground));
  // Element table by element number: material, family, record in the
  // family's section, section number.
  {
    std::vector<std::vector<int32_t>> rows;
    for (const Member& m : model.members) rows.push_back({m.material, m.elem_type, m.serial, m.section + 1});
    w.element_table(rows);
  }
  // Materials: number, E, nu, type, then density and yield stress.
  {
    std::vector<MaterialRecord> mats;
    for (const Material& mat : model.materials) mats.push_back({mat.number, mat.E, mat.nu, 0, {mat.density, mat.fy}});
    w.materials(mats);
  }

  // Case 2: the same response as direct histories of every equation, three
  // records each (acceleration, velocity, displacement).
  {
    std::vector<EquationHistory> eqs(static_cast<size_t>(neq));
    for (int e = 1; e <= neq; ++e) {
      EquationHistory& h = eqs[static_cast<size_t>(e - 1)];
      h.acc.assign(static_cast<size_t>(N), 0.0);
      h.vel.assign(static_cast<size_t>(N), 0.0);
      h.disp.assign(static_cast<size_t>(N), 0.0);
      for (int m = 0; m < nm; ++m) {
        const double phi = basis.shapes(e - 1, m);
        if (phi == 0.0) continue;
        for (int s = 0; s < N; ++s) {
          h.acc[s] += phi * resp.qdd[m][s];
          h.vel[s] += phi * resp.qd[m][s];
          h.disp[s] += phi * resp.q[m][s];
        }
      }
    }
    w.direct_histories(kDirectFile, eqs, N);
  }

}

}  // namespace

DemoSummary write_demo_archive(const std::string& dir, const DemoOptions& opt) {
  if (opt.num_steps < 1 || !(opt.dt > 0)) throw std::runtime_error("the demo needs steps and a positive step");
  if (!(opt.damping >= 0 && opt.damping < 1)) throw std::runtime_error("damping must lie in [0, 1)");
  const FrameModel model = build_frame(opt);
  const ModalBasis basis = solve_modes(model);
  const Response resp = modal_response(basis, opt);
  const int N = opt.num_steps;
  const int nm = static_cast<int>(basis.omega.size());

  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (!std::filesystem::is_directory(dir)) throw std::runtime_error("cannot make directory " + dir);
  const std::string base = (std::filesystem::path(dir) / opt.base_name).string();
  ArchiveWriter w(base, "P.R.W");

  write_records(w, model, basis, resp, N);
  w.write();

  DemoSummary sum;
  sum.base = base;
  sum.files = {w.first_path(), w.second_path(), w.direct_path(kDirectFile)};
  sum.nodes = static_cast<int>(model.nodes.size());
  sum.columns = model.count(Role::Column);
  sum.beams = model.count(Role::Beam);
  sum.braces = model.count(Role::Brace);
  sum.equations = model.num_equations;
  sum.modes = nm;
  sum.steps = N;
  sum.dt = opt.dt;
  sum.damping = opt.damping;
  sum.first_period = 2 * M_PI / basis.omega.front();
  sum.last_period = 2 * M_PI / basis.omega.back();
  for (int s = 0; s <= N; ++s) {
    sum.peak_ground_x = std::max(sum.peak_ground_x, std::abs(resp.ground_x[s]));
    sum.peak_ground_y = std::max(sum.peak_ground_y, std::abs(resp.ground_y[s]));
  }
  for (const Member& m : model.members) {
    if (m.role == Role::Column) {
      sum.sample_column = m.serial;
      break;
    }
  }
  return sum;
}

}  // namespace respcore::demo
