// Whole scenes drawn end to end and compared by a hash of their pixels with
// images a person has looked at. Both builds must give the same bits, on
// every span path. With
// E3D_IMAGE_DIR set, every image is also written there as a PPM.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "draw_fixture.h"
#include "raster/span_wide.h"

namespace {

using e3d::SpanPath;

class SceneImage : public DrawFixture<160, 120>, public ::testing::WithParamInterface<SpanPath> {
 protected:
  void SetUp() override {
    Start({0, 30, -220}, 0x0C63);
    if (GetParam() == SpanPath::kAvx2 && !testhost::ProcessorHasAvx2()) GTEST_SKIP() << "no AVX2 here";
    if (!e3d::UseSpanPath(GetParam())) GTEST_SKIP() << "no such path in this build";
  }
  void TearDown() override {
    e3d::UseSpanPath(SpanPath::kBaseline);
    DrawFixture::TearDown();
  }

  Mesh* Add(Mesh* mesh, float x, float y, float z, uint32_t shade) {
    ActivateMesh(mesh);
    SetMeshShadeMode(mesh, shade);
    SetMeshModelPosition(mesh, x, y, z);
    return mesh;
  }
  Mesh* Show(Mesh* mesh) { return AssignMeshToScene(scene_, mesh, 0); }
  void Light(Light* light, int32_t attenuated) {
    SetLightStatus(light, 1, attenuated);
    AssignLightToScene(scene_, light, 1);
  }
  // Draws the scene and returns the hash of the picture.
  uint64_t Draw(bool depth, const char* name) {
    Target(depth);
    DrawScene(scene_);
    return Finish(name);
  }
  // The FNV-1a hash of the picture's rows.
  uint64_t Finish(const char* name) {
    if (const char* dir = std::getenv("E3D_IMAGE_DIR")) WritePpm(std::string(dir) + "/" + name + ".ppm");
    uint64_t hash = 0xCBF29CE484222325u;
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x)
        for (int b : {0, 8}) hash = (hash ^ (Pixel(x, y) >> b & 0xFF)) * 0x100000001B3u;
    return hash;
  }
  void WritePpm(const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) return;
    std::fprintf(f, "P6 %d %d 255\n", kW, kH);
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x)
        for (int s : {10, 5, 0}) {
          const int v = Pixel(x, y) >> s & 31;
          std::fputc(v << 3 | v >> 2, f);
        }
    std::fclose(f);
  }
};

// A Gouraud sphere lit from the upper left by an omni light, and from below
// right by an attenuated one, through the depth buffer.
TEST_P(SceneImage, GouraudSphereThroughDepthBuffer) {
  Show(Add(SphereCreate(60, nullptr, 14, 20, 0xD0D0D0), 0, 0, 0, 7));
  const Vector3 upperLeft{-300, 250, -200}, lowerRight{90, -90, -60};
  const float white[4] = {1, 1, 1, 1}, blue[4] = {0.3f, 0.5f, 1, 1};
  Light(CreateOmniLight(&upperLeft, white, 0.9f, 0, 0, 0), 0);
  Light(CreateOmniLight(&lowerRight, blue, 1, 40, 160, 0), 1);
  EXPECT_EQ(Draw(true, "gouraud-sphere"), 12965935678006338542u);
  EXPECT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 1);
}

// A flat cube partly behind a blended plane that overruns three screen
// edges, lit by a direct and an omni light, sorted far to near.
TEST_P(SceneImage, FlatCubeAndBlendedPlanePainter) {
  Mesh* cube = Add(CubeCreate(80, nullptr, 0xE0D0C0), -20, 0, 40, 3);
  SetMeshModelOrientation(cube, 30, 40, 0);
  Show(cube);
  Mesh* plane = Add(GridCreate(200, nullptr, 2, 2, 0x4080F0), 90, 0, -20, 3);
  Translucent(plane, 2, 128);
  Show(plane);
  const Vector3 from{-200, 300, -250}, to{0, 0, 0}, right{250, 0, -150};
  const float white[4] = {1, 1, 1, 1}, red[4] = {1, 0.3f, 0.2f, 1};
  Light(CreateDirectLight(&from, &to, white, 0.8f, 0), 0);
  Light(CreateOmniLight(&right, red, 0.8f, 0, 0, 0), 0);
  EXPECT_EQ(Draw(false, "cube-and-plane"), 5779940749396218095u);
}

// A tilted parent with two children, a billboard facing the camera whatever
// its own turn, and an added disk; no lights, so the headlight colours them.
TEST_P(SceneImage, HierarchyAndBillboardHeadlit) {
  Mesh* post = Add(CylinderCreate(15, 15, 70, nullptr, 12, 0xA0A0A8), -40, 0, 0, 7);
  Mesh* halo = Add(TorusCreate(35, 6, nullptr, 8, 16, 0x40C0E0), 0, 10, 0, 7);
  Mesh* knob = Add(CubeCreate(20, nullptr, 0xF08020), 0, 45, 0, 3);
  SetMeshModelOrientation(post, 0, 0, -30);
  AttachChildToNode(post, halo);
  AttachChildToNode(post, knob);
  Show(post);
  Mesh* sign = Add(BillboardCreate(50, nullptr, 0xF0E060), 55, 20, 0, 1);
  SetMeshModelOrientation(sign, 0, 70, 30);
  SetMeshBillboardMode(sign, 16);
  Show(sign);
  Mesh* glow = Add(DiskCreate(30, nullptr, 16, 0xA04010), 55, -35, -10, 3);
  Translucent(glow, 1, 255);
  Show(glow);
  EXPECT_EQ(Draw(true, "hierarchy-billboard"), 17638294533669951917u);
  EXPECT_EQ(GetSceneNumberOfVisibleMeshes(scene_), 2);  // the parent's tree is not counted
}

// DrawMesh: a lit torus with a child cube through the mesh's own viewport.
TEST_P(SceneImage, MeshDrawnAlone) {
  Mesh* torus = Add(TorusCreate(50, 18, nullptr, 10, 20, 0x60D080), 0, 0, 0, 7);
  SetMeshModelOrientation(torus, -50, 0, 0);
  Mesh* cube = Add(CubeCreate(30, nullptr, 0xD06060), 0, 0, 0, 3);
  AttachChildToNode(torus, cube);
  const Vector3 at{-150, 200, -200};
  const float white[4] = {1, 1, 1, 1};
  ::Light* light = CreateOmniLight(&at, white, 1, 0, 0, 0);
  SetLightStatus(light, 1, 0);
  AssignLightToMesh(light, torus);
  SetMeshViewport(torus, Target(true));
  DrawMesh(torus);
  EXPECT_EQ(Finish("mesh-alone"), 2239212229386406601u);
  DeleteMesh(torus);
  DeleteLight(light);
}

INSTANTIATE_TEST_SUITE_P(SpanPaths, SceneImage, ::testing::Values(SpanPath::kBaseline, SpanPath::kAvx2),
                         [](const auto& p) { return p.param == SpanPath::kAvx2 ? "Avx2" : "Baseline"; });

}  // namespace
