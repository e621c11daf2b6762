// The host support library of the fuzz targets: counts live blocks, can fail
// a chosen allocation, and stops the run on any broken check.
#pragma once
#include <cstddef>

namespace fuzz {

std::size_t LiveBlocks();
void FailAllocation(long nth);  // the nth AllocateMemory from now returns null; 0 = never
[[noreturn]] void Fail(const char* what, const char* file, int line);
// What the target is doing, printed with a failed check.
void Note(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace fuzz

#define FUZZ_CHECK(cond) ((cond) ? (void)0 : fuzz::Fail(#cond, __FILE__, __LINE__))

#include "engine3d.h"

namespace fuzz {

// Starts the engine once per process; its tables and the sorter's scratch
// list (made by the first sort, grown in place later) stay for the whole run.
inline void StartEngine() {
  static const bool started = [] {
    InitEngine3D();
    uint32_t index;
    ResetRadixSort(1, &index);
    return true;
  }();
  (void)started;
}

}  // namespace fuzz
