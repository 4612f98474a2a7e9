// Writes the demo analysis as a result archive: the analysis side of the
// format, with the record layouts the kernel reads.
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

// Beam record: 327 doubles; equation numbers, the 26 x 12 recovery matrix by
// columns, the two node words (node number + count / 100), a factor.
constexpr int kBeamWords = 327;
constexpr int kBeamRows = 26;
// Truss record: 63 doubles; equation numbers, the 4 x 6 matrix by columns,
// then NDOF, NSTR and the force factor in the last three.
constexpr int kTrussWords = 63;

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
std::vector<double> beam_record(const FrameModel& model, const Member& m) {
  const SectionProps& s = model.sections.at(static_cast<size_t>(m.section));
  const Dense k = member_stiffness_local(s, model.materials.at(static_cast<size_t>(m.material - 1)), m.length);
  std::vector<double> SA(kBeamWords + 1, 0.0);  // 1-based
  const std::vector<int> lm = member_equations(model, m, 6);
  for (int i = 0; i < 12; ++i) SA[1 + i] = lm[i];

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
  for (int j = 0; j < 12; ++j) {
    for (int r = 0; r < kBeamRows; ++r) SA[12 + j * kBeamRows + r + 1] = S(r, j);
  }
  SA[325] = m.node_i + 0.12;  // 12 equations
  SA[326] = m.node_j + 0.26;  // 26 rows
  SA[327] = 1.0;
  return {SA.begin() + 1, SA.end()};
}

// The truss record of a brace: rows 1 and 2 the axial end forces acting on
// the member (opposite signs), rows 3 and 4 of column 1 the stress factors.
std::vector<double> truss_record(const FrameModel& model, const Member& m) {
  const SectionProps& s = model.sections.at(static_cast<size_t>(m.section));
  const Material& mat = model.materials.at(static_cast<size_t>(m.material - 1));
  const double kax = mat.E * s.A / m.length;
  std::vector<double> SA(kTrussWords + 1, 0.0);
  const std::vector<int> lm = member_equations(model, m, 3);
  const int ndof = 6, nstr = 4;
  for (int i = 0; i < ndof; ++i) SA[1 + i] = lm[i];
  Dense S(nstr, ndof);
  for (int c = 0; c < 3; ++c) {
    const double e = m.axes[0][c];
    S(0, c) = kax * e;
    S(0, c + 3) = -kax * e;
    S(1, c) = -kax * e;
    S(1, c + 3) = kax * e;
  }
  S(2, 0) = 1 / s.A;
  S(3, 0) = 1 / s.A;
  for (int j = 0; j < ndof; ++j) {
    for (int r = 0; r < nstr; ++r) SA[ndof + j * nstr + r + 1] = S(r, j);
  }
  SA[61] = ndof;
  SA[62] = nstr;
  SA[63] = 1.0;
  return {SA.begin() + 1, SA.end()};
}

}  // namespace

