// Gauss rules: the abscissae and weights that every stored result was
// produced with, and the point tables the integration rules and the
// Gauss-to-node recovery share. Some constants are deliberately not the
// exact values; each is kept with the digits it was stored with.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace respcore {

namespace gauss {

inline constexpr double G2 = 0.5773502691896257;  // 2-point abscissa
inline constexpr double G3 = 0.7745966692414834;  // 3-point abscissa
inline constexpr double W3_OUTER = 5.0 / 9.0;
inline constexpr double W3_CENTRE = 8.0 / 9.0;

// The one-dimensional rules of INTPT4 as stored: the 2-point abscissa one
// digit off the one above, the 3-point one ending in ...438 where the exact
// root has ...4834, and weights of 15 digits.
inline constexpr double INTPT4_XI2 = 0.5773502691896258;
inline constexpr double INTPT4_XI3 = 0.774596669241438;
inline constexpr double INTPT4_WT3_OUTER = 0.555555555555556;
inline constexpr double INTPT4_WT3_CENTRE = 0.888888888888889;
inline constexpr double INTPT4_XI4_INNER = 0.339981043584856;
inline constexpr double INTPT4_WT4_INNER = 0.652145154862546;
inline constexpr double INTPT4_XI4_OUTER = 0.861136311594053;
inline constexpr double INTPT4_WT4_OUTER = 0.347854845137454;

// Tetrahedron 4-point rule: the coordinates rounded to seven digits (the
// integration rules and the shape library), and in full (the recovery's
// high-order rule).
inline constexpr double TET4_A = 0.1381966;
inline constexpr double TET4_B = 0.5854102;
inline constexpr double TET4_A_FULL = 0.1381966011250105;
inline constexpr double TET4_B_FULL = 0.5854101966249685;

template <size_t N>
using Table = std::array<double, N>;

template <size_t N, class F>
constexpr Table<N> make(F f) {
  Table<N> t{};
  for (size_t i = 0; i < N; ++i) t[i] = f(i);
  return t;
}

inline constexpr double X2[2] = {-G2, G2};
inline constexpr double X3[3] = {-G3, 0.0, G3};
inline constexpr double W3[3] = {W3_OUTER, W3_CENTRE, W3_OUTER};
// Triangle 3-point rule.
inline constexpr double TRI_S[3] = {1.0 / 6.0, 2.0 / 3.0, 1.0 / 6.0};
inline constexpr double TRI_T[3] = {1.0 / 6.0, 1.0 / 6.0, 2.0 / 3.0};
// Corner signs of the quadrilateral and the brick in element order.
inline constexpr double CORNER_S[8] = {-1.0, 1.0, 1.0, -1.0, -1.0, 1.0, 1.0, -1.0};
inline constexpr double CORNER_T[8] = {-1.0, -1.0, 1.0, 1.0, -1.0, -1.0, 1.0, 1.0};
inline constexpr double CORNER_U[8] = {-1.0, -1.0, -1.0, -1.0, 1.0, 1.0, 1.0, 1.0};

// Line.
inline constexpr Table<2> LINE2_S = {-G2, G2};
inline constexpr Table<3> LINE3_S = {-G3, 0.0, G3};
inline constexpr Table<3> LINE3_W = {W3_OUTER, W3_CENTRE, W3_OUTER};
// Triangle, 3 points (weights over the area 1/2).
inline constexpr Table<3> TRI3_S = {TRI_S[0], TRI_S[1], TRI_S[2]};
inline constexpr Table<3> TRI3_T = {TRI_T[0], TRI_T[1], TRI_T[2]};
inline constexpr Table<3> TRI3_W = {1.0 / 6.0, 1.0 / 6.0, 1.0 / 6.0};
// Quadrilateral, 2 by 2 in corner order, and 3 by 3 with S fastest.
inline constexpr Table<4> QUAD4_S = make<4>([](size_t i) { return CORNER_S[i] * G2; });
inline constexpr Table<4> QUAD4_T = make<4>([](size_t i) { return CORNER_T[i] * G2; });
inline constexpr Table<9> QUAD9_S = make<9>([](size_t i) { return X3[i % 3]; });
inline constexpr Table<9> QUAD9_T = make<9>([](size_t i) { return X3[i / 3]; });
inline constexpr Table<9> QUAD9_W = make<9>([](size_t i) { return W3[i % 3] * W3[i / 3]; });
// Wedge, the triangle rule (fastest) by the 2- or 3-point rule through the
// thickness.
inline constexpr Table<6> WEDGE6_S = make<6>([](size_t i) { return TRI_S[i % 3]; });
inline constexpr Table<6> WEDGE6_T = make<6>([](size_t i) { return TRI_T[i % 3]; });
inline constexpr Table<6> WEDGE6_U = make<6>([](size_t i) { return X2[i / 3]; });
inline constexpr Table<6> WEDGE6_W = make<6>([](size_t) { return 1.0 / 6.0; });
inline constexpr Table<9> WEDGE9_S = make<9>([](size_t i) { return TRI_S[i % 3]; });
inline constexpr Table<9> WEDGE9_T = make<9>([](size_t i) { return TRI_T[i % 3]; });
inline constexpr Table<9> WEDGE9_U = make<9>([](size_t i) { return X3[i / 3]; });
// Brick, 2 cubed in corner order, 3 cubed with S fastest.
inline constexpr Table<8> HEX8_S = make<8>([](size_t i) { return CORNER_S[i] * G2; });
inline constexpr Table<8> HEX8_T = make<8>([](size_t i) { return CORNER_T[i] * G2; });
inline constexpr Table<8> HEX8_U = make<8>([](size_t i) { return CORNER_U[i] * G2; });
inline constexpr Table<27> HEX27_S = make<27>([](size_t i) { return X3[i % 3]; });
inline constexpr Table<27> HEX27_T = make<27>([](size_t i) { return X3[(i / 3) % 3]; });
inline constexpr Table<27> HEX27_U = make<27>([](size_t i) { return X3[i / 9]; });
inline constexpr Table<27> HEX27_W =
    make<27>([](size_t i) { return W3[i % 3] * W3[(i / 3) % 3] * W3[i / 9]; });

}  // namespace gauss

// Abscissa XI and weight WT of point IPT of the NPT-point rule. NPT outside
// 1..4 gives the one-point rule; an IPT outside the rule gives its first
// point. The constants are INTPT4's own (see gauss::INTPT4_XI2), not the
// exact roots.
void INTPT4(int32_t NPT, int32_t IPT, double& XI, double& WT);

}  // namespace respcore
