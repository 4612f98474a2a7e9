#include "continuum/integration_rules.hpp"

#include "core/arrays.hpp"

namespace respcore {

using namespace gp_table;

#define RC_AT(table) table_entry(table, IPOINT, #table)

void T_GP_COORD(double& S, double& T, double& U, double& WEIGHT, int32_t IPOINT, int32_t NPT,
                int32_t NNODE, int32_t NSTRS) {
  U = 0.0;
  S = 0.0;
  T = 0.0;
  WEIGHT = 0.0;

  if (NSTRS == 1) {
    if (NNODE == 2) {
      S = 0.0;
      WEIGHT = 2.0;
    } else if (NNODE == 3 && NPT == 2) {
      S = RC_AT(SS2L);
      WEIGHT = 1.0;
    }
    return;
  }

  if (NSTRS == 2) {
    if (NPT == 2) {
      S = RC_AT(SS2L);
      WEIGHT = 1.0;
    } else if (NPT == 3) {
      S = RC_AT(SS3L);
      WEIGHT = RC_AT(WHT3L);
    }
    return;
  }

  if (NSTRS == 6) {
    if (NNODE == 4 || NNODE == 10) {
      if (NPT == 1) {
        S = T = U = 0.25;
        WEIGHT = 1.0 / 6.0;
      } else if (NPT == 4) {
        S = RC_AT(SS4ST);
        T = RC_AT(TT4ST);
        U = RC_AT(UU4ST);
        WEIGHT = RC_AT(WHT4ST);
      } else if (NPT == 5) {
        S = RC_AT(SS5ST);
        T = RC_AT(TT5ST);
        U = RC_AT(UU5ST);
        WEIGHT = RC_AT(WHT5ST);
      }
    } else if (NNODE == 6 || NNODE == 15) {
      if (NPT == 6) {
        S = RC_AT(SS6SP);
        T = RC_AT(TT6SP);
        U = RC_AT(UU6SP);
        WEIGHT = RC_AT(WHT6SP);
      } else if (NPT == 8) {
        S = RC_AT(SS8SP);
        T = RC_AT(TT8SP);
        U = RC_AT(UU8SP);
        WEIGHT = RC_AT(WHT8SP);
      } else if (NPT == 9) {
        S = RC_AT(SS9SP);
        T = RC_AT(TT9SP);
        U = RC_AT(UU9SP);
        WEIGHT = RC_AT(WHT9SP);
      } else if (NPT == 12) {
        S = RC_AT(SS12SP);
        T = RC_AT(TT12SP);
        U = RC_AT(UU12SP);
        WEIGHT = RC_AT(WHT12SP);
      }
    } else if (NNODE == 8 || NNODE == 20) {
      if (NPT == 8) {
        S = RC_AT(SS8SH);
        T = RC_AT(TT8SH);
        U = RC_AT(UU8SH);
        WEIGHT = 1.0;
      } else if (NPT == 27) {
        S = RC_AT(SS27SH);
        T = RC_AT(TT27SH);
        U = RC_AT(UU27SH);
        WEIGHT = RC_AT(WHT27SH);
      }
    }
    return;
  }

  // Plane families: every other selector.
  if (NNODE == 3 || NNODE == 6) {
    if (NPT == 1) {
      S = T = 1.0 / 3.0;
      WEIGHT = 0.5;
    } else if (NPT == 3) {
      S = RC_AT(SS3PT);
      T = RC_AT(TT3PT);
      WEIGHT = RC_AT(WHT3PT);
    }
  } else if (NNODE == 4 || NNODE == 8) {
    if (NPT == 4) {
      S = RC_AT(SS4PQ);
      T = RC_AT(TT4PQ);
      WEIGHT = 1.0;
    } else if (NPT == 9) {
      S = RC_AT(SS9PQ);
      T = RC_AT(TT9PQ);
      WEIGHT = RC_AT(WHT9PQ);
    }
  }
}

#undef RC_AT

}  // namespace respcore
