/* respcore: time histories from the result archive of a dynamic analysis.
 *
 * One call is one request: the archive's base name, an element or result
 * family (ELEM_TYPE), a component, a history case, the steps and items
 * wanted. The result is written to the caller's array TDSP_COMP, which the
 * caller sizes for the request:
 *   REQUEST_MODE 1 (one item over the steps):  NUM_STEPS entries;
 *   REQUEST_MODE 2 (many items at one step):   m x NUM_ITEMS entries, m per
 *                                              family and component;
 *   REQUEST_MODE 3 (node envelopes):           12 x NUM_ITEMS entries.
 * INUM_SERIAL and INUM_ELEMNT hold, per item, its record number in its
 * section and its element or node number. Errors are reported as lines on
 * standard output; values that could not be recovered stay zero.
 */
#ifndef RESPCORE_RESPCORE_H
#define RESPCORE_RESPCORE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define RESPCORE_STATUS_DONE 0
#define RESPCORE_STATUS_STOPPED 1 /* a singular 2x2/3x3 inverse stopped the run */
#define RESPCORE_STATUS_INTERNAL_ERROR 2

/* The exported entry. A fatal singular inverse ends the process (exit
 * status 0) after its lines were written. */
#ifdef __cplusplus
void respcore_entry_RESPCORE(const char* K_FNAME, int32_t name_length, int32_t elem_type,
                             int32_t result_comp, int32_t hist_case, int32_t num_steps,
                             int32_t num_items, int32_t step_no, int32_t request_mode,
                             int32_t product_index, int32_t mode_no, double* TDSP_COMP,
                             const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT,
                             int32_t axis_flag) __asm__("_RESPCORE");
#else
void _RESPCORE(const char* K_FNAME, int32_t name_length, int32_t elem_type, int32_t result_comp,
               int32_t hist_case, int32_t num_steps, int32_t num_items, int32_t step_no,
               int32_t request_mode, int32_t product_index, int32_t mode_no, double* TDSP_COMP,
               const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT, int32_t axis_flag);
#endif

/* The same request, returning a status instead of ending the process:
 * 0 done, 1 stopped by a singular 2x2/3x3 inverse, 2 internal error. */
int32_t respcore_request(const char* K_FNAME, int32_t name_length, int32_t elem_type,
                         int32_t result_comp, int32_t hist_case, int32_t num_steps,
                         int32_t num_items, int32_t step_no, int32_t request_mode,
                         int32_t product_index, int32_t mode_no, double* TDSP_COMP,
                         const int32_t* INUM_SERIAL, const int32_t* INUM_ELEMNT,
                         int32_t axis_flag);

#ifdef __cplusplus
}
#endif

#endif
