// Textures: 1555 checker boards and the mip levels of 1555 and 8888 chains.
//
// Mip levels 1-3 are box-filtered from the level above, each 2x2 block to one
// texel; a block holding the transparent key gives the key. The levels made
// here are packed (pitch = width * texel size); level 0 is read through the
// host's pitch. A level whose allocation fails ends the chain: that level and
// every level after it get a null pointer and zero width, height and pitch,
// so nothing is written through null and the owner may hand levels 1-3 to
// FreeMemory whatever happened. Levels made before the failure are kept.
// A checker board whose pixels cannot be allocated frees its descriptor.
#pragma once
#include <stdint.h>

#include "engine3d.h"

namespace e3d {

inline constexpr uint16_t kKey1555 = 0x8000;
inline constexpr uint32_t kKey8888 = 0xFF000000u;

// Greater than zero with exactly one bit set.
inline bool IsPowerOfTwo(int32_t v) { return v > 0 && (v & (v - 1)) == 0; }

// log2 of a power of two.
inline int32_t Log2(int32_t v) { return __builtin_ctz(static_cast<uint32_t>(v)); }

}  // namespace e3d
