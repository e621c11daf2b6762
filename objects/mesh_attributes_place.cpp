// Where a mesh stands and what the host knows it by: placement, pivot, the
// stand-alone viewport, the host tag, the name, activation and billboards.
#include "engine/math.h"
#include "objects/mesh.h"
#include "objects/node_helpers.h"

namespace {

// The result of GetMeshModelPosition: one for the process, overwritten by
// the next call.
Vector3 modelPosition;

}  // namespace

using namespace e3d;

E3D_API void E3D_CALL SetMeshModelOrientation(Mesh* mesh, float x, float y, float z) {
  Vector3 angles = {x, y, z};
  MatrixFromEuler(&mesh->modelMatrix, &angles);
}

E3D_API void E3D_CALL SetMeshModelPosition(Mesh* mesh, float x, float y, float z) {
  mesh->modelMatrix.m[3] = x;
  mesh->modelMatrix.m[7] = y;
  mesh->modelMatrix.m[11] = z;
}

E3D_API Vector3* E3D_CALL GetMeshModelPosition(const Mesh* mesh) {
  modelPosition = {mesh->modelMatrix.m[3], mesh->modelMatrix.m[7], mesh->modelMatrix.m[11]};
  return &modelPosition;
}

E3D_API void E3D_CALL SetMeshPivot(Mesh* mesh, float x, float y, float z) { mesh->pivot = {x, y, z}; }

E3D_API Vector3* E3D_CALL GetMeshPivot(Mesh* mesh) { return &mesh->pivot; }

E3D_API void E3D_CALL SetMeshViewport(Mesh* mesh, Viewport* viewport) { mesh->meshViewport = viewport; }

E3D_API Viewport* E3D_CALL GetMeshViewport(const Mesh* mesh) { return mesh->meshViewport; }

// Null when no light is listed; a piece-built mesh has no list at all.
E3D_API Light** E3D_CALL GetMeshLightList(const Mesh* mesh) {
  return mesh->lightList != nullptr && mesh->lightList[0] != nullptr ? mesh->lightList : nullptr;
}

E3D_API void E3D_CALL SetMeshTvObject(Mesh* mesh, uintptr_t tag) { mesh->hostObject = tag; }

E3D_API uintptr_t E3D_CALL GetMeshTvObject(const Mesh* mesh) { return mesh->hostObject; }

E3D_API Material* E3D_CALL GetMeshDefaultMaterial(Mesh* mesh) { return &mesh->defaultMaterial; }

E3D_API void E3D_CALL SetMeshName(Mesh* mesh, const char* name) { CopyName(mesh->name, kMeshNameSize, name); }

// Marks the mesh validated without computing normals or a bounding box: the
// host vouches for it.
E3D_API void E3D_CALL ActivateMesh(Mesh* mesh) { mesh->meshFlags |= kMeshValidated; }

E3D_API void E3D_CALL SetMeshBillboardMode(Mesh* mesh, uint32_t mode) {
  mesh->meshKindFlags = (mesh->meshKindFlags & ~kMeshBillboardMask) | (mode & kMeshBillboardMask);
}
