#include "numeric/blas.hpp"

#include <gtest/gtest.h>

namespace respcore {
namespace {

// The shared declarations reach the linked library with the right argument
// layout: small products checked by hand.
TEST(BlasWrappers, ProductsAndCholeskyByHand) {
  const double a[6] = {1, 2, 3, 4, 5, 6};  // 2x3: [[1,3,5],[2,4,6]]
  const double b[6] = {1, 0, 0, 0, 1, 1};  // 3x2: [[1,0],[0,1],[0,1]]
  double c[4] = {10, 10, 10, 10};
  DGEMM('N', 'N', 2, 2, 3, 1.0, a, 2, b, 3, 0.5, c, 2);
  // A*B = [[1, 3+5],[2, 4+6]] plus half of the old C.
  EXPECT_EQ(c[0], 1.0 + 5.0);
  EXPECT_EQ(c[1], 2.0 + 5.0);
  EXPECT_EQ(c[2], 8.0 + 5.0);
  EXPECT_EQ(c[3], 10.0 + 5.0);

  const double x[2] = {1.0, -1.0};
  double y[3] = {0, 0, 0};
  DGEMV('T', 2, 3, 2.0, a, 2, x, 1, 0.0, y, 1);  // 2 * A' x
  EXPECT_EQ(y[0], -2.0);
  EXPECT_EQ(y[1], -2.0);
  EXPECT_EQ(y[2], -2.0);

  // SPD [[4,2],[2,5]] = L L' with L = [[2,0],[1,2]].
  double s[4] = {4, 2, 2, 5};
  ASSERT_EQ(DPOTRF('L', 2, s, 2), 0);
  EXPECT_EQ(s[0], 2.0);
  EXPECT_EQ(s[1], 1.0);
  EXPECT_EQ(s[3], 2.0);
  double rhs[2] = {2.0, 5.0};  // L z = rhs gives z = (1, 2)
  DTRSM('L', 'L', 'N', 'N', 2, 1, 1.0, s, 2, rhs, 2);
  EXPECT_EQ(rhs[0], 1.0);
  EXPECT_EQ(rhs[1], 2.0);

  double g[4] = {1, 1, 1, 1};
  DSYRK('L', 'N', 2, 3, 1.0, a, 2, -1.0, g, 2);  // A A' - 1
  EXPECT_EQ(g[0], 35.0 - 1.0);
  EXPECT_EQ(g[1], 44.0 - 1.0);
  EXPECT_EQ(g[3], 56.0 - 1.0);
  EXPECT_EQ(g[2], 1.0);  // upper triangle not referenced
}

}  // namespace
}  // namespace respcore
