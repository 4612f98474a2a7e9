// Carrying values from the integration points of an element to its centre
// and nodes.
//
// The direct path builds, for the element's shape, the NGP by NPTS matrix
// SHAPE whose column P holds the weights of the Gauss values for result
// point P (from the shape-function library), and multiplies:
// VALUE_NODAL(NC,NPTS) = VALUE_GAUSS(NC,NGP) * SHAPE. Result point 1 is the
// centre when WITHCENTRE is 1; otherwise the centre row of the shape tables is
// skipped and point 1 is the first node.
//
// STRESS_RECOVERY fits a linear field to one component by least squares.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "core/diagnostics.hpp"

namespace respcore {

// Solid shapes, chosen by NGP (and NPTS for 8 and 27 points):
//   1 tetrahedron (4 nodes), 4 tetrahedron (10), 6 wedge (6),
//   8 with NPTS 9 hexahedron (8), 8 otherwise pyramid (5),
//   9 wedge (15), 27 with NPTS 21 hexahedron (20), 27 otherwise pyramid (13).
// The NPTS test is exact: a hexahedron without its centre takes the pyramid
// branch. An unknown NGP gives zero results.
void STRESS_RECOVERY_SOLID(VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS, int32_t NC,
                           int32_t NGP, int32_t NPTS, int32_t WITHCENTRE);

// Plane shapes: NGP 1 triangle (3), 3 triangle (6), 4 quadrilateral (4),
// 9 quadrilateral (8).
void STRESS_RECOVERY_PLANE(VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS, int32_t NC,
                           int32_t NGP, int32_t NPTS, int32_t WITHCENTRE);

// Fill SHAPE(NGP,NPTS), column P from table row P + OFFSET. An unknown NGP
// leaves SHAPE as it is.
void STRESS_RECOVERY_SHAPE_SOLID(MatRef<double> SHAPE, int32_t NGP, int32_t NPTS, int32_t OFFSET);
void STRESS_RECOVERY_SHAPE_PLANE(MatRef<double> SHAPE, int32_t NGP, int32_t NPTS, int32_t OFFSET);
// As the plane selector, except that 4 points serve the 4-node quadrilateral
// only for NPTS 4 and the 8-node quadrilateral's reduced form otherwise.
void STRESS_RECOVERY_SHAPE_SHELL(MatRef<double> SHAPE, int32_t NGP, int32_t NPTS, int32_t OFFSET);
// One-point line: every column is 1.
void STRESS_RECOVERY_SHAPE_AXIAL(MatRef<double> SHAPE, int32_t NGP, int32_t NPTS);

// Least-squares linear fit of VALUE_GAUSS(NGP) at COORD_GAUSS(NDIM,NGP),
// evaluated at COORD_NODAL(NDIM,NNODE) into VALUE_NODAL(NNODE). A 10-node
// tetrahedron with 4 points (NDIM 3) goes to STRESS_RECOVERY_ISOLIDH instead.
// A singular normal matrix of order 2 or 3 stops the run as the inverse does.
void STRESS_RECOVERY(Diagnostics& DG, VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS,
                     MatRef<double> COORD_GAUSS, MatRef<double> COORD_NODAL, int32_t NNODE,
                     int32_t NGP, int32_t NDIM);

// Direct recovery of one component at the NNODE nodes of a 10-node
// tetrahedron (NGP 4), 20-node hexahedron (27) or 15-node wedge (9). Any other
// NGP leaves VALUE_NODAL as it is.
void STRESS_RECOVERY_ISOLIDH(VecRef<double> VALUE_NODAL, VecRef<double> VALUE_GAUSS, int32_t NNODE,
                             int32_t NGP);

// Natural coordinates and weight of Gauss point IPT of the rule of NGP points
// for the family KIND (1 line, 2 plane, 3 solid). Coordinates a rule does not
// have are 0; an unknown rule gives all four 0, and an IPT outside the rule
// reports the bound diagnostic and reads 0. The weights integrate over the
// reference element as they stand (triangle area 1/2, tetrahedron volume 1/6).
//   GP_COORD:      line 2; plane 4 (2x2); solid 6 (wedge 3x2), 8 (2x2x2).
//   GP_COORD_HIGH: plane 4 (2x2), 3 (triangle), 9 (3x3);
//                  solid 4 (tetrahedron), 9 (wedge 3x3), 27 (3x3x3).
void GP_COORD(double& XI, double& ETA, double& ZETA, double& WT, int32_t IPT, int32_t NGP,
              int32_t KIND);
void GP_COORD_HIGH(double& XI, double& ETA, double& ZETA, double& WT, int32_t IPT, int32_t NGP,
                   int32_t KIND);

}  // namespace respcore
