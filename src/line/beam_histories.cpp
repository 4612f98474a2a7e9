// Families whose history is not built yet: the dispatch reaches them and
// they leave TDSP as it is.
#include "run/histories.hpp"

namespace respcore {

void BEAM_TIME(KernelState&, Tdsp&, ItemList, int32_t) {}

void WBEAM_TIME(KernelState&, Tdsp&, ItemList, int32_t) {}

}  // namespace respcore
