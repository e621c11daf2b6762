// The test host itself: the other tests trust what it reports.
#include <cstring>

#include "engine3d.h"
#include "support/test_host.h"

namespace {

using TestHost = testhost::LeakCheckedTest;

TEST_F(TestHost, PoisonsCountsAndFailsOnRequest) {
  const size_t live = testhost::LiveBlocks();
  auto* block = static_cast<unsigned char*>(AllocateMemory(16));
  for (int i = 0; i < 16; ++i) EXPECT_EQ(block[i], testhost::kPoison);
  testhost::FailAllocation(2);  // the second from now, once
  void* first = AllocateMemory(4);
  EXPECT_EQ(AllocateMemory(4), nullptr);
  void* third = AllocateMemory(4);
  EXPECT_TRUE(first != nullptr && third != nullptr && testhost::LiveBlocks() == live + 3);
  EXPECT_EQ(FreeMemory(first) + FreeMemory(third) + FreeMemory(block) + FreeMemory(nullptr), 3);
}

}  // namespace
