#include "plane/panel_axes.hpp"

#include <cmath>

namespace respcore {

void QDCOS(VecRef<double> X, VecRef<double> Y, VecRef<double> Z, MatRef<double> PANEL_T,
           int32_t N) {
  double a[3], b[3];
  if (N == 4) {
    a[0] = X(2) + X(3) - X(4) - X(1);
    a[1] = Y(2) + Y(3) - Y(4) - Y(1);
    a[2] = Z(2) + Z(3) - Z(4) - Z(1);
    b[0] = X(3) + X(4) - X(1) - X(2);
    b[1] = Y(3) + Y(4) - Y(1) - Y(2);
    b[2] = Z(3) + Z(4) - Z(1) - Z(2);
  } else {
    a[0] = X(2) - X(1);
    a[1] = Y(2) - Y(1);
    a[2] = Z(2) - Z(1);
    b[0] = X(3) - X(2);
    b[1] = Y(3) - Y(2);
    b[2] = Z(3) - Z(2);
  }

  const double la = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
  double e1[3] = {a[0] / la, a[1] / la, a[2] / la};

  const double p = b[0] * e1[0] + b[1] * e1[1] + b[2] * e1[2];
  double c[3] = {b[0] - p * e1[0], b[1] - p * e1[1], b[2] - p * e1[2]};
  const double lc = std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
  double e2[3] = {c[0] / lc, c[1] / lc, c[2] / lc};

  double e3[3] = {e1[1] * e2[2] - e1[2] * e2[1], e1[2] * e2[0] - e1[0] * e2[2],
                  e1[0] * e2[1] - e1[1] * e2[0]};

  for (int j = 0; j < 3; ++j) {
    PANEL_T(1, j + 1) = e1[j];
    PANEL_T(2, j + 1) = e2[j];
    PANEL_T(3, j + 1) = e3[j];
  }
}

}  // namespace respcore
