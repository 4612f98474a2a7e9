/* The C entry, compiled as C: the node's x displacement over STEPS steps. */
#include <string.h>

#include <respcore/respcore.h>

int c_entry_history(const char* base, int32_t steps, double* out) {
  const int32_t serial = 1, node = 1;
  /* ELEM_TYPE 9 node displacement, component 1 (x), case 1, one item,
     REQUEST_MODE 1, product 1, all modes, node axes. */
  return respcore_request(base, (int32_t)strlen(base), 9, 1, 1, steps, 1, 1, 1, 1, 0, out, &serial,
                          &node, 0);
}
