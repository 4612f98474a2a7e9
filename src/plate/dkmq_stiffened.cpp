// The plate quadrilateral with the stiffened (ribbed) section: forces and
// moments per unit width.
#include "plate/dkmq.hpp"

namespace respcore {

void DKMQ_STR_STIF(const PlateContext& C, DkmqSaved& SV, int32_t MEMB_KIND, int32_t NN,
                   VecRef<double> DISP, MatRef<double> STRS, MatRef<double> XYZ,
                   MatRef<double> TRANS, int32_t NEWELEM) {
  (void)NN;
  if (NEWELEM == 1) dkmq_section_setup(stiffened_plate_section(C), SV, MEMB_KIND, 0, 0, XYZ, TRANS);
  dkmq_stress_step(SV, DISP, STRS, 0);
}

}  // namespace respcore
