// The tools' own pieces: splitting big meshes, textures, loading and framing.
#include <gtest/gtest.h>
#include <stdio.h>
#include <string.h>
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
  EXPECT_EQ(model.meshes.size(), 7u);                 // 602 vertices, at most 100 a mesh
  EXPECT_EQ(model.polygons, 300 * 2);                 // quads are two slots
  EXPECT_EQ(GetSceneNumberOfMeshes(model.scene), 1);  // one tree carries the others

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

  // 600 triangle slots and 602 vertices: refused before any mesh is made.
  options.maxPolygons = 599;
  EXPECT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelTooBig);
  EXPECT_EQ(model.scene, nullptr);
  options.maxPolygons = 602;
  EXPECT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelOk);
  EXPECT_EQ(model.polygons, 600);
  EXPECT_EQ(model.simple, nullptr);
  FreeModel(&model);

  // A hidden lighter copy beside the full tree, which stays as it was.
  options.simplifyTo = 100;
  ASSERT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelOk);
  EXPECT_EQ(model.polygons, 600);
  ASSERT_NE(model.simple, nullptr);
  EXPECT_GT(model.simplePolygons, 0);
  EXPECT_LE(model.simplePolygons, 150);
  EXPECT_NE(IsHiddenMesh(model.simple), 0u);
  EXPECT_EQ(IsHiddenMesh(model.full), 0u);
  EXPECT_EQ(GetSceneNumberOfMeshes(model.scene), 2);
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

namespace {

// Writes bytes to a file of the test's own with the extension given.
std::string WriteModel(const char* name, const std::string& bytes) {
  const std::string path = "/tmp/e3d_tools_" + std::to_string(getpid()) + "_" + name;
  FILE* f = fopen(path.c_str(), "wb");
  fwrite(bytes.data(), 1, bytes.size(), f);
  fclose(f);
  return path;
}

// A binary PLY header and body: six vertices of a zigzag in the z = 0 plane,
// two faces (a triangle and a quad, uchar counts and int indices) and two
// strips of four corners, -1 between them.
std::string BinaryPly(bool bigEndian) {
  std::string b = std::string("ply\nformat binary_") + (bigEndian ? "big" : "little") +
                  "_endian 1.0\nelement vertex 6\nproperty float x\nproperty float y\nproperty float z\n"
                  "element face 2\nproperty list uchar int vertex_indices\n"
                  "element tristrips 1\nproperty list int int vertex_indices\nend_header\n";
  auto word = [&](uint32_t w) {
    for (int i = 0; i < 4; i++) b += char(bigEndian ? w >> (24 - 8 * i) : w >> (8 * i));
  };
  auto real = [&](float v) {
    uint32_t w;
    memcpy(&w, &v, 4);
    word(w);
  };
  for (int i = 0; i < 6; i++) real(float(i / 2)), real(float(i % 2)), real(0);
  b += char(3), word(0), word(2), word(1);
  b += char(4), word(2), word(4), word(5), word(3);
  const int strip[] = {0, 1, 2, 3, -1, 2, 3, 4, 5};
  word(9);
  for (int v : strip) word(uint32_t(v));
  return b;
}

// A binary STL of two facets sharing an edge, normals left 0.
std::string BinaryStl() {
  std::string b(80, ' ');
  const float corners[2][9] = {{0, 0, 0, 1, 0, 0, 0, 1, 0}, {1, 0, 0, 1, 1, 0, 0, 1, 0}};
  const uint32_t count = 2;
  b.append(reinterpret_cast<const char*>(&count), 4);
  for (const auto& facet : corners) {
    b.append(12, '\0');
    b.append(reinterpret_cast<const char*>(facet), sizeof facet);
    b.append(2, '\0');
  }
  return b;
}

// Every polygon the file holds is drawn: one-sided triangle slots equal the
// file's triangles, quads counting two, however the corners are written.
TEST_F(Engine, OurReadersDrawEveryPolygonTheFileHolds) {
  const struct {
    const char* name;
    std::string bytes;
    long long slots;
  } files[] = {
      // Corners with a fourth index, which assimp reads as no face at all; a
      // face by negative indices; a pentagon fanned into three triangles.
      {"corners.obj",
       "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0.5 1.5 0\nvt 0 0\nvn 0 0 1\n"
       "f 1/1/1/1 2/1/1/1 3/1/1/1 4/1/1/1\nf -5 -4 -1\nf 1//1 2//1 3//1 5//1 4//1\n",
       2 + 1 + 3},
      {"strips.ply",
       "ply\nformat ascii 1.0\nelement vertex 6\nproperty float x\nproperty float y\nproperty float z\n"
       "element tristrips 1\nproperty list int int vertex_indices\nend_header\n"
       "0 0 0\n0 1 0\n1 0 0\n1 1 0\n2 0 0\n2 1 0\n9 0 1 2 3 -1 2 3 4 5\n",
       4},
      {"little.ply", BinaryPly(false), 1 + 2 + 4},
      {"two.stl", BinaryStl(), 2},
      {"one.stl",
       "solid t\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n"
       "endloop\nendfacet\nendsolid t\n",
       1},
      {"big.ply", BinaryPly(true), 1 + 2 + 4},
  };
  ModelOptions options;
  options.twoSided = false;
  for (const auto& file : files) {
    const std::string path = WriteModel(file.name, file.bytes);
    Model model;
    std::string error;
    EXPECT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelOk) << file.name << ": " << error;
    EXPECT_EQ(model.polygons, file.slots) << file.name;
    EXPECT_EQ(model.dropped, 0) << file.name;
    FreeModel(&model);
    unlink(path.c_str());
  }
  // Damaged files are refused with a message: an index past the vertices, a
  // count the file cannot hold, a body cut short.
  const std::string ply = BinaryPly(false);
  const struct {
    const char* name;
    std::string bytes;
  } damaged[] = {
      {"index.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1/1/1/1 2 4\n"},
      {"count.ply",
       "ply\nformat ascii 1.0\nelement vertex 4000000000\nproperty float x\nproperty float y\n"
       "property float z\nelement tristrips 1\nproperty list int int vertex_indices\nend_header\n0 0 0\n"},
      {"short.ply", ply.substr(0, ply.size() - 9)},
  };
  for (const auto& file : damaged) {
    const std::string path = WriteModel(file.name, file.bytes);
    Model model;
    std::string error;
    EXPECT_EQ(LoadModel(path.c_str(), options, &model, &error), kModelUnreadable) << file.name;
    EXPECT_FALSE(error.empty());
    unlink(path.c_str());
  }
}

}  // namespace
