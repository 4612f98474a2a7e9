// Requests from entry to return: the request fields, the history case, the
// exported C entries, and archives that are missing or absent.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "respcore/respcore.h"
#include "run/kernel_state.hpp"
#include "support/archive_fixture.hpp"

namespace respcore::testing {
namespace {

// One node with equations 1..6 whose displacement at step s is 10 e + s.
void one_node(ArchiveFixture& a, int32_t store_code, int32_t nsteps) {
  std::vector<std::vector<double>> d(6);
  for (int e = 1; e <= 6; ++e)
    for (int s = 1; s <= nsteps; ++s) d[e - 1].push_back(10.0 * e + s);
  a.direct_case(d);
  a.writer().second().find(sections::THIF, 3)->put_i32(1, 0, store_code);
  a.node_records({{{1, 2, 3, 4, 5, 6}, {}}, {{4, 5, 6, 1, 2, 3}, {}}});
  a.write();
}

TEST(Entry, DirectStorageCodeThreeActsAsTwo) {
  ArchiveFixture a;
  one_node(a, 3, 4);
  Kernel k;
  auto r = k.run(a.request(9, 2, 4));
  EXPECT_EQ(r.values, (std::vector<double>{21, 22, 23, 24}));
}

// The element form of the case (THLG) takes the element records of serial
// 4, except under the two tags that have no such form.
TEST(Entry, ElementFormTwoReadsSerialFourExceptUnderTwoTags) {
  for (const auto& [tag, index, serial] :
       {std::tuple{"P.R.W", 1, 4}, {"H.N.Q", 4, 3}, {"J.W.U", 6, 3}}) {
    ArchiveFixture a(tag);
    for (int s = 3; s <= 4; ++s)
      a.writer().truss_records(s, {{{1, 2}, 4, {double(s), 0, 0, 0, 0, double(s), 0, 0}}});
    a.writer().element_forms({2});
    one_node(a, 2, 1);
    Kernel k;
    auto q = a.request(12, 1, 1);
    q.product_index = index;
    // (s u2 - s u1) / 2 at step 1, u1 = 11 and u2 = 21.
    EXPECT_EQ(k.run(q).values, std::vector<double>{5.0 * serial}) << tag;
  }
}

// The name's length is cut to 0..1024 with a bound failure; a name that
// names nothing gives the opening error line and zeros.
TEST(Entry, NameLengthIsCheckedAndCut) {
  Kernel k;
  std::string name(1025, 'x');
  std::vector<double> out(2, -1.0);
  auto run = [&](int32_t len) {
    const int32_t one = 1;
    ::testing::internal::CaptureStderr();
    ::testing::internal::CaptureStdout();
    k.request(name.data(), len, 9, 1, 1, 2, 1, 1, 1, 1, 0, out.data(), &one, &one, 1);
    const std::string lines = ::testing::internal::GetCapturedStdout();
    return std::pair{lines, ::testing::internal::GetCapturedStderr()};
  };
  const auto [lines, err] = run(1025);
  EXPECT_NE(err.find("array bound exceeded: K_FNAME subscript 1025 bound 1:1024"),
            std::string::npos);
  EXPECT_EQ(k.state().archive.FNAME_LEN, 1024);
  EXPECT_NE(lines.find("   OPENING ERROR READ-F IN RESP CORE \n"), std::string::npos);
  EXPECT_EQ(out, (std::vector<double>{0, 0}));
  EXPECT_EQ(run(1024).second.find("K_FNAME"), std::string::npos);
  EXPECT_NE(run(-3).second.find("K_FNAME subscript -3"), std::string::npos);
  EXPECT_EQ(k.state().archive.FNAME_LEN, 0);
}

// An index outside 1..8 keeps the kernel's product tag; a fresh kernel has
// none, and its names no extension.
TEST(Entry, ProductTagPersistsForUnknownIndicesWithinAKernel) {
  ArchiveFixture a("Y.J.P");
  one_node(a, 2, 2);
  Kernel k, fresh;
  auto q = a.request(9, 1, 2);
  q.product_index = 2;
  EXPECT_EQ(k.run(q).values, (std::vector<double>{11, 12}));
  q.product_index = 0;
  const Result r = k.run(q);
  EXPECT_EQ(r.values, (std::vector<double>{11, 12}));
  EXPECT_TRUE(r.output_lines.empty());
  EXPECT_EQ(fresh.run(q).values, (std::vector<double>{0, 0}));
  q.product_index = 1;  // "P.R.W": no such files
  EXPECT_FALSE(k.run(q).output_lines.empty());
}

using EntryFn = decltype(&respcore_request);

TEST(Entry, ExportedSymbolsOfTheSharedLibrary) {
  const char* lib = std::getenv("RESPCORE_TEST_LIB");
  if (lib == nullptr) GTEST_SKIP() << "RESPCORE_TEST_LIB not set";
  void* h = dlopen(lib, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(h, nullptr) << dlerror();
  auto entry = reinterpret_cast<void (*)(
      const char*, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t,
      int32_t, double*, const int32_t*, const int32_t*, int32_t)>(dlsym(h, "_RESPCORE"));
  auto request = reinterpret_cast<EntryFn>(dlsym(h, "respcore_request"));
  ASSERT_NE(entry, nullptr);
  ASSERT_NE(request, nullptr);
  ArchiveFixture a;
  one_node(a, 2, 3);
  std::vector<double> out(3, 0.0);
  const int32_t serial = 1, node = 2;
  entry(a.base().c_str(), static_cast<int32_t>(a.base().size()), 9, 3, 1, 3, 1, 1, 1, 1, 0,
        out.data(), &serial, &node, 1);
  EXPECT_EQ(out, (std::vector<double>{61, 62, 63}));
  out.assign(3, 0.0);
  EXPECT_EQ(request(a.base().c_str(), static_cast<int32_t>(a.base().size()), 9, 4, 1, 3, 1, 1, 1, 1,
                    0, out.data(), &serial, &node, 1),
            0);
  EXPECT_EQ(out, (std::vector<double>{11, 12, 13}));
  dlclose(h);
}

}  // namespace
}  // namespace respcore::testing
