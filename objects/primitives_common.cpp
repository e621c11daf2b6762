// What the primitive generators share: checks, circles of vertices, bands of
// polygons between two loops, and the common ending.
#include "objects/primitives.h"

#include "engine/math.h"
#include "engine/memory.h"
#include "objects/mesh.h"

namespace e3d {

// pi/180 as the generators have always rounded it.
static constexpr float kDegreesToRadians = 0.017453292f;

Vector3 GeneratorScale(const Vector3* scale) {
  if (scale == nullptr) return Vector3{1.0f, 1.0f, 1.0f};
  return *scale;
}

Mesh* CreateGeneratedMesh(int64_t vertices, int64_t slots, uint32_t color) {
  if (vertices <= 0 || slots <= 0 || vertices > kMaxGeneratedCount || slots > kMaxGeneratedCount)
    return nullptr;
  return CreateMesh(int32_t(vertices), int32_t(slots), color);
}

void DegreesCosSin(double degrees, double* c, double* s) {
  SinCosD(degrees * double(kDegreesToRadians), s, c);
}

Mesh* FinishGeneratedMesh(Mesh* mesh, const char* base, int32_t* counter) {
  if (!ComputeMeshNormals(mesh)) {
    DeleteMesh(mesh);
    return nullptr;
  }
  Mesh* box = CreateAABB(mesh);
  if (box == nullptr) {
    DeleteMesh(mesh);
    return nullptr;
  }
  mesh->boundingBox = box;
  WriteGeneratedName(mesh->name, base, *counter);
  ++*counter;
  return mesh;
}

void SetPolygonEdges(Mesh* mesh, int32_t slot, uint32_t edges) {
  uint32_t* flags = &mesh->polygons[slot].polygonFlags;
  *flags = (*flags & ~kPolygonEdgeMask) | (edges & kPolygonEdgeMask);
}

int32_t SetCircleVertices(Mesh* mesh, int32_t first, int32_t count, double radius, double y,
                          const Vector3& scale, CirclePlane plane) {
  for (int32_t j = 0; j < count; j++) {
    double c, s;
    DegreesCosSin(double(j) * 360.0 / double(count), &c, &s);
    if (plane == CirclePlane::kXZ)
      SetMeshVertex(mesh, first + j, float(c * scale.x * radius), float(y), float(s * scale.z * radius));
    else
      SetMeshVertex(mesh, first + j, float(c * radius * scale.x), float(s * radius * scale.y), 0.0f);
  }
  return first + count;
}

Loop EvenLoop(int32_t first, int32_t count, float v, float radius) {
  return Loop{first, 1, count, v, radius, 1.0f, float(count)};
}

float LoopU(const Loop& loop, int32_t w) {
  const int32_t s = w / loop.points, t = w % loop.points;
  return (float(s) * loop.length + float(t) * loop.step) * (1.0f / (float(loop.sections) * loop.length));
}

namespace {

// Texture coordinates of one band corner at walk position w on the loop.
struct Corner {
  float u, v;
};

Corner BandCorner(const Loop& loop, const Loop& dense, int32_t w, const BandStyle& style) {
  if (!style.flat) return Corner{LoopU(dense, w), loop.v};
  double c, s;
  DegreesCosSin(double(w) * 360.0 / double(dense.sections * dense.points), &c, &s);
  const double r = 0.5 * double(loop.radius);
  return Corner{float(0.5 + r * c), float(0.5 + r * s)};
}

// Index inside the loop at walk position w of a band whose sections have
// `points` positions each.
int32_t LoopIndex(const Loop& loop, int32_t w, int32_t points) {
  return loop.points == points ? w : w / points;
}

}  // namespace

void SetBand(Mesh* mesh, int32_t* slot, const Loop& upper, const Loop& lower, const BandStyle& style) {
  const Loop& dense = upper.points >= lower.points ? upper : lower;
  const int32_t points = dense.points, total = dense.sections * points;
  for (int32_t j = 0; j < total; j++) {
    const int32_t next = (j + 1) % total;
    const int32_t a = upper.first + LoopIndex(upper, j, points);
    const int32_t b = upper.first + LoopIndex(upper, next, points);
    const int32_t c = lower.first + LoopIndex(lower, next, points);
    const int32_t d = lower.first + LoopIndex(lower, j, points);
    const Corner ta = BandCorner(upper, dense, j, style), tb = BandCorner(upper, dense, j + 1, style);
    const Corner tc = BandCorner(lower, dense, j + 1, style), td = BandCorner(lower, dense, j, style);
    if (a == b) {  // the upper point fans out
      SetMeshTriPolygon(mesh, *slot, a, c, d, style.color, style.group);
      SetMeshTriTexCoords(mesh, *slot, ta.u, ta.v, tc.u, tc.v, td.u, td.v);
      *slot += 1;
    } else if (c == d) {  // the lower point fans out
      SetMeshTriPolygon(mesh, *slot, d, a, b, style.color, style.group);
      SetMeshTriTexCoords(mesh, *slot, td.u, td.v, ta.u, ta.v, tb.u, tb.v);
      *slot += 1;
    } else {
      const bool bridge = j / points != next / points;
      SetMeshQuadPolygon(mesh, *slot, a, b, c, d, style.color, bridge ? style.bridgeGroup : style.group);
      SetMeshQuadTexCoords(mesh, *slot, ta.u, ta.v, tb.u, tb.v, tc.u, tc.v, td.u, td.v);
      *slot += 2;
    }
  }
}

}  // namespace e3d
