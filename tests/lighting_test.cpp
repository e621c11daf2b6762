// Vertex lighting: the per-light routines and their tables, the attenuation
// curve, set-up into model space (and the types it skips), the flat and
// corner colours, and the headlight of a mesh without lights.
#include <cmath>

#include "engine/math.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "pipeline/lighting.h"
#include "pipeline/lighting_routines.h"
#include "support/test_host.h"

namespace {

using e3d::lighting;

uint32_t Pack(uint32_t r, uint32_t g, uint32_t b) { return e3d::PackColor555(r, g, b); }

class LightingTest : public testhost::LeakCheckedTest {
 protected:
  void SetUp() override {
    LeakCheckedTest::SetUp();
    e3d::MatrixIdentity(&mesh.worldMatrix);
    mesh.vertices = vertices;
    mesh.normals = normals;
    mesh.normalCount = 3;
    mesh.lightList = list;
    for (int i = 0; i < 3; i++) polygon.vertexIndex[i] = polygon.normalIndex[i] = i;
    polygon.plane[2] = 1;  // the plane z = 0, normal +z
    const float colors[3][3] = {{10, 20, 29}, {100, 200, 50}, {1, 2, 3}};
    for (int c = 0; c < 3; c++)
      for (int ch = 0; ch < 3; ch++) material.colors[c][ch] = colors[c][ch];
    lighting = e3d::LightSums{0, 0, 0, nullptr, &polygon, &vertices[0]};
  }

  Light* MakeLight(int slot, uint32_t type, Vector3 local, float k = 1) {
    Light* l = &lights[slot];
    l->lightFlags = e3d::kLightEnabled | type;
    l->localPosition = local;
    l->color[0] = 1, l->color[1] = 0.5f, l->color[2] = 0.25f;
    l->intensity = k;
    l->nearAttenuation = 10, l->farAttenuation = 20;
    list[slot] = l;
    return l;
  }
  // Runs one flat routine on the current light from clear sums; the red sum.
  static float Red(e3d::FlatRoutine routine) {
    lighting.sumRed = lighting.sumGreen = lighting.sumBlue = 0;
    routine();
    return lighting.sumRed;
  }

