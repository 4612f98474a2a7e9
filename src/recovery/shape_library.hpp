// Gauss-to-point interpolation weights, one routine per element shape.
//
// Each routine takes a result point of its shape (row IPT of its own table of
// natural coordinates: row 1 the element centre, rows 2 on the nodes in
// element order), rescales it so that the Gauss points of the element's rule
// fall on the corners of a unit cell, and evaluates the low-order shape
// functions of that cell there. N receives one weight per Gauss point; the
// value at the result point is the weighted sum of the Gauss-point values.
//
// The "_LINEAR" forms of the quadratic shapes interpolate the 3-point rule
// quadratically to the inner points of the 2-point rule first and extrapolate
// linearly from there; the plain forms extrapolate directly with quadratic
// (serendipity) weights.
//
// A row outside a table reports the bound diagnostic and reads as 0.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "numeric/gauss.hpp"

namespace respcore {

// Constants as stored. Several are deliberately not the exact values: the
// weights every stored result was produced with depend on them.
namespace shape_const {
inline constexpr double R3 = 1.7320508075688772;          // square root of 3
inline constexpr double S5 = 2.2360679549995797;          // tetrahedron factor, rounded root of 5
inline constexpr double A4 = gauss::TET4_A;               // 4-point tetrahedron coordinate
inline constexpr double Q = 0.16666666666666666;          // triangle 3-point coordinate
inline constexpr double C5 = 0.7453559924999299;          // (1/R3) / sqrt(0.6)
inline constexpr double C5_INV = 1.3416407864998738;      // its inverse
inline constexpr double PYR_A = 0.8774851560592651;       // pyramid rule constants
inline constexpr double PYR_B = 0.45584815740585327;
inline constexpr double PYR_R3 = 1.7320507764816284;      // square root of 3 in single precision
inline constexpr double G3 = gauss::G3;                   // 3-point Gauss abscissa
}  // namespace shape_const

// Result-point tables: x (XII), y (ETA), z (ZETA); row 1 is the centre.
namespace shape_table {
inline constexpr double LINE2_XII[3] = {0.0, 1.0, 0.0};

inline constexpr double QUAD4_XII[5] = {0.0, -1.0, 1.0, 1.0, -1.0};
inline constexpr double QUAD4_ETA[5] = {0.0, -1.0, -1.0, 1.0, 1.0};

inline constexpr double QUAD8_XII[9] = {0.0, -1.0, 1.0, 1.0, -1.0, 0.0, 1.0, 0.0, -1.0};
inline constexpr double QUAD8_ETA[9] = {0.0, -1.0, -1.0, 1.0, 1.0, -1.0, 0.0, 1.0, 0.0};

inline constexpr double TRI6_XII[7] = {1.0 / 3.0, 0.0, 1.0, 0.0, 0.5, 0.5, 0.0};
inline constexpr double TRI6_ETA[7] = {1.0 / 3.0, 0.0, 0.0, 1.0, 0.0, 0.5, 0.5};

inline constexpr double HEX8_XII[9] = {0.0, -1.0, 1.0, 1.0, -1.0, -1.0, 1.0, 1.0, -1.0};
inline constexpr double HEX8_ETA[9] = {0.0, -1.0, -1.0, 1.0, 1.0, -1.0, -1.0, 1.0, 1.0};
inline constexpr double HEX8_ZETA[9] = {0.0, -1.0, -1.0, -1.0, -1.0, 1.0, 1.0, 1.0, 1.0};

inline constexpr double HEX20_XII[21] = {0.0,  -1.0, 1.0,  1.0, -1.0, -1.0, 1.0,
                                         1.0,  -1.0, 0.0,  1.0, 0.0,  -1.0, 0.0,
                                         1.0,  0.0,  -1.0, -1.0, 1.0, 1.0,  -1.0};
inline constexpr double HEX20_ETA[21] = {0.0,  -1.0, -1.0, 1.0,  1.0, -1.0, -1.0,
                                         1.0,  1.0,  -1.0, 0.0,  1.0, 0.0,  -1.0,
                                         0.0,  1.0,  0.0,  -1.0, -1.0, 1.0, 1.0};
inline constexpr double HEX20_ZETA[21] = {0.0, -1.0, -1.0, -1.0, -1.0, 1.0, 1.0,
                                          1.0, 1.0,  -1.0, -1.0, -1.0, -1.0, 1.0,
                                          1.0, 1.0,  1.0,  0.0,  0.0,  0.0,  0.0};

inline constexpr double PYR5_XII[6] = {0.0, -1.0, 1.0, 1.0, -1.0, 0.0};
inline constexpr double PYR5_ETA[6] = {0.0, -1.0, -1.0, 1.0, 1.0, 0.0};
inline constexpr double PYR5_ZETA[6] = {0.25, 0.0, 0.0, 0.0, 0.0, 1.0};

// The apex row of x holds 1 as stored; the apex test makes it irrelevant.
inline constexpr double PYR13_XII[14] = {0.0, -1.0, 1.0, 1.0,  -1.0, 1.0, 0.0,
                                         1.0, 0.0,  -1.0, -0.5, 0.5, 0.5, -0.5};
inline constexpr double PYR13_ETA[14] = {0.0,  -1.0, -1.0, 1.0,  1.0,  0.0, -1.0,
                                         0.0,  1.0,  0.0,  -0.5, -0.5, 0.5, 0.5};
inline constexpr double PYR13_ZETA[14] = {0.25, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0,
                                          0.0,  0.0, 0.0, 0.5, 0.5, 0.5, 0.5};

inline constexpr double WEDGE6_XII[7] = {1.0 / 3.0, 0.0, 1.0, 0.0, 0.0, 1.0, 0.0};
inline constexpr double WEDGE6_ETA[7] = {1.0 / 3.0, 0.0, 0.0, 1.0, 0.0, 0.0, 1.0};
inline constexpr double WEDGE6_ZETA[7] = {0.0, -1.0, -1.0, -1.0, 1.0, 1.0, 1.0};

inline constexpr double WEDGE15_XII[16] = {1.0 / 3.0, 0.0, 1.0, 0.0, 0.0, 1.0, 0.0, 0.5,
                                           0.5,       0.0, 0.5, 0.5, 0.0, 0.0, 1.0, 0.0};
inline constexpr double WEDGE15_ETA[16] = {1.0 / 3.0, 0.0, 0.0, 1.0, 0.0, 0.0, 1.0, 0.0,
                                           0.5,       0.5, 0.0, 0.5, 0.5, 0.0, 0.0, 1.0};
inline constexpr double WEDGE15_ZETA[16] = {0.0,  -1.0, -1.0, -1.0, 1.0, 1.0, 1.0, -1.0,
                                            -1.0, -1.0, 1.0,  1.0,  1.0, 0.0, 0.0, 0.0};

inline constexpr double TET10_XII[11] = {0.25, 0.0, 1.0, 0.0, 0.0, 0.5, 0.5, 0.0, 0.0, 0.5, 0.0};
inline constexpr double TET10_ETA[11] = {0.25, 0.0, 0.0, 1.0, 0.0, 0.0, 0.5, 0.5, 0.0, 0.0, 0.5};
inline constexpr double TET10_ZETA[11] = {0.25, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.5, 0.5, 0.5};
}  // namespace shape_table

// One Gauss point: N(1) = 1.
void LINE_SHAPE_1NODE(VecRef<double> N);
void PLANE_SHAPE_3NODES(VecRef<double> N);
void SOLID_SHAPE_4NODES(VecRef<double> N);

// Two-point line rule: N(1..2).
void LINE_SHAPE_2NODE(VecRef<double> N, int32_t IPT);

// Quadrilaterals, 2 by 2 rule: N(1..4), bilinear. The reduced form uses the
// 8-node quadrilateral's table.
void PLANE_SHAPE_4NODES(VecRef<double> N, int32_t IPT);
void PLANE_SHAPE_8NODES_REDUCED(VecRef<double> N, int32_t IPT);

// 6-node triangle, 3-point rule: N(1..3).
void PLANE_SHAPE_6NODES(VecRef<double> N, int32_t IPT);

// 8-node quadrilateral, 3 by 3 rule: N(1..9), S fastest.
void PLANE_SHAPE_8NODES_LINEAR(VecRef<double> N, int32_t IPT);
void PLANE_SHAPE_8NODES(VecRef<double> N, int32_t IPT);

// 8-node hexahedron, 2 by 2 by 2 rule in corner order: N(1..8).
void SOLID_SHAPE_8NODES(VecRef<double> N, int32_t IPT);

// 10-node tetrahedron, 4-point rule: N(1..4).
void SOLID_SHAPE_10NODES(VecRef<double> N, int32_t IPT);

// 6-node wedge, triangle 3 by Gauss 2: N(1..6), triangle fastest.
void SOLID_SHAPE_6NODES(VecRef<double> N, int32_t IPT);

// 5-node pyramid, 8-point rule: N(1..8).
void SOLID_SHAPE_5NODES(VecRef<double> N, int32_t IPT);

// 15-node wedge, triangle 3 by Gauss 3: N(1..9), triangle fastest.
void SOLID_SHAPE_15NODES_LINEAR(VecRef<double> N, int32_t IPT);
void SOLID_SHAPE_15NODES(VecRef<double> N, int32_t IPT);

// 20-node hexahedron, 3 by 3 by 3 rule: N(1..27), S fastest.
void SOLID_SHAPE_20NODES_LINEAR(VecRef<double> N, int32_t IPT);
void SOLID_SHAPE_20NODES(VecRef<double> N, int32_t IPT);

// 13-node pyramid, 27-point rule: N(1..27).
void SOLID_SHAPE_13NODES(VecRef<double> N, int32_t IPT);

}  // namespace respcore
