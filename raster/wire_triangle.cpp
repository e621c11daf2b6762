// Wireframe drawers: the visible edges of a face (polygon flag bits 9-11),
// one pixel wide, in the flat colour or the corner colours blended along
// the edge, in the material's alpha mode, with and without the depth test.
#include "raster/wire_edges.h"

namespace e3d {
namespace {

template <bool kGouraud>
void DrawWire(MeshPolygon* face, MeshVertex* vertices, bool depthTested) {
  WireFace w;
  if (!w.SetUp(face, vertices, depthTested)) return;
  for (int j = 0; j < 3; ++j) {
    const int k = j == 2 ? 0 : j + 1;
    WireCorner a, b;
    if ((face->polygonFlags & (kEdgeVisible0 << j)) == 0 || !w.Edge(j, k, &a, &b)) continue;
    bool steep = false;
    WalkLine(a.x, a.y, b.x, b.y, w.pen.rect, [&](int32_t m, double centre, double t) {
      const int32_t minor = RoundToPixel(centre);
      const int32_t x = steep ? minor : m, y = steep ? m : minor;
      double c[3];
      for (int i = 0; i < 3; ++i) c[i] = a.color[i] + (b.color[i] - a.color[i]) * t;
      w.pen.Put<false>(x, y, w.ColourAt<kGouraud>(x, y, c), 255, a.invZ + (b.invZ - a.invZ) * t);
    }, &steep);
  }
}

}  // namespace
}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL ClipAndDrawFlatWireTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawWire<false>(face, vertices, false);
}

E3D_API void E3D_CALL ClipAndDrawFlatWireTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawWire<false>(face, vertices, true);
}

E3D_API void E3D_CALL ClipAndDrawGouraudWireTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawWire<true>(face, vertices, false);
}

E3D_API void E3D_CALL ClipAndDrawGouraudWireTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawWire<true>(face, vertices, true);
}
