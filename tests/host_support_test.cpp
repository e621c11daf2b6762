// The test host itself: the other tests trust what it reports.
#include <cstring>

#include "engine3d.h"
#include "support/test_host.h"

namespace {

using testhost::LeakCheckedTest;

class TestHost : public LeakCheckedTest {};

TEST_F(TestHost, PoisonsCountsAndFailsOnRequest) {
  auto* block = static_cast<unsigned char*>(AllocateMemory(16));
  ASSERT_NE(block, nullptr);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(block[i], testhost::kPoison);
  EXPECT_EQ(testhost::LiveBytes() >= 16, true);

  testhost::FailAllocation(2);
  void* first = AllocateMemory(4);
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(AllocateMemory(4), nullptr);
  void* third = AllocateMemory(4);
  EXPECT_NE(third, nullptr);

  EXPECT_EQ(FreeMemory(first), 1);
  EXPECT_EQ(FreeMemory(third), 1);
  EXPECT_EQ(FreeMemory(block), 1);
  EXPECT_EQ(FreeMemory(nullptr), 0);
}

}  // namespace
