// The tools' own pieces: splitting big meshes, textures, loading and framing.
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "model.h"
#include "stage.h"
#include "texture.h"

namespace {

struct Engine : ::testing::Test {
  void SetUp() override { InitEngine3D(); }
  void TearDown() override { ReleaseEngine3D(); }
};

// A strip of quads sharing their vertices, 2 x (n + 1) of them, as an OFF file.
std::string WriteStrip(int quads) {
  const std::string path = "/tmp/e3d_tools_strip_" + std::to_string(getpid()) + ".off";
  FILE* f = fopen(path.c_str(), "w");
  fprintf(f, "OFF\n%d %d 0\n", 2 * (quads + 1), quads);
  for (int i = 0; i <= quads; i++) fprintf(f, "%d 0 0\n%d 1 0\n", i, i);
  for (int i = 0; i < quads; i++) fprintf(f, "4 %d %d %d %d\n", 2 * i, 2 * i + 2, 2 * i + 3, 2 * i + 1);
  fclose(f);
  return path;
}

TEST(SplitPolygons, KeepsEveryPolygonOnceWithinTheVertexLimit) {
  std::vector<SourcePolygon> polygons;
  for (unsigned i = 0; i < 500; i++) polygons.push_back({{2 * i, 2 * i + 2, 2 * i + 3, 2 * i + 1}, 4});
  for (unsigned i = 0; i < 100; i++) polygons.push_back({{i, 1000 - i, 7}, 3});
  const std::vector<MeshChunk> chunks = SplitPolygons(polygons, 1002, 64);
  ASSERT_GT(chunks.size(), 15u);
  unsigned next = 0;
  for (const MeshChunk& c : chunks) {
    EXPECT_LE(c.vertices.size(), 64u);
    std::vector<bool> present(1002, false);
    for (unsigned v : c.vertices) {
      EXPECT_FALSE(present[v]) << "vertex listed twice";
      present[v] = true;
    }
    for (unsigned p : c.polygons) {
      EXPECT_EQ(p, next++) << "polygons out of order or lost";
      for (int k = 0; k < polygons[p].corners; k++) EXPECT_TRUE(present[polygons[p].v[k]]);
    }
  }
  EXPECT_EQ(next, polygons.size());
  // A limit that never bites gives one chunk.
  EXPECT_EQ(SplitPolygons(polygons, 1002, 1 << 20).size(), 1u);
}

TEST(ModelTexture, ResamplesToPowersOfTwoAndKeysCutOutTexels) {
  // 12 x 10: left half opaque black, right half transparent.
  std::vector<unsigned char> rgba(12 * 10 * 4, 0);
  for (int i = 0; i < 120; i++) rgba[4 * i + 3] = (i % 12) < 6 ? 255 : 0;
  ModelTexture* t = CreateModelTexture(rgba.data(), 12, 10, 512);
  ASSERT_NE(t, nullptr);
  EXPECT_EQ(t->chain.levelWidths[0], 8);
  EXPECT_EQ(t->chain.levelHeights[0], 8);
  EXPECT_EQ(t->chain.levelWidths[3], 1);
  EXPECT_EQ(t->option & 3u, 3u);  // 8888 with the key
  const uint32_t* texels = static_cast<const uint32_t*>(t->chain.levelPixels[0]);
  EXPECT_NE(texels[0], 0xFF000000u) << "opaque black must not become the key";
  EXPECT_EQ(texels[7], 0xFF000000u);
  FreeModelTexture(t);
  EXPECT_EQ(CreateModelTexture(rgba.data(), 0, 10, 512), nullptr);
}

TEST_F(Engine, LoadsSplitsFramesAndDrawsAModel) {
  const std::string path = WriteStrip(300);
  ModelOptions options;
  options.vertexLimit = 100;
  Model model;
  std::string error;
  ASSERT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelOk) << error;
  EXPECT_EQ(model.meshes.size(), 7u);          // 602 vertices, at most 100 a mesh
  EXPECT_EQ(model.polygons, 300 * 2 * 2);      // quads are two slots, two sides
  EXPECT_EQ(GetSceneNumberOfMeshes(model.scene), 7);

  Stage stage;
  ASSERT_TRUE(CreateStage(&stage, model.scene, 64, 48, 1, kModelRadius, 1));
  SetSceneDrawModes(model.scene, kShadeGouraud, 0, 1);
  stage.yaw = 0;
  stage.pitch = 0;
  PlaceStageCamera(&stage);
  DrawStage(&stage, 0);
  // The strip is 300 x 1 seen face on: a thin band across the middle, framed
  // whole (its bounding sphere fits the frame's height), nothing above or below.
  auto covered = [&](int row) {
    int n = 0;
    for (int x = 0; x < 64; x++) n += stage.pixels[row * 64 + x] != 0;
    return n;
  };
  auto framed = [&] {
    EXPECT_GT(covered(24), 40);
    EXPECT_EQ(stage.pixels[24 * 64], 0);
    EXPECT_EQ(stage.pixels[24 * 64 + 63], 0);
    EXPECT_EQ(covered(2), 0);
    EXPECT_EQ(covered(45), 0);
  };
  framed();
  // The other side shows too.
  stage.yaw = 180;
  PlaceStageCamera(&stage);
  DrawStage(&stage, 0);
  framed();
  FreeStage(&stage);
  FreeModel(&model);
  EXPECT_EQ(model.scene, nullptr);

  // 1200 triangle slots with both sides: refused before any mesh is made.
  options.maxPolygons = 1000;
  EXPECT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelTooBig);
  EXPECT_EQ(model.scene, nullptr);
  options.twoSided = false;
  EXPECT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelOk);
  EXPECT_EQ(model.polygons, 600);
  FreeModel(&model);
  EXPECT_EQ(LoadModel("/nonexistent.obj", options, &model, &error), kModelUnreadable);
  EXPECT_NE(error.find("no such file"), std::string::npos);
  remove(path.c_str());
}

// A scene with a camera of its own keeps it listed, and moved, after the
// stage is gone; the stage's lights leave with it.
TEST_F(Engine, StageBorrowsTheSceneCamera) {
  Scene* scene = CreateScene();
  Mesh* cube = CubeCreate(50, nullptr, 0xFFFFFF);
  ActivateMesh(cube);
  AssignMeshToScene(scene, cube, 0);
  const Vector3 eye = {0, 0, -300}, origin = {0, 0, 0};
  Camera* camera = CreateCamera(&eye, &origin, 0, 60, 10);
  AssignCameraToScene(scene, camera);

  Stage stage;
  ASSERT_TRUE(CreateStage(&stage, scene, 32, 32, 0, 40, 1));
  EXPECT_EQ(stage.camera, camera);
  EXPECT_EQ(GetSceneNumberOfLights(scene), 2);
  DrawStage(&stage, 0);
  EXPECT_NE(stage.pixels[16 * 32 + 16], 0) << "the cube is in the middle";
  FreeStage(&stage);
  EXPECT_EQ(GetSceneNumberOfCameras(scene), 1);
  EXPECT_EQ(SearchCameraByIndex(scene, 0), camera);
  EXPECT_EQ(GetSceneNumberOfLights(scene), 0);
  EXPECT_NE(GetCameraPosition(camera, 0).z, -300.0f);
  DeleteWholeScene(scene);
}

}  // namespace
