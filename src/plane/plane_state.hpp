// Saved data of the plane families: what their routines keep from one
// element, step or call to the next, held in the kernel state.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"
#include "plate/dkmq.hpp"
#include "plate/dkt.hpp"

namespace respcore {

struct PlaneState {
  // The panel-axis displacements (u, v, w, rx, ry, rz per node) of the last
  // step whose element refreshed them. An element that does not refresh them
  // (a four-node strain-state element) rebuilds its stresses from what the
  // last refreshing element left here, in this call or an earlier one.
  double DISP_LOCAL[24] = {};
  VecRef<double> disp_local() { return VecRef<double>(DISP_LOCAL, 24, "DISP_LOCAL"); }

  // The global plane the last strain-state panel lay in (1 xy, 2 xz, 3 yz)
  // and the direction of its first axis in that plane, for the three- and
  // four-node and the high-order plane strain histories alike; a panel
  // parallel to no global plane keeps them.
  int32_t PANEL_PLANE = 0;
  double SINE_PANEL = 0.0;
  double COSINE_PANEL = 0.0;

  // PLANE_STRAIN_STRAIN_TIME: the plane-strain matrix of the element, formed
  // at its first step, and its inverse. The isotropic form leaves the
  // couplings with the shear as they were; the orthotropic form clears them.
  double DD[9] = {};
  double DD_INV[9] = {};

  // The formulations of the three- and four-node elements, set up at the
  // first step of each element.
  DktSaved dkt;
  DkmqSaved dkmq;

  // PLANE_STRESS_HO: SB(3, 16, 9), D times B at each integration point of
  // the element, formed at its first step.
  double SB[3 * 16 * 9] = {};
};

}  // namespace respcore
