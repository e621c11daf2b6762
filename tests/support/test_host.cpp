// Test host support library: linked into the test programs in place of the
// default one, so every block the engine takes passes through here.
#include "support/test_host.h"

#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "engine3d.h"

namespace {

struct State {
  std::unordered_map<void*, std::size_t> live;
  std::size_t bytes = 0;
  std::size_t allocations = 0;
  std::size_t badFrees = 0;
  long failIn = 0;  // countdown to the allocation that fails; 0 = none
  uint32_t processor = 0x0600;
};

State& S() {
  static State state;
  return state;
}

}  // namespace

extern "C" void* AllocateMemory(uint32_t size) {
  State& s = S();
  ++s.allocations;
  if (s.failIn > 0 && --s.failIn == 0) return nullptr;
  void* block = std::malloc(size ? size : 1);
  if (!block) return nullptr;
  std::memset(block, testhost::kPoison, size);
  s.live.emplace(block, size);
  s.bytes += size;
  return block;
}

extern "C" int32_t FreeMemory(void* block) {
  State& s = S();
  if (!block) return 0;
  auto it = s.live.find(block);
  if (it == s.live.end()) {
    ++s.badFrees;
    ADD_FAILURE() << "FreeMemory of a block the host never gave out: " << block;
    return 0;
  }
  s.bytes -= it->second;
  s.live.erase(it);
  std::free(block);
  return 1;
}

extern "C" uint32_t ProcessorGetType(void) { return S().processor; }

namespace testhost {

std::size_t LiveBlocks() { return S().live.size(); }
std::size_t LiveBytes() { return S().bytes; }
std::size_t Allocations() { return S().allocations; }
std::size_t BadFrees() { return S().badFrees; }
void FailAllocation(long nth) { S().failIn = nth; }
void SetProcessorType(uint32_t type) { S().processor = type; }
void Reset() {
  State& s = S();
  s.allocations = 0;
  s.failIn = 0;
  s.processor = 0x0600;
}

void LeakCheckedTest::SetUp() {
  Reset();
  liveAtStart_ = LiveBlocks();
  badAtStart_ = BadFrees();
}

void LeakCheckedTest::TearDown() {
  Reset();
  EXPECT_EQ(LiveBlocks(), liveAtStart_) << "blocks leaked by this test";
  EXPECT_EQ(BadFrees(), badAtStart_);
}

}  // namespace testhost
