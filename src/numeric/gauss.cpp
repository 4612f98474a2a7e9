#include "numeric/gauss.hpp"

namespace respcore {

using namespace gauss;

void INTPT4(int32_t NPT, int32_t IPT, double& XI, double& WT) {
  switch (NPT) {
    case 2:
      XI = (IPT == 2) ? INTPT4_XI2 : -INTPT4_XI2;
      WT = 1.0;
      return;
    case 3:
      if (IPT < 2) {
        XI = -INTPT4_XI3;
        WT = INTPT4_WT3_OUTER;
      } else if (IPT == 2) {
        XI = 0.0;
        WT = INTPT4_WT3_CENTRE;
      } else {
        XI = INTPT4_XI3;
        WT = INTPT4_WT3_OUTER;
      }
      return;
    case 4:
      switch (IPT) {
        case 2: XI = -INTPT4_XI4_INNER; WT = INTPT4_WT4_INNER; return;
        case 3: XI = INTPT4_XI4_INNER; WT = INTPT4_WT4_INNER; return;
        case 4: XI = INTPT4_XI4_OUTER; WT = INTPT4_WT4_OUTER; return;
        default: XI = -INTPT4_XI4_OUTER; WT = INTPT4_WT4_OUTER; return;
      }
    default:  // the one-point rule, also for any NPT outside 1..4
      XI = 0.0;
      WT = 2.0;
      return;
  }
}

}  // namespace respcore
