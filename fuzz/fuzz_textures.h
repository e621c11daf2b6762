// Materials with textures for the fuzz targets: texel blocks of exactly the
// size the stage's addressing reaches, so that any read past them is caught.
#pragma once
#include <cstdint>
#include <deque>
#include <vector>

#include "engine3d.h"
#include "fuzz_input.h"
#include "objects/material.h"

namespace fuzz {

struct Textures {
  std::vector<std::vector<uint32_t>> blocks;
  std::deque<SurfaceDesc> surfaces;  // stages point into these: no reallocation
  std::deque<MipChain> chains;

  void Fill(Input& in, Material* m) {
    for (int stage = 0; stage < 4; ++stage) {
      const uint32_t option = in.U8() & 7;
      const int kind = in.Range(0, 3);
      int32_t w = in.Range(1, 16), h = in.Range(1, 16);
      if (kind == 0) {
        SetMaterialTexture(m, stage, nullptr, 0);
      } else if (kind == 1) {
        SurfaceDesc& s = surfaces.emplace_back();
        const uint32_t pitchPixels = w + in.Range(0, 3);
        s.pitch = pitchPixels * 2;
        // Rows are pitch / 2 texels apart whatever the texel size.
        s.pixels = Block(h * pitchPixels);
        s.width = s.textureWidth = w;
        s.height = s.textureHeight = h;
        SetMaterialTexture(m, stage, &s, option);
      } else {
        // A chain of halving levels; a short one ends in empty levels, as a
        // failed allocation leaves it.
        MipChain& c = chains.emplace_back();
        const int levels = kind == 2 ? 4 : in.Range(1, 3);
        for (int i = 0; i < 4; ++i) {
          const bool present = i < levels;
          c.levelWidths[i] = present ? w : 0;
          c.levelHeights[i] = present ? h : 0;
          c.levelPitches[i] = present ? w * ((option & 1) ? 4 : 2) : 0;
          c.levelPixels[i] = present ? Block(w * h) : nullptr;
          w = w > 1 ? w / 2 : 1, h = h > 1 ? h / 2 : 1;
        }
        SetMaterialTextureChain(m, stage, &c, option);
      }
      if (in.Bool()) SetMaterialTextureMode(m, stage, in.Bool() ? 0x10 : 0x20);
    }
  }
  void* Block(int32_t texels) {
    std::vector<uint32_t>& b = blocks.emplace_back(texels);
    for (uint32_t& t : b) t = 0x12345678u * static_cast<uint32_t>(&t - b.data() + 1);
    return b.data();
  }
};

// Alpha mode and level, colour operation, colours and the four stages.
inline void FillMaterial(Input& in, Material* m, Textures& textures) {
  SetMaterialAlphaMode(m, in.U8() & 3);
  SetMaterialAlphaLevel(m, in.Range(-1, 256));
  SetMaterialColorOp(m, in.U8() & 3, in.Bool());
  for (int i = 0; i < 3; ++i) SetMaterialColor(m, i, in.Float(), in.Float(), in.Float());
  textures.Fill(in, m);
}

}  // namespace fuzz
