// The clipped polygon as a fan of triangles, and DrawTriangle2D, which
// draws a flat triangle into a viewport with the screen edges clipped.
#include "engine/math.h"
#include "objects/mesh.h"
#include "raster/clip.h"
#include "viewport/viewport.h"

namespace e3d {
namespace {

// What the drawer is handed for each fan triangle.
MeshPolygon fanFace;
MeshVertex fanVertices[3];

// Face flags of a fan triangle: its first edge (0, i) and its last edge
// (i + 1, 0) lie inside the polygon unless they are edges of it.
constexpr uint32_t kFanInnerFirst = 0x40000;
constexpr uint32_t kFanInnerLast = 0x80000;

uint32_t PackColor(const float* c) {
  return (static_cast<uint32_t>(FloatToInt(c[0])) << 16) |
         (static_cast<uint32_t>(FloatToInt(c[1])) << 8) | static_cast<uint32_t>(FloatToInt(c[2]));
}

}  // namespace

void DrawClipFan(const MeshPolygon* face, TriangleDrawer drawer) {
  const ClipPolygon& p = clipPolygon;
  if (p.count < 3) return;
  // Cutting extreme values (a corner on the near plane far beyond the screen)
  // can leave a NaN, which the walker would take for 0: no such polygon is drawn.
  for (int32_t i = 0; i < p.count; ++i)
    if (!(p.in[i].screenX - p.in[i].screenX == 0.0f && p.in[i].screenY - p.in[i].screenY == 0.0f)) return;
  fanFace = *face;
  for (int k = 0; k < 3; ++k) fanFace.vertexIndex[k] = k;
  for (int32_t i = 1; i + 1 < p.count; ++i) {
    const int32_t corner[3] = {0, i, i + 1};
    for (int k = 0; k < 3; ++k) {
      const ClipVertex& c = p.in[corner[k]];
      MeshVertex& v = fanVertices[k];
      v.camX = c.camX, v.camY = c.camY, v.camZ = c.camZ;
      v.screenX = c.screenX, v.screenY = c.screenY, v.invZ = c.invZ;
      v.outcode = c.outcode;
      if (p.group & kClipTextured) fanFace.corners[k].u = c.u, fanFace.corners[k].v = c.v;
      if (p.group & kClipGouraud) fanFace.colors[k] = PackColor(c.color);
    }
    uint32_t flags = face->polygonFlags & ~(kFanInnerFirst | kFanInnerLast);
    if (i > 1) flags |= kFanInnerFirst;
    if (i + 2 < p.count) flags |= kFanInnerLast;
    fanFace.polygonFlags = flags;
    drawer(&fanFace, fanVertices);
  }
}

}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL DrawTriangle2D(MeshPolygon* face, MeshVertex* vertices, Viewport* vp) {
  Viewport* saved = clipViewport;
  clipViewport = vp;
  SetRenderInfos(vp, nullptr);
  uint32_t outcodes = 0;
  for (int k = 0; k < 3; ++k) outcodes |= vertices[face->vertexIndex[k]].outcode;
  if (outcodes == 0) {
    FlatSolidTriangle(face, vertices);  // reads the face, never writes it
  } else {
    SetClipWindow(0.0f, vp->width, 0.0f, vp->height);
    clipPolygon.count = 3;
    clipPolygon.group = kClipPlain;
    for (int k = 0; k < 3; ++k) LoadClipVertex(k, vertices[face->vertexIndex[k]]);
    ClipScreenEdges();
    DrawClipFan(face, FlatSolidTriangle);
  }
  clipViewport = saved;
}
