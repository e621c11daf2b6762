// The post-effect quad: the viewport's material laid over the finished
// image as two triangles, for tints, fades and overlays.
#include <stdint.h>

#include "engine3d.h"
#include "objects/material.h"
#include "pipeline/lighting.h"
#include "raster/clip.h"
#include "raster/drawer_table.h"
#include "viewport/viewport.h"

namespace e3d {
namespace {

constexpr float kQuadInvZ = 0.2f;  // 0x3E4CCCCD: the quad lies at depth 5
constexpr uint32_t kWhite = 0x7FFF;
constexpr uint32_t kNoneShade = 1;  // the unlit row of the drawer table

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

// Outcode bits of a corner against the clip window: outside when past a
// bound, not on it.
uint32_t Outcode(float x, float y, const ViewportClip& c) {
  return (x - c.left < 0.0f ? E3D_OUT_LEFT : x - c.right > 0.0f ? E3D_OUT_RIGHT : 0u) |
         (y - c.top < 0.0f ? E3D_OUT_TOP : y - c.bottom > 0.0f ? E3D_OUT_BOTTOM : 0u);
}

}  // namespace
}  // namespace e3d

using namespace e3d;

// The two triangles go through polygon submission as any polygon does: cut
// to the viewport's clip rectangle, given texel coordinates and a mip level
// when textured; dots and wire drawers clip for themselves. Nothing of the
// quad is near or far. The submission's viewport and clip window are the
// caller's again afterwards.
E3D_API void E3D_CALL DrawViewportPostFX(Viewport* vp) {
  Material* m = vp->material;
  if (m == nullptr) return;
  Viewport* savedViewport = clipViewport;
  const ClipWindow savedWindow = clipWindow;
  clipViewport = vp;
  SetRenderInfos(vp, nullptr);

  const uint32_t flags = m->flags;
  const uint32_t renderWord = (flags & ~kShadeModeMask) | kNoneShade;
  const TriangleDrawer drawer = ChooseDrawer(renderWord, ViewportHasDepth(vp));
  const ViewportClip clip = ViewportClipBounds(vp);
  SetClipWindow(clip.left, clip.right, clip.top, clip.bottom);
  const float xs[4] = {0.0f, vp->width, vp->width, 0.0f};
  const float ys[4] = {0.0f, 0.0f, vp->height, vp->height};
  MeshVertex corners[4] = {};
  for (int i = 0; i < 4; ++i) {
    corners[i].screenX = xs[i];
    corners[i].screenY = ys[i];
    corners[i].camZ = 1.0f / kQuadInvZ;
    corners[i].invZ = kQuadInvZ;
    corners[i].outcode = Outcode(xs[i], ys[i], clip);
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
    SubmitFace(&face, corners, renderWord, drawer);
  }
  clipWindow = savedWindow;
  clipViewport = savedViewport;
}
