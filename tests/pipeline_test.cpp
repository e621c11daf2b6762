// The drawing pipeline end to end: view set-up and projection, culling and
// facing, the order of the painter and depth-buffer paths, the near plane,
// hierarchy walks, and what DrawScene and DrawMesh refuse to draw.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "engine/math.h"
#include "engine3d.h"
#include "objects/camera.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "pipeline/transform.h"
#include "support/test_host.h"
#include "viewport/viewport.h"

using namespace e3d;

namespace {

constexpr int kW = 64, kH = 48;
constexpr uint16_t kBackdrop = 0x0421;
constexpr uint16_t kGuard = 0xBEEF;

uint16_t Rgb555(int r, int g, int b) { return uint16_t((r >> 3) << 10 | (g >> 3) << 5 | (b >> 3)); }

// A 64 x 48 target with a guard row above and below, a scene with one camera
// at (0, 0, -100) looking along +z, and quads of a chosen colour and depth.
class Pipeline : public testhost::LeakCheckedTest {
 protected:
  void SetUp() override {
    ReleaseRenderTables();
    ReleaseRadixSort();
    LeakCheckedTest::SetUp();
    InitRenderTables();
    pixels_.assign(kW * (kH + 2), kGuard);
    Clear();
    surface_.pixels = &pixels_[kW];
    surface_.width = kW, surface_.height = kH, surface_.pitch = kW * 2;
    scene_ = CreateScene();
    const Vector3 eye{0, 0, -100}, at{0, 0, 0};
    camera_ = CreateCamera(&eye, &at, 0, 60, 10);
    AssignCameraToScene(scene_, camera_);
    SetActivedSceneCamera(scene_, camera_);
  }
  void TearDown() override {
    for (int i = 0; i < kW; i++) {
      ASSERT_EQ(pixels_[i], kGuard);
      ASSERT_EQ(pixels_[kW * (kH + 1) + i], kGuard);
    }
    DeleteScene(scene_);
    for (Mesh* m : loose_) DeleteMesh(m);
    if (vp_ != nullptr) DeleteViewport(vp_);
    ReleaseRenderTables();
    ReleaseRadixSort();
    LeakCheckedTest::TearDown();
  }
  void Target(bool depth) {
    vp_ = CreateViewport(&surface_, kW, kH, depth ? 1 : 0);
    SetViewportType(vp_, E3D_VIEWPORT_ENABLED | 1);
    SetViewportCamera(vp_, camera_);
    SetSceneViewport(scene_, vp_);
    if (depth) ClearViewportDepthBuffer(vp_, 0xFFFFFFFF);
  }
  void Clear() {
    for (int i = kW; i < kW * (kH + 1); i++) pixels_[i] = kBackdrop;
    if (vp_ != nullptr && ViewportHasDepth(vp_)) ClearViewportDepthBuffer(vp_, 0xFFFFFFFF);
  }
  uint16_t Pixel(int x, int y) const { return pixels_[(y + 1) * kW + x]; }
  int Covered() const {
    int n = 0;
    for (int y = 0; y < kH; y++)
      for (int x = 0; x < kW; x++) n += Pixel(x, y) != kBackdrop;
    return n;
  }

