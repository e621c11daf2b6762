// A W x H picture with a guard row above and below and guard columns right of
// every row, a scene with one camera looking at the origin, and the viewport
// that draws the scene into the picture.
#pragma once
#include <cstdint>
#include <vector>

#include "engine3d.h"
#include "support/test_host.h"
#include "viewport/viewport.h"

template <int W, int H>
class DrawFixture : public testhost::LeakCheckedTest {
 protected:
  static constexpr int kW = W, kH = H, kPitch = W + 6;
  static constexpr uint16_t kGuard = 0xBEEF;

  // Called from SetUp: the engine started afresh, the scene and its camera.
  void Start(Vector3 eye, uint16_t backdrop) {
    ReleaseEngine3D();  // process-wide: start from nothing
    LeakCheckedTest::SetUp();
    InitEngine3D();
    backdrop_ = backdrop;
    buffer_.assign(kPitch * (kH + 2), kGuard);
    scene_ = CreateScene();
    const Vector3 at{0, 0, 0};
    camera_ = CreateCamera(&eye, &at, 0, 60, 10);
    AssignCameraToScene(scene_, camera_);
  }
  void TearDown() override {
    int outside = 0;
    for (int i = 0; i < kPitch * (kH + 2); ++i)
      outside += (i < kPitch || i >= kPitch * (kH + 1) || i % kPitch >= kW) && buffer_[i] != kGuard;
    EXPECT_EQ(outside, 0) << "pixels written outside the picture";
    DeleteWholeScene(scene_);
    if (vp_ != nullptr) DeleteViewport(vp_);
    ReleaseEngine3D();
    LeakCheckedTest::TearDown();
  }

  uint16_t& Pixel(int x, int y) { return buffer_[(y + 1) * kPitch + x]; }
  void Clear() {
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) Pixel(x, y) = backdrop_;
    if (vp_ != nullptr && e3d::ViewportHasDepth(vp_)) ClearViewportDepthBuffer(vp_, 0xFFFFFFFF);
  }
  // A cleared viewport over the picture, with a depth buffer or not, the scene's.
  Viewport* Target(bool depth) {
    SurfaceDesc surface{};
    surface.pixels = &Pixel(0, 0);
    surface.width = kW, surface.height = kH, surface.pitch = kPitch * 2;
    vp_ = CreateViewport(&surface, kW, kH, depth ? 1 : 0);
    SetViewportType(vp_, E3D_VIEWPORT_ENABLED | 1);
    SetViewportCamera(vp_, camera_);
    SetSceneViewport(scene_, vp_);
    Clear();
    return vp_;
  }
  // An unlit square of side 2 * half at the origin, facing the camera under
  // the default cull mode.
  static Mesh* Square(float half) {
    Mesh* mesh = CreateMesh(4, 2, 0);
    const float corners[4][2] = {{-half, -half}, {half, -half}, {half, half}, {-half, half}};
    for (int i = 0; i < 4; ++i) SetMeshVertex(mesh, i, corners[i][0], corners[i][1], 0);
    SetMeshTriPolygon(mesh, 0, 0, 2, 1, 0, 0);
    SetMeshTriPolygon(mesh, 1, 0, 3, 2, 0, 0);
    mesh = ValidateMesh(mesh);
    SetMeshShadeMode(mesh, 1);
    return mesh;
  }
  // A second material on both faces of the mesh, drawn in an alpha mode.
  void Translucent(Mesh* mesh, uint32_t mode, int32_t level) {
    Material* mat = CreateMaterial(GetMeshDefaultMaterial(mesh));
    SetMaterialAlphaMode(mat, mode);
    SetMaterialAlphaLevel(mat, level);
    SetMaterial(mesh, mat, 2, 0);
    AssignMaterialToScene(scene_, mat);
  }

  Scene* scene_ = nullptr;
  Camera* camera_ = nullptr;
  Viewport* vp_ = nullptr;
  uint16_t backdrop_ = 0;
  std::vector<uint16_t> buffer_;
};
