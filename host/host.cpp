// Default host support library: the engine's only window on the outside world.
#include <stdlib.h>
#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#include "engine3d.h"

E3D_HOST_API void* E3D_CALL AllocateMemory(uint32_t size) {
  // A zero-byte request still yields a distinct block, as callers free what they get.
  return malloc(size ? size : 1);
}

E3D_HOST_API int32_t E3D_CALL FreeMemory(void* block) {
  if (!block) return 0;
  free(block);
  return 1;
}

#if defined(__x86_64__) || defined(__i386__)
namespace {

// XCR0: the register state the system saves on a switch.
uint64_t XFeatures() {
  uint32_t low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return static_cast<uint64_t>(high) << 32 | low;
}

}  // namespace

E3D_HOST_API uint32_t E3D_CALL ProcessorGetType(void) {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return 0;
  uint32_t type = 0;
  if (edx & (1u << 23)) type |= E3D_CPU_MMX;
  if (edx & (1u << 25)) type |= E3D_CPU_SSE;
  if (edx & (1u << 26)) type |= E3D_CPU_SSE2;
  if (ecx & 1u) type |= E3D_CPU_SSE3;
  // AVX2 needs the system to save the wide registers: OSXSAVE, and XCR0
  // with the SSE and AVX state bits.
  const bool osSavesAvx = (ecx & (1u << 27)) && (ecx & (1u << 28)) && (XFeatures() & 6u) == 6u;
  if (osSavesAvx && __get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) && (ebx & (1u << 5)))
    type |= E3D_CPU_AVX2;
  return type;
}
#else
// Other processors have none of the x86 features the code names: the
// engine keeps its portable spans.
E3D_HOST_API uint32_t E3D_CALL ProcessorGetType(void) { return 0; }
#endif
