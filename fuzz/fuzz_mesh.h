// Validation as a careful host does it: a mesh refused for a polygon that
// repeats a vertex is kept as it was and must be deleted by the host; a mesh
// refused for anything else is gone already.
#pragma once
#include "engine3d.h"
#include "objects/mesh.h"

namespace fuzz {

inline Mesh* ValidateOrDelete(Mesh* mesh) {
  bool kept = false;
  for (int32_t i = 0; i < mesh->meshPolygonCount; ++i) {
    const int32_t* v = mesh->polygons[i].vertexIndex;
    kept |= v[0] == v[1] || v[1] == v[2] || v[0] == v[2];
  }
  if (e3d::MeshIsPieceBuilt(mesh)) kept &= mesh->vertexCount > 0;
  Mesh* valid = ValidateMesh(mesh);
  if (valid == nullptr && kept) DeleteMesh(mesh);
  return valid;
}

}  // namespace fuzz
