// Filling a mesh: vertices, triangles, quads as two triangles, texture
// coordinates and polygon planes. Corners are stored in the reverse of the
// order the host gives them.
#include "engine/math.h"
#include "engine/memory.h"
#include "objects/mesh.h"

namespace {

// A piece-built mesh grows one element at a time, with `spare` elements of
// room past the new one. False (nothing changed) when out of memory.
template <class T>
bool GrowByOne(T*& array, int32_t count, uint32_t spare = 0) {
  T* grown = e3d::Allocate<T>(uint32_t(count) + 1 + spare);
  if (grown == nullptr) return false;
  if (array != nullptr) {
    e3d::MemoryCopy(grown, array, uint32_t(count) * uint32_t(sizeof(T)));
    FreeMemory(array);
  }
  array = grown;
  return true;
}

// Only a piece-built mesh without a record area of its own grows.
bool CanGrow(const Mesh* mesh) {
  return mesh->ownPolygonRecords == nullptr && e3d::MeshIsPieceBuilt(mesh);
}

bool IsVertex(const Mesh* mesh, int32_t index) { return index >= 0 && index < mesh->vertexCount; }

uint32_t GroupBits(uint32_t group) {
  return group < e3d::kPolygonGroupCount ? group << e3d::kPolygonGroupShift : 0;
}

void SetTriangle(Mesh* mesh, MeshPolygon* polygon, int32_t c0, int32_t c1, int32_t c2,
                 uint32_t flags) {
  polygon->vertexIndex[0] = c0;
  polygon->vertexIndex[1] = c1;
  polygon->vertexIndex[2] = c2;
  polygon->material = &mesh->defaultMaterial;
  polygon->backMaterial = &mesh->defaultMaterial;
  CalcMeshPolygonNormal(mesh, polygon);
  polygon->polygonFlags = flags;
}

void SetCorner(MeshPolygon* polygon, int32_t corner, float u, float v) {
  polygon->corners[corner].u = u;
  polygon->corners[corner].v = v;
}

}  // namespace

E3D_API int32_t E3D_CALL AddMeshVertex(Mesh* mesh, float x, float y, float z) {
  // One vertex of room past the last, where SetMeshVertex writes for the count itself.
  if (!CanGrow(mesh) || !GrowByOne(mesh->vertices, mesh->vertexCount, 1)) return 0;
  MeshVertex* v = &mesh->vertices[mesh->vertexCount++];
  v->x = x;
  v->y = y;
  v->z = z;
  return 1;
}

// The index test is inclusive: the count itself writes just past the last
// vertex, into room every vertex array keeps; a mesh without vertices has none.
E3D_API int32_t E3D_CALL SetMeshVertex(Mesh* mesh, int32_t index, float x, float y, float z) {
  if (index < 0 || index > mesh->vertexCount || mesh->vertices == nullptr) return 0;
  MeshVertex* v = &mesh->vertices[index];
  v->x = x;
  v->y = y;
  v->z = z;
  return 1;
}

// A refused triangle leaves its new slot in place, unset.
E3D_API int32_t E3D_CALL AddMeshTriPolygon(Mesh* mesh, int32_t a, int32_t b, int32_t c,
                                           uint32_t unused, uint32_t group) {
  // One polygon of room past the last, where the texture-coordinate setters write for the count.
  if (!CanGrow(mesh) || !GrowByOne(mesh->polygons, mesh->meshPolygonCount, 1)) return 0;
  int32_t index = mesh->meshPolygonCount++;
  return SetMeshTriPolygon(mesh, index, a, b, c, unused, group);
}

E3D_API int32_t E3D_CALL SetMeshTriPolygon(Mesh* mesh, int32_t index, int32_t a, int32_t b,
                                           int32_t c, uint32_t, uint32_t group) {
  if (index < 0 || index >= mesh->meshPolygonCount) return 0;
  if (!IsVertex(mesh, a) || !IsVertex(mesh, b) || !IsVertex(mesh, c)) return 0;
  if (a == b || b == c || a == c) return 0;
  SetTriangle(mesh, &mesh->polygons[index], c, b, a, e3d::kPolygonTriangle | GroupBits(group));
  return 1;
}

