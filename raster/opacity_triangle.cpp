// Alpha-textured triangles of stage 1: the colour of the diffuse drawers
// with the texel's alpha (8888) or intensity (1555) as its coverage, so
// dark parts of a 16-bit texture let the target through.
#include "raster/textured_span.h"

using namespace e3d;

E3D_API void E3D_CALL NoneOpacityTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kOpacity, ShadeFamily::kNone>(face, vertices, false);
}

E3D_API void E3D_CALL NoneOpacityTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kOpacity, ShadeFamily::kNone>(face, vertices, true);
}

E3D_API void E3D_CALL FlatOpacityTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kOpacity, ShadeFamily::kFlat>(face, vertices, false);
}

E3D_API void E3D_CALL FlatOpacityTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kOpacity, ShadeFamily::kFlat>(face, vertices, true);
}

E3D_API void E3D_CALL GouraudOpacityTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kOpacity, ShadeFamily::kGouraud>(face, vertices, false);
}

E3D_API void E3D_CALL GouraudOpacityTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kOpacity, ShadeFamily::kGouraud>(face, vertices, true);
}
