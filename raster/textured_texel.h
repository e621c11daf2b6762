// Texel access of the textured drawers: one mip level of a texture stage,
// addressed with wrap or clamp, read nearest or bilinear, 1555 or 8888.
// Every read lands inside the level whatever the coordinates.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "objects/material.h"
#include "objects/texture.h"
#include "raster/tables.h"

namespace e3d {

// Option bits of a stage (the value given with the texture) and its modes.
inline constexpr uint32_t kOptionWide = 0x1;      // 8888 texels, else 1555
inline constexpr uint32_t kOptionKeyed = 0x2;     // the key texel leaves the pixel alone
inline constexpr uint32_t kOptionBilinear = 0x4;  // else the nearest texel
inline constexpr uint32_t kModeWrap = 0x10;
inline constexpr uint32_t kModeClamp = 0x20;

// A texel as the drawers combine it: 5-bit channels and an 8-bit coverage
// (the alpha byte of 8888, the intensity of 1555).
struct Texel {
  uint32_t red, green, blue, alpha;
};

// x / 255 for x in 0..65535, with shifts only.
inline uint32_t Div255(uint32_t x) { return (x + 1 + (x >> 8)) >> 8; }

struct TexelTables {
  uint8_t intensity[94];  // by r + g + b of 1555: their mean scaled to 0..255, rounded
  uint16_t weights[256][4];  // by fu * 16 + fv (4-bit fractions): the four bilinear weights, sum 256
};

inline constexpr TexelTables kTexelTables = [] {
  TexelTables t{};
  for (int s = 0; s < 94; ++s) t.intensity[s] = static_cast<uint8_t>((s * 255 * 2 + 93) / (93 * 2));
  for (int fu = 0; fu < 16; ++fu)
    for (int fv = 0; fv < 16; ++fv) {
      uint16_t* w = t.weights[fu * 16 + fv];
      w[0] = static_cast<uint16_t>((16 - fu) * (16 - fv));
      w[1] = static_cast<uint16_t>(fu * (16 - fv));
      w[2] = static_cast<uint16_t>((16 - fu) * fv);
      w[3] = static_cast<uint16_t>(fu * fv);
    }
  return t;
}();

// One level of a stage, ready to sample. Coordinates are texels in 16.16,
// texel centres on whole numbers.
struct TextureLevel {
  const void* texels;
  int32_t width, height;
  int32_t rowShift;  // rows are 1 << rowShift texels apart, or when negative
  int32_t pitch;     //   pitch texels apart
  bool wide, keyed, bilinear, wrap, powerOfTwo;

  uint32_t Key() const { return wide ? kKey8888 : kKey1555; }

  // A texel coordinate brought inside 0..size - 1.
  int32_t Address(int32_t t, int32_t size) const {
    if (static_cast<uint32_t>(t) < static_cast<uint32_t>(size)) return t;
    if (!wrap) return t < 0 ? 0 : size - 1;
    if (powerOfTwo) return t & (size - 1);
    t %= size;
    return t < 0 ? t + size : t;
  }

  uint32_t Raw(int32_t tx, int32_t ty) const {
    const int32_t at = (rowShift >= 0 ? ty << rowShift : ty * pitch) + tx;
    return wide ? static_cast<const uint32_t*>(texels)[at] : static_cast<const uint16_t*>(texels)[at];
  }

  Texel Decode(uint32_t raw) const {
    if (wide) return {(raw >> 19) & 31, (raw >> 11) & 31, (raw >> 3) & 31, raw >> 24};
    const uint32_t r = (raw >> 10) & 31, g = (raw >> 5) & 31, b = raw & 31;
    return {r, g, b, kTexelTables.intensity[r + g + b]};
  }

  // The texel at (u, v); false when it is the key and the stage is keyed.
  // Bilinear reads blend the four texels around (u, v) in 4-bit steps; a
  // key among them stands in for the nearest one.
  bool Sample(int32_t u, int32_t v, Texel* out) const {
    if (!bilinear) {
      const uint32_t raw = Raw(Address((u + 0x8000) >> 16, width), Address((v + 0x8000) >> 16, height));
      if (keyed && raw == Key()) return false;
      *out = Decode(raw);
      return true;
    }
    const int32_t x0 = Address(u >> 16, width), x1 = Address((u >> 16) + 1, width);
    const int32_t y0 = Address(v >> 16, height), y1 = Address((v >> 16) + 1, height);
    const uint32_t fu = (static_cast<uint32_t>(u) >> 12) & 15, fv = (static_cast<uint32_t>(v) >> 12) & 15;
    uint32_t raw[4] = {Raw(x0, y0), Raw(x1, y0), Raw(x0, y1), Raw(x1, y1)};
    const uint32_t nearest = raw[(fu >= 8 ? 1 : 0) + (fv >= 8 ? 2 : 0)];
    if (keyed) {
      if (nearest == Key()) return false;
      for (uint32_t& r : raw) r = r == Key() ? nearest : r;
    }
    const uint16_t* w = kTexelTables.weights[fu * 16 + fv];
    if (w[0] == 256) {
      *out = Decode(raw[0]);
      return true;
    }
    // Each weight is at most 240 here, so the alpha-scale table takes it.
    uint32_t red = 0, green = 0, blue = 0, alphaHigh = 0, alphaLow = 0;
    for (int i = 0; i < 4; ++i) {
      const Texel t = Decode(raw[i]);
      const uint16_t* row = AlphaScaleTable + w[i] * 32;
      red += row[t.red], green += row[t.green], blue += row[t.blue];
      alphaHigh += row[t.alpha >> 3], alphaLow += row[t.alpha & 7];
    }
    *out = {red >> 8, green >> 8, blue >> 8, ((alphaHigh << 3) + alphaLow) >> 8};
    return true;
  }
};

// The level of the stage that the set-up chose (level 0 unless the stage
// holds a mip chain). False when the level has no texels.
inline bool SetUpTextureLevel(const TextureStage* stage, int32_t level, TextureLevel* t) {
  const uint32_t flags = stage->stageFlags;
  if ((flags & kStageMipChain) == 0 || level < 0 || level > 3) level = 0;
  t->texels = stage->levelPixels[level];
  t->width = stage->levelWidths[level];
  t->height = stage->levelHeights[level];
  if (t->texels == nullptr || t->width <= 0 || t->height <= 0) return false;
  t->wide = (flags & kOptionWide) != 0;
  t->keyed = (flags & kOptionKeyed) != 0;
  t->bilinear = (flags & kOptionBilinear) != 0;
  t->powerOfTwo = IsPowerOfTwo(t->width) && IsPowerOfTwo(t->height);
  const uint32_t mode = flags & kStageModeMask;
  t->wrap = mode == kModeWrap || (mode != kModeClamp && t->powerOfTwo);
  const int32_t shift = stage->shifts[level];
  if ((flags & kStagePowerOfTwo) && t->powerOfTwo && shift == Log2(t->width)) {
    t->rowShift = shift;
    t->pitch = t->width;
  } else {
    // A single texture stores its pitch in 16-bit units; a chain its width.
    t->rowShift = -1;
    t->pitch = (stage->texture != nullptr && t->wide) ? shift >> 1 : shift;
    if (t->pitch < t->width) return false;
  }
  return true;
}

}  // namespace e3d
