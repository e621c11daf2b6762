// Default host support library: the engine's only window on the outside world.
#include <cpuid.h>
#include <stdlib.h>

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

E3D_HOST_API uint32_t E3D_CALL ProcessorGetType(void) {
  unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
  if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return 0;
  unsigned family = (eax >> 8) & 0xF;
  unsigned model = (eax >> 4) & 0xF;
  uint32_t type = (family << 8) | (model << 4) | (eax & 0xF);
  if (edx & (1u << 23)) type |= E3D_CPU_MMX;
  if (edx & (1u << 25)) type |= E3D_CPU_SSE;
  if (edx & (1u << 26)) type |= E3D_CPU_SSE2;
  if (ecx & 1u) type |= E3D_CPU_SSE3;
  return type;
}
