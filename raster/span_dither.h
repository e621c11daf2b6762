// The 4x4 ordered dither that takes 8-bit channels down to the 5 bits of a
// pixel: a channel rounds up to the next 5-bit step where the threshold of
// its pixel lies below its three low bits.
#pragma once
#include <stdint.h>

namespace e3d {

// Thresholds, indexed by (y & 3) * 4 + (x & 3).
inline constexpr uint8_t DitherMatrix[16] = {
    0, 4, 1, 5,  //
    6, 2, 7, 3,  //
    1, 5, 0, 4,  //
    7, 3, 6, 2,
};

struct ChannelTables {
  uint8_t high[256];  // c >> 3
  uint8_t low[256];   // c & 7; 0 from 248 on, where c >> 3 is already 31
};

inline constexpr ChannelTables kChannelTables = [] {
  ChannelTables t{};
  for (int c = 0; c < 256; ++c) {
    t.high[c] = static_cast<uint8_t>(c >> 3);
    t.low[c] = static_cast<uint8_t>(c < 248 ? c & 7 : 0);
  }
  return t;
}();
inline constexpr const uint8_t (&ChannelHighTable)[256] = kChannelTables.high;
inline constexpr const uint8_t (&ChannelLowTable)[256] = kChannelTables.low;

// The 5-bit value of channel c (0..255) under threshold t.
inline uint32_t DitherChannel(uint32_t c, uint32_t t) {
  return ChannelHighTable[c] + (t < ChannelLowTable[c] ? 1u : 0u);
}

inline uint16_t DitherPixel(uint32_t red, uint32_t green, uint32_t blue, uint32_t t) {
  return static_cast<uint16_t>(DitherChannel(red, t) << 10 | DitherChannel(green, t) << 5 |
                               DitherChannel(blue, t));
}

// The thresholds of scanline y, indexed by x & 3.
inline const uint8_t* DitherRow(int32_t y) { return DitherMatrix + (y & 3) * 4; }

}  // namespace e3d
