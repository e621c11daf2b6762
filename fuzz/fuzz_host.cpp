// Blocks come from malloc, so the sanitizers see every overrun; a free of a
// block never given out stops the run.
#include "fuzz_host.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_set>

#include "engine3d.h"

namespace {

std::unordered_set<void*>& Live() {
  static std::unordered_set<void*> live;
  return live;
}
long failIn = 0;
char note[512];

}  // namespace

extern "C" void* AllocateMemory(uint32_t size) {
  if (failIn > 0 && --failIn == 0) return nullptr;
  void* block = std::malloc(size ? size : 1);
  if (block == nullptr) return nullptr;
  std::memset(block, 0xCD, size);
  Live().insert(block);
  return block;
}

extern "C" int32_t FreeMemory(void* block) {
  if (block == nullptr) return 0;
  if (Live().erase(block) == 0) fuzz::Fail("FreeMemory of a block never given out", __FILE__, __LINE__);
  std::free(block);
  return 1;
}

extern "C" uint32_t ProcessorGetType(void) { return 0x4600 | E3D_CPU_MMX | E3D_CPU_SSE | E3D_CPU_SSE2; }

namespace fuzz {

std::size_t LiveBlocks() { return Live().size(); }
void FailAllocation(long nth) { failIn = nth; }

void Fail(const char* what, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: check failed: %s\n  while %s\n", file, line, what, note);
  std::abort();
}

void Note(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::vsnprintf(note, sizeof note, format, args);
  va_end(args);
}

}  // namespace fuzz
