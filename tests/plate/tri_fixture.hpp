// Shared set-up of the plate triangle and result kit tests: a kernel state
// with a given material and the plate context made from it.
#pragma once

#include "plate/plate_context.hpp"
#include "run/kernel_state.hpp"

namespace respcore::tri_test {

struct Material {
  KernelState K;
  PlateContext ctx() { return {K.diag, K.ELEM_MATERIAL, K.plate, K.continuum.compliance}; }

  // Isotropic material with membrane and bending thickness t1, t2.
  void isotropic(double e, double nu, double t1, double t2) {
    K.ELEM_MATERIAL = ElementMaterial{};
    K.ELEM_MATERIAL.MAT_YOUNG = e;
    K.ELEM_MATERIAL.MAT_POISSON = nu;
    K.ELEM_MATERIAL.PLATE_PROP[0] = t1;
    K.ELEM_MATERIAL.PLATE_PROP[1] = t2;
  }
  // Orthotropic plane-stress material: E1, NU12, E2, G12, G13, G23.
  void orthotropic(double e1, double nu12, double e2, double g12, double g13, double g23, double t1,
                   double t2) {
    isotropic(e1, nu12, t1, t2);
    ElementMaterial& m = K.ELEM_MATERIAL;
    m.MAT_TYPE = 1;
    m.MAT_VALS[0] = e2;
    m.MAT_VALS[3] = e2;
    m.MAT_VALS[6] = g12;
    m.MAT_VALS[7] = g13;
    m.MAT_VALS[8] = g23;
  }
};

}  // namespace respcore::tri_test
