// The step loop shared by the two solid histories: the results of all
// steps come from one matrix product (displacements of every step at once);
// each step's column is then turned to global axes, its strains are formed,
// and, for element-axis results, everything is turned back; at the end the
// columns go to TDSP.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "nodal/disp_equation.hpp"
#include "run/run_context.hpp"
#include "run/tdsp.hpp"
#include "solid/solid_state.hpp"

namespace respcore {

struct SolidStepLayout {
  int32_t force_rows = 0;  // rows of nodal forces at the head of a column
  int32_t max_points = 0;  // stress points the column holds (centre included)
  bool low_order = false;  // integration-point stresses still to extrapolate,
                           // and forces still in element axes
};

// OUT(1..mrows, all steps) := M(1..mrows, 1..ncols) times DISP(1..ncols, all
// steps), with leading dimensions taken from the matrices (zero when there
// is nothing to multiply). OUT keeps its rows beyond MROWS.
void solid_product(MatRef<double> OUT, MatRef<double> M, int32_t mrows, int32_t ncols,
                   MatRef<double> DISP);

// Per step of OUT: extrapolation (low order), turning to global axes with
// T (columns the element axes), strains into STRAIN_TIME(6 x points, step),
// and with AXIS_FLAG 0 the turn back to element axes of strains, stresses and
// forces. NN is the element's node count (points NN + 1).
void solid_steps(SolidContext& C, const SolidStepLayout& L, MatRef<double> OUT,
                 MatRef<double> STRAIN_TIME, MatRef<double> T, int32_t NN, int32_t AXIS_FLAG);

// Rows 1..NROWS of OUT and rows 1..NSTRAIN of STRAIN_TIME (to TDSP rows
// STRAIN_ROW0 + k) into TDSP: under REQUEST_MODE 1 step s to column s,
// otherwise the first step to column ITEM.
void solid_deliver(int32_t REQUEST_MODE, Tdsp& TDSP, int64_t ITEM, MatRef<double> OUT,
                   int32_t NROWS, MatRef<double> STRAIN_TIME, int32_t STRAIN_ROW0, int32_t NSTRAIN);

// One element over many steps (REQUEST_MODE 1), where only the row
// RESULT_COMP (C) of TDSP is returned: the product, the turns and the strains are
// made for the point (or node) that row belongs to, with the same routines
// and in the same order as for all points, and only that row is written.
// M(mrows, ncols) is the element's matrix (rows as OUT of solid_steps);
// rows 1..NROWS and STRAIN_ROW0 + 1..NSTRAIN are the element's TDSP rows.
void solid_history_row(SolidContext& SC, int32_t C, Tdsp& TDSP, const SolidStepLayout& L,
                       MatRef<double> M, int32_t mrows, int32_t ncols, MatRef<double> DISP,
                       MatRef<double> T, int32_t NN, int32_t AXIS_FLAG, int32_t NROWS,
                       int32_t STRAIN_ROW0, int32_t NSTRAIN);

// The same row combined from the displacement histories (DispRow, started
// at DISP_EQUATION's place, for a TDSP of NUM_STEPS columns and at most
// kCombinedInputs displacements): the element's step from its displacements
// to the row is affine, so it is probed once for its map.
inline constexpr int32_t kCombinedInputs = 64;
void solid_combined_row(SolidContext& SC, int32_t C, Tdsp& TDSP, const SolidStepLayout& L,
                        MatRef<double> M, int32_t mrows, int32_t ncols, MatRef<double> T,
                        int32_t NN, int32_t AXIS_FLAG, int32_t NROWS, int32_t STRAIN_ROW0,
                        int32_t NSTRAIN, DispRow& row);

// The rows of one element (list position ITEM) into TDSP: under
// REQUEST_MODE 1 only the requested row over all steps (solid_history_row),
// otherwise the product into OUT, the steps and the delivery of the first
// step. M(MROWS, NCOLS), T, NN and the rows as for the routines above.
void solid_element_rows(SolidContext& C, const RunContext& R, Tdsp& TDSP, int64_t ITEM,
                        const SolidStepLayout& L, MatRef<double> M, int32_t mrows, int32_t ncols,
                        MatRef<double> DISP, MatRef<double> T, int32_t NN, int32_t AXIS_FLAG,
                        int32_t NROWS, int32_t STRAIN_ROW0, int32_t NSTRAIN, MatRef<double> OUT,
                        MatRef<double> STRAIN_TIME);

}  // namespace respcore
