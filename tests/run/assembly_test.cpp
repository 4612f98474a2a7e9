// The caller's array from TDSP: every line of the snapshot table, checked
// against rows written out by hand, and the other request modes.
#include <gtest/gtest.h>

#include "run/kernel_state.hpp"
#include "run/entry.hpp"

namespace respcore {
namespace {

// TDSP(r, c) = 1000 r + c, so that every copied value names its row.
std::vector<double> assemble(int32_t type, int32_t comp, int32_t mode, int32_t items,
                             int32_t steps = 1) {
  KernelState K;
  K.run.ELEM_TYPE = type;
  K.run.RESULT_COMP = comp;
  K.run.REQUEST_MODE = mode;
  K.run.NUM_ITEMS = items;
  K.run.NUM_STEPS = steps;
  const int64_t ncols = mode == 1 ? steps : mode == 3 ? 2 * items : items;
  Tdsp T("TDSP", ncols);
  for (int64_t r = 1; r <= 350; ++r) {
    for (int64_t c = 1; c <= ncols; ++c) T(r, c) = 1000.0 * r + c;
  }
  std::vector<double> out(static_cast<size_t>(history_size(type, comp, steps, items, mode)), -1.0);
  assemble_history(K.run, T, VecRef<double>(out.data(), static_cast<int64_t>(out.size()), "TDSP_COMP"));
  return out;
}

// Rows of item 1 in a snapshot.
std::vector<int> rows(int32_t type, int32_t comp) {
  std::vector<int> r;
  for (double v : assemble(type, comp, 2, 1)) r.push_back(static_cast<int>(v) / 1000);
  return r;
}

using V = std::vector<int>;

TEST(Assembly, SnapshotRowsOfEveryFamily) {
  EXPECT_EQ(rows(1, 3), (V{3, 6, 9, 12}));
  EXPECT_EQ(rows(1, 4), (V{13, 16, 19, 22, 25}));
  EXPECT_EQ(rows(2, 1), (V{1, 4, 7, 10}));
  EXPECT_EQ(rows(3, 6), (V{6, 12, 18, 24}));
  EXPECT_EQ(rows(3, 7), (V{25, 39, 53, 67, 81}));
  EXPECT_EQ(rows(4, 3), (V{3, 6, 9, 12, 15, 18, 21, 24}));
  EXPECT_EQ(rows(4, 4), (V{25, 31, 37, 43, 49, 55, 61, 67, 73}));
  EXPECT_EQ(rows(5, 2), (V{2, 5, 8, 11, 14, 17, 20, 23}));
  EXPECT_EQ(rows(5, 5), (V{26, 29, 32, 35, 38, 41, 44, 47, 50}));
  EXPECT_EQ(rows(6, 4), (V{25, 29, 33, 37, 41, 45, 49, 53, 57}));
  EXPECT_EQ(rows(7, 1), (V{1, 7, 13, 19, 25, 31, 37, 43}));
  EXPECT_EQ(rows(7, 8), (V{50, 64, 78, 92, 106, 120, 134, 148, 162}));
  auto r8 = rows(8, 2);
  ASSERT_EQ(r8.size(), 20u);
  EXPECT_EQ(r8.front(), 2);
  EXPECT_EQ(r8.back(), 59);
  auto r8s = rows(8, 4);
  ASSERT_EQ(r8s.size(), 21u);
  EXPECT_EQ(r8s.front(), 61);
  EXPECT_EQ(r8s.back(), 181);
  EXPECT_EQ(rows(9, 5), (V{5}));
  EXPECT_EQ(rows(11, 7), (V{7}));
  EXPECT_EQ(rows(12, 1), (V{1, 2}));
  EXPECT_EQ(rows(12, 2), (V{3, 4}));
  EXPECT_EQ(rows(12, 3), (V{4, 5}));
  EXPECT_EQ(rows(13, 1), (V{1, 7}));
  EXPECT_EQ(rows(13, 6), (V{6, 12}));
  EXPECT_EQ(rows(13, 7), (V{13, 20}));
  EXPECT_EQ(rows(14, 13), (V{19, 26}));
  EXPECT_EQ(rows(13, 14), (V{27, 31}));
  EXPECT_EQ(rows(14, 17), (V{30, 34}));
}

TEST(Assembly, SnapshotItemsFollowEachOther) {
  auto v = assemble(12, 2, 2, 3);
  EXPECT_EQ(v, (std::vector<double>{3001, 4001, 3002, 4002, 3003, 4003}));
}

TEST(Assembly, UnknownFamilyCopiesNothingInSnapshots) {
  std::vector<double> out(4, -1.0);
  KernelState K;
  K.run.ELEM_TYPE = 15;
  K.run.RESULT_COMP = 1;
  K.run.REQUEST_MODE = 2;
  K.run.NUM_ITEMS = 2;
  Tdsp T("TDSP", 2);
  assemble_history(K.run, T, VecRef<double>(out.data(), 4, "TDSP_COMP"));
  EXPECT_EQ(out, (std::vector<double>(4, -1.0)));
  EXPECT_EQ(history_size(0, 1, 1, 2, 2), 0);
}

TEST(Assembly, HistoryAndEnvelopeModes) {
  EXPECT_EQ(assemble(13, 5, 1, 1, 4), (std::vector<double>{5001, 5002, 5003, 5004}));
  // Six rows of each column, whatever the component says.
  auto env = assemble(9, 3, 3, 2);
  ASSERT_EQ(env.size(), 24u);
  EXPECT_EQ(env[0], 1001);
  EXPECT_EQ(env[5], 6001);
  EXPECT_EQ(env[6], 1002);
  EXPECT_EQ(env[23], 6004);
}

}  // namespace
}  // namespace respcore
