// The last step of every textured, line and dot pixel: a colour of 5-bit
// channels with a coverage of 0..255 put over the target in an alpha mode.
// Table reads, shifts and adds only.
#pragma once
#include <stdint.h>

#include "raster/span.h"
#include "raster/tables.h"
#include "raster/textured_texel.h"

namespace e3d {

struct Rgb5 {
  uint32_t red, green, blue;
};

inline Rgb5 ChannelsOf(uint32_t pixel) { return {RedOf(pixel), GreenOf(pixel), BlueOf(pixel)}; }

// c x a / 255.
inline uint32_t ScaleChannel(uint32_t c, uint32_t a) { return Div255(AlphaScaleTable[a * 32 + c]); }

// d + (s - d) x a / 255.
inline uint32_t LerpChannel(uint32_t d, uint32_t s, uint32_t a) {
  return Div255(AlphaScaleTable[a * 32 + s] + AlphaScaleTable[(255 - a) * 32 + d]);
}

// a x level / 255 of two 8-bit values: the table takes a in two parts.
inline uint32_t ScaleCoverage(uint32_t a, uint32_t level) {
  const uint16_t* row = AlphaScaleTable + level * 32;
  return Div255((static_cast<uint32_t>(row[a >> 3]) << 3) + row[a & 7]);
}

// The pixel stored for colour s of coverage a over target d in alpha mode
// kMode (0 plain, 1 added, 2 blended by level, 3 the target subtracted).
// Without kCoverage a is taken as 255 and not read.
template <int kMode, bool kCoverage>
inline uint16_t PutOver(Rgb5 s, uint32_t a, uint32_t level, uint16_t target) {
  const Rgb5 d = ChannelsOf(target);
  if constexpr (kMode == 0) {
    if constexpr (!kCoverage) return PackPixel(s.red, s.green, s.blue);
    return PackPixel(LerpChannel(d.red, s.red, a), LerpChannel(d.green, s.green, a),
                     LerpChannel(d.blue, s.blue, a));
  } else if constexpr (kMode == 2) {
    const uint32_t k = kCoverage ? ScaleCoverage(a, level) : level;
    return PackPixel(LerpChannel(d.red, s.red, k), LerpChannel(d.green, s.green, k),
                     LerpChannel(d.blue, s.blue, k));
  } else {
    if constexpr (kCoverage) s = {ScaleChannel(s.red, a), ScaleChannel(s.green, a), ScaleChannel(s.blue, a)};
    const uint8_t* table = kMode == 1 ? SaturateAddTable : SaturateSubTable;
    return PackPixel(table[s.red * 32 + d.red], table[s.green * 32 + d.green], table[s.blue * 32 + d.blue]);
  }
}

// PutOver with the mode chosen at run time.
template <bool kCoverage>
inline uint16_t PutOverIn(int32_t mode, Rgb5 s, uint32_t a, uint32_t level, uint16_t target) {
  switch (mode) {
    case 0: return PutOver<0, kCoverage>(s, a, level, target);
    case 1: return PutOver<1, kCoverage>(s, a, level, target);
    case 2: return PutOver<2, kCoverage>(s, a, level, target);
    default: return PutOver<3, kCoverage>(s, a, level, target);
  }
}

}  // namespace e3d
