// Textured triangles of stage 0: the texel, or the texel met with the polygon's
// colour (modulated, or as the material's colour operation says).
#include "raster/textured_span.h"

using namespace e3d;

E3D_API void E3D_CALL NoneDiffuseTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kDiffuse, ShadeFamily::kNone>(face, vertices, false);
}

E3D_API void E3D_CALL NoneDiffuseTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kDiffuse, ShadeFamily::kNone>(face, vertices, true);
}

E3D_API void E3D_CALL FlatDiffuseTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kDiffuse, ShadeFamily::kFlat>(face, vertices, false);
}

E3D_API void E3D_CALL FlatDiffuseTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kDiffuse, ShadeFamily::kFlat>(face, vertices, true);
}

E3D_API void E3D_CALL GouraudDiffuseTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kDiffuse, ShadeFamily::kGouraud>(face, vertices, false);
}

E3D_API void E3D_CALL GouraudDiffuseTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawTextured<TexturedKind::kDiffuse, ShadeFamily::kGouraud>(face, vertices, true);
}
