// Writes a one-node archive with the installed archive writer, reads the
// node's history back through the C++ kernel and the C entry, and checks
// both against what was written. Exit status 0 when everything agrees.
#include <respcore/archive_writer.hpp>
#include <respcore/kernel.hpp>

#include <cstdio>
#include <string>
#include <vector>

extern "C" int c_entry_history(const char* base, int32_t steps, double* out);

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: consumer DIR\n");
    return 2;
  }
  const std::string base = std::string(argv[1]) + "/one-node";
  const int steps = 20;

  // Direct storage in direct file 1: three records per equation
  // (acceleration, velocity, displacement); node 1 has equations 1 to 6 in
  // global axes.
  respcore::ArchiveWriter w(base, "P.R.W");
  w.first().add("THLG", 1, 1, 1).put_i32(1, 0, 1);
  w.second().add("THIF", 3, 5, 1).put_i32s(1, 0, std::vector<int32_t>{2, 1, steps, 0, 0});
  std::vector<double> node(27, 0.0);
  for (int c = 0; c < 6; ++c) node[c] = c + 1;
  for (int i = 0, p = 6; i < 6; ++i)
    for (int j = i; j < 6; ++j) node[p++] = i == j ? 1.0 : 0.0;
  w.second().add("NDSP", 3, 54, 1).put_f64s(1, 0, node);
  respcore::Section& dmed = w.direct(1).add("DMED", 1, 2 * steps, 18);
  std::vector<double> ux(steps);
  for (int s = 0; s < steps; ++s) ux[s] = 0.001 * (s + 1);
  dmed.put_f64s(3, 0, ux);
  w.write();

  respcore::Kernel k;
  respcore::Request r;
  r.base = base;
  r.elem_type = 9;
  r.num_steps = steps;
  r.serials = {1};
  r.elements = {1};
  r.axis_flag = 0;
  const respcore::Result res = k.run(r);
  std::vector<double> c(steps, -1.0);
  const int c_status = c_entry_history(base.c_str(), steps, c.data());

  int bad = res.status != 0 || c_status != 0 || !res.output_lines.empty();
  for (int s = 0; s < steps; ++s) bad += res.values.at(s) != ux[s] || c[s] != ux[s];
  std::printf("consumer: %d steps of node 1 through the C++ kernel and the C entry: %s\n", steps,
              bad ? "MISMATCH" : "as written");
  return bad ? 1 : 0;
}
