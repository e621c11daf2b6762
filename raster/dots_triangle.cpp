// Dot drawers: each corner of a face on the visible side of the near plane
// and inside the clip rectangle as one pixel, in the flat colour or its own
// corner colour, in the material's alpha mode, with and without the depth
// test.
#include "raster/wire_edges.h"

namespace e3d {
namespace {

template <bool kGouraud>
void DrawDots(MeshPolygon* face, MeshVertex* vertices, bool depthTested) {
  WireFace w;
  if (!w.SetUp(face, vertices, depthTested)) return;
  for (int k = 0; k < 3; ++k) {
    if (!w.Visible(k)) continue;
    const WireCorner c = w.Corner(k);
    const int32_t x = RoundToPixel(c.x), y = RoundToPixel(c.y);
    w.pen.Put<false>(x, y, w.ColourAt<kGouraud>(x, y, c.color), 255, c.invZ);
  }
}

}  // namespace
}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL ClipAndDrawFlatDotsTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawDots<false>(face, vertices, false);
}

E3D_API void E3D_CALL ClipAndDrawFlatDotsTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawDots<false>(face, vertices, true);
}

E3D_API void E3D_CALL ClipAndDrawGouraudDotsTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawDots<true>(face, vertices, false);
}

E3D_API void E3D_CALL ClipAndDrawGouraudDotsTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawDots<true>(face, vertices, true);
}
