// The four-node membrane with a true rotation about the normal at each node
// (u, v, rotation z). The mid-side displacements of an eight-node
// serendipity field are tied to the corner translations and rotations:
//   u_M = (u_I + u_J)/2 + (rz_J - rz_I)(y_J - y_I)/8
//   v_M = (v_I + v_J)/2 - (rz_J - rz_I)(x_J - x_I)/8
// and two small penalties hold the rotations to the element's spin: one on
// the mean rotation less the spin at the centre, one on the hourglass
// pattern (+1, -1, +1, -1) of the rotations.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "plate/plate_context.hpp"

namespace respcore {

// Bilinear shape functions N(1..4) at (XI, ETA).
void N4SHAPE(double XI, double ETA, VecRef<double> N);

// Their derivatives: d/dxi in DN(1..4), d/deta in DN(5..8).
void DN4SHAPE(double XI, double ETA, VecRef<double> DN);

// Derivatives of the eight-node serendipity functions (corners, then the
// mid-sides of 1-2, 2-3, 3-4, 4-1): d/dxi in DN8(1..8), d/deta in
// DN8(9..16).
void DN8SHAPE(double XI, double ETA, VecRef<double> DN8);

// J(2,2) from the bilinear derivatives DN4 and the corners XY(2,4), its
// inverse JINV and determinant DETJ; DN8 (eight functions) and DPN (four
// functions), laid out as DN8SHAPE and DN4SHAPE give them, are turned in
// place into x derivatives (first half) and y derivatives (second half).
void JACOB(MatRef<double> XY, VecRef<double> DN4, VecRef<double> DN8, VecRef<double> DPN,
           MatRef<double> JINV, double& DETJ);

// B(3,12), columns (u, v, rz) of nodes 1..4, from the Cartesian DN8 and the
// side vectors SIDES(2,4): side k is node k less the node before it (column
// 1 is x1 - x4).
void MEMB(VecRef<double> DN8, MatRef<double> SIDES, MatRef<double> B);

// Adds the membrane of the flat element XY(2,4) with thickness T into the
// 24x24 element matrix S (freedoms u, v, w, rx, ry, rz by node; the membrane
// takes 1, 2 and 6). E Young's modulus, C = E/(1-NU^2). PLANE_MODE 0 plane
// stress, 1 plane strain. A scaled section takes its D from the element's
// material, rotated and scaled as the section says. Both penalties are
// 0.001 E T AREA / (1+NU), the factor being the single-precision 0.001.
void QUAD_WITH_DRILLING(const PlateContext& PC, MatRef<double> XY, double E, double C, double NU,
                        double T, MatRef<double> S, int32_t PLANE_MODE);

// The same with a general in-plane D1(3,3) (used in full) and both penalty
// factors 0.002 D1_SHEARMOD T AREA.
void QUAD_WITH_DRILLING_GNRL(MatRef<double> XY, MatRef<double> D1, double D1_SHEARMOD, double T,
                             MatRef<double> S);

}  // namespace respcore
