#include "plane/panel_turns.hpp"

namespace respcore {

void LOCPANEL(VecRef<double> SIG, MatRef<double> PANEL_T, int32_t N) {
  double t[3][3];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) t[i][j] = PANEL_T(i + 1, j + 1);
  for (int k = 0; k < 2 * N; ++k) {
    const double v[3] = {SIG(3 * k + 1), SIG(3 * k + 2), SIG(3 * k + 3)};
    for (int i = 0; i < 3; ++i)
      SIG(3 * k + i + 1) = t[i][0] * v[0] + t[i][1] * v[1] + t[i][2] * v[2];
  }
}

void LOCTOGLO_FOC(VecRef<double> FORCL, VecRef<double> FORC, int32_t N, MatRef<double> PANEL_T) {
  double tto[3][3];  // the transpose of PANEL_T
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) tto[i][j] = PANEL_T(j + 1, i + 1);
  for (int k = 0; k < N / 3; ++k) {
    const double v[3] = {FORCL(3 * k + 1), FORCL(3 * k + 2), FORCL(3 * k + 3)};
    for (int i = 0; i < 3; ++i)
      FORC(3 * k + i + 1) = tto[i][0] * v[0] + tto[i][1] * v[1] + tto[i][2] * v[2];
  }
}

}  // namespace respcore
