#include "plate/plate_section.hpp"

#include <cmath>

#include "continuum/material_matrix.hpp"
#include "numeric/dense.hpp"
#include "plate/constitutive.hpp"

namespace respcore {
namespace {

// Column-major local matrices handed to the constitutive kit.
struct M3 {
  double v[9] = {};
  MatRef<double> ref(const char* name) { return MatRef<double>(v, 3, 3, name); }
  double operator()(int i, int j) const { return v[(i - 1) + 3 * (j - 1)]; }
  double& operator()(int i, int j) { return v[(i - 1) + 3 * (j - 1)]; }
};
struct M2 {
  double v[4] = {};
  MatRef<double> ref(const char* name) { return MatRef<double>(v, 2, 2, name); }
  double operator()(int i, int j) const { return v[(i - 1) + 2 * (j - 1)]; }
  double& operator()(int i, int j) { return v[(i - 1) + 2 * (j - 1)]; }
};

void put3(double dst[3][3], const M3& m, double scale) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) dst[i][j] = scale * m(i + 1, j + 1);
}

// The isotropic plane-stress matrix in its usual form.
void isotropic_plane_stress(const ElementMaterial& m, M3& D) {
  const double nu = m.MAT_POISSON;
  const double D0 = m.MAT_YOUNG / (1.0 - nu * nu);
  D = M3{};
  D(1, 1) = D0;
  D(2, 2) = D0;
  D(1, 2) = D0 * nu;
  D(2, 1) = D0 * nu;
  D(3, 3) = D0 * (1.0 - nu) / 2.0;
}

}  // namespace

PlateSection general_plate_section(const PlateContext& C) {
  M3 d1, d2;
  M2 ds;
  double shearmod = 0.0, d2_mean = 0.0, ds_mean = 0.0;
  PLATE_MATER_STF(C, d1.ref("D1"), shearmod, d2.ref("D2"), ds.ref("DS"), d2_mean, ds_mean, 14);
  const double P1 = C.mat.PLATE_PROP[0];
  const double T2 = C.mat.PLATE_PROP[1];

  PlateSection s;
  put3(s.Dm, d1, 1.0);
  // The bending rows are the stress at the surface z = P1/2.
  put3(s.Dbs, d2, P1 / 2.0);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) s.Ds[i][j] = ds(i + 1, j + 1) / 1.2;
  s.phi_coef = 1.2 * (d2_mean / ds_mean) * T2 * T2;
  return s;
}

PlateSection stiffened_plate_section(const PlateContext& C) {
  const ElementMaterial& m = C.mat;
  const double t1 = m.PLATE_PROP[0], t2 = m.PLATE_PROP[1];
  const double b1 = m.PLATE_PROP[2], b2 = m.PLATE_PROP[3], b3 = m.PLATE_PROP[4];
  const double tm = (t1 + t2) / 2.0;

  M3 c;
  double gxz, gyz;
  if (m.MAT_TYPE == 1) {
    STRESS_STRAIN_MATRIX_PLT(m, C.compliance, 0, c.ref("C"));
    gxz = m.MAT_VALS[7];
    gyz = m.MAT_VALS[8];
  } else {
    isotropic_plane_stress(m, c);
    gxz = gyz = m.MAT_YOUNG / (2.0 * (1.0 + m.MAT_POISSON));
  }

  // Ribs of different depth in x and y: each direction carries its own
  // thickness, the couplings the geometric mean of the two.
  M3 a, db;
  M2 as;
  const double b1c = b1 * b1 * b1, b2c = b2 * b2 * b2, b3c = b3 * b3 * b3;
  a(1, 1) = c(1, 1) * t1;
  a(1, 2) = c(1, 2) * std::sqrt(t1 * t2);
  a(2, 1) = c(2, 1) * std::sqrt(t1 * t2);
  a(2, 2) = c(2, 2) * t2;
  a(3, 3) = c(3, 3) * tm;
  db(1, 1) = c(1, 1) * b1c / 12.0;
  db(1, 2) = c(1, 2) * std::sqrt(b1c * b2c) / 12.0;
  db(2, 1) = c(2, 1) * std::sqrt(b1c * b2c) / 12.0;
  db(2, 2) = c(2, 2) * b2c / 12.0;
  db(3, 3) = c(3, 3) * b3c / 12.0;
  as(1, 1) = gxz * t1 / 1.2;
  as(2, 2) = gyz * t2 / 1.2;

  // The shear factor follows the rigidities in the section's own axes, as
  // the means of the ordinary sections are taken before their rotation.
  const double db_mean = (db(1, 1) + db(2, 2)) / 2.0;
  const double as_mean = (as(1, 1) + as(2, 2)) / 2.0;

  if (C.plate.SECT_ANGLE != 0.0) {
    int32_t iscale = 0, irot = 0;
    M3 t3;
    M2 t2m;
    CALC_ROTATION_MATRIX(C, iscale, irot, t2m.ref("T2"), t3.ref("T3"));
    TRANS_D_SKEW(a.ref("A"), t3.ref("T3"), 3);
    TRANS_D_SKEW(db.ref("DB"), t3.ref("T3"), 3);
    TRANS_D_SKEW(as.ref("AS"), t2m.ref("T2"), 2);
  }

  PlateSection s;
  put3(s.Dm, a, 1.0);
  put3(s.Dbs, db, 1.0);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 2; ++j) s.Ds[i][j] = as(i + 1, j + 1);
  s.phi_coef = 12.0 * db_mean / as_mean;
  return s;
}

PlateSection plane_section(const PlateContext& C, int32_t PLANE_KIND, double MAT_ANGLE) {
  const ElementMaterial& m = C.mat;
  const int32_t mode = PLANE_KIND == 1 ? 1 : 0;
  M3 d;
  if (m.MAT_TYPE == 1) {
    STRESS_STRAIN_MATRIX_PLT(m, C.compliance, mode, d.ref("D"));
  } else if (mode == 1) {
    isotropic_plane_strain(m, d.ref("D"));
  } else {
    isotropic_plane_stress(m, d);
  }

  // Material axes at MAT_ANGLE to the panel: the same turn as the plate
  // sections make with their section angle.
  if (m.MAT_TYPE == 1 && MAT_ANGLE != 0.0) {
    M3 inpl, t3;
    M2 trsh;
    TRANS_VECT_MATL_GNRL(inpl.ref("TRAN_INPL_UDC2"), trsh.ref("TRAN_TRSH_UDC2"), -MAT_ANGLE);
    INVERSE(C.diag, inpl.ref("TRAN_INPL_UDC2"), t3.ref("T3"), 3);
    TRANS_D_SKEW(d.ref("D"), t3.ref("T3"), 3);
  }

  PlateSection s;
  put3(s.Dm, d, 1.0);
  return s;
}

}  // namespace respcore