  Mesh mesh{};
  MeshVertex vertices[3]{{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};
  Vector3 normals[3]{{0, 0, 1}, {0, 0, 1}, {0, 0, 1}};
  MeshPolygon polygon{};
  Material material{};
  Light lights[4]{};
  Light* list[e3d::kMeshLightListEntries]{};
};

TEST_F(LightingTest, OmniLightsAndAttenuationCurve) {
  // Oblique: V = (-3, 0, 4), cosine 0.8, times k and colour.
  lighting.light = MakeLight(0, 2, Vector3{3, 0, -4}, 2);
  EXPECT_FLOAT_EQ(Red(e3d::OmniFlat), 1.6f);
  EXPECT_EQ(Red(e3d::OmniFlatBack), 0);  // the light is behind the back side

  // Straight below: s / r = 1, so the sum is the curve itself, a smoothstep
  // falling from 1 at the near distance (10) to 0 at the far one (20).
  lighting.light = MakeLight(1, 3, Vector3{}, 1);
  for (float r : {5.0f, 12.5f, 15.0f, 20.0f, 30.0f}) {
    const float t = std::fmin(std::fmax((r - 10) / 10, 0.0f), 1.0f), want = 1 - t * t * (3 - 2 * t);
    lights[1].localPosition = Vector3{0, 0, -r};
    EXPECT_NEAR(Red(e3d::OmniAttenFlat), want, 1e-6f) << r;
    lights[1].localPosition = Vector3{0, 0, r};
    EXPECT_NEAR(Red(e3d::OmniAttenFlatBack), want, 1e-6f) << r;
    EXPECT_EQ(Red(e3d::OmniAttenFlat), 0);
  }
  // At the near distance an oblique light gives s / r: 0.6 here.
  lights[1].localPosition = Vector3{8, 0, -6};
  EXPECT_FLOAT_EQ(Red(e3d::OmniAttenFlat), 0.6f);
}

TEST_F(LightingTest, DirectAndOneSidedLights) {
  Light* d = MakeLight(0, 4, Vector3{0, 0, -5}, 3);
  lighting.light = d;
  // One-sided also needs the light on the matching side of the plane: below
  // z = 6 (d = -6); on z = -5 (d = 5) it counts as above.
  using namespace e3d;
  const struct { float z, d; FlatRoutine f; float want; } cases[] = {
      {0.8f, 0, DirectFlat, 2.4f},     {0.8f, 0, DirectFlatBack, 0},     {-0.8f, 0, DirectFlat, 0},
      {-0.8f, 0, DirectFlatBack, 2.4f}, {1, -6, DirectSidedFlat, 3},     {1, 5, DirectSidedFlat, 0},
      {-1, 5, DirectSidedFlatBack, 3}, {-1, 0, DirectSidedFlatBack, 0}};
  for (const auto& c : cases) {
    d->localDirection = Vector3{0, 0, c.z};
    polygon.plane[3] = c.d;
    EXPECT_NEAR(Red(c.f), c.want, 1e-6f) << c.z << " " << c.d;
  }

  // Corners test against the plane through P normal to N, not the polygon's.
  Vector3 n{0, 0, 1};
  vertices[0].z = -5;  // the light lies in the corner's plane
  lighting.sumRed = 0;
  e3d::DirectSidedCornerBack(&n);
  EXPECT_FLOAT_EQ(lighting.sumRed, 3);
  d->localDirection = Vector3{0, 0, 1};
  e3d::DirectSidedCorner(&n);
  EXPECT_FLOAT_EQ(lighting.sumRed, 3);
}

TEST_F(LightingTest, SetupBringsLightsIntoModelSpace) {
  // World: a quarter turn about z, then a move by (10, 0, 0); pivot (1, 1, 1).
  e3d::MatrixRotationZ(&mesh.worldMatrix, 90);
  mesh.worldMatrix.m[3] = 10;
  mesh.pivot = Vector3{1, 1, 1};
  Light* omni = MakeLight(0, 2, Vector3{});
  Light* direct = MakeLight(1, 20, Vector3{});
  omni->savedPosition = direct->savedPosition = Vector3{11, 4, 6};
  direct->savedDirection = Vector3{11, 4, 9};
  e3d::SetupMeshLights(&mesh);
  // (11, 4, 6) - pivot = (10, 3, 5); minus the move (0, 3, 5); turned back (3, 0, 5).
  const Vector3& p = omni->localPosition;
  EXPECT_NEAR(std::fabs(p.x - 3) + std::fabs(p.y) + std::fabs(p.z - 5), 0, 3e-5);
  EXPECT_NEAR(direct->localDirection.z, 1, 1e-6);  // (0, 0, 3) normalised

  // Types 5, 18 and 21, disabled lights and lights past the null keep what
  // they had; type 18 still lights, from its old (here zero) position.
  for (uint32_t type : {5u, 18u, 21u}) {
    Light* l = MakeLight(2, type, Vector3{7, 7, 7});
    l->localDirection = Vector3{0, 0, 1};
    l->savedPosition = l->savedDirection = Vector3{50, 50, 50};
    e3d::SetupMeshLights(&mesh);
    EXPECT_EQ(l->localPosition.x, 7) << type;
    EXPECT_EQ(l->localDirection.z, 1) << type;
  }
  omni->lightFlags &= ~e3d::kLightEnabled;
  omni->savedPosition = Vector3{};
  e3d::SetupMeshLights(&mesh);
  EXPECT_NEAR(omni->localPosition.x, 3, 1e-5);
}

TEST_F(LightingTest, FlatColourSumsClampsAndPacks) {
  const uint32_t flat = 3;
  MakeLight(0, 2, Vector3{0, 0, -10});  // full cosine, colour (1, 0.5, 0.25)
  // sum x c1 + c2 + c0: 111, 122, 44.5 (ties to even: 44).
  e3d::LightPolygonFlat(&mesh, &polygon, flat, &material);
  EXPECT_EQ(polygon.colors[0], Pack(111, 122, 44));

  // A second light adds before the colours are formed; red passes 255.
  MakeLight(1, 4, Vector3{}, 2)->localDirection = Vector3{0, 0, 1};
  e3d::LightPolygonFlat(&mesh, &polygon, flat, &material);
  EXPECT_EQ(polygon.colors[0], Pack(255, 255, 70));  // blue 69.5
  // Textured: the sum scales 255 and c1 is not used; a negative channel clamps to 0.
  material.colors[0][2] = -500;
  e3d::LightPolygonFlat(&mesh, &polygon, flat | 0x800000, &material);
  EXPECT_EQ(polygon.colors[0], Pack(255, 255, 0));

  // Back-facing polygons use the back table: nothing reaches the back here.
  polygon.polygonFlags = e3d::kPolygonBackFacing;
  e3d::LightPolygonFlat(&mesh, &polygon, flat, &material);
  EXPECT_EQ(polygon.colors[0], Pack(11, 22, 0));
}

TEST_F(LightingTest, CornerColoursAreEightBitsEach) {
  MakeLight(0, 3, Vector3{0, 0, -15});  // attenuated: half at 15
  normals[1] = Vector3{0, 0, -1};        // faces away
  vertices[2].z = 5;                     // 20 away: past the far distance
  e3d::LightPolygonCorners(&mesh, &polygon, 7, &material);
  EXPECT_EQ(polygon.colors[0], (61u << 16) | (72u << 8) | 38u);  // 50+11, 50+22, 6.25+32
  EXPECT_EQ(polygon.colors[1], (11u << 16) | (22u << 8) | 32u);
  EXPECT_EQ(polygon.colors[2], polygon.colors[1]);
}

// Normals all along the face's own: without them, or past their end, the
// corners are lit by the face normal and come out the same.
TEST_F(LightingTest, CornersWithoutNormalsUseTheFaceNormal) {
  MakeLight(0, 3, Vector3{0, 0, -15});
  e3d::LightPolygonCorners(&mesh, &polygon, 7, &material);
  const uint32_t lit[3] = {polygon.colors[0], polygon.colors[1], polygon.colors[2]};
  mesh.normals = nullptr;
  e3d::LightPolygonCorners(&mesh, &polygon, 7, &material);
  EXPECT_TRUE(polygon.colors[0] == lit[0] && polygon.colors[1] == lit[1] && polygon.colors[2] == lit[2]);
  mesh.normals = normals;
  polygon.normalIndex[1] = 3;
  polygon.colors[1] = 0;
  e3d::LightPolygonCorners(&mesh, &polygon, 7, &material);
  EXPECT_EQ(polygon.colors[1], lit[1]);
}

TEST_F(LightingTest, ShadeModesAndHeadlight) {
  const Vector3 eye{0, 0, 10};
  // No lights: the headlight, flat in every word, and the shade bits turn flat.
  polygon.polygonFlags = e3d::kPolygonBackFacing;  // camera on the normal's side: I = 1
  const uint32_t lit = Pack(111, 222, 82);
  EXPECT_EQ(e3d::ShadeLitPolygon(&mesh, &polygon, 0x700007, &material, &eye), 0x700003u);
  EXPECT_EQ(polygon.colors[0], lit);
  EXPECT_EQ(e3d::ShadeLitPolygon(&mesh, &polygon, 0x800005, &material, &eye), 0x800003u);
  EXPECT_EQ(polygon.colors[1], Pack(255, 255, 255));  // textured: I x 255
  polygon.polygonFlags = 0;  // the sign follows the facing: I = -1, black
  e3d::ShadeLitPolygon(&mesh, &polygon, 3, &material, &eye);
  EXPECT_EQ(polygon.colors[1], 0u);

  // With lights: by shade mode.
  mesh.lightList = list;
  MakeLight(0, 2, Vector3{0, 0, 10});
  EXPECT_EQ(e3d::ShadeLitPolygon(&mesh, &polygon, 1, &material, &eye), 1u);
  EXPECT_EQ(polygon.colors[0], Pack(111, 222, 82));
  e3d::ShadeLitPolygon(&mesh, &polygon, 1 | 0x1000000, &material, &eye);
  EXPECT_EQ(polygon.colors[0], 0x7FFFu);
  polygon.colors[0] = 1;
  EXPECT_TRUE(e3d::ShadeLitPolygon(&mesh, &polygon, 2, &material, &eye) == 2u && polygon.colors[0] == 1u);
}

}  // namespace
