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

// One kind of scene member: its record, list head and links, and its searches.
template <class R, auto Head, auto Prev, auto Next, auto ByIndexFn, auto ByNameFn>
struct Kind {
  using Record = R;
  static constexpr auto head = Head;
  static constexpr auto prev = Prev;
  static constexpr auto next = Next;
  static R* ByIndex(Scene* s, int32_t i) { return ByIndexFn(s, i); }
  static R* ByName(Scene* s, const char* n) { return ByNameFn(s, n); }
};
using MeshKind = Kind<Mesh, &Scene::firstMesh, &Mesh::prevInScene, &Mesh::nextInScene,
                      SearchMeshByIndex, SearchMeshByName>;
using CameraKind = Kind<Camera, &Scene::firstCamera, &Camera::prevCamera, &Camera::nextCamera,
                        SearchCameraByIndex, SearchCameraByName>;
using LightKind = Kind<Light, &Scene::firstLight, &Light::prevLight, &Light::nextLight,
                       SearchLightByIndex, SearchLightByName>;
using MaterialKind = Kind<Material, &Scene::firstMaterial, &Material::prevMaterial,
                          &Material::nextMaterial, SearchMaterialByIndex, SearchMaterialByName>;

template <class K>
class SearchTest : public EngineTest {
 protected:
  using Record = typename K::Record;
  static constexpr int kCount = 5;

  // Links the records, named as given, in order, at the tail of the list.
  void Fill(std::initializer_list<const char*> names) {
    int i = 0;
    for (const char* name : names) {
      Record* r = &records_[i++];
      std::strcpy(r->name, name);
      e3d::ListAppend<K::prev, K::next>(scene_.*K::head, r);
    }
  }

  Scene scene_{};
  Record records_[kCount]{};
};

using AllKinds = ::testing::Types<MeshKind, CameraKind, LightKind, MaterialKind>;
TYPED_TEST_SUITE(SearchTest, AllKinds);

TYPED_TEST(SearchTest, ByIndexWalksFromTheHead) {
  using K = TypeParam;
  EXPECT_EQ(K::ByIndex(&this->scene_, 0), nullptr);
  EXPECT_EQ(K::ByIndex(&this->scene_, -1), nullptr);

  this->Fill({"a", "b", "c"});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(K::ByIndex(&this->scene_, i), &this->records_[i]) << i;
  EXPECT_EQ(K::ByIndex(&this->scene_, 3), nullptr);
  EXPECT_EQ(K::ByIndex(&this->scene_, 4), nullptr);
  EXPECT_EQ(K::ByIndex(&this->scene_, -1), nullptr);
  EXPECT_EQ(K::ByIndex(&this->scene_, INT_MIN), nullptr);
  EXPECT_EQ(K::ByIndex(&this->scene_, INT_MAX), nullptr);

  // Appending keeps the list doubly linked in assignment order.
  EXPECT_EQ(this->records_[0].*K::prev, nullptr);
  EXPECT_EQ(this->records_[2].*K::prev, &this->records_[1]);
  EXPECT_EQ(this->records_[2].*K::next, nullptr);
  EXPECT_EQ(e3d::ListLength<K::next>(this->scene_.*K::head), 3);
}

TYPED_TEST(SearchTest, ByNameMatchesWholeNamesExactly) {
  using K = TypeParam;
  Scene* s = &this->scene_;
  EXPECT_EQ(K::ByName(s, "Omni"), nullptr);

  this->Fill({"", "Omni", "Omni01", "Omni", "Spot"});
  EXPECT_EQ(K::ByName(s, "Omni"), &this->records_[1]);  // the earlier of two
  EXPECT_EQ(K::ByName(s, "Omni01"), &this->records_[2]);
  EXPECT_EQ(K::ByName(s, "Spot"), &this->records_[4]);
  EXPECT_EQ(K::ByName(s, "omni"), nullptr);
  EXPECT_EQ(K::ByName(s, "OMNI"), nullptr);
  EXPECT_EQ(K::ByName(s, "Omn"), nullptr);
  EXPECT_EQ(K::ByName(s, "Omni0"), nullptr);
  EXPECT_EQ(K::ByName(s, "Spots"), nullptr);
  // The empty-named head is never found, not even by an empty name.
  EXPECT_EQ(K::ByName(s, ""), nullptr);
  EXPECT_EQ(K::ByName(s, nullptr), nullptr);
}

