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

E3D_HOST_API uint32_t E3D_CALL ProcessorGetType(void) { return 0x0600 | E3D_CPU_MMX | E3D_CPU_SSE | E3D_CPU_SSE2; }
