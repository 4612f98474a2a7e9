#include "recovery/stress_recovery.hpp"

#include <array>
#include <vector>

#include "numeric/blas.hpp"
#include "numeric/dense.hpp"
#include "numeric/gauss.hpp"
#include "recovery/shape_library.hpp"

namespace respcore {

namespace {

// Column P of SHAPE as a vector of NGP weights; a column outside the matrix
// is reported and yields an empty view, whose writes are dropped.
VecRef<double> column(MatRef<double> shape, int32_t p) {
  if (p < 1 || p > shape.cols()) {
    report_bound_failure(shape.name(), p, 1, shape.cols());
    return VecRef<double>(nullptr, 0, shape.name());
  }
  return VecRef<double>(shape.col(p), shape.rows(), shape.name());
}

using SelectorFn = void (*)(MatRef<double>, int32_t, int32_t, int32_t);

// Shared body of the solid and plane recovery: SHAPE on the stack (heap only
// beyond the largest element), then one matrix product.
void recover(SelectorFn selector, VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS,
             int32_t NC, int32_t NGP, int32_t NPTS, int32_t WITHCENTRE) {
  const int32_t offset = (WITHCENTRE == 1) ? 0 : 1;
  if (NC <= 0 || NPTS <= 0) return;
  if (NGP <= 0) {
    // An empty inner dimension gives beta * C, that is zero.
    for (int64_t i = 1; i <= int64_t{NC} * NPTS; ++i) VALUE_NODAL(i) = 0.0;
    return;
  }

  constexpr int64_t kStackCells = 27 * 28;
  std::array<double, kStackCells> stack_cells{};
  std::vector<double> heap_cells;
  double* cells = stack_cells.data();
  const int64_t ncells = checked_count(sizeof(double), NGP, NPTS);
  if (ncells > kStackCells) {
    heap_cells.assign(static_cast<size_t>(ncells), 0.0);
    cells = heap_cells.data();
  }
  MatRef<double> SHAPE(cells, NGP, NPTS, "SHAPE");
  selector(SHAPE, NGP, NPTS, offset);

  if (VALUE_GAUSS.size() >= int64_t{NC} * NGP && VALUE_NODAL.size() >= int64_t{NC} * NPTS) {
    DGEMM('N', 'N', NC, NPTS, NGP, 1.0, VALUE_GAUSS.data(), NC, cells, NGP, 0.0, VALUE_NODAL.data(),
          NC);
    return;
  }
  // Arguments shorter than the product needs: the same product through
  // checked subscripts, which report what lies outside.
  for (int32_t p = 1; p <= NPTS; ++p) {
    for (int32_t c = 1; c <= NC; ++c) {
      double s = 0.0;
      for (int32_t g = 1; g <= NGP; ++g) s += VALUE_GAUSS(c + int64_t{NC} * (g - 1)) * SHAPE(g, p);
      VALUE_NODAL(c + int64_t{NC} * (p - 1)) = s;
    }
  }
}

}  // namespace

void STRESS_RECOVERY_SOLID(VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS, int32_t NC,
                           int32_t NGP, int32_t NPTS, int32_t WITHCENTRE) {
  recover(STRESS_RECOVERY_SHAPE_SOLID, VALUE_NODAL, VALUE_GAUSS, NC, NGP, NPTS, WITHCENTRE);
}

void STRESS_RECOVERY_PLANE(VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS, int32_t NC,
                           int32_t NGP, int32_t NPTS, int32_t WITHCENTRE) {
  recover(STRESS_RECOVERY_SHAPE_PLANE, VALUE_NODAL, VALUE_GAUSS, NC, NGP, NPTS, WITHCENTRE);
}

namespace {

// The weights of one result point at table row IPT; the one-point shapes
// take no row.
using PointShape = void (*)(VecRef<double>, int32_t);

PointShape solid_shape(int32_t NGP, int32_t NPTS) {
  switch (NGP) {
    case 1: return [](VecRef<double> N, int32_t) { SOLID_SHAPE_4NODES(N); };
    case 4: return SOLID_SHAPE_10NODES;
    case 6: return SOLID_SHAPE_6NODES;
    case 8: return NPTS == 9 ? SOLID_SHAPE_8NODES : SOLID_SHAPE_5NODES;
    case 9: return SOLID_SHAPE_15NODES_LINEAR;
    case 27: return NPTS == 21 ? SOLID_SHAPE_20NODES_LINEAR : SOLID_SHAPE_13NODES;
    default: return nullptr;
  }
}

// The shell differs from the plane only in its 4 points: the 4-node
// quadrilateral for NPTS 4, the 8-node quadrilateral's reduced form
// otherwise.
PointShape plane_shape(int32_t NGP, int32_t NPTS, bool shell) {
  switch (NGP) {
    case 1: return [](VecRef<double> N, int32_t) { PLANE_SHAPE_3NODES(N); };
    case 3: return PLANE_SHAPE_6NODES;
    case 4: return shell && NPTS != 4 ? PLANE_SHAPE_8NODES_REDUCED : PLANE_SHAPE_4NODES;
    case 9: return PLANE_SHAPE_8NODES_LINEAR;
    default: return nullptr;
  }
}

// Column P of SHAPE(NGP, NPTS) from row P + OFFSET; an unknown shape leaves
// SHAPE as it is.
void fill_columns(MatRef<double> SHAPE_arg, int32_t NGP, int32_t NPTS, int32_t OFFSET,
                  PointShape fn) {
  MatRef<double> SHAPE = as_shape(SHAPE_arg, NGP, NPTS);
  if (fn == nullptr) return;
  for (int32_t p = 1; p <= NPTS; ++p) fn(column(SHAPE, p), p + OFFSET);
}

}  // namespace

void STRESS_RECOVERY_SHAPE_SOLID(MatRef<double> SHAPE, int32_t NGP, int32_t NPTS,
                                 int32_t OFFSET) {
  fill_columns(SHAPE, NGP, NPTS, OFFSET, solid_shape(NGP, NPTS));
}

void STRESS_RECOVERY_SHAPE_PLANE(MatRef<double> SHAPE, int32_t NGP, int32_t NPTS,
                                 int32_t OFFSET) {
  fill_columns(SHAPE, NGP, NPTS, OFFSET, plane_shape(NGP, NPTS, false));
}

void STRESS_RECOVERY_SHAPE_SHELL(MatRef<double> SHAPE, int32_t NGP, int32_t NPTS,
                                 int32_t OFFSET) {
  fill_columns(SHAPE, NGP, NPTS, OFFSET, plane_shape(NGP, NPTS, true));
}

void STRESS_RECOVERY_SHAPE_AXIAL(MatRef<double> SHAPE_arg, int32_t NGP, int32_t NPTS) {
  MatRef<double> SHAPE = as_shape(SHAPE_arg, NGP, NPTS);
  for (int32_t p = 1; p <= NPTS; ++p) LINE_SHAPE_1NODE(column(SHAPE, p));
}

void STRESS_RECOVERY(Diagnostics& DG, VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS,
                     MatRef<double> COORD_GAUSS_arg, MatRef<double> COORD_NODAL_arg, int32_t NNODE,
                     int32_t NGP, int32_t NDIM) {
  if (NDIM < 1 || NDIM > 3) return;
  const int32_t n = NDIM + 1;
  double cmatx[16] = {};
  double cinvm[16] = {};
  double cvect[4] = {};
  MatRef<double> CMATX(cmatx, n, n, "CMATX");
  MatRef<double> CINVM(cinvm, n, n, "CINVM");
  VecRef<double> CVECT(cvect, n, "CVECT");

  if (NGP == 4 && NDIM == 3 && NNODE == 10) {
    STRESS_RECOVERY_ISOLIDH(VALUE_NODAL, VALUE_GAUSS, NNODE, NGP);
    return;
  }

  MatRef<double> COORD_GAUSS = as_shape(COORD_GAUSS_arg, NDIM, NGP);
  MatRef<double> COORD_NODAL = as_shape(COORD_NODAL_arg, NDIM, NNODE);

  // Normal equations of the fit v = a1 + a2 x + a3 y (+ a4 z): rows and
  // columns are 1, X, Y, Z; the upper triangle is summed, then mirrored.
  CMATX(1, 1) = static_cast<double>(NGP);
  for (int32_t g = 1; g <= NGP; ++g) {
    double c[3] = {};
    for (int32_t d = 1; d <= NDIM; ++d) c[d - 1] = COORD_GAUSS(d, g);
    const double v = VALUE_GAUSS(g);
    for (int32_t d = 1; d <= NDIM; ++d) {
      CMATX(1, d + 1) += c[d - 1];
      for (int32_t e = d; e <= NDIM; ++e) CMATX(d + 1, e + 1) += c[d - 1] * c[e - 1];
    }
    CVECT(1) += v;
    for (int32_t d = 1; d <= NDIM; ++d) CVECT(d + 1) += v * c[d - 1];
  }
  for (int32_t j = 1; j <= n; ++j)
    for (int32_t i = j + 1; i <= n; ++i) CMATX(i, j) = CMATX(j, i);

  INVERSE(DG, CMATX, CINVM, n);

  double avect[4] = {};
  for (int32_t i = 1; i <= n; ++i) {
    double s = 0.0;
    for (int32_t j = 1; j <= n; ++j) s += CINVM(i, j) * CVECT(j);
    avect[i - 1] = s;
  }
  for (int32_t p = 1; p <= NNODE; ++p) {
    double v = avect[0];
    for (int32_t d = 1; d <= NDIM; ++d) v += avect[d] * COORD_NODAL(d, p);
    VALUE_NODAL(p) = v;
  }
}

void STRESS_RECOVERY_ISOLIDH(VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS, int32_t NNODE,
                             int32_t NGP) {
  void (*fn)(VecRef<double>, int32_t) = nullptr;
  switch (NGP) {
    case 4:
      fn = SOLID_SHAPE_10NODES;
      break;
    case 27:
      fn = SOLID_SHAPE_20NODES_LINEAR;
      break;
    case 9:
      fn = SOLID_SHAPE_15NODES_LINEAR;
      break;
    default:
      return;
  }
  double weights[27] = {};
  VecRef<double> SHAPE(weights, NGP, "SHAPE");
  for (int32_t p = 1; p <= NNODE; ++p) {
    fn(SHAPE, p + 1);  // table row 1 is the centre; nodes follow
    double s = 0.0;
    for (int32_t g = 1; g <= NGP; ++g) s += SHAPE(g) * VALUE_GAUSS(g);
    VALUE_NODAL(p) = s;
  }
}

// ---------------------------------------------------------------------------
// Gauss point tables of GP_COORD and GP_COORD_HIGH: the shared rules, and the
// two of their own (the tetrahedron with its full-length coordinates, the
// 15-node wedge with its weights divided by 6).

namespace {

using gauss::Table;

constexpr const Table<2>& SS2L = gauss::LINE2_S;
constexpr const Table<4>& SS4P = gauss::QUAD4_S;
constexpr const Table<4>& TT4P = gauss::QUAD4_T;
constexpr const Table<6>& SS6S = gauss::WEDGE6_S;
constexpr const Table<6>& TT6S = gauss::WEDGE6_T;
constexpr const Table<6>& UU6S = gauss::WEDGE6_U;
constexpr const Table<6>& WHT6S = gauss::WEDGE6_W;
constexpr const Table<8>& SS8S = gauss::HEX8_S;
constexpr const Table<8>& TT8S = gauss::HEX8_T;
constexpr const Table<8>& UU8S = gauss::HEX8_U;

constexpr const Table<4>& SS4 = gauss::QUAD4_S;
constexpr const Table<4>& TT4 = gauss::QUAD4_T;
constexpr const Table<3>& SS6P = gauss::TRI3_S;
constexpr const Table<3>& TT6P = gauss::TRI3_T;
constexpr const Table<3>& WHT6P = gauss::TRI3_W;
constexpr const Table<9>& SS8P = gauss::QUAD9_S;
constexpr const Table<9>& TT8P = gauss::QUAD9_T;
constexpr const Table<9>& WHT8P = gauss::QUAD9_W;
constexpr double kTetA = gauss::TET4_A_FULL;
constexpr double kTetB = gauss::TET4_B_FULL;
constexpr Table<4> SS10 = {kTetA, kTetB, kTetA, kTetA};
constexpr Table<4> TT10 = {kTetA, kTetA, kTetB, kTetA};
constexpr Table<4> UU10 = {kTetA, kTetA, kTetA, kTetB};
constexpr Table<4> WHT10 = {1.0 / 24.0, 1.0 / 24.0, 1.0 / 24.0, 1.0 / 24.0};
constexpr const Table<9>& SS15 = gauss::WEDGE9_S;
constexpr const Table<9>& TT15 = gauss::WEDGE9_T;
constexpr const Table<9>& UU15 = gauss::WEDGE9_U;
constexpr Table<9> WHT15 = gauss::make<9>([](size_t i) { return gauss::W3[i / 3] / 6.0; });
constexpr const Table<27>& SS20 = gauss::HEX27_S;
constexpr const Table<27>& TT20 = gauss::HEX27_T;
constexpr const Table<27>& UU20 = gauss::HEX27_U;
constexpr const Table<27>& WHT20 = gauss::HEX27_W;

double at(const auto& table, int32_t ipt, const char* name) {
  return table_entry(table, ipt, name);
}

}  // namespace

void GP_COORD(double& XI, double& ETA, double& ZETA, double& WT, int32_t IPT, int32_t NGP,
              int32_t KIND) {
  XI = ETA = ZETA = WT = 0.0;
  if (KIND == 1 && NGP == 2) {
    XI = at(SS2L, IPT, "SS2L");
    WT = 1.0;
  } else if (KIND == 2 && NGP == 4) {
    XI = at(SS4P, IPT, "SS4P");
    ETA = at(TT4P, IPT, "TT4P");
    WT = 1.0;
  } else if (KIND == 3 && NGP == 6) {
    XI = at(SS6S, IPT, "SS6S");
    ETA = at(TT6S, IPT, "TT6S");
    ZETA = at(UU6S, IPT, "UU6S");
    WT = at(WHT6S, IPT, "WHT6S");
  } else if (KIND == 3 && NGP == 8) {
    XI = at(SS8S, IPT, "SS8S");
    ETA = at(TT8S, IPT, "TT8S");
    ZETA = at(UU8S, IPT, "UU8S");
    WT = 1.0;
  }
}

void GP_COORD_HIGH(double& XI, double& ETA, double& ZETA, double& WT, int32_t IPT, int32_t NGP,
                   int32_t KIND) {
  XI = ETA = ZETA = WT = 0.0;
  if (KIND == 2) {
    if (NGP == 4) {
      XI = at(SS4, IPT, "SS4");
      ETA = at(TT4, IPT, "TT4");
      WT = 1.0;
    } else if (NGP == 3) {
      XI = at(SS6P, IPT, "SS6P");
      ETA = at(TT6P, IPT, "TT6P");
      WT = at(WHT6P, IPT, "WHT6P");
    } else if (NGP == 9) {
      XI = at(SS8P, IPT, "SS8P");
      ETA = at(TT8P, IPT, "TT8P");
      WT = at(WHT8P, IPT, "WHT8P");
    }
  } else if (KIND == 3) {
    if (NGP == 4) {
      XI = at(SS10, IPT, "SS10");
      ETA = at(TT10, IPT, "TT10");
      ZETA = at(UU10, IPT, "UU10");
      WT = at(WHT10, IPT, "WHT10");
    } else if (NGP == 9) {
      XI = at(SS15, IPT, "SS15");
      ETA = at(TT15, IPT, "TT15");
      ZETA = at(UU15, IPT, "UU15");
      WT = at(WHT15, IPT, "WHT15");
    } else if (NGP == 27) {
      XI = at(SS20, IPT, "SS20");
      ETA = at(TT20, IPT, "TT20");
      ZETA = at(UU20, IPT, "UU20");
      WT = at(WHT20, IPT, "WHT20");
    }
  }
}

}  // namespace respcore
