// The drawing pipeline end to end: view set-up and projection, culling and
// facing, the order of the painter and depth-buffer paths, the near plane,
// hierarchy walks, and what DrawScene and DrawMesh refuse to draw.
#include "draw_fixture.h"
#include "engine/math.h"
#include "objects/camera.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "pipeline/transform.h"

using namespace e3d;

namespace {

constexpr uint16_t kBackdrop = 0x0421;

uint16_t Rgb555(int r, int g, int b) { return uint16_t((r >> 3) << 10 | (g >> 3) << 5 | (b >> 3)); }

// A 64 x 48 picture, its camera at (0, 0, -100) looking along +z, and quads
// of a chosen colour and depth.
class Pipeline : public DrawFixture<64, 48> {
 protected:
  void SetUp() override { Start({0, 0, -100}, kBackdrop); }
  int Covered() {
    int n = 0;
    for (int y = 0; y < kH; y++)
      for (int x = 0; x < kW; x++) n += Pixel(x, y) != kBackdrop;
    return n;
  }

  // The square moved to the plane z, its colour (r, g, b) in colour 1.
  static Mesh* Quad(float half, float z, int r, int g, int b) {
    Mesh* mesh = Square(half);
    Material* m = GetMeshDefaultMaterial(mesh);
    for (int i = 0; i < 3; i++) SetMaterialColor(m, i, 0, 0, 0);
    SetMaterialColor(m, 1, float(r), float(g), float(b));
    SetMeshModelPosition(mesh, 0, 0, z);
    return mesh;
  }
  Mesh* Add(Mesh* mesh) {
    EXPECT_NE(AssignMeshToScene(scene_, mesh, 0), nullptr);
    return mesh;
  }
};

TEST_F(Pipeline, ViewSetUp) {
  Target(false);
  // The stored aspect is negated; aspect 1 drops the 0.75 factor, so 1 and
  // 4:3 give the same scale (a new 4:3 viewport gets aspect 1).
  const float base = 32.0f / Tan(30.0f * 0.017453292f);
  for (float aspect : {1.0f, 4.0f / 3.0f, 2.0f}) {
    vp_->aspect = -aspect;
    SetupProjectionScale(vp_, camera_);
    EXPECT_NEAR(camera_->projScale, aspect == 1.0f ? base : base * 0.75f * aspect, 1e-3) << aspect;
  }

  // Straight down turns about x by -90 degrees; then the roll turns the rows.
  camera_->target = {0, -50, -100};
  camera_->roll = 90;
  BuildCameraMatrix(camera_);
  const float* m = camera_->cameraMatrix.m;
  const float expected[12] = {0, 0, -1, 0, 1, 0, 0, 0, 0, -1, 0, -100};
  for (int i = 0; i < 12; i++) EXPECT_NEAR(m[i], expected[i], 1e-6) << i;

  // A vertex exactly on a bound is inside; just past it is not.
  SetupViewportClip(vp_);
  e3d::Projector p{};
  e3d::SetProjectorView(&p, vp_, camera_);
  p.projScale = 1, p.centerX = 0, p.centerY = 0, p.projectionSign = 1, p.nearPlane = 10;
  e3d::MatrixIdentity(&p.matrix);
  const struct { float x, y; uint32_t outcode; } cases[] = {
      {0, 0, 0}, {64, 48, 0}, {64.5f, 0, E3D_OUT_RIGHT}, {-0.5f, 0, E3D_OUT_LEFT}, {0, -1, E3D_OUT_TOP},
      {0, 49, E3D_OUT_BOTTOM}, {1e6f, 1e6f, E3D_OUT_RIGHT | E3D_OUT_BOTTOM}};
  for (const auto& c : cases) {
    MeshVertex v{c.x, c.y, 1, 0, 0, 0, 0, 0, 0, 0xFFFF};
    p.Project(&v);
    EXPECT_EQ(v.outcode, c.outcode) << c.x << "," << c.y;
  }
  // In front of the near plane: only the near bit, and the near distance.
  MeshVertex v{0, 0, 10, 0, 0, 0, -7, -7, 0, 0};
  EXPECT_EQ(p.ProjectNear(&v), 10.0f);
  EXPECT_TRUE(v.outcode == E3D_OUT_NEAR && v.screenX == -7.0f && v.invZ == 0.1f);
}

TEST_F(Pipeline, FacingAndCullModes) {
  Target(false);
  Mesh* quad = Add(Quad(20, 0, 255, 0, 0));
  DrawScene(scene_);
  const int full = Covered();
  EXPECT_TRUE(full > 400 / 2 && Pixel(32, 24) == Rgb555(255, 0, 0));

  // Turned around, the same quad shows its back: culled by default, drawn
  // by the opposite cull mode, by no culling, and by a two-sided material.
  SetMeshModelOrientation(quad, 0, 180, 0);
  Clear(), DrawScene(scene_);
  EXPECT_EQ(Covered(), 0);
  for (uint32_t mode : {16u, 8u}) {
    SetMeshCullMode(quad, mode);
    Clear(), DrawScene(scene_);
    EXPECT_EQ(Covered(), full) << mode;
  }
  SetMeshCullMode(quad, 32);
  SetMaterialCullMode(GetMeshDefaultMaterial(quad), 8);
  GetMeshDefaultMaterial(quad)->flags |= 8;  // two-sided
  Clear(), DrawScene(scene_);
  EXPECT_EQ(Covered(), full);
}

TEST_F(Pipeline, DepthPathDrawsOpaqueBeforeTranslucent) {
  for (bool depth : {true, false}) {
    Target(depth);
    // A near additive quad assigned before a far opaque one: the sum shows
    // only when the opaque quad is drawn first.
    Mesh* glow = Add(Quad(10, -20, 0, 0, 248));
    Translucent(glow, 1, 255);
    Mesh* wall = Add(Quad(40, 30, 248, 0, 0));
    DrawScene(scene_);
    EXPECT_EQ(Pixel(32, 24), Rgb555(248, 0, 248)) << depth;
    EXPECT_EQ(Pixel(32, 9), Rgb555(248, 0, 0)) << depth;
    for (Mesh* m : {glow, wall}) RemoveMeshFromScene(scene_, m, 0), DeleteMesh(m);
    // Opaque polygons in submission order: the depth test hides the far one.
    Mesh* near = Add(Quad(5, -40, 0, 248, 0));
    Mesh* far = Add(Quad(40, 30, 248, 0, 0));
    Clear(), DrawScene(scene_);
    EXPECT_EQ(Pixel(32, 24), Rgb555(0, 248, 0)) << depth;
    for (Mesh* m : {near, far}) RemoveMeshFromScene(scene_, m, 0), DeleteMesh(m);
    SetSceneViewport(scene_, nullptr);
    DeleteViewport(vp_);
    vp_ = nullptr;
    Clear();
  }
}

TEST_F(Pipeline, NearPlaneCrossingIsClipped) {
  Target(true);
  // A floor running from behind the camera into the distance.
  Mesh* floor = Add(Quad(500, 0, 200, 200, 200));
  SetMeshModelOrientation(floor, 90, 0, 0);
  SetMeshModelPosition(floor, 0, -20, 300);
  SetMeshCullMode(floor, 8);
  DrawScene(scene_);
  EXPECT_NE(floor->meshFlags & e3d::kMeshNearCrossing, 0u);
  EXPECT_EQ(floor->meshFlags & e3d::kMeshOutside, 0u);
  // The lower half of the view is floor up to the bottom edge, none above.
  for (int x = 0; x < kW; x++) {
    EXPECT_EQ(Pixel(x, kH - 1), Rgb555(200, 200, 200)) << x;
    EXPECT_EQ(Pixel(x, 10), kBackdrop) << x;
  }
  // Wholly behind the camera: every corner in front of the near plane.
  SetMeshModelPosition(floor, 0, 0, -400);
  SetMeshModelOrientation(floor, 0, 0, 0);
  Clear(), DrawScene(scene_);
  EXPECT_EQ(floor->meshFlags & (e3d::kMeshNearCrossing | e3d::kMeshOutside),
            e3d::kMeshNearCrossing | e3d::kMeshOutside);
  EXPECT_EQ(Covered(), 0);
  EXPECT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 0);
}

