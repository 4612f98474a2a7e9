// Truss history: axial force and axial stress at both ends of each listed
// truss, for each requested step, from the element's stored force-recovery
// matrix and its nodal displacements.
#include "line/line_element.hpp"
#include "nodal/disp_equation.hpp"
#include "nodal/inactive.hpp"

namespace respcore {

namespace {

// The record (TRUS): NDOF equation numbers, STRS(NSTR, NDOF) by columns, and
// in its last three words NDOF, NSTR and the force factor. The extended
// record (EMBT, tag "H.N.Q" only) has 1245 words and the element's node lists.
constexpr int32_t kWords = 63;
constexpr int32_t kExtendedWords = 1245;
constexpr int32_t kRows = 4;  // of a step: two end forces, two end stresses

// The step S of the element: the two end forces come with opposite signs;
// both ends carry their mean, tension positive; the initial forces are added
// before the stresses are formed, and the factor scales the forces alone.
template <class Strs, class Disp, class Out>
void truss_step(Strs STRS, Disp D, Out SSIG, int64_t s, int32_t NDOF, const double* init,
                bool scaled, double SCALE) {
  double SIG[2] = {0.0, 0.0};
  for (int32_t i = 1; i <= 2; ++i) {
    for (int32_t j = 1; j <= NDOF; ++j) SIG[i - 1] += STRS(i, j) * D(j, s);
  }
  const double F = (SIG[1] - SIG[0]) * 0.5;
  SSIG(1, s) = F;
  SSIG(2, s) = F;
  if (init != nullptr) {
    SSIG(1, s) = SSIG(1, s) + init[0];
    SSIG(2, s) = SSIG(2, s) + init[1];
  }
  SSIG(3, s) = SSIG(1, s) * STRS(3, 1);
  SSIG(4, s) = SSIG(2, s) * STRS(4, 1);
  if (scaled) {
    SSIG(1, s) = SSIG(1, s) * SCALE;
    SSIG(2, s) = SSIG(2, s) * SCALE;
  }
}

}  // namespace

void TRUSS_TIME(const RunContext& R, ArchiveReader A, NodalMotion& M, InactiveTables& IT,
                LineState& L, Tdsp& TDSP, ItemList INUM_SERIAL) {
  Vec<double>& SA = L.TRUSS_SA;
  const bool hnq = product_is(A.state, "H.N.Q");

  Mat<double> SSIG("SSIG", kRows, R.NUM_STEPS);
  Mat<double> RST_INITIAL("RST_INITIAL", 0, 0);
  const bool has_initial =
      line_detail::read_initial_forces(R, A, sections::ITTR, 2, INUM_SERIAL, RST_INITIAL);

  const int32_t ID = R.ELEM_FORM == 2 ? 4 : 3;
  for (int64_t k = 1; k <= R.NUM_ITEMS; ++k) {
    SA.fill(0.0);
    const int32_t serial = INUM_SERIAL(k);
    A.read_f64(A.find(sections::TRUS, ID), serial, SA.ref(), kWords);

    // A negative factor marks an element with an extended record, which
    // only the tag "H.N.Q" reads; its factor and word 1245 change places.
    const bool extended = trunc_i32(SA(kWords)) < 0;
    int32_t reclen = kWords;
    int32_t NNODE = 2;
    double SCALE = SA(kWords);
    if (extended && hnq) {
      A.read_f64(A.find(sections::EMBT, ID), serial, SA.ref(), kExtendedWords);
      const double F = SA(kWords);
      const double G = SA(kExtendedWords);
      SA(kExtendedWords) = F;
      SA(kWords) = G;
      SCALE = -F;
      reclen = kExtendedWords;
      NNODE = trunc_i32(SA(1201)) + trunc_i32(SA(1202));
    }
    if (SCALE < 0.0) SCALE = -SCALE;

    const int32_t NDOF = trunc_i32(SA(reclen - 2));
    const int32_t NSTR = trunc_i32(SA(reclen - 1));
    Vec<int32_t> LM("LM", NDOF);
    for (int32_t i = 1; i <= NDOF; ++i) LM(i) = trunc_i32(SA(i));

    Vec<int32_t> IIA("IIA", NNODE);
    if (extended) {
      const int32_t NA = trunc_i32(SA(1201));
      const int32_t NB = trunc_i32(SA(1202));
      for (int32_t i = 1; i <= NA; ++i) IIA(i) = trunc_i32(SA(1203 + i));
      for (int32_t i = 1; i <= NB; ++i) IIA(NA + i) = trunc_i32(SA(1222 + i));
    }

    Mat<double> DISP_EQ("DISP_EQ", NDOF, R.NUM_STEPS);
    Mat<double> DISP_NO("DISP_NO", NDOF, R.NUM_STEPS);
    DISP_EQUATION(M, NDOF, DISP_EQ.ref(), DISP_NO.ref(), NDOF, LM.ref(), IIA.ref(), NNODE, 1);
    line_detail::remove_initial_state(R, A, IT, INACTIVE_KIND_TRUSS, serial, NDOF, LM.ref(),
                                      L.TRUSS_DISP_INIT, DISP_EQ);

    Mat<double> STRS("STRS", NSTR, NDOF);
    const int64_t nvals = int64_t{std::max(NSTR, 0)} * std::max(NDOF, 0);
    for (int64_t v = 1; v <= nvals; ++v) STRS.flat()(v) = SA(NDOF + v);

    const double* init = has_initial ? RST_INITIAL.col(k) : nullptr;
    // Rows 1..4 of column 1 and rows 1, 2 of every column are read.
    const bool inside = NSTR >= 4 && NDOF >= 1;
    for (int64_t s = 1; s <= R.NUM_STEPS; ++s) {
      if (inside)
        truss_step(STRS.raw(), DISP_EQ.raw(), SSIG.raw(), s, NDOF, init, hnq, SCALE);
      else
        truss_step(STRS.ref(), DISP_EQ.ref(), SSIG.ref(), s, NDOF, init, hnq, SCALE);
    }

    deliver_rows(TDSP, R.REQUEST_MODE, SSIG, kRows, k);
  }
}

}  // namespace respcore
