// The model's geometry as the archive holds it: node coordinates (section
// CORD, one record of x, y, z per node, record = node number) and, for every
// element family that has records under a case, the nodes of each element
// from its record.
//
// Element records name their nodes in one of three ways:
//   - a node count and a list of node numbers (plane, plate, high-order
//     plane, plate and solid records);
//   - the two end nodes behind the recovery matrix (beams, wall beams);
//   - only equation numbers (trusses, low-order solids): each node is the
//     one whose node record (NDSP) holds the node's first equation. A node
//     without equations (held in every direction) cannot be told, and its
//     element is marked unresolved.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "query.hpp"

namespace respcore::cli {

struct ElementNodes {
  const Family* family = nullptr;
  int max_nodes = 0;                 // columns of NODES
  std::vector<int32_t> serials;      // each element's record in the section
  std::vector<int32_t> counts;       // its node count, 0 when unresolved
  std::vector<int32_t> nodes;        // element by element, MAX_NODES each, 0 padded
};

struct MeshRecords {
  std::vector<double> xyz;  // node n at 3(n-1): x, y, z
  std::vector<ElementNodes> families;
};

// Throws CliError when the archive has no node coordinates.
MeshRecords read_mesh_records(const ArchiveView& a, const CaseInfo& c);

}  // namespace respcore::cli
