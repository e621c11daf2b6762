// Flat generators in the plane z = 0: grid, disk and ring. They face -z:
// their plane normals point along +z.
#include "engine/math.h"
#include "objects/mesh.h"
#include "objects/primitives.h"

using namespace e3d;

static int32_t gridCount, diskCount, ringCount;

// Rows run from the top (+y) down, columns from the left (-x). Each grid line
// is drawn once in a wireframe: every cell draws its top and left edges, the
// last column its right edge and the last row its bottom edge.
E3D_API Mesh* E3D_CALL GridCreate(float size, const Vector3* scale, int32_t rows, int32_t columns,
                                  uint32_t color) {
  if (!(size > 0.0f) || rows < 1 || columns < 1) return nullptr;
  const Vector3 k = GeneratorScale(scale);
  const int64_t across = int64_t(columns) + 1;
  Mesh* mesh = CreateGeneratedMesh((int64_t(rows) + 1) * across, 2 * int64_t(rows) * columns, color);
  if (mesh == nullptr) return nullptr;
  const double half = double(size) * 0.5;
  for (int32_t r = 0; r <= rows; r++)
    for (int32_t c = 0; c <= columns; c++)
      SetMeshVertex(mesh, r * int32_t(across) + c,
                    float((-half + double(c) * size / columns) * k.x),
                    float((half - double(r) * size / rows) * k.y), 0.0f);
  const float du = 1.0f / float(columns), dv = 1.0f / float(rows);
  int32_t slot = 0;
  for (int32_t r = 0; r < rows; r++) {
    for (int32_t c = 0; c < columns; c++, slot += 2) {
      const int32_t ul = r * int32_t(across) + c, ll = ul + int32_t(across);
      const float u = float(c) / float(columns), v = float(r) / float(rows);
      SetMeshQuadPolygon(mesh, slot, ul, ul + 1, ll + 1, ll, color, 0);
      SetMeshQuadTexCoords(mesh, slot, u, v, u + du, v, u + du, v + dv, u, v + dv);
      SetPolygonEdges(mesh, slot, kPolygonEdge12 | kPolygonEdge20);
      SetPolygonEdges(mesh, slot + 1, (c == columns - 1 ? kPolygonEdge12 : 0) |
                                          (r == rows - 1 ? kPolygonEdge01 : 0));
    }
  }
  return FinishGeneratedMesh(mesh, "Grid", &gridCount);
}

// The texture is wrapped around the centre: v = 0 there and 1 on the rim.
// The closing triangle keeps its historic texture order.
E3D_API Mesh* E3D_CALL DiskCreate(float radius, const Vector3* scale, int32_t segments, uint32_t color) {
  if (!(radius > 0.0f) || segments < 4) return nullptr;
  const Vector3 k = GeneratorScale(scale);
  Mesh* mesh = CreateGeneratedMesh(int64_t(segments) + 1, segments, color);
  if (mesh == nullptr) return nullptr;
  SetMeshVertex(mesh, 0, 0.0f, 0.0f, 0.0f);
  SetCircleVertices(mesh, 1, segments, radius, 0.0, k, CirclePlane::kXY);
  const float du = 1.0f / float(segments);
  for (int32_t i = 1; i < segments; i++) {
    const float u = float(i - 1) * du;
    SetMeshTriPolygon(mesh, i - 1, 0, i + 1, i, color, 0);
    SetMeshTriTexCoords(mesh, i - 1, u, 0.0f, u + du, 1.0f, u, 1.0f);
  }
  const float u = float(segments - 1) * du;
  SetMeshTriPolygon(mesh, segments - 1, 0, 1, segments, color, 0);
  SetMeshTriTexCoords(mesh, segments - 1, u, 0.0f, u, 1.0f, u + du, 1.0f);
  for (int32_t i = 0; i < segments; i++) SetPolygonEdges(mesh, i, kPolygonEdge01);  // the rim only
  return FinishGeneratedMesh(mesh, "Disk", &diskCount);
}

// Vertices 0 .. segments - 1 on the inner circle, then the outer circle; the
// texture runs around once, v = 0 inside and 1 outside.
E3D_API Mesh* E3D_CALL RingCreate(float outerRadius, float innerRadius, const Vector3* scale,
                                  int32_t segments, uint32_t color) {
  if (!(outerRadius > 0.0f) || !(innerRadius > 0.0f) || !(outerRadius > innerRadius) || segments < 4)
    return nullptr;
  const Vector3 k = GeneratorScale(scale);
  Mesh* mesh = CreateGeneratedMesh(2 * int64_t(segments), 2 * int64_t(segments), color);
  if (mesh == nullptr) return nullptr;
  SetCircleVertices(mesh, 0, segments, innerRadius, 0.0, k, CirclePlane::kXY);
  SetCircleVertices(mesh, segments, segments, outerRadius, 0.0, k, CirclePlane::kXY);
  const float du = 1.0f / float(segments);
  for (int32_t i = 0; i < segments; i++) {
    const int32_t next = (i + 1) % segments;
    const float u = float(i) * du;
    SetMeshQuadPolygon(mesh, 2 * i, i, next, segments + next, segments + i, color, 0);
    SetMeshQuadTexCoords(mesh, 2 * i, u, 0.0f, u + du, 0.0f, u + du, 1.0f, u, 1.0f);
  }
  return FinishGeneratedMesh(mesh, "Ring", &ringCount);
}
