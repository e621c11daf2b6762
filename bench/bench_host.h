// The bench host: the engine's memory comes from the C heap, and every block
// it takes or gives back is counted.
#pragma once
#include <cstdint>

namespace benchhost {

uint64_t Allocations();  // AllocateMemory calls so far
uint64_t LiveBlocks();   // blocks taken and not given back

}  // namespace benchhost
