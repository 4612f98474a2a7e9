// Modes of the demo frame and its response to a synthetic ground motion by
// exact integration of each modal equation.
#include <cmath>
#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>

#include "frame_demo.hpp"

extern "C" {
void dsygv_(const int32_t* itype, const char* jobz, const char* uplo, const int32_t* n, double* a,
            const int32_t* lda, double* b, const int32_t* ldb, double* w, double* work,
            const int32_t* lwork, int32_t* info, size_t jobz_len, size_t uplo_len);
void dposv_(const char* uplo, const int32_t* n, const int32_t* nrhs, double* a, const int32_t* lda,
            double* b, const int32_t* ldb, int32_t* info, size_t uplo_len);
}

namespace respcore::demo {

ModalBasis solve_modes(const FrameModel& model) {
  const int n = model.num_equations;
  const Dense K = assemble_stiffness(model);

  // Equations with mass (m) and without (o).
  std::vector<int> mset, oset;
  for (int e = 1; e <= n; ++e) (model.mass_of_equation[e - 1] > 0 ? mset : oset).push_back(e - 1);
  const int nm = static_cast<int>(mset.size()), no = static_cast<int>(oset.size());
  if (nm == 0) throw std::runtime_error("the frame has no mass");

  // Exact static condensation of the massless equations:
  // X = Koo^-1 Kom, Kc = Kmm - Kmo X.
  Dense Koo(no, no), X(no, nm);
  for (int i = 0; i < no; ++i) {
    for (int j = 0; j < no; ++j) Koo(i, j) = K(oset[i], oset[j]);
    for (int j = 0; j < nm; ++j) X(i, j) = K(oset[i], mset[j]);
  }
  int32_t info = 0;
  if (no > 0) {
    const int32_t n32 = no, nrhs = nm;
    dposv_("U", &n32, &nrhs, Koo.a.data(), &n32, X.a.data(), &n32, &info, 1);
    if (info != 0) throw std::runtime_error("condensation failed: dposv info " + std::to_string(info));
  }
  Dense Kc(nm, nm), Mc(nm, nm);
  for (int i = 0; i < nm; ++i) {
    for (int j = 0; j < nm; ++j) {
      double v = K(mset[i], mset[j]);
      for (int l = 0; l < no; ++l) v -= K(mset[i], oset[l]) * X(l, j);
      Kc(i, j) = v;
    }
    Mc(i, i) = model.mass_of_equation[mset[i]];
  }
  for (int i = 0; i < nm; ++i) {
    for (int j = i + 1; j < nm; ++j) Kc(i, j) = Kc(j, i) = 0.5 * (Kc(i, j) + Kc(j, i));
  }

  // K phi = w^2 M phi; dsygv returns M-orthonormal vectors, values ascending.
  std::vector<double> w(static_cast<size_t>(nm));
  const int32_t itype = 1, n32 = nm;
  int32_t lwork = -1;
  double wq = 0;
  dsygv_(&itype, "V", "U", &n32, Kc.a.data(), &n32, Mc.a.data(), &n32, w.data(), &wq, &lwork,
         &info, 1, 1);
  lwork = static_cast<int32_t>(wq);
  std::vector<double> work(static_cast<size_t>(std::max(lwork, 1)));
  dsygv_(&itype, "V", "U", &n32, Kc.a.data(), &n32, Mc.a.data(), &n32, w.data(), work.data(),
         &lwork, &info, 1, 1);
  if (info != 0) throw std::runtime_error("eigensolution failed: dsygv info " + std::to_string(info));

  ModalBasis basis;
  basis.shapes = Dense(n, nm);
  basis.omega.resize(static_cast<size_t>(nm));
  for (int m = 0; m < nm; ++m) {
    if (w[m] <= 0) throw std::runtime_error("the frame is unstable: a mode without stiffness");
    basis.omega[m] = std::sqrt(w[m]);
    for (int i = 0; i < nm; ++i) basis.shapes(mset[i], m) = Kc(i, m);
    for (int l = 0; l < no; ++l) {
      double v = 0;
      for (int i = 0; i < nm; ++i) v -= X(l, i) * Kc(i, m);
      basis.shapes(oset[l], m) = v;
    }
  }

  // Participation of each mode in a unit ground motion along x and y.
  basis.participation = Dense(nm, 2);
  for (const Node& node : model.nodes) {
    if (node.fixed) continue;
    for (int d = 0; d < 2; ++d) {
      const int e = node.eq[d] - 1;
      for (int m = 0; m < nm; ++m) basis.participation(m, d) += basis.shapes(e, m) * node.mass;
    }
  }
  return basis;
}

std::vector<double> synthetic_ground_acceleration(int num_steps, double dt, double pga,
                                                  uint32_t seed) {
  // std::mt19937 is defined exactly by the C++ standard, and the uniforms are made from
  // its raw output, so the record is the same on every platform.
  std::mt19937 gen(seed);
  auto uniform = [&gen] { return (static_cast<double>(gen()) + 0.5) / 4294967296.0; };

  // Firm-soil spectral shape with a high-pass filter against drift.
  const double wg = 15.0, zg = 0.6, wf = 1.5, zf = 0.6;
  auto spectrum = [&](double w) {
    const double w2 = w * w;
    const double kt = (wg * wg * wg * wg + 4 * zg * zg * wg * wg * w2) /
                      ((wg * wg - w2) * (wg * wg - w2) + 4 * zg * zg * wg * wg * w2);
    const double hp = w2 * w2 / ((wf * wf - w2) * (wf * wf - w2) + 4 * zf * zf * wf * wf * w2);
    return kt * hp;
  };
  const int ncos = 200;
  const double w_lo = 2 * M_PI * 0.2, w_hi = 2 * M_PI * 20.0;
  const double dw = (w_hi - w_lo) / ncos;
  std::vector<double> amp(ncos), freq(ncos), phase(ncos);
  for (int k = 0; k < ncos; ++k) {
    freq[k] = w_lo + (k + uniform()) * dw;
    amp[k] = std::sqrt(2.0 * spectrum(freq[k]) * dw);
    phase[k] = 2 * M_PI * uniform();
  }

  const double duration = num_steps * dt;
  const double t1 = 0.15 * duration, t2 = 0.55 * duration;
  auto envelope = [&](double t) {
    if (t < t1) return (t / t1) * (t / t1);
    if (t <= t2) return 1.0;
    return std::exp(-0.6 * (t - t2) * 10.0 / duration);
  };

  std::vector<double> a(static_cast<size_t>(num_steps) + 1, 0.0);
  double peak = 0;
  for (int s = 1; s <= num_steps; ++s) {
    const double t = s * dt;
    double v = 0;
    for (int k = 0; k < ncos; ++k) v += amp[k] * std::cos(freq[k] * t + phase[k]);
    a[s] = envelope(t) * v;
    peak = std::max(peak, std::abs(a[s]));
  }
  if (peak > 0) {
    for (double& v : a) v *= pga / peak;
  }
  return a;
}

void exact_modal_step(double omega, double zeta, double h, double p0, double p1, double& q,
                      double& v, double& a) {
  // Particular solution A + B tau for the linear load, plus the damped free
  // vibration that matches the initial state.
  const double w2 = omega * omega;
  const double B = (p1 - p0) / (h * w2);
  const double A = (p0 - 2 * zeta * omega * B) / w2;
  const double wd = omega * std::sqrt(1 - zeta * zeta);
  const double C = q - A;
  const double D = (v - B + zeta * omega * C) / wd;
  const double e = std::exp(-zeta * omega * h);
  const double c = std::cos(wd * h), s = std::sin(wd * h);
  q = A + B * h + e * (C * c + D * s);
  v = B + e * ((-zeta * omega * C + wd * D) * c + (-zeta * omega * D - wd * C) * s);
  a = p1 - 2 * zeta * omega * v - w2 * q;
}

Response modal_response(const ModalBasis& basis, const DemoOptions& opt) {
  Response r;
  r.num_steps = opt.num_steps;
  r.dt = opt.dt;
  r.ground_x = synthetic_ground_acceleration(opt.num_steps, opt.dt, opt.pga_x, opt.seed);
  r.ground_y = synthetic_ground_acceleration(opt.num_steps, opt.dt, opt.pga_y, opt.seed + 7919);
  const int N = opt.num_steps;
  const double h = opt.dt;

  // Ground velocity and displacement: exact integrals of the piecewise-linear
  // acceleration, from rest.
  for (int d = 0; d < 3; ++d) {
    for (int q = 0; q < 3; ++q) r.ground[d][q].assign(static_cast<size_t>(N), 0.0);
  }
  for (int d = 0; d < 2; ++d) {
    const std::vector<double>& a = d == 0 ? r.ground_x : r.ground_y;
    double v = 0, u = 0;
    for (int s = 1; s <= N; ++s) {
      u += h * v + h * h * (2 * a[s - 1] + a[s]) / 6.0;
      v += h * (a[s - 1] + a[s]) / 2.0;
      r.ground[d][0][s - 1] = a[s];
      r.ground[d][1][s - 1] = v;
      r.ground[d][2][s - 1] = u;
    }
  }

  const int nm = static_cast<int>(basis.omega.size());
  r.q.assign(static_cast<size_t>(nm), std::vector<double>(static_cast<size_t>(N)));
  r.qd = r.q;
  r.qdd = r.q;
  for (int m = 0; m < nm; ++m) {
    const double gx = basis.participation(m, 0), gy = basis.participation(m, 1);
    auto load = [&](int s) { return -(gx * r.ground_x[s] + gy * r.ground_y[s]); };
    double q = 0, v = 0, a = 0;
    for (int s = 1; s <= N; ++s) {
      exact_modal_step(basis.omega[m], opt.damping, h, load(s - 1), load(s), q, v, a);
      r.q[m][s - 1] = q;
      r.qd[m][s - 1] = v;
      r.qdd[m][s - 1] = a;
    }
  }
  return r;
}

}  // namespace respcore::demo