DemoSummary write_demo_archive(const std::string& dir, const DemoOptions& opt) {
  if (opt.num_steps < 1 || !(opt.dt > 0)) throw std::runtime_error("the demo needs steps and a positive step");
  if (!(opt.damping >= 0 && opt.damping < 1)) throw std::runtime_error("damping must lie in [0, 1)");
  const FrameModel model = build_frame(opt);
  const ModalBasis basis = solve_modes(model);
  const Response resp = modal_response(model, basis, opt);
  const int N = opt.num_steps;
  const int nm = static_cast<int>(basis.omega.size());
  const int neq = model.num_equations;

  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  if (!std::filesystem::is_directory(dir)) throw std::runtime_error("cannot make directory " + dir);
  const std::string base = (std::filesystem::path(dir) / opt.base_name).string();
  ArchiveWriter w(base, "P.R.W");

  // First file: the element form of each case.
  {
    Section& thlg = w.first().add("THLG", 1, 1, kCases);
    for (int c = 1; c <= kCases; ++c) thlg.put_i32(c, 0, 1);
  }

  ArchiveFile& second = w.second();
  // History cases: 1 modal (set 1), 2 direct (file 2).
  {
    Section& thif = second.add("THIF", 3, 5, kCases);
    thif.put_i32s(1, 0, std::vector<int32_t>{1, 1, N, nm, kModalFile});
    thif.put_i32s(2, 0, std::vector<int32_t>{2, kDirectFile, N, 0, 0});
  }
  // Modal coordinates: one record per mode and step, (d, v, a).
  {
    Section& mdsp = second.add("MDSP", 3, 6, static_cast<int64_t>(nm) * N);
    for (int m = 0; m < nm; ++m) {
      for (int s = 1; s <= N; ++s) {
        const double v[3] = {resp.q[m][s - 1], resp.qd[m][s - 1], resp.qdd[m][s - 1]};
        mdsp.put_f64s(static_cast<int64_t>(m) * N + s, 0, v);
      }
    }
  }
  // Mode shapes: one record per equation, the value of every mode.
  {
    Section& mshp = second.add("MSHP", 3, 2 * nm, neq);
    std::vector<double> row(static_cast<size_t>(nm));
    for (int e = 1; e <= neq; ++e) {
      for (int m = 0; m < nm; ++m) row[m] = basis.shapes(e - 1, m);
      mshp.put_f64s(e, 0, row);
    }
  }
  // Node records: six equation numbers, then the upper triangle of the
  // node transform (identity: node axes are global axes).
  {
    Section& ndsp = second.add("NDSP", 3, 2 * 27, static_cast<int64_t>(model.nodes.size()));
    for (const Node& n : model.nodes) {
      std::vector<double> rec(27, 0.0);
      for (int c = 0; c < 6; ++c) rec[c] = n.eq[c];
      int p = 6;
      for (int i = 0; i < 6; ++i) {
        for (int j = i; j < 6; ++j) rec[p++] = i == j ? 1.0 : 0.0;
      }
      ndsp.put_f64s(n.number, 0, rec);
    }
  }
  // Node coordinates: x, y, z of each node, record = node number.
  {
    Section& cord = second.add("CORD", 3, 6, static_cast<int64_t>(model.nodes.size()));
    for (const Node& n : model.nodes) cord.put_f64s(n.number, 0, std::vector<double>{n.x, n.y, n.z});
  }
  // Element records.
  {
    const int nbeam = model.count(Role::Column) + model.count(Role::Beam);
    const int ntruss = model.count(Role::Brace);
    Section& beam = second.add("BEAM", 3, 2 * kBeamWords, nbeam);
    Section* trus = ntruss > 0 ? &second.add("TRUS", 3, 2 * kTrussWords, ntruss) : nullptr;
    for (const Member& m : model.members) {
      if (m.role == Role::Brace) trus->put_f64s(m.serial, 0, truss_record(model, m));
      else beam.put_f64s(m.serial, 0, beam_record(model, m));
    }
  }
  // Ground motion of each case: 3 directions x (acceleration, velocity,
  // displacement), one record of all steps each.
  {
    Section& grmt = second.add("GRMT", 3, 2 * N, 9 * kCases);
    for (int c = 0; c < kCases; ++c) {
      for (int d = 0; d < 3; ++d) {
        for (int q = 0; q < 3; ++q) grmt.put_f64s(9 * c + 3 * d + q + 1, 0, resp.ground[d][q]);
      }
    }
  }
  // Element table by element number: material, family, record in the
  // family's section, section number.
  {
    Section& elmt = second.add("ELMT", 3, 4, static_cast<int64_t>(model.members.size()));
    for (const Member& m : model.members) {
      elmt.put_i32s(m.number, 0, std::vector<int32_t>{m.material, m.elem_type, m.serial, m.section + 1});
    }
  }
  // Materials: number, E, nu, type, then density and yield stress.
  {
    Section& matl = second.add("MATL", 3, 26, static_cast<int64_t>(model.materials.size()));
    int64_t r = 0;
    for (const Material& mat : model.materials) {
      const double rec[13] = {double(mat.number), mat.E, mat.nu, 0.0, mat.density, mat.fy, 0, 0, 0, 0, 0, 0, 0};
      matl.put_f64s(++r, 0, rec);
    }
  }

  // Case 2: the same response as direct histories of every equation, three
  // records each (acceleration, velocity, displacement).
  {
    Section& dmed = w.direct(kDirectFile).add("DMED", 1, 2 * N, 3 * static_cast<int64_t>(neq));
    std::vector<double> acc(static_cast<size_t>(N)), vel(acc), disp(acc);
    for (int e = 1; e <= neq; ++e) {
      std::fill(acc.begin(), acc.end(), 0.0);
      std::fill(vel.begin(), vel.end(), 0.0);
      std::fill(disp.begin(), disp.end(), 0.0);
      for (int m = 0; m < nm; ++m) {
        const double phi = basis.shapes(e - 1, m);
        if (phi == 0.0) continue;
        for (int s = 0; s < N; ++s) {
          acc[s] += phi * resp.qdd[m][s];
          vel[s] += phi * resp.qd[m][s];
          disp[s] += phi * resp.q[m][s];
        }
      }
      const int64_t r = 3 * static_cast<int64_t>(e) - 2;
      dmed.put_f64s(r, 0, acc);
      dmed.put_f64s(r + 1, 0, vel);
      dmed.put_f64s(r + 2, 0, disp);
    }
  }

  w.write();

  DemoSummary sum;
  sum.base = base;
  sum.files = {w.first_path(), w.second_path(), w.direct_path(kDirectFile)};
  sum.nodes = static_cast<int>(model.nodes.size());
  sum.columns = model.count(Role::Column);
  sum.beams = model.count(Role::Beam);
  sum.braces = model.count(Role::Brace);
  sum.equations = neq;
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
