// Fills and copies. Both align the destination to 8 bytes with single bytes,
// move 8-byte blocks, and finish with the odd bytes. The loops are kept as
// written (E3D_OWN_LOOPS).
#include "engine/memory.h"

namespace e3d {

namespace {

typedef uint64_t __attribute__((may_alias)) Block64;
typedef uint32_t __attribute__((may_alias, aligned(1))) Word32;
typedef uint16_t __attribute__((may_alias, aligned(1))) Word16;

bool Aligned8(const uint8_t* p) { return (reinterpret_cast<uintptr_t>(p) & 7) == 0; }

}  // namespace

E3D_OWN_LOOPS void* MemoryFill(void* dst, uint8_t value, int32_t count) {
  if (dst == nullptr || count <= 0) return dst;
  uint8_t* p = static_cast<uint8_t*>(dst);
  uint32_t n = static_cast<uint32_t>(count);
  if (n >= 8) {
    uint64_t pattern = value * 0x0101010101010101ull;
    for (; !Aligned8(p); n--) *p++ = value;
    for (; n >= 8; n -= 8, p += 8) *reinterpret_cast<Block64*>(p) = pattern;
  }
  for (; n != 0; n--) *p++ = value;
  return dst;
}

E3D_OWN_LOOPS void* MemoryFill16(void* dst, uint16_t value, uint32_t byteCount) {
  if (dst == nullptr) return dst;
  Word16* p = static_cast<Word16*>(dst);
  for (uint32_t i = 0; i < byteCount / 2; i++) p[i] = value;
  return dst;
}

E3D_OWN_LOOPS void* MemoryFill32(void* dst, uint32_t value, uint32_t byteCount) {
  if (dst == nullptr) return dst;
  Word32* p = static_cast<Word32*>(dst);
  for (uint32_t i = 0; i < byteCount / 4; i++) p[i] = value;
  return dst;
}

// Forward only: overlapping blocks are not supported.
E3D_OWN_LOOPS void* MemoryCopy(void* dst, const void* src, uint32_t count) {
  if (dst == nullptr || src == nullptr || count == 0) return dst;
  uint8_t* d = static_cast<uint8_t*>(dst);
  const uint8_t* s = static_cast<const uint8_t*>(src);
  uint32_t n = count;
  if (n >= 8) {
    for (; !Aligned8(d); n--) *d++ = *s++;
    for (; n >= 8; n -= 8, d += 8, s += 8) {
      Word32* to = reinterpret_cast<Word32*>(d);
      const Word32* from = reinterpret_cast<const Word32*>(s);
      to[0] = from[0];
      to[1] = from[1];
    }
  }
  for (; n != 0; n--) *d++ = *s++;
  return dst;
}

void Swap32(uint32_t* a, uint32_t* b) {
  uint32_t t = *a;
  *a = *b;
  *b = t;
}

}  // namespace e3d
