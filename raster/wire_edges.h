// The corners and edges of a face as the wire and dot drawers see them:
// they take the face untouched, with the mesh's vertices, and clip for
// themselves. An edge reaching in front of the render camera's near plane
// is cut there in camera space and the cut projected as polygon submission
// projects it; without a camera such edges are dropped.
#pragma once
#include <stdint.h>

#include "objects/camera.h"
#include "raster/line_walk.h"
#include "raster/render_state.h"
#include "raster/triangle.h"

namespace e3d {

// Polygon flags: edge k (corner k to corner k + 1) is drawn.
inline constexpr uint32_t kEdgeVisible0 = 0x200;

struct WireCorner {
  double x, y, invZ;
  double color[3];  // 8-bit channels of a Gouraud corner
};

struct WireFace {
  PixelPen pen;
  Rgb5 flat;  // the flat colour, face word 25
  const MeshPolygon* face;
  const MeshVertex* vertices;
  const Camera* camera;
  float nearPlane = 0, horizontal = 0, vertical = 0;  // read only with a camera

  // False when the face draws nothing: blended at level 0, or no target.
  bool SetUp(const MeshPolygon* f, const MeshVertex* v, bool depthTested) {
    const FaceSide side = SideOf(f);
    const int32_t mode = DrawnAlphaMode(side.material);
    const Viewport* vp = renderInfo.viewport;
    if (mode < 0 || vp == nullptr || (depthTested && vp->depthBuffer == nullptr)) return false;
    const uint32_t level = side.material->alphaLevel;
    pen = {vp, ClipPixels(vp), mode, level < 255 ? level : 255, depthTested};
    flat = ChannelsOf(f->colors[0] & 0x7FFF);
    face = f, vertices = v;
    camera = renderInfo.camera;
    if (camera != nullptr && !(camera->nearPlane > 0.0f)) camera = nullptr;
    if (camera != nullptr) {
      nearPlane = camera->nearPlane;
      horizontal = 1.0f / nearPlane * camera->projScale;
      vertical = horizontal * vp->projectionSign;
    }
    return true;
  }

  const MeshVertex& Vertex(int k) const { return vertices[face->vertexIndex[k]]; }

  // On the visible side of the near plane.
  bool Visible(int k) const {
    const MeshVertex& v = Vertex(k);
    return camera != nullptr ? v.camZ >= nearPlane : (v.outcode & E3D_OUT_NEAR) == 0;
  }

  WireCorner Corner(int k) const {
    const MeshVertex& v = Vertex(k);
    const uint32_t c = face->colors[k];
    return {v.screenX, v.screenY, v.invZ,
            {static_cast<double>((c >> 16) & 0xFF), static_cast<double>((c >> 8) & 0xFF),
             static_cast<double>(c & 0xFF)}};
  }

  // Edge j - k, cut at the near plane; false when nothing of it is visible.
  bool Edge(int j, int k, WireCorner* a, WireCorner* b) const {
    const bool inJ = Visible(j), inK = Visible(k);
    if (!inJ && !inK) return false;
    *a = Corner(j), *b = Corner(k);
    if (inJ && inK) return true;
    if (camera == nullptr) return false;
    const MeshVertex& p = Vertex(inJ ? j : k);
    const MeshVertex& q = Vertex(inJ ? k : j);
    WireCorner& cut = inJ ? *b : *a;
    const WireCorner& inside = inJ ? *a : *b;
    const float t = (nearPlane - p.camZ) / (q.camZ - p.camZ);
    const float x = p.camX + (q.camX - p.camX) * t, y = p.camY + (q.camY - p.camY) * t;
    cut.x = x * horizontal + pen.vp->centerX;
    cut.y = y * vertical + pen.vp->centerY;
    cut.invZ = 1.0f / nearPlane;
    for (int i = 0; i < 3; ++i) cut.color[i] = inside.color[i] + (cut.color[i] - inside.color[i]) * t;
    return true;
  }

  // The colour at pixel (x, y) of a point with Gouraud channels c.
  template <bool kGouraud>
  Rgb5 ColourAt(int32_t x, int32_t y, const double* c) const {
    if constexpr (kGouraud) return DitheredAt(x, y, c);
    return flat;
  }
};

}  // namespace e3d
