// Full-screen blurs, in place. Channels are halved on whole words: shift
// right by one, then mask off the bit that moved in from the channel above,
// so every division truncates. Each destination row reads only the rows
// below it (and, in the fast blur, its own old contents), so a pass never
// reads a pixel it has already written.
#include <stddef.h>
#include <stdint.h>

#include "engine3d.h"

namespace e3d {
namespace {

constexpr uint32_t kHalfMask = 0x3DEF;        // per channel, bit 15 dropped
constexpr uint32_t kHalfMask2 = 0x3DEF3DEF;   // the same on two pixels
constexpr uint32_t kCentreMask = 0xBDEF;      // halving that keeps bit 15
constexpr uint32_t kKeptBits2 = 0x84218421;   // bit 15 and each channel's lowest bit

inline uint32_t Half(uint32_t v) { return (v >> 1) & kHalfMask; }
inline uint32_t Half2(uint32_t v) { return (v >> 1) & kHalfMask2; }

// Two pixels as one word, the left one low. The host's buffer need only be
// aligned for pixels.
inline uint32_t LoadPair(const uint16_t* p) { return p[0] | static_cast<uint32_t>(p[1]) << 16; }
inline void StorePair(uint16_t* p, uint32_t w) {
  p[0] = static_cast<uint16_t>(w);
  p[1] = static_cast<uint16_t>(w >> 16);
}

// One destination row of the fast blur, words pairs wide (at least two).
// dst is also the top row; centre and below are the rows under it. With
// copyFirst the first word is the centre's, as on the last pass.
void BlurFastRow(uint16_t* dst, const uint16_t* centre, const uint16_t* below, int32_t words,
                 bool copyFirst) {
  uint32_t c = LoadPair(centre);
  uint32_t next = LoadPair(centre + 2);
  if (copyFirst) {
    StorePair(dst, c);
  } else {
    // No left neighbour: the first pixel stands in for it, and the halves
    // are summed unmasked, without the kept bits.
    const uint32_t t = LoadPair(dst), b = LoadPair(below);
    const uint32_t l = (c << 16) | (c & 0xFFFF), r = (c >> 16) | (next << 16);
    const uint32_t vertical = ((t >> 1) + (b >> 1)) >> 1;
    const uint32_t horizontal = ((l >> 1) + (r >> 1)) >> 1;
    StorePair(dst, (c >> 1) + ((vertical + horizontal) >> 1));
  }
  for (int32_t k = 1; k < words - 1; ++k) {
    const uint32_t prev = c;
    c = next;
    next = LoadPair(centre + 2 * k + 2);
    const uint32_t t = LoadPair(dst + 2 * k), b = LoadPair(below + 2 * k);
    const uint32_t l = (c << 16) | (prev >> 16), r = (c >> 16) | (next << 16);
    const uint32_t around = Half2(Half2(Half2(t) + Half2(b)) + Half2(Half2(l) + Half2(r)));
    StorePair(dst + 2 * k, (Half2(c) + around) | (c & kKeptBits2));
  }
  StorePair(dst + 2 * (words - 1), next);
}

}  // namespace
}  // namespace e3d

using namespace e3d;

// Three taps: the centre halved with its bit 15, and a quarter each of the
// pixels right of and below it. The pixels above and left are not used.
E3D_API void E3D_CALL FSBlur(uint16_t* pixels, int32_t width, int32_t height) {
  const ptrdiff_t pitch = width;
  for (int32_t y = 0; y < height - 2; ++y) {
    uint16_t* dst = pixels + y * pitch;
    const uint16_t* centre = dst + pitch;
    const uint16_t* below = centre + pitch;
    for (int32_t x = 1; x < width - 1; ++x) {
      const uint32_t c = static_cast<uint32_t>(static_cast<int16_t>(centre[x]) >> 1) & kCentreMask;
      dst[x] = static_cast<uint16_t>(c + Half(Half(below[x]) + Half(centre[x + 1])));
    }
  }
}

// Five taps on word pairs. The row above the last is blurred once more with
// the last row standing in for the one below it, and the last row, which
// has nothing below, is darkened to half.
E3D_API void E3D_CALL FSBlurFast(uint16_t* pixels, int32_t width, int32_t height) {
  if (width < 4 || (width & 1) != 0 || height < 2) return;
  const ptrdiff_t pitch = width;
  const int32_t words = width / 2;
  uint16_t* row = pixels;
  for (int32_t y = 0; y < height - 2; ++y, row += pitch)
    BlurFastRow(row, row + pitch, row + 2 * pitch, words, false);
  uint16_t* last = row + pitch;
  BlurFastRow(row, last, last, words, true);
  for (int32_t x = 0; x < width; ++x) last[x] = static_cast<uint16_t>(Half(last[x]));
}
