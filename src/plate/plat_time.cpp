// Plate and shell history (three- and four-node elements): for each listed
// element and requested step, the nodal forces from the stored force matrix,
// the stress blocks from the element's formulation and, from them, the result
// blocks at the centre and the nodes.
//
// Element record (section PLAT, serial 3, or 4 under element form 2), 660
// doubles: LM(1..NEQ); P14(NS, NEQ) by columns behind it; word 601 NEQ, 602
// NS; words 604..660 TEMP(1..57): 1 the node count, 2..5 the node records,
// 6..17 the node coordinates with their offsets, 18..28 PLATE_PROP(1..11),
// 29..40 Young's modulus, Poisson's ratio, the material type and MAT_VALS,
// 42 the release flag, 43..46 the release codes, 47 PLATE_FORM, 48 the scale
// flag, 49..56 the scale factors, 57 the material angle in degrees.
//
// Rows of a step (94): 1..24 nodal forces in element axes, six per node;
// 25..94 five result blocks of 14, the centre and then the nodes.
#include <algorithm>
#include <cmath>

#include "nodal/disp_equation.hpp"
#include "numeric/blas.hpp"
#include "plane/panel_axes.hpp"
#include "plate/plate_histories.hpp"
#include "recovery/point_extrapolation.hpp"
#include "run/histories.hpp"

