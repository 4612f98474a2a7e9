// Integration rules of the continuum elements, as stored.
//
// Points and weights are held as separate tables, one per coordinate. The
// tetrahedron weights of the 4- and 5-point rules are not divided by 6: a
// caller integrating over the volume carries that factor itself. The other
// rules integrate over the reference element as they stand (triangle area
// 1/2, wedge volume 1).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "numeric/gauss.hpp"

namespace respcore {

namespace gp_table {

// The shared Gauss constants (numeric/gauss.hpp) and the constants of the
// rules that only the integration rules have.
using gauss::G2;
using gauss::G3;
using gauss::TET4_A;
using gauss::TET4_B;
using gauss::W3_CENTRE;
using gauss::W3_OUTER;
inline constexpr double TET4_W = 0.25;
inline constexpr double TET5_W_CENTRE = -0.8;
inline constexpr double TET5_W = 0.45;
inline constexpr double TRI4_W_CENTRE = -0.28125;
inline constexpr double TRI4_W = 0.26041667;

template <size_t N>
using Table = gauss::Table<N>;

namespace detail {
inline constexpr double kTri4S[4] = {1.0 / 3.0, 0.6, 0.2, 0.2};
inline constexpr double kTri4T[4] = {1.0 / 3.0, 0.2, 0.6, 0.2};
inline constexpr double kTri4W[4] = {TRI4_W_CENTRE, TRI4_W, TRI4_W, TRI4_W};
using gauss::make;
using gauss::TRI_S;
using gauss::TRI_T;
using gauss::W3;
using gauss::X2;
using gauss::X3;
}  // namespace detail

// Line.
inline constexpr const Table<2>& SS2L = gauss::LINE2_S;
inline constexpr const Table<3>& SS3L = gauss::LINE3_S;
inline constexpr const Table<3>& WHT3L = gauss::LINE3_W;

// Triangle, 3 points.
inline constexpr const Table<3>& SS3PT = gauss::TRI3_S;
inline constexpr const Table<3>& TT3PT = gauss::TRI3_T;
inline constexpr const Table<3>& WHT3PT = gauss::TRI3_W;

// Quadrilateral, 2 by 2 in corner order, and 3 by 3 with S fastest.
inline constexpr const Table<4>& SS4PQ = gauss::QUAD4_S;
inline constexpr const Table<4>& TT4PQ = gauss::QUAD4_T;
inline constexpr const Table<9>& SS9PQ = gauss::QUAD9_S;
inline constexpr const Table<9>& TT9PQ = gauss::QUAD9_T;
inline constexpr const Table<9>& WHT9PQ = gauss::QUAD9_W;

// Tetrahedron, 4 and 5 points (weights not divided by 6).
inline constexpr Table<4> SS4ST = {TET4_A, TET4_B, TET4_A, TET4_A};
inline constexpr Table<4> TT4ST = {TET4_A, TET4_A, TET4_B, TET4_A};
inline constexpr Table<4> UU4ST = {TET4_A, TET4_A, TET4_A, TET4_B};
inline constexpr Table<4> WHT4ST = {TET4_W, TET4_W, TET4_W, TET4_W};
inline constexpr Table<5> SS5ST = {0.25, 0.5, 1.0 / 6.0, 1.0 / 6.0, 1.0 / 6.0};
inline constexpr Table<5> TT5ST = {0.25, 1.0 / 6.0, 0.5, 1.0 / 6.0, 1.0 / 6.0};
inline constexpr Table<5> UU5ST = {0.25, 1.0 / 6.0, 1.0 / 6.0, 0.5, 1.0 / 6.0};
inline constexpr Table<5> WHT5ST = {TET5_W_CENTRE, TET5_W, TET5_W, TET5_W, TET5_W};

// Wedge: a triangle rule (fastest) by a Gauss rule through the thickness.
inline constexpr const Table<6>& SS6SP = gauss::WEDGE6_S;
inline constexpr const Table<6>& TT6SP = gauss::WEDGE6_T;
inline constexpr const Table<6>& UU6SP = gauss::WEDGE6_U;
inline constexpr const Table<6>& WHT6SP = gauss::WEDGE6_W;
inline constexpr Table<8> SS8SP = detail::make<8>([](size_t i) { return detail::kTri4S[i % 4]; });
inline constexpr Table<8> TT8SP = detail::make<8>([](size_t i) { return detail::kTri4T[i % 4]; });
inline constexpr Table<8> UU8SP = detail::make<8>([](size_t i) { return detail::X2[i / 4]; });
inline constexpr Table<8> WHT8SP = detail::make<8>([](size_t i) { return detail::kTri4W[i % 4]; });
inline constexpr const Table<9>& SS9SP = gauss::WEDGE9_S;
inline constexpr const Table<9>& TT9SP = gauss::WEDGE9_T;
inline constexpr const Table<9>& UU9SP = gauss::WEDGE9_U;
inline constexpr Table<9> WHT9SP =
    detail::make<9>([](size_t i) { return (1.0 / 6.0) * detail::W3[i / 3]; });
inline constexpr Table<12> SS12SP =
    detail::make<12>([](size_t i) { return detail::kTri4S[i % 4]; });
inline constexpr Table<12> TT12SP =
    detail::make<12>([](size_t i) { return detail::kTri4T[i % 4]; });
inline constexpr Table<12> UU12SP = detail::make<12>([](size_t i) { return detail::X3[i / 4]; });
inline constexpr Table<12> WHT12SP =
    detail::make<12>([](size_t i) { return detail::kTri4W[i % 4] * detail::W3[i / 4]; });

// Brick: 2 cubed in corner order, 3 cubed with S fastest.
inline constexpr const Table<8>& SS8SH = gauss::HEX8_S;
inline constexpr const Table<8>& TT8SH = gauss::HEX8_T;
inline constexpr const Table<8>& UU8SH = gauss::HEX8_U;
inline constexpr const Table<27>& SS27SH = gauss::HEX27_S;
inline constexpr const Table<27>& TT27SH = gauss::HEX27_T;
inline constexpr const Table<27>& UU27SH = gauss::HEX27_U;
inline constexpr const Table<27>& WHT27SH = gauss::HEX27_W;

}  // namespace gp_table

// Point IPOINT of the NPT-point rule of the family chosen by NSTRS and NNODE:
//   NSTRS 1: NNODE 2 one point (S 0, weight 2); NNODE 3 with NPT 2 Gauss 2.
//   NSTRS 2: Gauss 2 or 3 along S.
//   NSTRS 6: tetrahedra (NNODE 4, 10) NPT 1, 4, 5; wedges (6, 15) NPT 6, 8,
//            9, 12; bricks (8, 20) NPT 8, 27.
//   any other NSTRS: triangles (3, 6) NPT 1, 3; quadrilaterals (4, 8) NPT
//            4, 9.
// S, T, U and WEIGHT are set to 0 first; a rule without such a coordinate
// leaves it 0, and an unknown rule leaves all 0. An IPOINT outside its table
// reports the bound diagnostic and reads 0.
void T_GP_COORD(double& S, double& T, double& U, double& WEIGHT, int32_t IPOINT, int32_t NPT,
                int32_t NNODE, int32_t NSTRS);

}  // namespace respcore