TEST_F(Pipeline, HierarchiesAndRefusals) {
  Target(false);
  Mesh* parent = Quad(5, 0, 0, 0, 255);
  Mesh* child = Quad(5, 0, 255, 255, 0);
  SetMeshModelPosition(child, 30, 0, 0);  // relative to the parent
  ASSERT_EQ(AttachChildToNode(parent, child), 1);
  SetMeshModelPosition(parent, -15, 0, 0);
  Add(parent);
  // A hidden parent's child is still drawn; only childless top-level meshes count.
  HideMesh(parent);
  ShowMesh(child);
  DrawScene(scene_);
  EXPECT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 0);
  EXPECT_EQ(Pixel(32 - 10, 24), kBackdrop);
  EXPECT_EQ(Pixel(32 + 10, 24), Rgb555(255, 255, 0));
  ShowMesh(parent);

  // Each refusal leaves the pixels and the count alone.
  Add(Quad(3, 0, 255, 255, 255));
  DrawScene(scene_);
  ASSERT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 1);
  auto refused = [&](const char* why) {
    Clear(), scene_->visibleMeshCount = 7, DrawScene(scene_);
    EXPECT_EQ(Covered(), 0) << why;
    EXPECT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 7) << why;
  };
  scene_->activeCameraIndex = -1, refused("no camera"), scene_->activeCameraIndex = 0;
  vp_->flags &= ~E3D_VIEWPORT_ENABLED, refused("viewport off"), vp_->flags |= E3D_VIEWPORT_ENABLED;
  scene_->sceneFlags &= ~e3d::kSceneReady, refused("not ready"), scene_->sceneFlags |= e3d::kSceneReady;
  SetSceneViewport(scene_, nullptr), refused("no viewport"), SetSceneViewport(scene_, vp_);
}

TEST_F(Pipeline, DrawMeshRefusesNeverActivatedAndHiddenMeshes) {
  Target(true);
  Mesh* wall = Quad(40, 30, 248, 0, 0);
  SetMeshViewport(wall, vp_);
  wall->meshFlags &= ~e3d::kMeshValidated;
  DrawMesh(wall);
  EXPECT_EQ(Covered(), 0);
  wall->meshFlags |= e3d::kMeshValidated;
  HideMesh(wall);
  DrawMesh(wall);
  EXPECT_EQ(Covered(), 0);
  ShowMesh(wall);
  DrawMesh(wall);
  EXPECT_EQ(Pixel(32, 24), Rgb555(248, 0, 0));
  DeleteMesh(wall);
}

}  // namespace
