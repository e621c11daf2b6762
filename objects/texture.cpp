// Checker-board textures, the box-filtered mip levels of texture chains and
// the mesh-level texture shortcut.
#include "objects/texture.h"

#include "engine/memory.h"
#include "engine3d.h"
#include "objects/material.h"
#include "objects/mesh.h"

namespace e3d {
namespace {

template <class Texel>
inline const Texel* RowAt(const void* pixels, int32_t pitch, int32_t y) {
  return reinterpret_cast<const Texel*>(static_cast<const uint8_t*>(pixels) +
                                        static_cast<intptr_t>(pitch) * y);
}

uint16_t Average1555(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
  if (a == kKey1555 || b == kKey1555 || c == kKey1555 || d == kKey1555) return kKey1555;
  uint32_t blue = ((a & 0x1F) + (b & 0x1F) + (c & 0x1F) + (d & 0x1F)) >> 2;
  uint32_t green = (((a & 0x3E0) + (b & 0x3E0) + (c & 0x3E0) + (d & 0x3E0)) >> 2) & 0x3E0;
  uint32_t red = (((a & 0x7C00) + (b & 0x7C00) + (c & 0x7C00) + (d & 0x7C00)) >> 2) & 0x7C00;
  return static_cast<uint16_t>(red | green | blue);
}

uint32_t Average8888(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
  if (a == kKey8888 || b == kKey8888 || c == kKey8888 || d == kKey8888) return kKey8888;
  uint32_t out = 0;
  for (int shift = 0; shift < 24; shift += 8) {
    uint32_t sum = ((a >> shift) & 0xFF) + ((b >> shift) & 0xFF) + ((c >> shift) & 0xFF) +
                   ((d >> shift) & 0xFF);
    out |= (sum >> 2) << shift;
  }
  return out;
}

// Output texel (x, y) from the source block at (2x, 2y).
template <class Texel, Texel (*Average)(uint32_t, uint32_t, uint32_t, uint32_t)>
inline Texel Box(const void* src, int32_t pitch, int32_t x, int32_t y) {
  const Texel* r0 = RowAt<Texel>(src, pitch, 2 * y);
  const Texel* r1 = RowAt<Texel>(src, pitch, 2 * y + 1);
  return Average(r0[2 * x], r0[2 * x + 1], r1[2 * x], r1[2 * x + 1]);
}

void Fill1555(const void* src, int32_t pitch, void* dst, int32_t w, int32_t h) {
  uint16_t* out = static_cast<uint16_t*>(dst);
  for (int32_t y = 0; y < h; y++)
    for (int32_t x = 0; x < w; x++) *out++ = Box<uint16_t, Average1555>(src, pitch, x, y);
}

// The last column and the last row are copies, not averages: the column takes
// texel w - 1 of the block's first row (from the left half of the source), the
// row takes the even texels of source row 2h - 3, or of row 0 when there is no
// such row (a source two or three texels high).
void Fill8888(const void* src, int32_t pitch, void* dst, int32_t w, int32_t h) {
  uint32_t* out = static_cast<uint32_t*>(dst);
  for (int32_t y = 0; y < h - 1; y++) {
    for (int32_t x = 0; x < w - 1; x++) *out++ = Box<uint32_t, Average8888>(src, pitch, x, y);
    *out++ = RowAt<uint32_t>(src, pitch, 2 * y)[w - 1];
  }
  const uint32_t* last = RowAt<uint32_t>(src, pitch, h > 1 ? 2 * h - 3 : 0);
  for (int32_t x = 0; x < w; x++) *out++ = last[2 * x];
}

using FillLevel = void (*)(const void* src, int32_t pitch, void* dst, int32_t w, int32_t h);

void BuildMipLevels(MipChain* chain, int32_t texelSize, FillLevel fill) {
  if (chain == nullptr) return;
  for (int level = 1; level < 4; level++) {
    int32_t srcW = chain->levelWidths[level - 1];
    int32_t srcH = chain->levelHeights[level - 1];
    if (srcW < 2 || srcH < 2) return;
    int32_t w = srcW >> 1, h = srcH >> 1;
    void* pixels = AllocateMemory(static_cast<uint32_t>(w) * static_cast<uint32_t>(h) *
                                  static_cast<uint32_t>(texelSize));
    if (pixels == nullptr) {
      for (int rest = level; rest < 4; rest++) {
        chain->levelPixels[rest] = nullptr;
        chain->levelWidths[rest] = chain->levelHeights[rest] = chain->levelPitches[rest] = 0;
      }
      return;
    }
    fill(chain->levelPixels[level - 1], chain->levelPitches[level - 1], pixels, w, h);
    chain->levelPixels[level] = pixels;
    chain->levelWidths[level] = w;
    chain->levelHeights[level] = h;
    chain->levelPitches[level] = w * texelSize;
  }
}

}  // namespace
}  // namespace e3d

