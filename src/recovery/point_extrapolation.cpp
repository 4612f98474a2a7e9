#include "recovery/point_extrapolation.hpp"

#include <bit>

namespace respcore {
namespace {

constexpr double kSqrt3 = 1.7320508075688772;

// Corner n (1..4) of the bilinear field through the Gauss values g1..g4.
double bilinear_corner(int n, double g1, double g2, double g3, double g4) {
  const double s = (n == 1 || n == 4) ? -kSqrt3 : kSqrt3;
  const double t = (n == 1 || n == 2) ? -kSqrt3 : kSqrt3;
  return ((1 - s) * (1 - t) * g1 + (1 + s) * (1 - t) * g2 + (1 + s) * (1 + t) * g3 +
          (1 - s) * (1 + t) * g4) /
         4;
}

// Natural coordinates of the corners in the frame of the three triangle
// points.
const double kMinusThird = std::bit_cast<double>(uint64_t{0xBFD5555555555555});
const double kFiveThirds = std::bit_cast<double>(uint64_t{0x3FFAAAAAAAAAAAAB});
const double kCornerA[3] = {kMinusThird, kFiveThirds, kMinusThird};
const double kCornerB[3] = {kMinusThird, kMinusThird, kFiveThirds};

}  // namespace

void TRTONO(VecRef<double> SIG, int32_t NPT3, int32_t NCOMP) {
  double value[32];
  VecRef<double> VALUE(value, 32, "VALUE");
  const int64_t s0 = 4 * int64_t{NPT3} + NCOMP + 1;
  for (int n = 1; n <= 4; ++n)
    for (int c = 0; c < NCOMP; ++c)
      VALUE(NCOMP * (n - 1) + c + 1) =
          bilinear_corner(n, SIG(s0 + c), SIG(s0 + NCOMP + c), SIG(s0 + 2 * NCOMP + c),
                          SIG(s0 + 3 * NCOMP + c));
  for (int k = 1; k <= 4 * NCOMP; ++k) SIG(s0 + k - 1) = VALUE(k);
}

void TRTONO_3(VecRef<double> SIG, int32_t NPT3, int32_t NCOMP) {
  const int64_t c0 = 4 * int64_t{NPT3} + 1;
  for (int i = 1; i <= 3; ++i)
    for (int c = 0; c < NCOMP; ++c) {
      const double centre = SIG(c0 + c);
      SIG(c0 + NCOMP * i + c) = centre + 2.5 * (SIG(c0 + NCOMP * i + c) - centre);
    }
}

void TRTONO_3NODE_STRES(VecRef<double> SIG, int32_t NCOMP) {
  double sig_p[9];
  MatRef<double> SIG_P(sig_p, 3, 3, "SIG_P");
  for (int i = 1; i <= 3; ++i)
    for (int c = 1; c <= NCOMP; ++c) SIG_P(c, i) = SIG(16 + NCOMP * (i - 1) + c - 1);
  for (int i = 0; i < 3; ++i) {
    const double A = kCornerA[i], B = kCornerB[i];
    for (int c = 1; c <= NCOMP; ++c)
      SIG(16 + NCOMP * i + c - 1) = (1 - A - B) * SIG_P(c, 1) + A * SIG_P(c, 2) + B * SIG_P(c, 3);
  }
}

void CURVED_EXPOLATE(VecRef<double> V, int32_t N) {
  double W[40];
  for (int k = 0; k < 40; ++k) W[k] = V(k + 1);
  auto mean_blocks = [&](int dst, int a, int b) {
    for (int c = 1; c <= 8; ++c) V(8 * (dst - 1) + c) = (V(8 * (a - 1) + c) + V(8 * (b - 1) + c)) / 2;
  };
  if (N == 3 || N == 6) {
    for (int i = 0; i < 3; ++i)
      for (int c = 0; c < 8; ++c)
        V(8 * (i + 1) + c + 1) = (1 - kCornerA[i] - kCornerB[i]) * W[8 + c] +
                                 kCornerA[i] * W[16 + c] + kCornerB[i] * W[24 + c];
    if (N == 6) {
      mean_blocks(5, 2, 3);
      mean_blocks(6, 3, 4);
      mean_blocks(7, 4, 2);
    }
  } else if (N == 8) {
    for (int n = 1; n <= 4; ++n)
      for (int c = 0; c < 8; ++c)
        V(8 * n + c + 1) = bilinear_corner(n, W[8 + c], W[16 + c], W[24 + c], W[32 + c]);
    mean_blocks(6, 2, 3);
    mean_blocks(7, 3, 4);
    mean_blocks(8, 4, 5);
    mean_blocks(9, 5, 2);
  }
}

}  // namespace respcore