E3D_API int32_t E3D_CALL SetMeshQuadPolygon(Mesh* mesh, int32_t index, int32_t a, int32_t b,
                                            int32_t c, int32_t d, uint32_t, uint32_t group) {
  if (index < 0 || index >= mesh->meshPolygonCount - 1) return 0;
  if (!IsVertex(mesh, a) || !IsVertex(mesh, b) || !IsVertex(mesh, c) || !IsVertex(mesh, d))
    return 0;
  if (a == b || a == c || a == d || b == c || b == d || c == d) return 0;
  uint32_t groupBits = GroupBits(group);
  MeshPolygon* first = &mesh->polygons[index];
  SetTriangle(mesh, first, d, b, a, e3d::kPolygonQuadFirst | groupBits);
  SetTriangle(mesh, first + 1, d, c, b, e3d::kPolygonQuadSecond | groupBits);
  return 1;
}

// As with vertices, the slot test is inclusive of the count.
E3D_API void E3D_CALL SetMeshTriTexCoords(Mesh* mesh, int32_t index, float u1, float v1,
                                          float u2, float v2, float u3, float v3) {
  if (index < 0 || index > mesh->meshPolygonCount || mesh->polygons == nullptr) return;
  MeshPolygon* p = &mesh->polygons[index];
  SetCorner(p, 2, u1, v1);
  SetCorner(p, 1, u2, v2);
  SetCorner(p, 0, u3, v3);
  p->polygonFlags |= e3d::kPolygonTextured;
}

E3D_API void E3D_CALL SetMeshQuadTexCoords(Mesh* mesh, int32_t index, float u1, float v1,
                                           float u2, float v2, float u3, float v3, float u4,
                                           float v4) {
  if (index < 0 || index > mesh->meshPolygonCount - 1 || mesh->polygons == nullptr) return;
  MeshPolygon* p = &mesh->polygons[index];
  SetCorner(p, 0, u4, v4);
  SetCorner(p, 1, u2, v2);
  SetCorner(p, 2, u1, v1);
  p->polygonFlags |= e3d::kPolygonTextured;
  p++;
  SetCorner(p, 0, u4, v4);
  SetCorner(p, 1, u3, v3);
  SetCorner(p, 2, u2, v2);
  p->polygonFlags |= e3d::kPolygonTextured;
}

// n = (P1 - P0) x (P2 - P1), normalised; a degenerate triangle gives NaN.
E3D_API void E3D_CALL CalcMeshPolygonNormal(Mesh* mesh, MeshPolygon* polygon) {
  const MeshVertex* p0 = &mesh->vertices[polygon->vertexIndex[0]];
  const MeshVertex* p1 = &mesh->vertices[polygon->vertexIndex[1]];
  const MeshVertex* p2 = &mesh->vertices[polygon->vertexIndex[2]];
  Vector3 e1 = {p1->x - p0->x, p1->y - p0->y, p1->z - p0->z};
  Vector3 e2 = {p2->x - p1->x, p2->y - p1->y, p2->z - p1->z};
  Vector3 n;
  e3d::VectorCross(&e1, &e2, &n);
  e3d::VectorNormalize(&n);
  const double third = 0.33333334f;
  Vector3 centre = {float((double(p0->x) + p1->x + p2->x) * third),
                    float((double(p0->y) + p1->y + p2->y) * third),
                    float((double(p0->z) + p1->z + p2->z) * third)};
  polygon->plane[0] = n.x;
  polygon->plane[1] = n.y;
  polygon->plane[2] = n.z;
  polygon->plane[3] = -e3d::VectorDot(&n, &centre);
}

E3D_API int32_t E3D_CALL AddMeshQuadPolygon(Mesh*, int32_t, int32_t, int32_t, int32_t, uint32_t,
                                            uint32_t) {
  return 1;
}
