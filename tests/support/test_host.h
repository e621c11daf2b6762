// The test host: a host support library that watches the engine's memory.
#pragma once
#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

namespace testhost {

inline constexpr unsigned char kPoison = 0xCD;  // every new block is filled with it

std::size_t LiveBlocks();       // blocks allocated and not yet freed
std::size_t LiveBytes();
std::size_t Allocations();      // AllocateMemory calls since the last Reset
std::size_t BadFrees();         // frees of blocks the host never gave out
void FailAllocation(long nth);  // make the nth AllocateMemory from now return null (0 = never)
void SetProcessorType(uint32_t type);
void Reset();                   // forget counters and failure plans (not the live blocks)

// Whether this processor runs the AVX2 span bodies (false off x86).
inline bool ProcessorHasAvx2() {
#if defined(__x86_64__) || defined(__i386__)
  return __builtin_cpu_supports("avx2");
#else
  return false;
#endif
}

// Fixture: every test ends with as many live blocks as it began with and no bad free.
class LeakCheckedTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
 private:
  std::size_t liveAtStart_ = 0;
  std::size_t badAtStart_ = 0;
};

}  // namespace testhost
