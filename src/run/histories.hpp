// The history routines, one per element family, called by the entry's
// dispatch on ELEM_TYPE. Each leaves its rows in TDSP, one column per step
// (REQUEST_MODE 1) or per listed item.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "run/tdsp.hpp"

namespace respcore {

struct KernelState;

using ItemList = VecRef<int32_t>;

// Plane stress and plane strain (ELEM_TYPE 1, 2).
void PSTR_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
               int32_t NCOLS, int32_t AXIS_FLAG, VecRef<double> EL_ANGLE);
// Plate (ELEM_TYPE 3), and its general-section form under the tag "J.W.U".
void PLAT_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
               int32_t NCOLS, VecRef<double> EL_ANGLE);
void PLAT_TIME_GNRL(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                    int32_t NCOLS);
// Solid (ELEM_TYPE 4).
void SOLID_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                int32_t NCOLS, int32_t AXIS_FLAG);
// High-order plane stress and plane strain (ELEM_TYPE 5, 6).
void PLANE_STRESS_HIGH(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                       int32_t NCOLS, int32_t AXIS_FLAG);
void PLANE_STRAIN_HIGH(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                       int32_t NCOLS, int32_t AXIS_FLAG);
// High-order plate (ELEM_TYPE 7), and its general-section form.
void PLATE_HIGH(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                int32_t NCOLS);
void PLATE_HIGH_GNRL(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                     int32_t NCOLS);
// High-order solid (ELEM_TYPE 8).
void SOLID_HIGH(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                int32_t NCOLS, int32_t AXIS_FLAG);
// Node displacement, velocity, acceleration (ELEM_TYPE 9, 10, 11).
void DISP_VELO_ACCEL(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, ItemList INUM_ELEMNT,
                     int32_t NCOLS, int32_t RESULT_KIND, int32_t AXIS_FLAG);
// Truss, beam, wall beam (ELEM_TYPE 12, 13, 14).
void TRUSS_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, int32_t NCOLS);
void BEAM_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, int32_t NCOLS);
void WBEAM_TIME(KernelState& K, Tdsp& TDSP, ItemList INUM_SERIAL, int32_t NCOLS);

}  // namespace respcore
