// The records of the sections the kernel reads, as values: what a writer
// fills in, and the words each becomes in the archive. ArchiveWriter's typed
// writers (archive_writer.hpp) lay them into their sections; words() gives
// the raw record for a test that wants to spoil one before writing it.
//
// Integers that the kernel reads from element records are stored as doubles;
// the equation and node numbers here are doubles for that reason, so that a
// writer can also store values that are not whole.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "respcore/export.hpp"

namespace respcore {

// THIF: one history case. Storage 1 keeps the case as modal coordinates of
// modal set SET_OR_FILE; 2 and 3 as direct histories in direct file
// SET_OR_FILE.
struct HistoryCase {
  int32_t storage = 2;
  int32_t set_or_file = 1;
  int32_t stored_steps = 0;
  int32_t modes = 0;
  int32_t spare = 0;
};

// NDSP: a node's equation numbers (six, or seven with the seventh dof) and
// the upper triangle of its 6 by 6 transform, row by row (empty: identity).
struct NodeTransform {
  std::vector<double> equations;
  std::vector<double> upper;
};

// The 21 values of the identity's upper triangle.
RESPCORE_API std::vector<double> identity_upper();

// DMED (and MSER): the three histories of one equation, one value per stored
// step. A history shorter than the record leaves the rest zero.
struct EquationHistory {
  std::vector<double> acc, vel, disp;
};

// MDSP and MSHP: modal coordinates COORDS[m][s] = {displacement, velocity,
// acceleration} of mode m at stored step s, and SHAPES[e][m], the value of
// mode m at equation e (equations from 1).
struct ModalHistory {
  std::vector<std::vector<std::array<double, 3>>> coords;
  std::vector<std::vector<double>> shapes;
};

// TRUS: 63 doubles. LM the NDOF equation numbers; STRS(NSTR, NDOF) by
// columns, rows 1 and 2 the end forces per unit displacement, rows 3 and 4 of
// column 1 the factors from force to stress; SCALE the force factor (a
// negative one marks an extended record under the tag "H.N.Q").
struct TrussRecord {
  static constexpr int32_t kWords = 63;
  std::vector<double> lm;
  int32_t nstr = 4;
  std::vector<double> strs;
  double scale = 1.0;
  RESPCORE_API std::vector<double> words() const;
};

// EMBT: the extended truss record, 1245 doubles: the record of a truss
// between the NA + NB nodes of NODES (NA of them first), with its factor at
// word 1245.
struct ExtendedTrussRecord {
  static constexpr int32_t kWords = 1245;
  TrussRecord truss;
  std::vector<double> nodes_a, nodes_b;
  double factor = 1.0;
  RESPCORE_API std::vector<double> words() const;
};

// BEAM: 327 doubles. STRS holds NROW values per column, NEQ columns, behind
// the NEQ equation numbers; the node pair follows the matrix; NEQ and NROW are
// the two digits behind the decimal point of words 325 and 326 (whose
// integer parts are the node numbers when the record is full); word 327 is
// the element factor.
struct BeamRecord {
  static constexpr int32_t kWords = 327;
  int32_t neq = 12;
  int32_t nrow = 26;
  std::vector<double> lm;
  std::vector<double> strs;
  double node_i = 1.0;
  double node_j = 2.0;
  double factor = 1.0;
  RESPCORE_API std::vector<double> words() const;
};

// WBMM: 1053 doubles, laid out as the beam record with the scale words A and
// B behind the node pair and the counts in words 1051 and 1052.
struct WallBeamRecord {
  static constexpr int32_t kWords = 1053;
  int32_t neq = 14;
  int32_t nrow = 72;
  std::vector<double> lm;
  std::vector<double> strs;
  double node_i = 1.0;
  double node_j = 2.0;
  double a = 1.0;
  double b = 1.0;
  RESPCORE_API std::vector<double> words() const;
};

// SOLD: 3805 doubles. LM the NDOF equation numbers (at most 48), STRS(NR,
// NDOF) by columns behind them (rows 1..24 nodal forces, then six stresses
// per point), NN the node count and AXES[i][j] the element axis matrix T(i,j)
// (its columns the element axes in global components).
struct SolidRecord {
  static constexpr int32_t kWords = 3805;
  std::vector<double> lm;
  int32_t nr = 0;
  std::vector<double> strs;
  int32_t nn = 0;
  std::array<std::array<double, 3>, 3> axes{};
  RESPCORE_API std::vector<double> words() const;
};

// PSOH: 90 doubles: the node count, up to 20 node numbers (records of the
// node coordinates), three equation numbers per node and the nine material
// values that stand in for those of the material table.
struct SolidHighRecord {
  static constexpr int32_t kWords = 90;
  std::vector<double> nodes;
  std::vector<double> equations;
  std::array<double, 9> mat_vals{};
  RESPCORE_API std::vector<double> words() const;
};

// ---------------------------------------------------------------- plane elements

// The material and section words of a plane element record: PLATE_PROP(1..11)
// (the first the thickness), Young's modulus, Poisson's ratio, the type
// (1 orthotropic) and nine further values.
struct PlaneMaterial {
  std::array<double, 11> plate_prop{};
  double young = 0.0;
  double poisson = 0.0;
  int32_t type = 0;
  std::array<double, 9> vals{};
};

// PSTR (plane stress) and PSRN (plane strain): 725 doubles. LM the NEQ
// equation numbers, six per node (at most 24); STRS(NROW, NEQ) by columns
// behind them (at most 27 rows: a force triple per node, then the stress
// triples of the centre and the nodes); then NEQ and NROW at words 673, 674
// and the element block from word 676: the node count, four node numbers
// (a fourth of 0 or equal to the third makes a triangle), the coordinates of
// the four nodes, the material, the option (PLANE_KIND 0 stress state, 1
// strain state, plus 100 with drilling freedoms) and the material angle in
// degrees.
struct PlaneRecord {
  static constexpr int32_t kWords = 725;
  std::vector<double> lm;
  int32_t nrow = 27;
  std::vector<double> strs;
  int32_t nodes_count = 4;
  std::array<double, 4> nodes{};
  std::array<std::array<double, 3>, 4> xyz{};
  PlaneMaterial material;
  int32_t option = 0;
  double angle = 0.0;
  RESPCORE_API std::vector<double> words() const;
};

// PSTH (plane stress) and PSRH (plane strain) of the six- and eight-node
// elements: 83 doubles. LM the NEQ equation numbers, six per node (at most
// 48), NEQ at word 49, and from word 52 the node count, eight node numbers
// (records of the node coordinates, section CORD) and the material.
struct PlaneHighRecord {
  static constexpr int32_t kWords = 83;
  std::vector<double> lm;
  std::vector<double> nodes;
  PlaneMaterial material;
  RESPCORE_API std::vector<double> words() const;
};

// MATL: 13 doubles: the material number, Young's modulus, Poisson's ratio,
// the type flag (1 orthotropic) and nine further values.
struct MaterialRecord {
  int32_t number = 1;
  double young = 0.0;
  double poisson = 0.0;
  int32_t type = 0;
  std::array<double, 9> vals{};
};

// GRMT: of one case, GROUND[d][q] the history of direction d = x, y, z and
// quantity q = acceleration, velocity, displacement.
using GroundMotion = std::array<std::array<std::vector<double>, 3>, 3>;

// MSES and MSER: the support motion of one case, one (node, component) row
// and one displacement history per supported dof.
struct SupportMotion {
  std::vector<std::array<int32_t, 2>> rows;
  std::vector<EquationHistory> histories;
};

// IASE: one entry of the list of elements activated during a case.
struct InactiveEntry {
  int32_t spare = 0;
  int32_t kind = 1;  // 1 truss, 2 beam, 41 wall beam
  int32_t element = 0;
};

// NSKI: a node with a skew system, its matrix row by row.
struct SkewSystem {
  int32_t node = 0;
  std::array<double, 9> matrix{};
};

// --- Plate records ---

// PLAT: 660 doubles, a three- or four-node plate. LM the NEQ equation numbers
// (at most 24); FORCES the force matrix P14(NS, NEQ) by columns (force rows
// of the element's nodes, six per node, on the displacements by equation);
// NODES the node records (three, or four; a fourth equal to the third makes
// a triangle); NNODE the stored node count (0: as many as NODES);
// OFFSET_XYZ the node coordinates with their offsets (without offsets, the
// nodes' own coordinates), one triple per node; PROP the section values
// PLATE_PROP(1..11); the material; the release flag and a code per node;
// FORM the formulation (0 thick, 1 thin, +2 with the drilling membrane);
// the scale flag and its eight factors; ANGLE the material axes in degrees.
struct PlateRecord {
  static constexpr int32_t kWords = 660;
  std::vector<double> lm;
  int32_t ns = 24;
  std::vector<double> forces;
  std::vector<double> nodes;
  double nnode = 0.0;
  std::vector<std::array<double, 3>> offset_xyz;
  std::array<double, 11> prop{};
  double young = 0.0;
  double poisson = 0.0;
  int32_t mat_type = 0;
  std::array<double, 9> mat_vals{};
  int32_t release_flag = 0;
  std::array<double, 4> release_codes{};
  int32_t form = 0;
  int32_t scale_flag = 0;
  std::array<double, 8> scale{};
  double angle = 0.0;
  RESPCORE_API std::vector<double> words() const;
};

// PLAT under the tag "J.W.U": 1595 four-byte reals. NODES the node records
// (3 or 4, their count is NNODE and NEQ = 6 NNODE); THK the thickness at the
// five result points; OFFSET_SWITCH 1 when OFFSETS (a triple per node) apply;
// AXES the element axes TR, row r axis r in global components; TOP, BOTTOM
// the fibre factors; LM the NEQ equation numbers; FORC the force matrix
// FORC_DISP(NEQ, NEQ) by columns; STRS the stress matrix (8 NNODE + 8 rows,
// NEQ columns) row by row, on the element-axis nodal displacements; FORM
// the formulation word.
struct GeneralPlateRecord {
  static constexpr int32_t kWords = 1595;
  std::vector<double> nodes;
  std::array<double, 5> thk{};
  int32_t offset_switch = 0;
  std::array<double, 12> offsets{};
  std::array<std::array<double, 3>, 3> axes{};
  double top = 0.5;
  double bottom = -0.5;
  std::vector<double> lm;
  std::vector<double> forc;
  std::vector<double> strs;
  int32_t form = 0;
  RESPCORE_API std::vector<float> words() const;
};

// PLTH: 83 doubles, a six- or eight-node plate: LM the NEQ equation numbers
// (at most 48), NODES the node records (corners, then midsides), PROP the
// section values PLATE_PROP(1..11) and the material.
struct PlateHighRecord {
  static constexpr int32_t kWords = 83;
  std::vector<double> lm;
  std::vector<double> nodes;
  std::array<double, 11> prop{};
  double young = 0.0;
  double poisson = 0.0;
  int32_t mat_type = 0;
  std::array<double, 9> mat_vals{};
  RESPCORE_API std::vector<double> words() const;
};

}  // namespace respcore
