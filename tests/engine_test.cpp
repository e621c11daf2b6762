// Engine start-up and shut-down, the scene chain and the look-ups inside a
// scene, over hand-built scenes and records.
#include <climits>
#include <cstring>

#include "engine/registry.h"
#include "engine3d.h"
#include "objects/camera.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "objects/skeleton.h"
#include "support/test_host.h"

namespace {

// Keeps the process-wide chain of the library as it was around each test.
class EngineTest : public testhost::LeakCheckedTest {
 protected:
  void SetUp() override {
    LeakCheckedTest::SetUp();
    savedFirst_ = e3d::firstScene;
    savedLast_ = e3d::lastScene;
    savedInit_ = e3d::engineInitialised;
    e3d::firstScene = e3d::lastScene = nullptr;
    e3d::engineInitialised = 0;
  }
  void TearDown() override {
    if (e3d::engineInitialised) ReleaseEngine3D();
    e3d::firstScene = savedFirst_;
    e3d::lastScene = savedLast_;
    e3d::engineInitialised = savedInit_;
    LeakCheckedTest::TearDown();
  }

 private:
  Scene* savedFirst_ = nullptr;
  Scene* savedLast_ = nullptr;
  int32_t savedInit_ = 0;
};

// Names as given, linked in order at the tail of the list.
template <auto Head, auto Prev, auto Next, class R, size_t N>
void Fill(Scene& scene, R (&records)[N], std::initializer_list<const char*> names) {
  size_t i = 0;
  for (const char* name : names) {
    std::strcpy(records[i].name, name);
    e3d::ListAppend<Prev, Next>(scene.*Head, &records[i++]);
  }
}

TEST_F(EngineTest, SearchesByIndexNameAndIdentity) {
  Scene s{};
  Mesh meshes[5]{};
  EXPECT_TRUE(SearchMeshByIndex(&s, 0) == nullptr && SearchMeshByName(&s, "Omni") == nullptr);
  Fill<&Scene::firstMesh, &Mesh::prevInScene, &Mesh::nextInScene>(s, meshes, {"", "Omni", "Omni01", "Omni", "Spot"});
  for (int i = 0; i < 5; ++i) EXPECT_EQ(SearchMeshByIndex(&s, i), &meshes[i]) << i;
  EXPECT_TRUE(SearchMeshByIndex(&s, 5) == nullptr && SearchMeshByIndex(&s, INT_MIN) == nullptr);
  // Whole names, exactly; the earlier of two; an empty name is never found.
  EXPECT_EQ(SearchMeshByName(&s, "Omni"), &meshes[1]);
  for (const char* miss : {"omni", "Omni0", "", static_cast<const char*>(nullptr)})
    EXPECT_EQ(SearchMeshByName(&s, miss), nullptr) << (miss ? miss : "null");
  // The other kinds walk their own lists; an index is found by identity.
  Camera cameras[2]{};
  Light lights[2]{};
  Material materials[2]{};
  Fill<&Scene::firstCamera, &Camera::prevCamera, &Camera::nextCamera>(s, cameras, {"a", "b"});
  Fill<&Scene::firstLight, &Light::prevLight, &Light::nextLight>(s, lights, {"a", "b"});
  Fill<&Scene::firstMaterial, &Material::prevMaterial, &Material::nextMaterial>(s, materials, {"a", "b"});
  EXPECT_TRUE(SearchCameraByIndex(&s, 1) == &cameras[1] && SearchCameraByName(&s, "b") == &cameras[1]);
  EXPECT_TRUE(SearchLightByIndex(&s, 1) == &lights[1] && SearchLightByName(&s, "b") == &lights[1]);
  EXPECT_TRUE(SearchMaterialByIndex(&s, 1) == &materials[1] && SearchMaterialByName(&s, "b") == &materials[1]);
  Camera twin = cameras[1];
  EXPECT_TRUE(e3d::GetSceneCameraIndex(&s, &twin) == -1 && e3d::GetSceneLightIndex(&s, &lights[1]) == 1);
  // A skeleton is named by its root bone; the first has none and is passed over.
  Skeleton skeletons[3]{};
  Bone bones[2]{};
  for (int i = 0; i < 3; ++i) {
    if (i > 0) skeletons[i].rootBone = &bones[i - 1], std::strcpy(bones[i - 1].name, "hips");
    e3d::ListAppend<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(s.firstSkeleton, &skeletons[i]);
  }
  EXPECT_TRUE(SearchSkeletonByName(&s, "hips") == &skeletons[1] && SearchSkeletonByName(&s, "") == nullptr);
  EXPECT_EQ(e3d::GetSceneSkeletonIndex(&s, &skeletons[2]), 2);
}

// The chain holds this scene alone, or nothing.
void ExpectChain(Scene* only) { EXPECT_TRUE(e3d::firstScene == only && e3d::lastScene == only); }

TEST_F(EngineTest, StartUpForgetsTheChainAndShutDownIsIdempotent) {
  Scene a{}, b{};
  e3d::LinkScene(&a);
  ReleaseEngine3D();  // not started: does nothing, the chain survives
  ExpectChain(&a);
  const std::size_t before = testhost::LiveBlocks();
  testhost::SetProcessorType(0xABCD4F63u);
  InitEngine3D();
  EXPECT_EQ(e3d::processorType, 0x4F63u);  // the low half
  ExpectChain(nullptr);
  EXPECT_GT(testhost::LiveBlocks(), before);  // the render tables
  e3d::LinkScene(&b);
  ReleaseEngine3D();
  EXPECT_EQ(e3d::engineInitialised, 0);
  ExpectChain(nullptr);
  ReleaseEngine3D();
  EXPECT_EQ(testhost::LiveBlocks(), before);
}

}  // namespace
