// The post-effect quad: the viewport's material laid over the finished
// image as two triangles, for tints, fades and overlays.
#include <stdint.h>

#include "engine3d.h"
#include "objects/material.h"
#include "pipeline/lighting.h"
#include "raster/drawer_table.h"
#include "viewport/viewport.h"

namespace e3d {
namespace {

constexpr float kQuadInvZ = 0.2f;  // 0x3E4CCCCD: the quad lies at depth 5
constexpr uint32_t kWhite = 0x7FFF;
constexpr uint32_t kNoneShade = 1;  // the unlit row of the drawer table
constexpr uint32_t kFilled = 0x700000;  // render bits of drawers that do not clip themselves

// Corners (0, 0), (width, 0), (width, height), (0, height) split along the
// diagonal 0-2. Texture coordinates do not join across the diagonal: corner
// 2 is (0, 0) in the first triangle and (1, 1) in the second.
struct QuadTriangle {
  int32_t vertex[3];
  float u[3], v[3];
};
constexpr QuadTriangle kQuad[2] = {
    {{2, 1, 0}, {0, 1, 1}, {0, 0, 1}},
    {{3, 2, 0}, {0, 1, 0}, {0, 1, 1}},
};

// The sum of the three colours, each channel rounded and clamped to 0..255,
// as a pixel; a textured material is drawn from white.
uint32_t PostEffectColor(const Material* m) {
  if ((m->flags & kMaterialStageMask) != 0) return kWhite;
  uint32_t c[3];
  for (int i = 0; i < 3; ++i)
    c[i] = ColorChannel(static_cast<double>(m->colors[0][i]) + m->colors[1][i] + m->colors[2][i]);
  return PackColor555(c[0], c[1], c[2]);
}

inline float Clamp(float x, float low, float high) {
  x = x < low ? low : x;
  return x > high ? high : x;
}

}  // namespace
}  // namespace e3d

using namespace e3d;

// The quad is already cut to the viewport's clip rectangle, as polygon
// submission would cut it, and nothing of it is near or far, so the filled
// drawers take it straight; dots and wire drawers clip for themselves and
// get the whole viewport. Textured materials plug in here: their drawers
// need the texel coordinates (u, v times the stage's size, over z) and mip
// level that submission prepares, so they must go through it; until they
// exist the table gives them NoDraw. The submission's current viewport is
// to be saved, set to vp and restored around the two triangles.
E3D_API void E3D_CALL DrawViewportPostFX(Viewport* vp) {
  Material* m = vp->material;
  if (m == nullptr) return;
  SetRenderInfos(vp, nullptr);

  const uint32_t flags = m->flags;
  const TriangleDrawer drawer = ChooseDrawer((flags & ~kMaterialShadeMask) | kNoneShade,
                                             ViewportHasDepth(vp));
  const ViewportClip clip = ViewportClipBounds(vp);
  const bool cut = (flags & kFilled) == kFilled;
  const float xs[4] = {0.0f, vp->width, vp->width, 0.0f};
  const float ys[4] = {0.0f, 0.0f, vp->height, vp->height};
  MeshVertex corners[4] = {};
  for (int i = 0; i < 4; ++i) {
    corners[i].screenX = cut ? Clamp(xs[i], clip.left, clip.right) : xs[i];
    corners[i].screenY = cut ? Clamp(ys[i], clip.top, clip.bottom) : ys[i];
    corners[i].camZ = 1.0f / kQuadInvZ;
    corners[i].invZ = kQuadInvZ;
  }

  MeshPolygon face = {};
  face.polygonFlags = flags;
  face.material = m;
  face.backMaterial = nullptr;
  face.colors[0] = PostEffectColor(m);
  for (const QuadTriangle& t : kQuad) {
    for (int i = 0; i < 3; ++i) {
      face.vertexIndex[i] = t.vertex[i];
      face.corners[i] = {t.u[i], t.v[i], t.u[i], t.v[i]};
    }
    drawer(&face, corners);
  }
}
