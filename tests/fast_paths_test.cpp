// Short cuts of the draw that must not change a bit: the short path of the
// float conversion, and the corner colours remembered in a walk.
#include <limits>

#include "draw_fixture.h"
#include "engine/math.h"
#include "objects/light.h"
#include "objects/mesh.h"
#include "pipeline/lighting.h"

namespace {

TEST(FloatToInt, ShortPathAgreesWithTheWideRoutine) {
  const double two30 = 1073741824.0, two32 = 4294967296.0;
  const double values[] = {0.0, -0.0, 0.5, 1.5, 2.5, -0.5, -0.7, -1.5, 127.5, 255.5, 1e9, -1e9,
                           two30 - 0.5, two30, -two30, two30 * 2 - 0.4, two32 + 7.4, -two32 + 9.0,
                           1e300, -1e300, std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()};
  for (double v : values) EXPECT_EQ(e3d::FloatToInt(v), e3d::FloatToIntWide(v)) << v;
  // A value past 32 bits wraps to its low half.
  EXPECT_EQ(e3d::FloatToInt(two32 + 7.4), 7);
  for (double v = -300.0; v < 600.0; v += 0.125) ASSERT_EQ(e3d::FloatToInt(v), e3d::FloatToIntWide(v)) << v;
}

// A Gouraud sphere lit by an omni and a direct light: every corner colour a
// draw leaves must be what the corner's own lighting gives, and a change of
// light or material between draws must show in the next one.
class CornerMemoTest : public DrawFixture<160, 120> {
 protected:
  void SetUp() override { Start({0, 20, -200}, 0); }
};

TEST_F(CornerMemoTest, DrawnCornersMatchTheirOwnLighting) {
  Viewport* vp = Target(true);
  const Vector3 at{0, 0, 0}, lamp{-80, 60, -90}, sky{50, 100, -50};
  Mesh* sphere = ValidateMesh(SphereCreate(50, nullptr, 12, 16, 0xC08040));
  SetMeshShadeMode(sphere, 7);
  SetMeshViewport(sphere, vp);
  const float white[4] = {1, 1, 1, 1}, blue[4] = {0.2f, 0.4f, 1, 1};
  Light* omni = CreateOmniLight(&lamp, white, 0.8f, 0, 0, 0);
  Light* direct = CreateDirectLight(&sky, &at, blue, 0.6f, 0);
  for (Light* light : {omni, direct}) {
    SetLightStatus(light, 1, 0);
    AssignLightToMesh(light, sphere);
  }

  // Returns a sum of the colours drawn.
  auto expectOwnLighting = [&](const char* when) {
    uint64_t sum = 0;
    for (MeshPolygon* p = sphere->polygons; p < sphere->polygons + sphere->meshPolygonCount; p++)
      p->colors[0] = p->colors[1] = p->colors[2] = 0xDEADu;
    ClearViewportDepthBuffer(vp, 0xFFFFFFFFu);
    DrawMesh(sphere);
    e3d::SetupMeshLights(sphere);
    int lit = 0;
    for (MeshPolygon* p = sphere->polygons; p < sphere->polygons + sphere->meshPolygonCount; p++) {
      if (p->colors[0] == 0xDEADu) continue;
      const Material* m = (p->polygonFlags & e3d::kPolygonBackFacing) ? p->backMaterial : p->material;
      MeshPolygon alone = *p;
      e3d::LightPolygonCorners(sphere, &alone, sphere->meshFlags & p->polygonFlags & m->flags & 0x7F00007u, m);
      for (int k = 0; k < 3; k++) {
        EXPECT_EQ(p->colors[k], alone.colors[k]) << when << ", polygon " << (p - sphere->polygons);
        sum += p->colors[k];
      }
      lit++;
    }
    EXPECT_GT(lit, sphere->meshPolygonCount / 4) << when;
    return sum;
  };
  const uint64_t first = expectOwnLighting("first draw");
  SetLightColor(omni, 255, 0, 0);
  const uint64_t reddened = expectOwnLighting("light changed");
  SetMaterialColor(GetMeshDefaultMaterial(sphere), 1, 40, 250, 40);
  const uint64_t greened = expectOwnLighting("material changed");
  EXPECT_TRUE(first != reddened && reddened != greened);

  DeleteMesh(sphere);
  DeleteLight(omni);
  DeleteLight(direct);
}

}  // namespace
