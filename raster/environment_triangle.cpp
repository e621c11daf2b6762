// Environment-mapped triangles of stage 2: the texel added to the lit
// colour (the flat colour, or the corner colours), saturating.
#include "raster/textured_span.h"

using namespace e3d;

E3D_API void E3D_CALL NoneEnvironmentTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kEnvironment, ShadeFamily::kNone>(face, vertices, false);
}

E3D_API void E3D_CALL NoneEnvironmentTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kEnvironment, ShadeFamily::kNone>(face, vertices, true);
}

E3D_API void E3D_CALL FlatEnvironmentTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kEnvironment, ShadeFamily::kFlat>(face, vertices, false);
}

E3D_API void E3D_CALL FlatEnvironmentTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kEnvironment, ShadeFamily::kFlat>(face, vertices, true);
}

E3D_API void E3D_CALL GouraudEnvironmentTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kEnvironment, ShadeFamily::kGouraud>(face, vertices, false);
}

E3D_API void E3D_CALL GouraudEnvironmentTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kEnvironment, ShadeFamily::kGouraud>(face, vertices, true);
}
