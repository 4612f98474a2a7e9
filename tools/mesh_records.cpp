// Node coordinates and element nodes from the archive's records.
#include "mesh_records.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <unordered_map>

#include "cli_error.hpp"

namespace respcore::cli {

namespace {

enum class NodeSource {
  List,       // a node count, then the node numbers
  Ends,       // two end nodes behind a recovery matrix of NEQ x NROW
  Equations,  // equation numbers only
};

// Where an element record keeps its nodes. Words count from 1 in the units
// the kernel reads the record in (doubles, or four-byte reals).
struct RecordLayout {
  int elem_type;
  NodeSource source;
  int words;           // words of the record as read
  bool single = false; // four-byte reals
  int count_word = 0;  // List: node count; Ends: NEQ (packed); Equations: number of equations
  int node_word = 0;   // List: first node; Ends: NROW (packed); Equations: node count (0: two nodes)
  int max_nodes = 0;
};

const RecordLayout kLayouts[] = {
    {1, NodeSource::List, 725, false, 676, 677, 4},        // plane stress: TEMP from word 676
    {2, NodeSource::List, 725, false, 676, 677, 4},        // plane strain
    {3, NodeSource::List, 660, false, 604, 605, 4},        // plate: TEMP from word 604
    {4, NodeSource::Equations, 3805, false, 3793, 3796, 8},  // solid: NDOF, NN behind the matrix
    {5, NodeSource::List, 83, false, 52, 53, 8},           // high-order plane stress: TEMP from word 52
    {6, NodeSource::List, 83, false, 52, 53, 8},           // high-order plane strain
    {7, NodeSource::List, 83, false, 52, 53, 8},           // high-order plate
    {8, NodeSource::List, 90, false, 1, 2, 20},            // high-order solid: NN, then 20 nodes
    {12, NodeSource::Equations, 63, false, 61, 0, 2},      // truss: NDOF at word 61
    {13, NodeSource::Ends, 327, false, 325, 326, 2},       // beam
    {14, NodeSource::Ends, 1053, false, 1051, 1052, 2},    // wall beam
};

// The plate record of the product "J.W.U": four-byte reals, the node count
// and four nodes at its head.
const RecordLayout kGeneralPlate{3, NodeSource::List, 1595, true, 1, 2, 4};

int32_t trunc_word(double x) {
  if (!(std::fabs(x) < 2.0e9)) return 0;
  return static_cast<int32_t>(x);
}

// The two digits behind the decimal point of a packed word.
int32_t packed_count(double x) {
  if (!(std::fabs(x) < 2.0e7)) return 0;
  return static_cast<int32_t>((x + 0.0001) * 100) - static_cast<int32_t>(x) * 100;
}

// Reads words of the records of one section, with one open file.
class SectionWords {
 public:
  SectionWords(const std::string& path, const SectionInfo& s, bool single)
      : in_(path, std::ios::binary), entry_(s), word_bytes_(single ? 4 : 8) {}

  // Words FIRST..LAST (from 1) of record REC; false when they lie outside
  // the record or the file.
  bool read(int64_t rec, int first, int last, std::vector<double>& out) {
    out.assign(static_cast<size_t>(last - first + 1), 0.0);
    const uint64_t reclen = 4u * static_cast<uint64_t>(entry_.reclen);
    if (rec < 1 || rec > entry_.records() || first < 1 || static_cast<uint64_t>(last) * word_bytes_ > reclen) return false;
    const int64_t off = entry_.offset(rec);
    if (off < 0) return false;
    const uint64_t at = static_cast<uint64_t>(off) + static_cast<uint64_t>(first - 1) * word_bytes_;
    buf_.resize(out.size() * word_bytes_);
    in_.clear();
    in_.seekg(static_cast<std::streamoff>(at));
    in_.read(buf_.data(), static_cast<std::streamsize>(buf_.size()));
    if (static_cast<size_t>(in_.gcount()) != buf_.size()) return false;
    for (size_t i = 0; i < out.size(); ++i) {
      if (word_bytes_ == 8) {
        std::memcpy(&out[i], buf_.data() + 8 * i, 8);
      } else {
        float f;
        std::memcpy(&f, buf_.data() + 4 * i, 4);
        out[i] = f;
      }
    }
    return true;
  }

