// The triangle drawer table: a polygon's render word picks its drawer. Bits
// 0-2 (shade mode) choose one of eight blocks; bits 20-26 (render mode and
// texture stages) shifted right by 19 index the block, and index bit 0
// selects the twin that tests and writes the depth buffer.
#pragma once
#include <stdint.h>

#include "engine3d.h"

namespace e3d {

inline constexpr uint32_t kShadeBlockSize = 128;
inline constexpr uint32_t kDrawerIndexMask = 0x07F00000;  // render word bits 20-26
inline constexpr uint32_t kDrawerIndexShift = 19;

// Populated entries (even: no depth test; the odd one after it tests depth).
// The values are cumulative: points, then edges, then filled, then textured.
inline constexpr uint32_t kDrawDots = 2;
inline constexpr uint32_t kDrawWire = 6;
inline constexpr uint32_t kDrawSolid = 14;
inline constexpr uint32_t kDrawDiffuse = 30;
inline constexpr uint32_t kDrawOpacity = 46;
inline constexpr uint32_t kDrawOpacity2 = 78;

struct ShadeBlock {
  TriangleDrawer entries[kShadeBlockSize];
};

// Indexed by shade mode: 1 None (unlit), 3 Flat, 7 Gouraud; the other five
// blocks hold only NoDraw, so such polygons are skipped.
extern const ShadeBlock* const DrawerTable[8];

// The drawer of entries that draw nothing: returns at once.
void E3D_CALL NoDraw(MeshPolygon* face, MeshVertex* vertices);

// The field reaches index 255 (texture stage 3 sets index bit 7); entries
// past a block's 128 draw nothing.
inline TriangleDrawer ChooseDrawer(uint32_t renderWord, bool depthTested) {
  const uint32_t index = ((renderWord & kDrawerIndexMask) >> kDrawerIndexShift) | (depthTested ? 1u : 0u);
  return index < kShadeBlockSize ? DrawerTable[renderWord & 7]->entries[index] : NoDraw;
}

}  // namespace e3d
