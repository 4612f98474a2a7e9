// Element matrices of the six- and eight-node plane elements, rebuilt from
// the geometry and the material once per element: the stiffness, whose rows
// are the nodal forces, the stress rows at the centre and the integration
// points, and the stresses of a step at the integration points.
//
// TRAN(3,3) holds the panel axes as rows (the panel-axis routine's PANEL_T);
// panel coordinates are CALC_CN_2D's, node 1 at the origin. The material and
// PLANE_TYPE (0 plane stress, 1 plane strain) are the current element's;
// PLATE_PROP(1) is the thickness. ELEM_NO names the element in the
// element-shape message of the strain-displacement routine.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "run/histories.hpp"

namespace respcore {

// Integration points of the element: 3 for six nodes, 9 otherwise.
int32_t plane_high_points(int32_t NNODE);

// SK += W B' D B over NDOF columns of B(NSTRS, NDOF) and D(NSTRS, NSTRS).
void PLX_STIFF_MAT(MatRef<double> SK, MatRef<double> D, MatRef<double> B, double W, int32_t NDOF,
                   int32_t NSTRS);

// Rows IROW+1 .. IROW+NSTRS of STR := D B over NDOF columns.
void PLX_STRESS_HIGH(MatRef<double> STR, MatRef<double> D, MatRef<double> B, int32_t IROW,
                     int32_t NDOF, int32_t NSTRS);

// SK(3 NNODE, 3 NNODE) (leading dimension 24): the stiffness in panel axes,
// the two in-plane freedoms of a node at its first two of three places, or
// with TOGLOBAL 1 turned to global axes by TRAN. WORK(24,24) is scratch.
void QUAD8_STF(ContinuumParts& C, int32_t ELEM_NO, MatRef<double> SK, MatRef<double> WORK,
               int32_t NNODE, MatRef<double> XYZ, MatRef<double> TRAN, int32_t TOGLOBAL);

// Stress rows (xx, yy, xy) of STR on the panel freedoms (u, v per node): the
// centre, then each integration point, from row 13 (three and four nodes) or
// 25 (six and eight nodes); 4, 5 or 10 points for 3 or 6, 4, and 8 nodes.
void PLANE_QUAD8_STR_BUB(ContinuumParts& C, int32_t ELEM_NO, MatRef<double> STR, int32_t NNODE,
                         MatRef<double> XYZ, MatRef<double> TRAN);

// The panel axes of the element as rows of TRAN: the quadrilateral rule on
// nodes 1..4 for eight nodes, the triangle rule on nodes 1..3 otherwise.
void plane_high_axes(MatRef<double> XYZ, int32_t NNOD, MatRef<double> TRAN);

// STRS(60,48): rows 1 .. 24 the global stiffness on the global translations
// of each node (columns 6(b-1)+1..3), rows 25 onward the stress rows of
// PLANE_QUAD8_STR_BUB on the panel freedoms (columns 6(b-1)+1, 2). TRAN
// receives the panel axes; the plane stress form keeps them to itself.
void PLANE_STRAIN_HIGH_STRS(ContinuumParts& C, int32_t ELEM_NO, int32_t NNOD, MatRef<double> STRS,
                            MatRef<double> XYZ, MatRef<double> TRAN);
void PLANE_STRESS_HIGH_STRS(ContinuumParts& C, int32_t ELEM_NO, int32_t NNOD, MatRef<double> STRS,
                            MatRef<double> XYZ);

// The stresses of a step at the integration points, OUT(3(g-1)+i), from the
// panel displacements DISP_LOCAL (six per node). At STEP 1 the element's
// D times B at each point is formed and kept for its later steps.
void PLANE_STRESS_HO(ContinuumParts& C, int32_t ELEM_NO, VecRef<double> OUT, MatRef<double> XYZ,
                     MatRef<double> TRAN, VecRef<double> DISP_LOCAL, int32_t STEP, int32_t NNOD);

}  // namespace respcore
