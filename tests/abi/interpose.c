/* A host that brings its own support functions: the engine, loaded as a
   shared library, must allocate through these and free every block it took.
   On Linux the program itself defines them and the dynamic linker prefers
   them; Windows has no such interposition, so there this file is also built
   as the host's own engine3d_host.dll, placed beside the program. */
#include <stdio.h>
#include <stdlib.h>

#include "engine3d.h"

#if defined(_WIN32)
#define HOST_EXPORT __declspec(dllexport)
#else
#define HOST_EXPORT
#endif

#if !defined(E3D_PROGRAM_ONLY)
static int allocations, frees, queried;

HOST_EXPORT void* AllocateMemory(uint32_t size) {
  ++allocations;
  return malloc(size ? size : 1);
}

HOST_EXPORT int32_t FreeMemory(void* block) {
  if (!block) return 0;
  ++frees;
  free(block);
  return 1;
}

HOST_EXPORT uint32_t ProcessorGetType(void) {
  ++queried;
  return 0x0600;
}

HOST_EXPORT void HostCounts(int* allocated, int* freed, int* asked) {
  *allocated = allocations, *freed = frees, *asked = queried;
}
#else
void HostCounts(int* allocated, int* freed, int* asked);
#endif

#if !defined(E3D_HOST_ONLY)
int main(void) {
  int allocated, freed, asked;
  InitEngine3D();
  ReleaseEngine3D();
  HostCounts(&allocated, &freed, &asked);
  if (asked != 1 || allocated == 0 || allocated != freed) {
    fprintf(stderr, "host functions not used: queried %d, %d allocations, %d frees\n", asked, allocated,
            freed);
    return 1;
  }
  printf("engine used the host's functions: %d blocks\n", allocated);
  return 0;
}
#endif
