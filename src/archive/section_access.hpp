// Access to the archive's sections by serial and table index, the form of
// the archive's directories, and the element material.
//
// Three files make an archive: the first (RF_BIN, unit 63), the second
// (RF_BIN_T, unit 32) and the numbered direct files (RF_BIN_DIRECT, unit 36).
// Their names are the base name plus an extension chosen by the product tag.
// A look-up leaves the unit positioned on the section; the caller then reads
// its records by number.
#pragma once

#include <cstdint>

#include "core/arrays.hpp"

namespace respcore {

struct KernelState;

// First file. FOUND is 0 only when the section does not exist; a file that
// cannot be opened or read counts as found (its error line was printed).
void RF_BIN(KernelState& K, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found);
// Second file.
void RF_BIN_T(KernelState& K, int32_t ID_M, int32_t ID_S, int64_t& start, int32_t& found);
// Direct file FILE_NO: row 1 "DMED", row 2 "DSPL". Reports nothing.
void RF_BIN_DIRECT(KernelState& K, int32_t ID_M, int32_t ID_S, int32_t file_no, int32_t& reclen,
                   int64_t& start);

// Decides the directory form of the run from the first file's head record.
void FIND_READING_RESULT_METHOD(KernelState& K);

// Fills the element material from the element table and the material records.
void READING_ELEMENT_MATERIAL_DATA(KernelState& K, int32_t element_serial);

// Set N entries (the low 32 bits of N count) of ARR to VALUE.
void RSET(double value, VecRef<double> arr, int64_t n);
void R4SET(int32_t value, VecRef<int32_t> arr, int64_t n);
void R4SET(float value, VecRef<float> arr, int64_t n);

// Sets the three extensions from the product tag; an unknown tag keeps them.
void set_extensions(KernelState& K);

}  // namespace respcore
