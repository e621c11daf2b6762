/* A host that brings its own support functions: the engine, loaded as a
   shared library, must allocate through these and free every block it took. */
#include <stdio.h>
#include <stdlib.h>

#include "engine3d.h"

static int allocations, frees, queried;

void* AllocateMemory(uint32_t size) {
  ++allocations;
  return malloc(size ? size : 1);
}

int32_t FreeMemory(void* block) {
  if (!block) return 0;
  ++frees;
  free(block);
  return 1;
}

uint32_t ProcessorGetType(void) {
  ++queried;
  return 0x0600;
}

int main(void) {
  InitEngine3D();
  ReleaseEngine3D();
  if (queried != 1 || allocations == 0 || allocations != frees) {
    fprintf(stderr, "host functions not used: queried %d, %d allocations, %d frees\n", queried,
            allocations, frees);
    return 1;
  }
  printf("engine used the host's functions: %d blocks\n", allocations);
  return 0;
}