TEST_F(EngineTest, IndexOfComparesIdentityNotNames) {
  Scene scene{};
  Camera cameras[3]{};
  Light lights[2]{};
  Material materials[2]{};
  Skeleton skeletons[2]{};
  EXPECT_EQ(e3d::GetSceneCameraIndex(&scene, &cameras[0]), -1);
  EXPECT_EQ(e3d::GetSceneLightIndex(&scene, &lights[0]), -1);
  EXPECT_EQ(e3d::GetSceneMaterialIndex(&scene, &materials[0]), -1);
  EXPECT_EQ(e3d::GetSceneSkeletonIndex(&scene, &skeletons[0]), -1);

  for (Camera& c : cameras) {
    std::strcpy(c.name, "Camera");
    e3d::ListAppend<&Camera::prevCamera, &Camera::nextCamera>(scene.firstCamera, &c);
  }
  e3d::ListAppend<&Light::prevLight, &Light::nextLight>(scene.firstLight, &lights[0]);
  e3d::ListAppend<&Material::prevMaterial, &Material::nextMaterial>(scene.firstMaterial, &materials[0]);
  e3d::ListAppend<&Material::prevMaterial, &Material::nextMaterial>(scene.firstMaterial, &materials[1]);
  e3d::ListAppend<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(scene.firstSkeleton, &skeletons[1]);

  for (int i = 0; i < 3; ++i) EXPECT_EQ(e3d::GetSceneCameraIndex(&scene, &cameras[i]), i);
  Camera twin{};
  std::strcpy(twin.name, "Camera");
  EXPECT_EQ(e3d::GetSceneCameraIndex(&scene, &twin), -1);
  EXPECT_EQ(e3d::GetSceneLightIndex(&scene, &lights[0]), 0);
  EXPECT_EQ(e3d::GetSceneLightIndex(&scene, &lights[1]), -1);
  EXPECT_EQ(e3d::GetSceneMaterialIndex(&scene, &materials[1]), 1);
  EXPECT_EQ(e3d::GetSceneSkeletonIndex(&scene, &skeletons[1]), 0);
  EXPECT_EQ(e3d::GetSceneSkeletonIndex(&scene, &skeletons[0]), -1);
  EXPECT_EQ(e3d::GetSceneCameraIndex(&scene, nullptr), -1);
}

TEST_F(EngineTest, SkeletonsAreFoundByTheirRootBoneName) {
  Scene scene{};
  Skeleton skeletons[4]{};
  Bone bones[3]{};
  std::strcpy(bones[0].name, "hips");
  std::strcpy(bones[1].name, "");
  std::strcpy(bones[2].name, "hips");
  skeletons[1].rootBone = &bones[0];
  skeletons[2].rootBone = &bones[1];
  skeletons[3].rootBone = &bones[2];
  EXPECT_EQ(SearchSkeletonByName(&scene, "hips"), nullptr);
  // The first skeleton has no root bone and so no name: it is passed over.
  for (Skeleton& s : skeletons)
    e3d::ListAppend<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(scene.firstSkeleton, &s);
  EXPECT_EQ(SearchSkeletonByName(&scene, "hips"), &skeletons[1]);
  EXPECT_EQ(SearchSkeletonByName(&scene, "Hips"), nullptr);
  EXPECT_EQ(SearchSkeletonByName(&scene, ""), nullptr);
  EXPECT_EQ(SearchSkeletonByName(&scene, nullptr), nullptr);

  scene.firstSkeleton = &skeletons[0];
  skeletons[0].nextSkeleton = nullptr;
  EXPECT_EQ(SearchSkeletonByName(&scene, ""), nullptr);
}