 private:
  std::ifstream in_;
  SectionInfo entry_;
  uint64_t word_bytes_;
  std::vector<char> buf_;
};

// Node of each equation, from the node records (their first six words).
std::unordered_map<int32_t, int32_t> equation_nodes(const ArchiveView& a) {
  std::unordered_map<int32_t, int32_t> map;
  const SectionInfo* ndsp = a.second().find(sections::NDSP, 3);
  if (ndsp == nullptr) return map;
  SectionWords in(a.second().path, *ndsp, false);
  std::vector<double> w;
  for (int64_t n = 1; n <= ndsp->records(); ++n) {
    if (!in.read(n, 1, 6, w)) continue;
    for (double x : w) {
      const int32_t eq = trunc_word(x);
      if (eq > 0) map.emplace(eq, static_cast<int32_t>(n));
    }
  }
  return map;
}

// The nodes of record REC into NODES; returns the count, 0 when not told.
int element_nodes(SectionWords& in, const RecordLayout& L, int64_t rec,
                  const std::unordered_map<int32_t, int32_t>& eq_node, int32_t* nodes) {
  std::vector<double> w;
  switch (L.source) {
    case NodeSource::List: {
      if (!in.read(rec, L.count_word, L.node_word + L.max_nodes - 1, w)) return 0;
      int n = trunc_word(w[0]);
      if (n < 1 || n > L.max_nodes) return 0;
      const size_t off = static_cast<size_t>(L.node_word - L.count_word);
      for (int k = 0; k < n; ++k) nodes[k] = trunc_word(w[off + static_cast<size_t>(k)]);
      // A four-node record whose fourth node is 0 or repeats the third is a triangle.
      if (n == 4 && L.max_nodes == 4 && (nodes[3] == 0 || nodes[3] == nodes[2])) {
        nodes[3] = 0;
        n = 3;
      }
      return std::all_of(nodes, nodes + n, [](int32_t v) { return v > 0; }) ? n : 0;
    }
    case NodeSource::Ends: {
      if (!in.read(rec, L.count_word, L.node_word, w)) return 0;
      const int64_t neq = packed_count(w[0]), nrow = packed_count(w[1]);
      const int64_t at = neq * (nrow + 1) + 1;
      if (neq < 1 || nrow < 0 || at + 1 > L.words || !in.read(rec, static_cast<int>(at), static_cast<int>(at + 1), w)) return 0;
      nodes[0] = trunc_word(w[0]);
      nodes[1] = trunc_word(w[1]);
      return nodes[0] > 0 && nodes[1] > 0 ? 2 : 0;
    }
    case NodeSource::Equations: {
      const int last = L.node_word > 0 ? L.node_word : L.count_word;
      if (!in.read(rec, L.count_word, last, w)) return 0;
      const int ndof = trunc_word(w[0]);
      const int n = L.node_word > 0 ? trunc_word(w.back()) : 2;
      if (n < 1 || n > L.max_nodes || ndof < n || ndof % n != 0 || ndof >= L.count_word) return 0;
      if (!in.read(rec, 1, ndof, w)) return 0;
      const int per = ndof / n;
      for (int k = 0; k < n; ++k) {
        nodes[k] = 0;
        for (int d = 0; d < per && nodes[k] == 0; ++d) {
          const auto it = eq_node.find(trunc_word(w[static_cast<size_t>(k * per + d)]));
          if (it != eq_node.end()) nodes[k] = it->second;
        }
        if (nodes[k] == 0) return 0;
      }
      return n;
    }
  }
  return 0;
}

}  // namespace

MeshRecords read_mesh_records(const ArchiveView& a, const CaseInfo& c) {
  MeshRecords m;
  const SectionInfo* cord = a.second().find(sections::CORD, 3);
  if (cord == nullptr) throw CliError(a.second().path + ": no node coordinates (section CORD, serial 3)");
  {
    SectionWords in(a.second().path, *cord, false);
    m.xyz.assign(static_cast<size_t>(3 * cord->records()), std::nan(""));
    std::vector<double> w;
    for (int64_t n = 1; n <= cord->records(); ++n) {
      if (in.read(n, 1, 3, w)) std::copy(w.begin(), w.end(), m.xyz.begin() + 3 * (n - 1));
    }
  }

  std::unordered_map<int32_t, int32_t> eq_node;
  bool eq_node_read = false;
  for (const Family& f : families()) {
    if (f.node) continue;
    const RecordLayout* L = nullptr;
    for (const RecordLayout& l : kLayouts) {
      if (l.elem_type == f.elem_type) L = &l;
    }
    if (f.elem_type == 3 && a.files.product_tag == "J.W.U") L = &kGeneralPlate;
    const int serial = c.elem_form == 2 ? 4 : 3;
    const SectionInfo* s = a.second().find(f.section, serial);
    if (L == nullptr || s == nullptr) continue;
    if (L->source == NodeSource::Equations && !eq_node_read) {
      eq_node = equation_nodes(a);
      eq_node_read = true;
    }
    ElementNodes e;
    e.family = &f;
    e.max_nodes = L->max_nodes;
    const auto n = static_cast<size_t>(std::max<int64_t>(s->records(), 0));
    e.serials.resize(n);
    e.counts.resize(n);
    e.nodes.assign(n * static_cast<size_t>(L->max_nodes), 0);
    SectionWords in(a.second().path, *s, L->single);
    for (size_t r = 0; r < n; ++r) {
      e.serials[r] = static_cast<int32_t>(r + 1);
      int32_t* row = e.nodes.data() + r * static_cast<size_t>(L->max_nodes);
      e.counts[r] = element_nodes(in, *L, static_cast<int64_t>(r + 1), eq_node, row);
      if (e.counts[r] == 0) std::fill(row, row + L->max_nodes, 0);
    }
    m.families.push_back(std::move(e));
  }
  return m;
}

}  // namespace respcore::cli
