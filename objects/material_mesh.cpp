// Materials on the polygons of a mesh. A null material always means the
// mesh's own default material. Sides: 0 front, 1 back, 2 both.
#include "engine/registry.h"
#include "engine3d.h"
#include "objects/material.h"
#include "objects/mesh.h"

namespace e3d {
namespace {

inline bool ValidSide(int32_t which) { return static_cast<uint32_t>(which) <= 2; }

// which must be valid.
inline void SetSide(MeshPolygon* polygon, Material* mat, int32_t which) {
  if (which != 1) polygon->material = mat;
  if (which != 0) polygon->backMaterial = mat;
}

inline Material* GetSide(const MeshPolygon* polygon, int32_t which) {
  if (which == 0 || which == 2) return polygon->material;
  if (which == 1) return polygon->backMaterial;
  return nullptr;
}

}  // namespace
}  // namespace e3d

using namespace e3d;

// Children get the caller's argument, so a null gives each its own default.
E3D_API int32_t E3D_CALL SetMaterial(Mesh* mesh, Material* mat, int32_t which, int32_t recursive) {
  if (!ValidSide(which)) return 0;
  Material* m = mat != nullptr ? mat : &mesh->defaultMaterial;
  for (int32_t i = 0; i < mesh->meshPolygonCount; i++) SetSide(&mesh->polygons[i], m, which);
  if (recursive == 1)
    for (int32_t i = 0; i < mesh->childCount; i++) {
      Mesh* child = static_cast<Mesh*>(mesh->children[i]);
      if (NodeIsMesh(child->nodeKind)) SetMaterial(child, mat, which, 1);
    }
  return 1;
}

// Polygon 0 speaks for the mesh; a mesh without polygons is the caller's error.
E3D_API Material* E3D_CALL GetMaterial(Mesh* mesh, int32_t which) {
  return GetSide(&mesh->polygons[0], which);
}

E3D_API Material* E3D_CALL GetMaterialByName(Mesh* mesh, const char* name) {
  for (int32_t i = 0; i < mesh->meshPolygonCount; i++) {
    const MeshPolygon* polygon = &mesh->polygons[i];
    if (NameMatches(polygon->material->name, name)) return polygon->material;
    if (NameMatches(polygon->backMaterial->name, name)) return polygon->backMaterial;
  }
  return nullptr;
}

// pair covers the second triangle of a quad. A face out of range is no error.
E3D_API int32_t E3D_CALL SetFaceMaterial(Mesh* mesh, int32_t face, Material* mat, int32_t pair,
                                         int32_t which) {
  if (face < 0 || face >= mesh->meshPolygonCount) return 1;
  if (!ValidSide(which)) return 0;
  Material* m = mat != nullptr ? mat : &mesh->defaultMaterial;
  SetSide(&mesh->polygons[face], m, which);
  if (pair != 0 && face + 1 < mesh->meshPolygonCount) SetSide(&mesh->polygons[face + 1], m, which);
  return 1;
}

E3D_API Material* E3D_CALL GetFaceMaterial(Mesh* mesh, int32_t face, int32_t which) {
  if (face < 0 || face >= mesh->meshPolygonCount) return nullptr;
  return GetSide(&mesh->polygons[face], which);
}

E3D_API void E3D_CALL RemoveMaterialFromMesh(Material* mat, Mesh* mesh) {
  for (int32_t i = 0; i < mesh->meshPolygonCount; i++) {
    MeshPolygon* polygon = &mesh->polygons[i];
    if (polygon->material == mat) polygon->material = &mesh->defaultMaterial;
    if (polygon->backMaterial == mat) polygon->backMaterial = &mesh->defaultMaterial;
  }
}
