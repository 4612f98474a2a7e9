#include "numeric/gauss.hpp"

namespace respcore {

namespace {

// The rules as stored. These literals are what every stored result was
// produced with; the three-point abscissa ends in ...438 where the exact root
// has ...4834, and it must stay so.
constexpr double kXi2 = 0.5773502691896258;
constexpr double kXi3 = 0.774596669241438;
constexpr double kWt3Outer = 0.555555555555556;
constexpr double kWt3Centre = 0.888888888888889;
constexpr double kXi4Inner = 0.339981043584856;
constexpr double kWt4Inner = 0.652145154862546;
constexpr double kXi4Outer = 0.861136311594053;
constexpr double kWt4Outer = 0.347854845137454;

}  // namespace

void INTPT4(int32_t NPT, int32_t IPT, double& XI, double& WT) {
  switch (NPT) {
    case 2:
      XI = (IPT == 2) ? kXi2 : -kXi2;
      WT = 1.0;
      return;
    case 3:
      if (IPT < 2) {
        XI = -kXi3;
        WT = kWt3Outer;
      } else if (IPT == 2) {
        XI = 0.0;
        WT = kWt3Centre;
      } else {
        XI = kXi3;
        WT = kWt3Outer;
      }
      return;
    case 4:
      switch (IPT) {
        case 2: XI = -kXi4Inner; WT = kWt4Inner; return;
        case 3: XI = kXi4Inner; WT = kWt4Inner; return;
        case 4: XI = kXi4Outer; WT = kWt4Outer; return;
        default: XI = -kXi4Outer; WT = kWt4Outer; return;
      }
    default:  // the one-point rule, also for any NPT outside 1..4
      XI = 0.0;
      WT = 2.0;
      return;
  }
}

}  // namespace respcore
