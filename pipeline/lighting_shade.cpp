// The colour of a kept polygon in a lit variant: the headlight for a mesh
// without lights, else by shade mode.
#include "engine/math.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "pipeline/lighting.h"

namespace e3d {

uint32_t UnlitPolygonColor(const Material* material, uint32_t renderFlags) {
  if (!UsesMaterialColor(renderFlags)) return 0x7FFF;
  uint32_t rgb[3];
  for (int c = 0; c < 3; c++) {
    double sum = static_cast<double>(material->colors[0][c]) + material->colors[1][c];
    rgb[c] = ColorChannel(sum + material->colors[2][c]);
  }
  return PackColor555(rgb[0], rgb[1], rgb[2]);
}

// I = (n . E) / |E|, signed so that it is positive on the side the camera
// sees; zero, negative or not a number gives black.
void HeadlightPolygon(MeshPolygon* polygon, uint32_t renderFlags, const Material* material,
                      const Vector3* eye) {
  const float* n = polygon->plane;
  double toward = static_cast<double>(n[0]) * eye->x + static_cast<double>(n[1]) * eye->y +
                  static_cast<double>(n[2]) * eye->z;
  double i = toward / VectorLength(eye);
  if (!(polygon->polygonFlags & kPolygonBackFacing)) i = -i;
  uint32_t color = 0;
  if (i > 0) {
    uint32_t rgb[3];
    for (int c = 0; c < 3; c++) {
      double base = static_cast<double>(material->colors[0][c]) + material->colors[2][c];
      rgb[c] = ColorChannel(base + i * LitScale(material, renderFlags, c));
    }
    color = PackColor555(rgb[0], rgb[1], rgb[2]);
  }
  polygon->colors[0] = polygon->colors[1] = polygon->colors[2] = color;
}

uint32_t ShadeLitPolygon(const Mesh* mesh, MeshPolygon* polygon, uint32_t renderFlags,
                         const Material* material, const Vector3* eye) {
  if (mesh->lightList == nullptr || mesh->lightList[0] == nullptr) {
    HeadlightPolygon(polygon, renderFlags, material, eye);
    return (renderFlags & ~4u) | 3u;  // always drawn flat
  }
  switch (renderFlags & kShadeMask) {
    case kShadeUnlit:
      polygon->colors[0] = UnlitPolygonColor(material, renderFlags);
      break;
    case kShadeFlat:
      LightPolygonFlat(mesh, polygon, renderFlags, material);
      break;
    case kShadeGouraud:
      LightPolygonCorners(mesh, polygon, renderFlags, material);
      break;
    default:
      break;
  }
  return renderFlags;
}

}  // namespace e3d
