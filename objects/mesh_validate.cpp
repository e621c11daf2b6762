// Validation: a mesh becomes drawable once its polygons are checked, its
// storage is one block, and it has vertex normals and a bounding box.
#include "engine/memory.h"
#include "objects/mesh.h"

namespace {

bool IsDegenerate(const MeshPolygon* p) {
  return p->vertexIndex[0] == p->vertexIndex[1] || p->vertexIndex[1] == p->vertexIndex[2] ||
         p->vertexIndex[0] == p->vertexIndex[2];
}

bool HasDegeneratePolygon(const Mesh* mesh) {
  for (int32_t i = 0; i < mesh->meshPolygonCount; i++)
    if (IsDegenerate(&mesh->polygons[i])) return true;
  return false;
}

Material* Redirect(Material* material, Mesh* from, Mesh* to) {
  return material == &from->defaultMaterial ? &to->defaultMaterial : material;
}

// Copies a piece-built mesh into a new one-block mesh and frees the source.
// Null when a polygon repeats a vertex (the source is kept as it was) or when
// out of memory (the source is deleted). The polygons are checked before the
// copy is made, so that a host can tell the two apart even when memory is short.
Mesh* Compact(Mesh* src) {
  if (HasDegeneratePolygon(src)) return nullptr;
  Mesh* dst = CreateMesh(src->vertexCount, src->meshPolygonCount, 0x7FFF);
  if (dst == nullptr) {
    DeleteMesh(src);
    return nullptr;
  }
  e3d::MemoryCopy(dst->vertices, src->vertices,
                  uint32_t(src->vertexCount) * uint32_t(sizeof(MeshVertex)));
  for (int32_t i = 0; i < src->meshPolygonCount; i++) {
    const MeshPolygon* from = &src->polygons[i];
    MeshPolygon* to = &dst->polygons[i];
    *to = *from;
    to->material = Redirect(from->material, src, dst);
    to->backMaterial = Redirect(from->backMaterial, src, dst);
  }
  dst->modelMatrix = src->modelMatrix;
  dst->frameMatrix = src->frameMatrix;
  dst->worldMatrix = src->worldMatrix;
  dst->cameraMatrix = src->cameraMatrix;
  dst->defaultMaterial = src->defaultMaterial;
  dst->meshFlags = src->meshFlags;
  dst->meshViewport = src->meshViewport;
  dst->hostObject = src->hostObject;
  // Where the host has placed the mesh and how it faces the camera go with it,
  // and so does its skin; the name does not.
  dst->pivot = src->pivot;
  dst->meshKindFlags = src->meshKindFlags & e3d::kMeshBillboardMask;
  dst->skinTable = src->skinTable;
  src->skinTable = nullptr;
  DeleteMesh(src);
  return dst;
}

}  // namespace

namespace e3d {

bool RebuildMeshBoundingBox(Mesh* mesh) {
  FreeMeshBoundingBox(mesh);
  mesh->boundingBox = CreateAABB(mesh);
  return mesh->boundingBox != nullptr;
}

}  // namespace e3d

E3D_API Mesh* E3D_CALL ValidateMesh(Mesh* mesh) {
  if (!e3d::MeshIsPieceBuilt(mesh)) {
    if (HasDegeneratePolygon(mesh)) return nullptr;
  } else {
    if (mesh->meshPolygonCount == 0 || mesh->vertexCount == 0) {
      DeleteMesh(mesh);
      return nullptr;
    }
    mesh = Compact(mesh);
    if (mesh == nullptr) return nullptr;
  }
  if (!e3d::ComputeMeshNormals(mesh) || !e3d::RebuildMeshBoundingBox(mesh)) {
    DeleteMesh(mesh);
    return nullptr;
  }
  mesh->meshFlags |= e3d::kMeshValidated;
  return mesh;
}
