// The four texture stages of a material: single textures and mip chains.
#include "engine/memory.h"
#include "engine3d.h"
#include "objects/material.h"
#include "objects/texture.h"

namespace e3d {
namespace {

inline TextureStage* StageAt(Material* mat, int32_t stage) {
  return static_cast<uint32_t>(stage) < 4 ? &mat->stages[stage] : nullptr;
}

inline uint32_t StageBit(int32_t stage) { return kMaterialStage0 << stage; }

TextureStage* EmptyStage(Material* mat, int32_t stage) {
  TextureStage* s = &mat->stages[stage];
  MemoryFill(s, 0, sizeof(TextureStage));
  mat->flags &= ~StageBit(stage);
  return s;
}

}  // namespace
}  // namespace e3d

using namespace e3d;

// Power-of-two textures are addressed by shift, others by row pitch in texels.
E3D_API TextureStage* E3D_CALL SetMaterialTexture(Material* mat, int32_t stage,
                                                  SurfaceDesc* texture, uint32_t option) {
  TextureStage* s = StageAt(mat, stage);
  if (s == nullptr) return nullptr;
  if (texture == nullptr) return EmptyStage(mat, stage);
  int32_t w = static_cast<int32_t>(texture->textureWidth);
  int32_t h = static_cast<int32_t>(texture->textureHeight);
  s->levelPixels[0] = texture->pixels;
  s->levelWidths[0] = w;
  s->levelHeights[0] = h;
  s->stageFlags = option & kStageOptionMask;
  if (IsPowerOfTwo(w) && IsPowerOfTwo(h)) {
    s->stageFlags |= kStagePowerOfTwo;
    s->shifts[0] = Log2(w);
  } else {
    s->shifts[0] = static_cast<int32_t>(texture->pitch >> 1);
  }
  s->texture = texture;
  mat->flags |= StageBit(stage);
  return s;
}

// A level that is not a power of two is addressed by its width: chain levels
// are packed.
E3D_API TextureStage* E3D_CALL SetMaterialTextureChain(Material* mat, int32_t stage,
                                                       MipChain* chain, uint32_t option) {
  TextureStage* s = StageAt(mat, stage);
  if (s == nullptr) return nullptr;
  if (chain == nullptr) return EmptyStage(mat, stage);
  uint32_t flags = (option & kStageOptionMask) | kStageMipChain;
  for (int i = 0; i < 4; i++) {
    int32_t w = chain->levelWidths[i], h = chain->levelHeights[i];
    s->levelPixels[i] = chain->levelPixels[i];
    s->levelWidths[i] = w;
    s->levelHeights[i] = h;
    if (IsPowerOfTwo(w) && IsPowerOfTwo(h)) {
      s->shifts[i] = Log2(w);
      flags |= kStagePowerOfTwo;
    } else {
      s->shifts[i] = w;
    }
  }
  s->stageFlags = flags;
  s->texture = nullptr;
  mat->flags |= StageBit(stage);
  return s;
}

E3D_API TextureStage* E3D_CALL GetMaterialTexture(Material* mat, int32_t stage) {
  return StageAt(mat, stage);
}

E3D_API void E3D_CALL SetMaterialTextureMode(Material* mat, int32_t stage, uint32_t mode) {
  TextureStage* s = StageAt(mat, stage);
  if (s != nullptr && (mode == 0x10 || mode == 0x20))
    s->stageFlags = (s->stageFlags & ~kStageModeMask) | mode;
}

E3D_API uint32_t E3D_CALL GetMaterialTextureMode(const Material* mat, int32_t stage) {
  if (static_cast<uint32_t>(stage) >= 4) return 0;
  return mat->stages[stage].stageFlags & kStageModeMask;
}

// Only a lone active stage showing exactly this texture is emptied: with
// several stages active, or a chain in the stage, the material is left alone.
E3D_API void E3D_CALL RemoveTextureFromMaterial(SurfaceDesc* texture, Material* mat) {
  uint32_t active = mat->flags & kMaterialStageMask;
  if (texture == nullptr || active == 0 || (active & (active - 1)) != 0) return;
  int32_t stage = Log2(static_cast<int32_t>(active / kMaterialStage0));
  if (mat->stages[stage].texture == texture) EmptyStage(mat, stage);
}
