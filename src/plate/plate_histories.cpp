// Families whose history is not built yet: the dispatch reaches them and
// they leave TDSP as it is.
#include "run/histories.hpp"

namespace respcore {

void PLAT_TIME(KernelState&, Tdsp&, ItemList, ItemList, int32_t, VecRef<double>) {}

void PLAT_TIME_GNRL(KernelState&, Tdsp&, ItemList, ItemList, int32_t) {}

void PLATE_HIGH(KernelState&, Tdsp&, ItemList, ItemList, int32_t) {}

void PLATE_HIGH_GNRL(KernelState&, Tdsp&, ItemList, ItemList, int32_t) {}

}  // namespace respcore