using namespace e3d;

E3D_API SurfaceDesc* E3D_CALL CreateCheckerTexture(int32_t width, int32_t height, int32_t cells,
                                                   uint16_t a, uint16_t b) {
  SurfaceDesc* desc = Allocate<SurfaceDesc>();
  if (desc == nullptr) return nullptr;
  uint16_t* pixels = static_cast<uint16_t*>(
      AllocateMemory(static_cast<uint32_t>(width) * static_cast<uint32_t>(height) * 2));
  if (pixels == nullptr) {
    FreeMemory(desc);
    return nullptr;
  }
  desc->pixels = pixels;
  desc->pitch = static_cast<uint32_t>(width) * 2;
  desc->width = desc->textureWidth = static_cast<uint32_t>(width);
  desc->height = desc->textureHeight = static_cast<uint32_t>(height);

  // A cell size of 0 (no cells, or more cells than texels) is never passed
  // again after the first boundary: one colour per row.
  int32_t cellW = cells ? static_cast<int32_t>(static_cast<int64_t>(width) / cells) : 0;
  int32_t cellH = cells ? static_cast<int32_t>(static_cast<int64_t>(height) / cells) : 0;
  int rowFlag = 1;
  int32_t nextRow = 0;
  for (int32_t y = 0; y < height; y++) {
    if (y == nextRow) {
      rowFlag ^= 1;
      nextRow += cellH;
    }
    int colFlag = rowFlag ^ 1;
    int32_t nextCol = cellW;
    uint16_t* row = pixels + static_cast<intptr_t>(width) * y;
    for (int32_t x = 0; x < width; x++) {
      if (x == nextCol) {
        colFlag ^= 1;
        nextCol += cellW;
      }
      row[x] = colFlag ? b : a;
    }
  }
  return desc;
}

E3D_API void E3D_CALL CreateMMTexture1555(MipChain* chain) { BuildMipLevels(chain, 2, Fill1555); }

E3D_API void E3D_CALL CreateMMTexture8888(MipChain* chain) { BuildMipLevels(chain, 4, Fill8888); }

// The mesh-level shortcut: stage 0 or 1 of the default material, addressed by
// pitch whatever the size, and the only stage left active.
E3D_API void E3D_CALL SetTexture(Mesh* mesh, SurfaceDesc* texture, int32_t stage1) {
  Material* mat = &mesh->defaultMaterial;
  int32_t stage = stage1 != 0 ? 1 : 0;
  TextureStage* s = &mat->stages[stage];
  mat->flags = (mat->flags & ~kMaterialStageMask) | (kMaterialStage0 << stage);
  s->stageFlags = 2;
  s->levelPixels[0] = texture->pixels;
  s->levelWidths[0] = static_cast<int32_t>(texture->textureWidth);
  s->levelHeights[0] = static_cast<int32_t>(texture->textureHeight);
  s->shifts[0] = static_cast<int32_t>(texture->pitch >> 1);
  s->texture = texture;
}
