// Defining the three host functions here makes the engine use these instead
// of the default host library's.
#include "bench_host.h"

#include <cstdlib>

#include "engine3d.h"

namespace {
uint64_t allocations, frees;
}

namespace benchhost {
uint64_t Allocations() { return allocations; }
uint64_t LiveBlocks() { return allocations - frees; }
}  // namespace benchhost

E3D_HOST_API void* E3D_CALL AllocateMemory(uint32_t size) {
  void* block = std::malloc(size ? size : 1);
  if (block != nullptr) ++allocations;
  return block;
}

E3D_HOST_API int32_t E3D_CALL FreeMemory(void* block) {
  if (block == nullptr) return 0;
  ++frees;
  std::free(block);
  return 1;
}

// The processor as the default host reports it, so the engine takes the span
// bodies it would take for any host; E3D_BENCH_BASELINE=1 keeps the baseline.
E3D_HOST_API uint32_t E3D_CALL ProcessorGetType(void) {
  const uint32_t type = E3D_CPU_MMX | E3D_CPU_SSE | E3D_CPU_SSE2;
  const char* baseline = std::getenv("E3D_BENCH_BASELINE");
  const bool wide = __builtin_cpu_supports("avx2") && (baseline == nullptr || *baseline != '1');
  return wide ? type | E3D_CPU_AVX2 : type;
}