TEST_F(EngineTest, LinkAndUnlinkKeepTheChainConsistent) {
  Scene a{}, b{}, c{}, d{};
  e3d::LinkScene(&a);
  EXPECT_EQ(e3d::firstScene, &a);
  EXPECT_EQ(e3d::lastScene, &a);
  EXPECT_EQ(a.prevScene, nullptr);
  EXPECT_EQ(a.nextScene, nullptr);
  b.prevScene = b.nextScene = &d;  // stale links are overwritten
  e3d::LinkScene(&b);
  e3d::LinkScene(&c);
  EXPECT_EQ(e3d::firstScene, &a);
  EXPECT_EQ(e3d::lastScene, &c);
  EXPECT_EQ(a.nextScene, &b);
  EXPECT_EQ(b.prevScene, &a);
  EXPECT_EQ(b.nextScene, &c);
  EXPECT_EQ(c.prevScene, &b);
  EXPECT_EQ(c.nextScene, nullptr);

  // Not in the chain: nothing changes, even with links that point into it.
  d.prevScene = &a;
  d.nextScene = &c;
  e3d::UnlinkScene(&d);
  EXPECT_EQ(a.nextScene, &b);
  EXPECT_EQ(c.prevScene, &b);
  EXPECT_EQ(d.prevScene, &a);

  // Middle: the neighbours are bridged; the scene keeps its own links.
  e3d::UnlinkScene(&b);
  EXPECT_EQ(a.nextScene, &c);
  EXPECT_EQ(c.prevScene, &a);
  EXPECT_EQ(b.prevScene, &a);
  EXPECT_EQ(b.nextScene, &c);
  EXPECT_EQ(e3d::firstScene, &a);
  EXPECT_EQ(e3d::lastScene, &c);

  // Head: the next scene becomes the head; the unlinked scene's links clear.
  e3d::LinkScene(&b);  // a, c, b
  e3d::UnlinkScene(&a);
  EXPECT_EQ(e3d::firstScene, &c);
  EXPECT_EQ(c.prevScene, nullptr);
  EXPECT_EQ(a.prevScene, nullptr);
  EXPECT_EQ(a.nextScene, nullptr);
  EXPECT_EQ(e3d::lastScene, &b);

  // Tail: the previous scene becomes the tail.
  e3d::UnlinkScene(&b);
  EXPECT_EQ(e3d::lastScene, &c);
  EXPECT_EQ(c.nextScene, nullptr);
  EXPECT_EQ(b.prevScene, nullptr);
  EXPECT_EQ(b.nextScene, nullptr);

  // The only scene, head and tail at once: the chain empties.
  e3d::UnlinkScene(&c);
  EXPECT_EQ(e3d::firstScene, nullptr);
  EXPECT_EQ(e3d::lastScene, nullptr);
  e3d::UnlinkScene(&c);  // an empty chain stays empty
  EXPECT_EQ(e3d::firstScene, nullptr);
  e3d::LinkScene(&a);
  EXPECT_EQ(e3d::firstScene, &a);
  EXPECT_EQ(e3d::lastScene, &a);
}

TEST_F(EngineTest, StartUpForgetsTheChainAndShutDownIsIdempotent) {
  Scene a{}, b{};
  e3d::LinkScene(&a);
  // Not started: shut-down does nothing, the chain survives.
  ReleaseEngine3D();
  EXPECT_EQ(e3d::firstScene, &a);
  EXPECT_EQ(e3d::engineInitialised, 0);

  const std::size_t before = testhost::LiveBlocks();
  InitEngine3D();
  EXPECT_EQ(e3d::engineInitialised, 1);
  EXPECT_EQ(e3d::firstScene, nullptr);
  EXPECT_EQ(e3d::lastScene, nullptr);
  EXPECT_GT(testhost::LiveBlocks(), before);  // the render tables
  e3d::LinkScene(&b);
  ReleaseEngine3D();
  EXPECT_EQ(e3d::engineInitialised, 0);
  EXPECT_EQ(e3d::firstScene, nullptr);
  EXPECT_EQ(e3d::lastScene, nullptr);
  EXPECT_EQ(testhost::LiveBlocks(), before);
  ReleaseEngine3D();
  EXPECT_EQ(testhost::LiveBlocks(), before);
  EXPECT_EQ(testhost::BadFrees(), 0u);

  for (int cycle = 0; cycle < 3; ++cycle) {
    InitEngine3D();
    ReleaseEngine3D();
  }
  EXPECT_EQ(testhost::LiveBlocks(), before);
}

TEST_F(EngineTest, StartUpKeepsTheLowHalfOfTheProcessorType) {
  testhost::SetProcessorType(0xABCD4F63u);
  InitEngine3D();
  EXPECT_EQ(e3d::processorType, 0x4F63u);
  ReleaseEngine3D();
  testhost::SetProcessorType(0x0600u);
  InitEngine3D();
  EXPECT_EQ(e3d::processorType, 0x0600u);
}

}  // namespace
