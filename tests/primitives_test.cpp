// Primitive generators: counts and limits, names, closed and consistently
// wound surfaces, texture coordinates, smoothing, edge flags and memory.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <vector>

#include "mesh_fixture.h"

namespace {

using PrimitivesTest = MeshFixture;

const Vector3 kScale = {1.5f, 0.75f, 2.0f};  // uneven, to catch swapped axes
const Vector3* const s = &kScale;
const uint32_t kColor = 0x336699;

struct Kind {
  const char* name;
  const char* base;  // of the mesh name
  std::function<Mesh*()> make;
  int32_t vertices, slots, normals;
  int32_t border;  // directed edges without a partner: 0 for a closed surface
  int convex;      // 1: every plane faces a point on the y axis at insideY
  float insideY;
};

// One of each kind, small enough for the fixture's sorter scratch list. A
// normal is made per vertex per smoothing group that uses it.
std::vector<Kind> AllKinds() {
  const uint32_t c = kColor;
  return {
      {"billboard", "Billboard", [=] { return BillboardCreate(2, s, c); }, 4, 2, 4, 4, 0, 0},
      {"cube", "Cube", [=] { return CubeCreate(2, s, c); }, 8, 12, 24, 0, 1, 0},
      {"chcube", "Cube", [=] { return ChCubeCreate(2, 0.3f, s, 3, c); }, 104, 204, 104 + 24, 0, 1, 0},
      {"sphere", "Sphere", [=] { return SphereCreate(1, s, 6, 8, c); }, 42, 80, 42, 0, 1, 0},
      {"hemisphere", "HSphere", [=] { return HemisphereCreate(1, s, 5, 8, c, 0); }, 34, 64, 34 + 8, 0, 1, 0.2f},
      {"open hemisphere", "HSphere", [=] { return HemisphereCreate(1, s, 5, 8, c, 1); }, 33, 56, 33, 8, 0, 0},
      {"grid", "Grid", [=] { return GridCreate(2, s, 3, 4, c); }, 20, 24, 20, 14, 0, 0},
      {"cylinder", "Cylinder", [=] { return CylinderCreate(1, 0.5f, 2, s, 8, c); }, 18, 32, 34, 0, 1, 0},
      {"cone", "Cylinder", [=] { return CylinderCreate(1, 0, 2, s, 8, c); }, 10, 16, 18, 0, 1, 0},
      {"tube", "Tube", [=] { return TubeCreate(1, 0.5f, 2, s, 8, c); }, 32, 64, 64, 0, 0, 0},
      {"torus", "Torus", [=] { return TorusCreate(2, 0.5f, s, 6, 8, c); }, 48, 96, 48, 0, 0, 0},
      {"disk", "Disk", [=] { return DiskCreate(1, s, 8, c); }, 9, 8, 9, 8, 0, 0},
      {"ring", "Ring", [=] { return RingCreate(1, 0.5f, s, 8, c); }, 16, 16, 16, 16, 0, 0},
  };
}

struct V3 {
  double x, y, z;
};
V3 Sub(V3 a, V3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
V3 Cross(V3 a, V3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double Dot(V3 a, V3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
V3 Of(const Vector3& v) { return {v.x, v.y, v.z}; }
V3 At(const Mesh* m, int32_t i) { return {m->vertices[i].x, m->vertices[i].y, m->vertices[i].z}; }
V3 Normal(const MeshPolygon& p) { return {p.plane[0], p.plane[1], p.plane[2]}; }
V3 Centroid(const Mesh* m, const MeshPolygon& p) {
  V3 a = At(m, p.vertexIndex[0]), b = At(m, p.vertexIndex[1]), c = At(m, p.vertexIndex[2]);
  return {(a.x + b.x + c.x) / 3, (a.y + b.y + c.y) / 3, (a.z + b.z + c.z) / 3};
}
bool Near(V3 a, V3 b) { return std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z) < 1e-5; }

// Directed edges of the stored corners without a partner running the other
// way; -1 when an edge occurs twice in the same direction.
int BorderEdges(const Mesh* m) {
  std::map<std::pair<int32_t, int32_t>, int> edges;
  for (int32_t i = 0; i < m->meshPolygonCount; i++)
    for (int k = 0; k < 3; k++) edges[{m->polygons[i].vertexIndex[k], m->polygons[i].vertexIndex[(k + 1) % 3]}]++;
  int border = 0;
  for (auto& [e, n] : edges) {
    if (n != 1) return -1;
    border += edges.count({e.second, e.first}) == 0;
  }
  return border;
}

// Six times the enclosed volume, signed by the stored corner order.
double SignedVolume(const Mesh* m) {
  double sum = 0;
  for (int32_t i = 0; i < m->meshPolygonCount; i++) {
    const int32_t* v = m->polygons[i].vertexIndex;
    sum += Dot(At(m, v[0]), Cross(At(m, v[1]), At(m, v[2])));
  }
  return sum;
}

// The counter of a generated name "<base>NN", or -1 when it is not one.
int NameCounter(const Mesh* m, const char* base) {
  const size_t n = std::strlen(base);
  if (std::strncmp(m->name, base, n) != 0) return -1;
  const int value = std::atoi(m->name + n);
  char expect[16];
  std::snprintf(expect, sizeof expect, "%s%d", value < 10 ? "0" : "", value);
  return std::strcmp(m->name + n, expect) == 0 ? value : -1;
}

TEST_F(PrimitivesTest, EveryKindIsClosedOutwardMappedAndSmoothedByGroup) {
  for (const Kind& kind : AllKinds()) {
    Mesh* m = kind.make();
    ASSERT_NE(m, nullptr) << kind.name;
    EXPECT_TRUE(m->vertexCount == kind.vertices && m->meshPolygonCount == kind.slots) << kind.name;
    EXPECT_EQ(m->normalCount, kind.normals) << kind.name;
    EXPECT_EQ(m->meshFlags, 0x07F00027u) << kind.name;  // left for ValidateMesh
    EXPECT_GE(NameCounter(m, kind.base), 0) << kind.name << ": " << m->name;
    // Closed (every edge shared, once each way) and wound to enclose volume.
    EXPECT_EQ(BorderEdges(m), kind.border) << kind.name;
    EXPECT_TRUE(kind.border != 0 || SignedVolume(m) < -1e-3) << kind.name;
    for (int32_t i = 0; i < m->meshPolygonCount; i++) {
      const MeshPolygon& p = m->polygons[i];
      for (int k = 0; k < 3; k++) ASSERT_LT(p.vertexIndex[k], m->vertexCount) << kind.name;
      // Plane normals point inwards: with the default cull mode a polygon is
      // drawn when the camera is on the negative side, so the outside is seen.
      ASSERT_NEAR(Dot(Normal(p), Normal(p)), 1.0, 1e-4) << kind.name << " " << i;
      const double facing = Dot(Normal(p), Sub(Centroid(m, p), {0, kind.insideY, 0}));
      EXPECT_TRUE(!kind.convex || facing < 0) << kind.name << " " << i;
      // A seam that ran back across the texture would span nearly all of it.
      float lo = 2, hi = -1;
      for (const PolygonCorner& c : p.corners) lo = std::fmin(lo, c.u), hi = std::fmax(hi, c.u);
      EXPECT_TRUE(kind.slots <= 12 || hi - lo < 0.6f || e3d::PolygonGroup(&p) != 0) << kind.name << " " << i;
      // Flat faces (their own group) keep hard edges; curves are smooth.
      const bool flat = !std::strcmp(kind.name, "cube") || e3d::PolygonGroup(&p) != 0;
      for (int k = 0; k < 3; k++) {
        const V3 n = Of(m->normals[p.normalIndex[k]]);
        EXPECT_TRUE(flat ? Near(n, Normal(p)) : Dot(n, Normal(p)) > 0.3) << kind.name << " " << i;
      }
    }
    DeleteMesh(m);
  }
  // The flat shapes face -z.
  for (Mesh* m : {BillboardCreate(1, nullptr, 0), GridCreate(1, nullptr, 2, 3, 0), DiskCreate(1, nullptr, 5, 0),
                  RingCreate(2, 1, nullptr, 5, 0)}) {
    for (int32_t i = 0; i < m->meshPolygonCount; i++) EXPECT_TRUE(Near(Normal(m->polygons[i]), {0, 0, 1}));
    DeleteMesh(m);
  }
}

TEST_F(PrimitivesTest, BadArgumentsAreRefusedWithoutWork) {
  const float nan = std::nanf("");
  testhost::Reset();
  const Mesh* refused[] = {BillboardCreate(nan, s, 0), ChCubeCreate(2, 1, s, 2, 0), SphereCreate(1, s, 3, 4, 0),
                           SphereCreate(1, s, 70000, 70000, 0), GridCreate(1, s, 0x7FFFFFFF, 0x7FFFFFFF, 0),
                           CylinderCreate(0, 0, 1, s, 4, 0), TubeCreate(1, 1, 1, s, 4, 0), RingCreate(1, 1, s, 4, 0)};
  for (size_t i = 0; i < sizeof refused / sizeof *refused; i++) EXPECT_EQ(refused[i], nullptr) << i;
  EXPECT_EQ(testhost::Allocations(), 0u);
}

TEST_F(PrimitivesTest, FixedLayouts) {
  // Sphere of 4 rings and 4 segments: poles, first ring at 45 degrees; the
  // closing polygon of a ring keeps u = 1 rather than wrapping to 0.
  Mesh* m = SphereCreate(1, s, 4, 4, kColor);
  const double h = std::sqrt(0.5);
  EXPECT_TRUE(Near(At(m, 0), {0, 0.75, 0}) && Near(At(m, 13), {0, -0.75, 0}));
  EXPECT_TRUE(Near(At(m, 1), {h * 1.5, h * 0.75, 0}) && Near(At(m, 2), {0, h * 0.75, h * 2}));
  const MeshPolygon& closing = m->polygons[3];
  EXPECT_TRUE(closing.vertexIndex[0] == 4 && closing.vertexIndex[1] == 1);
  EXPECT_TRUE(closing.corners[1].u == 0.75f && closing.corners[0].u == 1.0f);
  DeleteMesh(m);
}

TEST_F(PrimitivesTest, NamesCountPerGenerator) {
  // Two digits at least, through 09 and 10; calls refused for their arguments
  // or for memory do not count; the cubes keep a counter of their own.
  Mesh* cube = CubeCreate(1, nullptr, 0);
  int expect = -1;
  do {
    EXPECT_EQ(SphereCreate(1, nullptr, 3, 4, 0), nullptr);
    testhost::FailAllocation(expect % 5 + 2);
    EXPECT_EQ(SphereCreate(1, nullptr, 4, 4, 0), nullptr);
    Mesh* m = SphereCreate(1, nullptr, 4, 4, 0);
    const int counter = NameCounter(m, "Sphere");
    EXPECT_TRUE(expect < 0 || counter == expect) << m->name;
    expect = counter + 1;
    DeleteMesh(m);
  } while (expect <= 11);
  Mesh* next = CubeCreate(1, nullptr, 0);
  EXPECT_EQ(NameCounter(next, "Cube"), NameCounter(cube, "Cube") + 1);
  DeleteMesh(cube);
  DeleteMesh(next);
}

}  // namespace
