// The material record: how a polygon side is shaded and rasterized.
#pragma once
#include <stdint.h>

#include "engine3d.h"

// Completes the header's opaque handle; fields in the interface's order.
struct Material {
  uint32_t flags;         // bits 0-2 shade, 3-5 cull, 6 option, 8 colour op, 20-22 render, 23-26 stages
  float colors[3][4];     // three colours: red, green, blue, alpha, 0-255
  uint16_t alphaLevel;    // 0-255
  uint16_t alphaMode;     // 0-3
  Material* prevMaterial;  // links of the scene's material list
  Material* nextMaterial;
  uint32_t reserved;
  TextureStage stages[4];
  uint16_t colorOp;
  char name[30];
  uint32_t keep;          // read by scene deletion
  uint32_t tail[4];       // pads the record to its 408 bytes of the 32-bit interface
};
#if defined(__i386__)
static_assert(sizeof(Material) == 408, "Material is 408 bytes on i386");
static_assert(__builtin_offsetof(Material, stages) == 68);
#endif

namespace e3d {

// Mode bits laid out alike in material flags, meshFlags and polygonFlags.
inline constexpr uint32_t kShadeModeMask = 0x7;
inline constexpr uint32_t kCullModeMask = 0x38;
inline constexpr uint32_t kRenderOption = 0x40;  // in polygonFlags: the option of this draw

inline constexpr uint32_t kMaterialColorOpOn = 0x100;
inline constexpr uint32_t kMaterialRenderMask = 0x700000;
inline constexpr uint32_t kMaterialStage0 = 0x800000;  // << stage: stage active
inline constexpr uint32_t kMaterialStageMask = 0x7800000;  // the four stage-active bits

inline constexpr uint32_t kStageOptionMask = 0x7;
inline constexpr uint32_t kStageModeMask = 0x30;
inline constexpr uint32_t kStagePowerOfTwo = 0x40000000;  // shifts hold log2(width)
inline constexpr uint32_t kStageMipChain = 0x80000000;    // filled from a MipChain

// Number of the next generated material name; process-wide, never reset.
extern int32_t materialCounter;

}  // namespace e3d
