// Families whose history is not built yet: the dispatch reaches them and
// they leave TDSP as it is.
#include "run/histories.hpp"

namespace respcore {

void PSTR_TIME(const RunContext&, ArchiveReader, NodalMotion&, ContinuumParts&, Tdsp&, ItemList,
               ItemList, int32_t, VecRef<double>) {}

void PLANE_STRESS_HIGH(const RunContext&, ArchiveReader, NodalMotion&, ContinuumParts&, Tdsp&,
                       ItemList, ItemList) {}

void PLANE_STRAIN_HIGH(const RunContext&, ArchiveReader, NodalMotion&, ContinuumParts&, Tdsp&,
                       ItemList, ItemList, int32_t) {}

}  // namespace respcore