  // An unlit square of side 2 * half in the plane z, facing the camera
  // under the default cull mode, its colour (r, g, b) in colour 1.
  static Mesh* Quad(float half, float z, int r, int g, int b) {
    Mesh* mesh = CreateMesh(4, 2, 0);
    SetMeshVertex(mesh, 0, -half, -half, 0);
    SetMeshVertex(mesh, 1, half, -half, 0);
    SetMeshVertex(mesh, 2, half, half, 0);
    SetMeshVertex(mesh, 3, -half, half, 0);
    SetMeshTriPolygon(mesh, 0, 0, 2, 1, 0, 0);
    SetMeshTriPolygon(mesh, 1, 0, 3, 2, 0, 0);
    mesh = ValidateMesh(mesh);
    SetMeshShadeMode(mesh, 1);
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
  // A second material on both faces of the mesh, drawn in an alpha mode.
  Material* Translucent(Mesh* mesh, uint32_t mode, int32_t level) {
    Material* mat = CreateMaterial(GetMeshDefaultMaterial(mesh));
    SetMaterialAlphaMode(mat, mode);
    SetMaterialAlphaLevel(mat, level);
    SetMaterial(mesh, mat, 2, 0);
    AssignMaterialToScene(scene_, mat);
    return mat;
  }

  std::vector<uint16_t> pixels_;
  SurfaceDesc surface_{};
  Scene* scene_ = nullptr;
  Camera* camera_ = nullptr;
  Viewport* vp_ = nullptr;
  std::vector<Mesh*> loose_;
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
  struct Case {
    float x, y, z;
    uint32_t outcode;
  } cases[] = {{0, 0, 1, 0},        {64, 48, 1, 0},        {64.5f, 0, 1, E3D_OUT_RIGHT},
               {-0.5f, 0, 1, E3D_OUT_LEFT}, {0, -1, 1, E3D_OUT_TOP}, {0, 49, 1, E3D_OUT_BOTTOM},
               {1e6f, 1e6f, 1, E3D_OUT_RIGHT | E3D_OUT_BOTTOM}};
  for (const Case& c : cases) {
    MeshVertex v{c.x, c.y, c.z, 0, 0, 0, 0, 0, 0, 0xFFFF};
    p.Project(&v);
    EXPECT_EQ(v.outcode, c.outcode) << c.x << "," << c.y;
  }
  // In front of the near plane: only the near bit, and the near distance.
  MeshVertex v{0, 0, 10, 0, 0, 0, -7, -7, 0, 0};
  EXPECT_EQ(p.ProjectNear(&v), 10.0f);
  EXPECT_EQ(v.outcode, E3D_OUT_NEAR);
  EXPECT_EQ(v.screenX, -7.0f);
  EXPECT_EQ(v.invZ, 0.1f);
}

TEST_F(Pipeline, FacingAndCullModes) {
  Target(false);
  Mesh* quad = Add(Quad(20, 0, 255, 0, 0));
  DrawScene(scene_);
  const int full = Covered();
  EXPECT_GT(full, 400 / 2);
  EXPECT_EQ(Pixel(32, 24), Rgb555(255, 0, 0));

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

  // A billboard ignores its orientation and never culls.
  GetMeshDefaultMaterial(quad)->flags &= ~8u;
  SetMeshBillboardMode(quad, 16);
  Clear(), DrawScene(scene_);
  EXPECT_EQ(Covered(), full);
}

TEST_F(Pipeline, PainterDrawsFarToNear) {
  Target(false);
  // Assigned near first: only the depth keys can put the far one behind.
  Add(Quad(10, -20, 0, 255, 0));
  Add(Quad(40, 30, 255, 0, 0));
  DrawScene(scene_);
  EXPECT_EQ(Pixel(32, 24), Rgb555(0, 255, 0));
  EXPECT_EQ(Pixel(32, 9), Rgb555(255, 0, 0));
  EXPECT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 2);
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
  DrawScene(scene_);
  EXPECT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 0);  // only childless top-level meshes count
  const uint16_t blue = Rgb555(0, 0, 255), yellow = Rgb555(255, 255, 0);
  EXPECT_EQ(Pixel(32 - 10, 24), blue);
  EXPECT_EQ(Pixel(32 + 10, 24), yellow);

  // A hidden parent's child is still drawn.
  HideMesh(parent);
  ShowMesh(child);
  Clear(), DrawScene(scene_);
  EXPECT_EQ(Pixel(32 - 10, 24), kBackdrop);
  EXPECT_EQ(Pixel(32 + 10, 24), yellow);
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

TEST_F(Pipeline, DrawMeshAlone) {
  Target(true);
  Mesh* wall = Quad(40, 30, 248, 0, 0);
  Mesh* glow = Quad(10, -20, 0, 0, 248);
  loose_ = {wall};
  Material* add = CreateMaterial(GetMeshDefaultMaterial(glow));
  SetMaterialAlphaMode(add, 1);
  SetMaterialAlphaLevel(add, 255);
  SetMaterial(glow, add, 2, 0);
  ASSERT_EQ(AttachChildToNode(wall, glow), 1);
  SetMeshModelPosition(glow, 0, 0, -50);
  SetMeshViewport(wall, vp_);

  // Never activated meshes and hidden ones draw nothing.
  wall->meshFlags &= ~e3d::kMeshValidated;
  DrawMesh(wall);
  EXPECT_EQ(Covered(), 0);
  wall->meshFlags |= e3d::kMeshValidated;
  HideMesh(wall);
  DrawMesh(wall);
  EXPECT_EQ(Covered(), 0);
  ShowMesh(wall);
  ShowMesh(glow);

  DrawMesh(wall);
  EXPECT_EQ(Pixel(32, 24), Rgb555(248, 0, 248));
  EXPECT_EQ(Pixel(32, 9), Rgb555(248, 0, 0));
  EXPECT_EQ(wall->drawRecordCount, 4);
  DeleteMaterial(add);
}

}  // namespace
