// Solids turned around the y axis: cylinder (and cone), tube and torus.
#include "engine/math.h"
#include "objects/mesh.h"
#include "objects/primitives.h"

using namespace e3d;

static int32_t cylinderCount, tubeCount, torusCount;

// The side wraps the texture round once, v = 0 at the top and 1 at the
// bottom; flat caps and annuli get it projected from above.
static BandStyle SideStyle(uint32_t color) { return BandStyle{color, kCurvedGroup, kCurvedGroup, false}; }
static BandStyle CapStyle(uint32_t color) { return BandStyle{color, kFlatGroup, kFlatGroup, true}; }

// Vertex 0 is the top centre, then the top ring, the bottom ring and the
// bottom centre. A radius of 0 drops its ring: the centre on that side is the
// apex of a cone.
E3D_API Mesh* E3D_CALL CylinderCreate(float bottomRadius, float topRadius, float height, const Vector3* scale,
                                      int32_t segments, uint32_t color) {
  if (!(bottomRadius >= 0.0f) || !(topRadius >= 0.0f) || !(bottomRadius > 0.0f || topRadius > 0.0f) ||
      !(height > 0.0f) || segments < 4)
    return nullptr;
  const Vector3 k = GeneratorScale(scale);
  const bool hasTop = topRadius > 0.0f, hasBottom = bottomRadius > 0.0f;
  const int64_t n = segments;
  Mesh* mesh = CreateGeneratedMesh(hasTop && hasBottom ? 2 * n + 2 : n + 2, hasTop && hasBottom ? 4 * n : 2 * n,
                                   color);
  if (mesh == nullptr) return nullptr;
  const float half = height * 0.5f, rim = hasTop && topRadius > bottomRadius ? topRadius : bottomRadius;
  const Loop topCentre = EvenLoop(0, 1, 0.0f, 0.0f);
  SetMeshVertex(mesh, 0, 0.0f, half * k.y, 0.0f);
  const Loop top = hasTop ? EvenLoop(1, segments, 0.0f, topRadius / rim) : topCentre;
  if (hasTop) SetCircleVertices(mesh, top.first, segments, topRadius, half * k.y, k);
  const int32_t next = top.first + top.points;
  const Loop bottomRing = EvenLoop(next, segments, 1.0f, bottomRadius / rim);
  if (hasBottom) SetCircleVertices(mesh, next, segments, bottomRadius, -half * k.y, k);
  const Loop bottomCentre = EvenLoop(hasBottom ? next + segments : next, 1, 1.0f, 0.0f);
  SetMeshVertex(mesh, bottomCentre.first, 0.0f, -half * k.y, 0.0f);
  int32_t slot = 0;
  if (hasTop) SetBand(mesh, &slot, topCentre, top, CapStyle(color));
  SetBand(mesh, &slot, top, hasBottom ? bottomRing : bottomCentre, SideStyle(color));
  if (hasBottom) SetBand(mesh, &slot, bottomRing, bottomCentre, CapStyle(color));
  return FinishGeneratedMesh(mesh, "Cylinder", &cylinderCount);
}

// Rings: outer top, outer bottom, inner top, inner bottom, each of segments
// vertices. The profile runs round the wall's cross-section: top annulus
// outwards, outer side down, bottom annulus inwards, inner side up.
E3D_API Mesh* E3D_CALL TubeCreate(float outerRadius, float innerRadius, float height, const Vector3* scale,
                                  int32_t segments, uint32_t color) {
  if (!(outerRadius > 0.0f) || !(innerRadius > 0.0f) || !(outerRadius > innerRadius) || !(height > 0.0f) ||
      segments < 4)
    return nullptr;
  const Vector3 k = GeneratorScale(scale);
  Mesh* mesh = CreateGeneratedMesh(4 * int64_t(segments), 8 * int64_t(segments), color);
  if (mesh == nullptr) return nullptr;
  const float half = height * 0.5f, inside = innerRadius / outerRadius;
  const Loop outerTop = EvenLoop(0, segments, 0.0f, 1.0f);
  const Loop outerBottom = EvenLoop(segments, segments, 1.0f, 1.0f);
  const Loop innerTop = EvenLoop(2 * segments, segments, 0.0f, inside);
  const Loop innerBottom = EvenLoop(3 * segments, segments, 1.0f, inside);
  SetCircleVertices(mesh, outerTop.first, segments, outerRadius, half * k.y, k);
  SetCircleVertices(mesh, outerBottom.first, segments, outerRadius, -half * k.y, k);
  SetCircleVertices(mesh, innerTop.first, segments, innerRadius, half * k.y, k);
  SetCircleVertices(mesh, innerBottom.first, segments, innerRadius, -half * k.y, k);
  int32_t slot = 0;
  SetBand(mesh, &slot, innerTop, outerTop, CapStyle(color));
  SetBand(mesh, &slot, outerTop, outerBottom, SideStyle(color));
  SetBand(mesh, &slot, outerBottom, innerBottom, CapStyle(color));
  SetBand(mesh, &slot, innerBottom, innerTop, SideStyle(color));
  return FinishGeneratedMesh(mesh, "Tube", &tubeCount);
}

// Vertex i * sides + j sits at angle 360 i / rings round the y axis and
// 360 j / sides round the tube. Each cell is two triangles whose shared
// diagonal is hidden from a wireframe.
E3D_API Mesh* E3D_CALL TorusCreate(float majorRadius, float minorRadius, const Vector3* scale, int32_t sides,
                                   int32_t rings, uint32_t color) {
  if (!(majorRadius > 0.0f) || !(minorRadius > 0.0f) || sides < 4 || rings < 4) return nullptr;
  const Vector3 k = GeneratorScale(scale);
  const int64_t cells = int64_t(rings) * sides;
  Mesh* mesh = CreateGeneratedMesh(cells, 2 * cells, color);
  if (mesh == nullptr) return nullptr;
  for (int32_t i = 0; i < rings; i++) {
    double ct, st;
    DegreesCosSin(double(i) * 360.0 / double(rings), &ct, &st);
    for (int32_t j = 0; j < sides; j++) {
      double cp, sp;
      DegreesCosSin(double(j) * 360.0 / double(sides), &cp, &sp);
      const double d = cp * minorRadius + majorRadius;
      SetMeshVertex(mesh, i * sides + j, float(d * ct * k.x), float(sp * minorRadius * k.y),
                    float(st * d * k.z));
    }
  }
  const float du = 1.0f / float(rings), dv = 1.0f / float(sides);
  int32_t slot = 0;
  for (int32_t i = 0; i < rings; i++) {
    for (int32_t j = 0; j < sides; j++, slot += 2) {
      const int32_t a = i * sides + j, below = ((i + 1) % rings) * sides + j;
      const int32_t next = i * sides + (j + 1) % sides, diag = below + (next - a);
      const float u = float(i) * du, v = 1.0f - float(j) * dv;
      SetMeshTriPolygon(mesh, slot, a, diag, below, color, 0);
      SetMeshTriTexCoords(mesh, slot, u, v, u + du, v - dv, u + du, v);
      SetPolygonEdges(mesh, slot, kPolygonEdge01 | kPolygonEdge20);
      SetMeshTriPolygon(mesh, slot + 1, a, next, diag, color, 0);
      SetMeshTriTexCoords(mesh, slot + 1, u, v, u, v - dv, u + du, v - dv);
      SetPolygonEdges(mesh, slot + 1, kPolygonEdge01 | kPolygonEdge12);
    }
  }
  return FinishGeneratedMesh(mesh, "Torus", &torusCount);
}
