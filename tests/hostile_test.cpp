// Hostile numbers that once wrote outside where a draw may write: a NaN
// vertex, a NaN scissor bound, a triangle handed to a drawer unclipped, a
// NaN left by a cut; and a refused validation that a host must be able to
// tell from a deletion. (An inside-out scissor is in the fuzz corpus.)
#include <cmath>
#include <limits>

#include "draw_fixture.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "raster/clip.h"

namespace {

constexpr uint16_t kBackdrop = 0x0421;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

class HostileTest : public DrawFixture<32, 24> {
 protected:
  void SetUp() override {
    Start({0, 0, -100}, kBackdrop);
    Target(false);
  }
  // A white square over the whole viewport, both sides drawn, for DrawMesh.
  Mesh* Cover() {
    Mesh* mesh = Square(100);
    SetMeshCullMode(mesh, 0x08);
    SetMaterialColor(GetMeshDefaultMaterial(mesh), 1, 255, 255, 255);
    SetMeshViewport(mesh, vp_);
    return mesh;
  }
  // Pixels changed outside columns l..r - 1, rows t..b - 1.
  int Outside(int l, int r, int t, int b) {
    int n = 0;
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) n += (x < l || x >= r || y < t || y >= b) && Pixel(x, y) != kBackdrop;
    return n;
  }
};

// A NaN screen position became 0 on its way into the walker, so a triangle
// with one NaN corner was drawn from the viewport's corner, outside the
// scissor; an infinite one likewise. Such polygons are left out.
TEST_F(HostileTest, PolygonsWithUnusableVerticesAreLeftOut) {
  SetViewportScissor(vp_, 8, 24, 6, 18);
  Mesh* mesh = Cover();
  DrawMesh(mesh);
  EXPECT_EQ(Outside(8, 24, 6, 18), 0);
  EXPECT_NE(Pixel(16, 12), kBackdrop);
  for (float bad : {kNaN, std::numeric_limits<float>::infinity(), 1e35f}) {
    Clear();
    SetMeshVertex(mesh, 2, bad, 20, 0);  // past its box: still drawn
    DrawMesh(mesh);
    EXPECT_EQ(Outside(8, 24, 6, 18), 0) << bad;
  }
  DeleteMesh(mesh);
}

// A NaN left or top bound let the clipper pass everything on that side.
TEST_F(HostileTest, AScissorBoundIsNeverNaN) {
  SetViewportScissor(vp_, kNaN, 20, kNaN, 10);
  float rect[4];
  GetViewportScissor(vp_, rect);
  EXPECT_TRUE(rect[0] == kW && rect[1] == 20 && rect[2] == kH && rect[3] == 10);
}

// A piece-built mesh with a polygon that repeats a vertex is kept as it was,
// even when memory is short: the host still owns it and deletes it.
TEST_F(HostileTest, ARefusedValidationKeepsTheMeshWhateverTheMemory) {
  Mesh* mesh = CreateMesh(0, 0, 0);
  for (int i = 0; i < 3; ++i) AddMeshVertex(mesh, float(i), float(i * i), 0);
  AddMeshTriPolygon(mesh, 0, 1, 2, 0, 0);
  mesh->polygons[0].vertexIndex[1] = 0;  // as a refused slot or a careless host leaves it
  testhost::FailAllocation(1);
  EXPECT_EQ(ValidateMesh(mesh), nullptr);
  testhost::FailAllocation(0);
  EXPECT_EQ(mesh->vertexCount, 3);
  DeleteMesh(mesh);
}

// A triangle handed to a drawer with a corner off the viewport (unclipped by
// a host) walked outside the pixels; it is dropped instead.
TEST_F(HostileTest, DrawersDropTrianglesReachingOffTheViewport) {
  SetRenderInfos(vp_, nullptr);
  Material front{}, back{};
  MeshPolygon face{};
  face.vertexIndex[1] = 1, face.vertexIndex[2] = 2;
  face.material = &front, face.backMaterial = &back;
  face.colors[0] = 0x7FFF;
  const float far[][2] = {{-1000, 5}, {10, -4000}, {kW + 0.5f, 5}, {10, kH + 0.1f}};
  for (const auto& at : far)
    for (uint32_t side : {0u, 0x80u}) {  // one winding of the two fills
      MeshVertex v[3] = {};
      const float xy[3][2] = {{at[0], at[1]}, {10, 20}, {20, 5}};
      for (int i = 0; i < 3; ++i) v[i].screenX = xy[i][0], v[i].screenY = xy[i][1], v[i].invZ = 0.25f;
      face.polygonFlags = side;
      FlatSolidTriangle(&face, v);
      GouraudSolidTriangle(&face, v);
      EXPECT_EQ(Outside(0, 0, 0, 0), 0) << at[0] << ", " << at[1];
    }
}

// Cutting extreme values can leave a NaN corner in the clipped polygon; the
// walker took it for 0 and drew from the viewport's corner.
TEST_F(HostileTest, AClippedPolygonWithANaNCornerIsNotDrawn) {
  SetRenderInfos(vp_, nullptr);
  e3d::clipViewport = vp_;
  MeshPolygon face{};
  Material m{};
  face.material = face.backMaterial = &m;
  face.colors[0] = 0x7FFF;
  e3d::ClipPolygon& p = e3d::clipPolygon;
  p.count = 3, p.group = e3d::kClipPlain;
  const float xy[3][2] = {{kNaN, 10}, {30, 20}, {30, 2}};
  for (int i = 0; i < 3; ++i) p.in[i].screenX = xy[i][0], p.in[i].screenY = xy[i][1], p.in[i].invZ = 0.25f;
  e3d::DrawClipFan(&face, FlatSolidTriangle);
  EXPECT_EQ(Outside(0, 0, 0, 0), 0);
}

// A mesh below a light below a mesh stands in the scene beside its top mesh;
// deleting the scene freed it with the top mesh while holding it as the next.
TEST_F(HostileTest, DeletingASceneFreesEachMeshOnce) {
  Scene* scene = CreateScene();
  Mesh* top = Cover();
  Mesh* below = Cover();
  const Vector3 at{0, 0, 0};
  const float white[4] = {1, 1, 1, 1};
  Light* light = CreateOmniLight(&at, white, 1, 1, 10, 0);
  ASSERT_NE(AssignMeshToScene(scene, top, 0), nullptr);
  ASSERT_NE(AssignMeshToScene(scene, below, 0), nullptr);
  AttachChildToNode(top, light);
  AttachChildToNode(light, below);  // a light's child keeps its scene
  EXPECT_EQ(GetSceneNumberOfMeshes(scene), 2);
  DeleteScene(scene);  // both meshes untagged: deleted, each once
  DeleteLight(light);
}

}  // namespace