namespace respcore {

namespace {

constexpr int32_t kWords = 660;
constexpr int32_t kRows = 94;
constexpr int32_t kMaxDof = 24;
// The offset sum is compared with the four-byte real 1.0E-5.
constexpr double kOffsetTolerance = 9.999999747378752E-06;
constexpr double kAngleTolerance = 1.0E-5;
constexpr double kPi = 3.141592653589793;

// The element as its record describes it.
struct PlateElement {
  int32_t neq = 0, ns = 0, nnode = 3;
  int32_t stride = 0;  // force rows per column as stored
  int32_t kind = 0, memb_kind = 0, variant = 0, rls_flag = 0;
  double offset_sum = 0.0;
};

// PLATE_PROP(11): 0 the ordinary section, 1 the stiffened one, 2 the general
// one; anything else runs no result rule.
int32_t plate_variant(double code) {
  switch (trunc_i32(code)) {
    case 0:
      return 2;
    case 1:
      return 3;
    case 2:
      return 4;
    default:
      return 0;
  }
}

// Decodes SA into the element, its equation numbers, node records, offset
// coordinates and offsets, its material and section (into the kernel's
// material and plate state) and its release codes.
PlateElement decode_record(Vec<double>& SA, PlateContext& P, ElementMaterial& M, Vec<int32_t>& LM,
                           Vec<int32_t>& IIA, Mat<double>& XYZ_OFF, Vec<double>& RLS_CODE) {
  PlateElement e;
  e.neq = std::max(trunc_i32(SA(601)), 0);
  e.ns = std::max(trunc_i32(SA(602)), 0);
  e.stride = e.ns;
  if (e.neq > kMaxDof) {
    report_bound_failure("LM", e.neq, 1, kMaxDof);
    e.neq = kMaxDof;
  }
  if (e.ns > kMaxDof) {
    report_bound_failure("P14", e.ns, 1, kMaxDof);
    e.ns = kMaxDof;
  }
  LM.fill(0);
  for (int32_t i = 1; i <= e.neq; ++i) LM(i) = trunc_i32(SA(i));
  auto TEMP = [&](int32_t r) { return SA(603 + r); };
  for (int32_t i = 1; i <= 4; ++i) IIA(i) = trunc_i32(TEMP(1 + i));
  e.nnode = (IIA(4) != 0 && IIA(4) != IIA(3)) ? 4 : 3;
  for (int32_t i = 1; i <= 4; ++i)
    for (int32_t j = 1; j <= 3; ++j) XYZ_OFF(j, i) = TEMP(3 * i + 2 + j);

  for (int k = 0; k < 11; ++k) M.PLATE_PROP[k] = TEMP(18 + k);
  M.MAT_YOUNG = TEMP(29);
  M.MAT_POISSON = TEMP(30);
  M.MAT_TYPE = trunc_i32(TEMP(31));
  for (int k = 0; k < 9; ++k) M.MAT_VALS[k] = TEMP(32 + k);
  e.rls_flag = trunc_i32(TEMP(42));
  for (int32_t i = 1; i <= 4; ++i) RLS_CODE(i) = TEMP(42 + i);

  int32_t form = trunc_i32(TEMP(47));
  e.memb_kind = 0;
  if (form == 2 || form == 3) {
    e.memb_kind = 1;
    form -= 2;
  }
  e.kind = form;

  // The section data the formulations read: the record holds degrees, they
  // read radians; a scaled section turns the other way.
  PlateState& S = P.plate;
  S.SCALE_FLAG = trunc_i32(TEMP(48));
  if (S.SCALE_FLAG == 1)
    for (int k = 0; k < 8; ++k) S.SCALE_FACTOR[k] = TEMP(49 + k);
  S.SECT_ANGLE = (S.SCALE_FLAG == 1 ? -1.0 : 1.0) * TEMP(57) * kPi / 180.0;
  S.SECT_ORTHO = 0;
  e.variant = plate_variant(M.PLATE_PROP[10]);
  return e;
}

// The formulation of the element at step S: the stress blocks ST(1..40).
// A combination that no routine serves leaves ST as it was.
void run_formulation(const PlateContext& P, PlateSaved& V, const PlateElement& e, VecRef<double> D,
                     MatRef<double> XYZ, MatRef<double> TR, int32_t S) {
  VecRef<double> ST = V.st();
  MatRef<double> STRS(V.ST, 8, 5, "ST");
  int32_t nn = e.nnode;
  if (e.nnode == 4) {
    if (e.variant == 4 && S == 1) V.general = general_plate_section(P);
    if (e.kind == 0 && e.variant == 2)
      DKMQ_STR_WARP(P, V.quad[0], e.memb_kind, 4, D, STRS, XYZ, TR, S, 0);
    else if (e.kind == 0 && e.variant == 3)
      DKMQ_STR_STIF(P, V.quad[0], e.memb_kind, 4, D, STRS, XYZ, TR, S);
    else if (e.kind == 0 && e.variant == 4)
      DKMQ_STR_WARP_GNRL(V.general, V.quad[0], e.memb_kind, 4, D, STRS, XYZ, TR, S, 0);
    else if (e.kind == 1 && e.variant == 2)
      SHL3DS_STR(P, V.quad[0], e.memb_kind, 4, D, STRS, XYZ, TR, S, 0);
    else if (e.kind == 1 && e.variant == 4)
      SHL3DS_STR_GNRL(V.general, V.quad[0], e.memb_kind, 4, D, STRS, XYZ, TR, S, 0);
    return;
  }
  if (e.kind == 0 && e.variant == 4)
    DKMTLMT_STR_GNRL(P, V.thick[0], nn, D, ST, XYZ, TR, S, 0);
  else if (e.kind == 0 && e.variant == 3)
    DKMTLMT_STR_STIFFENED(P, V.thick[0], 0, nn, D, ST, XYZ, TR, S);
  else if (e.kind == 0)
    DKMTLMT_STR(P, V.thick[0], nn, D, ST, XYZ, TR, S);
  else if (e.kind == 1 && e.variant == 2)
    DKTLMT_STR(P, V.thin, nn, D, ST, XYZ, TR, S, 1);
  else if (e.kind == 1 && e.variant == 4)
    DKTLMT_STR_GNRL(P, V.thin, nn, D, ST, XYZ, TR, S, 0);
}

// The stiffened section: ST holds forces per unit width, block p at
// ST(8p-7..8p) as Nx, Ny, Nxy, Mx, My, Mxy, Qyz, Qxz. The membrane shear
// takes the mean of the two membrane thicknesses, the fibres their own
// distances in x and y and their mean for the twist; the shear forces pass
// unscaled, xz first.
void stiffened_blocks(VecRef<double> ST, VecRef<double> SIG, const double* prop) {
  const double t1 = prop[0], t2 = prop[1], tm = (t1 + t2) / 2.0;
  const double b1 = prop[2], b2 = prop[3], b3 = prop[4];
  const double z1 = prop[5], z2 = prop[6], z3 = prop[7], z4 = prop[8];
  const double zt = (z1 + z3) / 2.0, zb = (z2 + z4) / 2.0;
  for (int p = 1; p <= 5; ++p) {
    const int k = 8 * p - 8;
    const double Nx = ST(k + 1), Ny = ST(k + 2), Nxy = ST(k + 3);
    const double Mx = ST(k + 4), My = ST(k + 5), Mxy = ST(k + 6), Q7 = ST(k + 7), Q8 = ST(k + 8);
    const double a = Nx / t1, b = Ny / t2, c = Nxy / tm;
    const double d = Mx / (b1 * b1 * b1) * 12.0 * z1, e = My / (b2 * b2 * b2) * 12.0 * z3;
    const double f = Mxy / (b3 * b3 * b3) * 12.0 * zt;
    const double g = Mx / (b1 * b1 * b1) * 12.0 * z2, h = My / (b2 * b2 * b2) * 12.0 * z4;
    const double i = Mxy / (b3 * b3 * b3) * 12.0 * zb;
    const double block[8] = {a, b, c, d, e, f, Q7 / t1, Q8 / t2};
    for (int r = 0; r < 8; ++r) SIG(8 * p + 17 + r) = block[r];
    const double result[14] = {a + d, b + e, c + f, a - g, b - h, c - i, Nx,
                               Ny,    Nxy,   -Mx,   -My,   -Mxy,  Q8,    Q7};
    for (int r = 0; r < 14; ++r) SIG(65 + 14 * (p - 1) + r) = result[r];
  }
}

}  // namespace

void PLAT_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, ContinuumParts& C, Tdsp& TDSP,
               ItemList INUM_SERIAL, ItemList INUM_ELEMNT, VecRef<double> EL_ANGLE) {
  const int32_t nsteps = std::max(R.NUM_STEPS, 0);
  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  const bool hnq = product_is(A.state, "H.N.Q");
  const bool half_top =
      product_is(A.state, "Y.J.P") || product_is(A.state, "P.R.W") || product_is(A.state, "Q.L.D");
  PlateContext P{C.diag, C.material, C.plate, C.continuum.compliance};
  PlateSaved& V = plate_saved(C.plate);
  ElementMaterial& MAT = C.material;

  Vec<double> SA("SA", kWords);
  Vec<int32_t> LM("LM", kMaxDof), IIA("IIA", 4);
  Mat<double> XYZ("XYZ", 3, 4), XYZ_OFF("XYZ_OFF", 3, 4), TR("TR", 3, 3);
  Vec<double> OFFSET("OFFSET", 25), RLS_CODE("RLS_CODE", 4);
  Mat<double> P14("P14", kMaxDof, kMaxDof);
  // A long history of one row needs only the probe's columns.
  const int32_t table = ItemRows::combinable(R, TDSP, kRows) ? 0 : nsteps;
  Mat<double> DISP_EQ("DISP_EQ", kMaxDof, table), DISP_NO("DISP_NO", kMaxDof, table);
  Mat<double> FORCE("FORCE", kMaxDof, table);
  StepProbe probe(kMaxDof, kMaxDof);
  double sig[200];
  VecRef<double> SIG(sig, 200, "SIG");
  Vec<double> D("D", kMaxDof);
  Vec<double> THK("THK", 5), STRAIN("STRAIN", 30);

  for (int64_t ie = 1; ie <= R.NUM_ITEMS; ++ie) {
    const double angle = EL_ANGLE(ie);
    if (!hnq) READING_ELEMENT_MATERIAL_DATA(A, MAT, INUM_ELEMNT(ie));
    // An element whose record cannot be read keeps its rows at zero.
    if (!A.read(A.find(sections::PLAT, ID), INUM_SERIAL(ie), SA.data(), int64_t{kWords} * 8))
      continue;
    PlateElement e = decode_record(SA, P, MAT, LM, IIA, XYZ_OFF, RLS_CODE);
    const int32_t nnode = e.nnode;

    // The element is evaluated at its offset position; the offsets carry the
    // nodes' motion there.
    XYZ.fill(0.0);
    read_node_coordinates(A, IIA.ref(), nnode, XYZ.ref());
    OFFSET.fill(0.0);
    OFFSET(1) = 2.0;
    for (int32_t i = 1; i <= nnode; ++i)
      for (int32_t j = 1; j <= 3; ++j) {
        OFFSET(3 * i - 2 + j) = XYZ_OFF(j, i) - XYZ(j, i);
        e.offset_sum += std::fabs(OFFSET(3 * i - 2 + j));
      }
    for (int32_t i = 1; i <= 4; ++i)
      for (int32_t j = 1; j <= 3; ++j) XYZ(j, i) = XYZ_OFF(j, i);
    TR.fill(0.0);
    double x[4], y[4], z[4];
    for (int i = 0; i < 4; ++i) x[i] = XYZ(1, i + 1), y[i] = XYZ(2, i + 1), z[i] = XYZ(3, i + 1);
    QDCOS(VecRef<double>(x, 4, "X"), VecRef<double>(y, 4, "Y"), VecRef<double>(z, 4, "Z"), TR.ref(),
          nnode == 4 ? 4 : 1);

    // The steps on the columns of DISP_EQ and DISP_NO: every one affine in
    // the displacements (offsets, released freedoms, products with the
    // element's set-up), the formulations set up at step 1.
    ItemRows rows(TDSP, R, kRows, 24, 40, ie);
    auto prepare = [&](Mat<double>& DEQ, Mat<double>& DNO, Mat<double>& FRC, int32_t ncols) {
      if (e.offset_sum > kOffsetTolerance)
        RECOV_DISP_OFFSET_TIME(DNO.ref(), kMaxDof, ncols, nnode, TR.ref(), OFFSET.ref());
      if (e.rls_flag == 1)
        RECOV_RLS_PLATE(P, e.kind, e.memb_kind, DNO.ref(), kMaxDof, XYZ.ref(), ncols, nnode,
                        TR.ref(), RLS_CODE.ref());
      if (e.variant == 3) {
        // A ribbed plate is orthotropic by its geometry and always thick.
        e.kind = 0;
        C.plate.SECT_ORTHO = 1;
      }

      // The forces of every step in one product, global axes.
      P14.fill(0.0);
      // The matrix ends at word NEQ (1 + NS) of the record's 600.
      const int64_t end = int64_t{e.neq} * (1 + int64_t{e.stride});
      if (end > 600) {
        report_bound_failure("P14", end, 1, 600);
        e.ns = 0;
      }
      for (int32_t i = 1; i <= e.neq; ++i)
        for (int32_t j = 1; j <= e.ns; ++j) P14(j, i) = SA(e.neq + int64_t{i - 1} * e.stride + j);
      FRC.fill(0.0);
      if (e.neq > 0 && ncols > 0)
        DGEMM('N', 'N', kMaxDof, ncols, e.neq, 1.0, P14.data(), kMaxDof, DEQ.data(), kMaxDof, 0.0,
              FRC.data(), kMaxDof);
    };
    double t[3][3];
    for (int r = 0; r < 3; ++r)
      for (int c = 0; c < 3; ++c) t[r][c] = TR(r + 1, c + 1);
    auto step = [&](int32_t k, const double* dn, double* frc) {
      std::fill(sig, sig + 200, 0.0);
      for (int32_t n = 0; n < 2 * nnode; ++n)
        for (int r = 0; r < 3; ++r)
          D(3 * n + r + 1) =
              t[r][0] * dn[3 * n] + t[r][1] * dn[3 * n + 1] + t[r][2] * dn[3 * n + 2];

      run_formulation(P, V, e, D.ref(), XYZ.ref(), TR.ref(), k);
      std::copy(V.ST, V.ST + 40, sig + 24);
      if (nnode == 4) {
        TRTONO(SIG, 6, 8);
        if (e.variant == 3) std::copy(sig + 24, sig + 64, V.ST);
      } else if (e.variant == 4) {
        CURVED_EXPOLATE(SIG.sub(25, 40), 3);
      }

      if (e.variant == 2) {
        VecRef<double> T(MAT.PLATE_PROP, 2, "PLATE_PROP");
        for (int p = 0; p < 5; ++p)
          plate_result_block(SIG.sub(25 + 8 * p, 8), SIG.sub(65 + 14 * p, 14), T);
      } else if (e.variant == 3) {
        stiffened_blocks(V.st(), SIG, MAT.PLATE_PROP);
      } else if (e.variant == 4) {
        if (k == 1) {
          THK.fill(MAT.PLATE_PROP[0]);
          if (nnode == 3) THK(5) = 0.0;
        }
        COMPUTE_PLATE_STRAIN(P, V.strain, STRAIN.ref(), SIG.sub(25, 40), TR.ref(), THK.ref(), nnode,
                             0, k, nsteps, 0);
        MIX_STRESS_STRAIN(SIG.sub(25, 40), SIG.sub(65, 70), STRAIN.ref(), nnode,
                          half_top ? 0.5 : MAT.PLATE_PROP[8], -0.5, THK.ref(), MAT.plate_prop());
      }

      // Forces to element axes; rows past the element's nodes are cleared.
      GLOTOLOC_FOC(VecRef<double>(frc, kMaxDof, "FORCE"), SIG.sub(1, kMaxDof), 6 * nnode, TR.ref());
      if (std::fabs(angle) > kAngleTolerance)
        TRANSFORM_PLATE_RESULT_TO_USER_LOCAL_AXIS(nnode, angle, SIG.sub(1, 134));
      return static_cast<const double*>(sig);
    };
    if (combined_row(M, rows, probe, e.neq, LM.ref(), IIA.ref(), nnode, true, prepare, step))
      continue;
    if (DISP_EQ.cols() != nsteps) {
      DISP_EQ.resize(kMaxDof, nsteps);
      DISP_NO.resize(kMaxDof, nsteps);
      FORCE.resize(kMaxDof, nsteps);
    }
    DISP_EQUATION(M, kMaxDof, DISP_EQ.ref(), DISP_NO.ref(), e.neq, LM.ref(), IIA.ref(), nnode, 0);
    prepare(DISP_EQ, DISP_NO, FORCE, nsteps);
    for (int32_t k = 1; k <= nsteps; ++k) rows.put(k, step(k, DISP_NO.col(k), FORCE.col(k)));
  }
}

}  // namespace respcore
