// Sphere and hemisphere: a pole on +y and rings of latitude below it.
#include "engine/math.h"
#include "objects/mesh.h"
#include "objects/primitives.h"

using namespace e3d;

static int32_t sphereCount, hemisphereCount;

// Sets the pole (vertex 0) and `count` rings of `segments` vertices below it,
// ring i at latitude 90 * (den - mul * i) / den degrees with texture v = i * dv,
// and the polygons down to the last ring, which it returns.
static Loop SetDome(Mesh* mesh, int32_t* slot, float radius, const Vector3& k, int32_t count,
                    int32_t segments, int32_t den, int32_t mul, float dv, uint32_t color) {
  const BandStyle style = {color, kCurvedGroup, kCurvedGroup, false};
  SetMeshVertex(mesh, 0, 0.0f, radius * k.y, 0.0f);
  Loop upper = EvenLoop(0, 1, 0.0f, 0.0f);
  for (int32_t i = 1; i <= count; i++) {
    double c, s;
    DegreesCosSin(90.0 * double(den - mul * i) / double(den), &c, &s);
    const Loop ring = EvenLoop(upper.first + upper.points, segments, float(i) * dv, 1.0f);
    SetCircleVertices(mesh, ring.first, segments, c * radius, s * radius * k.y, k);
    SetBand(mesh, slot, upper, ring, style);
    upper = ring;
  }
  return upper;
}

// The caps' texture coordinates keep their historic order: the north cap's
// closing triangle and all but the closing triangle of the south cap have
// their two ring corners' u swapped.
static void KeepSphereCapTexCoords(Mesh* mesh, int32_t segments, float dv, float vLast) {
  const float du = 1.0f / float(segments);
  float u = float(segments - 1) * du;
  SetMeshTriTexCoords(mesh, segments - 1, u, 0.0f, u, dv, u + du, dv);
  const int32_t south = mesh->meshPolygonCount - segments;
  for (int32_t t = 0; t < segments - 1; t++) {
    u = float(t) * du;
    SetMeshTriTexCoords(mesh, south + t, u, vLast + dv, u + du, vLast, u, vLast);
  }
}

E3D_API Mesh* E3D_CALL SphereCreate(float radius, const Vector3* scale, int32_t rings, int32_t segments,
                                    uint32_t color) {
  if (!(radius > 0.0f) || rings < 4 || segments < 4) return nullptr;
  const Vector3 k = GeneratorScale(scale);
  const int64_t band = (int64_t(rings) - 1) * segments;
  Mesh* mesh = CreateGeneratedMesh(band + 2, 2 * band, color);
  if (mesh == nullptr) return nullptr;
  const float dv = 1.0f / float(rings);
  int32_t slot = 0;
  const Loop last = SetDome(mesh, &slot, radius, k, rings - 1, segments, rings, 2, dv, color);
  const Loop pole = EvenLoop(last.first + segments, 1, last.v + dv, 0.0f);
  SetMeshVertex(mesh, pole.first, 0.0f, -radius * k.y, 0.0f);
  SetBand(mesh, &slot, last, pole, BandStyle{color, kCurvedGroup, kCurvedGroup, false});
  KeepSphereCapTexCoords(mesh, segments, dv, last.v);
  return FinishGeneratedMesh(mesh, "Sphere", &sphereCount);
}

// rings - 1 rings from the pole down to the base circle at y = 0; a closed
// base is a flat fan around a centre vertex, with the texture projected on it.
E3D_API Mesh* E3D_CALL HemisphereCreate(float radius, const Vector3* scale, int32_t rings, int32_t segments,
                                        uint32_t color, int32_t open) {
  if (!(radius > 0.0f) || rings < 4 || segments < 4) return nullptr;
  const Vector3 k = GeneratorScale(scale);
  const int64_t band = (int64_t(rings) - 1) * segments;
  const int64_t vertices = open ? band + 1 : band + 2;
  const int64_t slots = open ? (2 * int64_t(rings) - 3) * segments : 2 * band;
  Mesh* mesh = CreateGeneratedMesh(vertices, slots, color);
  if (mesh == nullptr) return nullptr;
  int32_t slot = 0;
  const Loop last = SetDome(mesh, &slot, radius, k, rings - 1, segments, rings - 1, 1,
                            1.0f / float(rings - 1), color);
  if (!open) {
    const Loop centre = EvenLoop(last.first + segments, 1, 1.0f, 0.0f);
    SetMeshVertex(mesh, centre.first, 0.0f, 0.0f, 0.0f);
    SetBand(mesh, &slot, last, centre, BandStyle{color, kFlatGroup, kFlatGroup, true});
  }
  return FinishGeneratedMesh(mesh, "HSphere", &hemisphereCount);
}
