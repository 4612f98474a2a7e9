// The archive's sections by name: the four-character tag, the file that holds
// it and the row of that file's tag table through which the kernel asks for
// it. The kernel's reader, the archive writer, the tool, the tests and the
// benchmarks all name a section here, so that one grep for a tag finds every
// place that reads or writes it.
//
// The serial that goes with a tag (3 for most model data, 4 under element
// form 2, the history case for per-case data, 1 in the direct files) is the
// caller's business.
#pragma once

#include <cstdint>

namespace respcore {

// The three kinds of archive file.
enum class ArchiveFileKind : int8_t {
  First,   // ".PA1": run-wide tables
  Second,  // ".PA2": model data, element records, modal histories
  Direct,  // ".PAT<n>": direct histories
};

struct SectionName {
  const char* tag;       // four characters
  ArchiveFileKind file;  // where it lives
  int32_t row;           // row of the file's tag table, from 1
};

namespace sections {

// First file.
inline constexpr SectionName THLG{"THLG", ArchiveFileKind::First, 78};   // element form per case
inline constexpr SectionName ELIM{"ELIM", ArchiveFileKind::First, 204};  // element local axes
inline constexpr SectionName IASI{"IASI", ArchiveFileKind::First, 243};  // inactive elements, per case flags
inline constexpr SectionName IASE{"IASE", ArchiveFileKind::First, 244};  // inactive elements, the list

// Second file: element records.
inline constexpr SectionName TRUS{"TRUS", ArchiveFileKind::Second, 1};
inline constexpr SectionName BEAM{"BEAM", ArchiveFileKind::Second, 2};
inline constexpr SectionName PSTR{"PSTR", ArchiveFileKind::Second, 3};
inline constexpr SectionName PLAT{"PLAT", ArchiveFileKind::Second, 4};
inline constexpr SectionName WALL{"WALL", ArchiveFileKind::Second, 5};
inline constexpr SectionName PSTA{"PSTA", ArchiveFileKind::Second, 6};
inline constexpr SectionName AXYM{"AXYM", ArchiveFileKind::Second, 7};
inline constexpr SectionName SOLD{"SOLD", ArchiveFileKind::Second, 8};
inline constexpr SectionName PSRN{"PSRN", ArchiveFileKind::Second, 13};
inline constexpr SectionName PSTH{"PSTH", ArchiveFileKind::Second, 41};
inline constexpr SectionName PSRH{"PSRH", ArchiveFileKind::Second, 42};
inline constexpr SectionName PLTH{"PLTH", ArchiveFileKind::Second, 43};
inline constexpr SectionName PSOH{"PSOH", ArchiveFileKind::Second, 44};
inline constexpr SectionName EMBT{"EMBT", ArchiveFileKind::Second, 102};
inline constexpr SectionName WBMM{"WBMM", ArchiveFileKind::Second, 106};

// Second file: nodal motion and the model around it.
inline constexpr SectionName MDSP{"MDSP", ArchiveFileKind::Second, 9};    // modal coordinates
inline constexpr SectionName MSHP{"MSHP", ArchiveFileKind::Second, 10};   // mode shapes
inline constexpr SectionName GRMT{"GRMT", ArchiveFileKind::Second, 14};   // ground motion
inline constexpr SectionName NDSP{"NDSP", ArchiveFileKind::Second, 17};   // node transforms
inline constexpr SectionName THIF{"THIF", ArchiveFileKind::Second, 18};   // history cases
inline constexpr SectionName MSER{"MSER", ArchiveFileKind::Second, 32};   // support motion histories
inline constexpr SectionName MSES{"MSES", ArchiveFileKind::Second, 33};   // support motion index
inline constexpr SectionName CORD{"CORD", ArchiveFileKind::Second, 34};   // node coordinates
inline constexpr SectionName ELMT{"ELMT", ArchiveFileKind::Second, 35};   // element table
inline constexpr SectionName ITTR{"ITTR", ArchiveFileKind::Second, 36};   // truss initial forces
inline constexpr SectionName ITBM{"ITBM", ArchiveFileKind::Second, 37};   // beam initial forces
inline constexpr SectionName MATL{"MATL", ArchiveFileKind::Second, 40};   // materials
inline constexpr SectionName MTKM{"MTKM", ArchiveFileKind::Second, 103};  // seventh dof per node
inline constexpr SectionName ITBW{"ITBW", ArchiveFileKind::Second, 105};  // wall beam initial forces
inline constexpr SectionName NSKI{"NSKI", ArchiveFileKind::Second, 168};  // node skew systems

// Direct files.
inline constexpr SectionName DMED{"DMED", ArchiveFileKind::Direct, 1};  // histories per equation
inline constexpr SectionName DSPL{"DSPL", ArchiveFileKind::Direct, 2};  // displacements at activation

}  // namespace sections

}  // namespace respcore
