// Families whose history is not built yet: the dispatch reaches them and
// they leave TDSP as it is.
#include "run/histories.hpp"

namespace respcore {

void PLAT_TIME(const RunContext&, ArchiveReader, NodalMotion&, ContinuumParts&, Tdsp&, ItemList,
               ItemList, VecRef<double>) {}

void PLAT_TIME_GNRL(const RunContext&, ArchiveReader, NodalMotion&, ContinuumParts&, Tdsp&,
                    ItemList, ItemList) {}

void PLATE_HIGH(const RunContext&, ArchiveReader, NodalMotion&, ContinuumParts&, Tdsp&, ItemList,
                ItemList) {}

void PLATE_HIGH_GNRL(const RunContext&, ArchiveReader, NodalMotion&, ContinuumParts&, Tdsp&,
                     ItemList, ItemList) {}

}  // namespace respcore
