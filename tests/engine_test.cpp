// Engine start-up and shut-down, the scene chain and the look-ups inside a
// scene, over hand-built scenes and records.
#include <climits>
#include <cstring>
#include <type_traits>

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
template <class R, auto Head, auto Prev, auto Next, auto ByIndexFn, auto ByNameFn, auto IndexOfFn = nullptr>
struct Kind {
  using Record = R;
  static constexpr auto head = Head;
  static constexpr auto prev = Prev;
  static constexpr auto next = Next;
  static R* ByIndex(Scene* s, int32_t i) { return ByIndexFn(s, i); }
  static R* ByName(Scene* s, const char* n) { return ByNameFn(s, n); }
  static constexpr auto indexOf = IndexOfFn;
};
using MeshKind = Kind<Mesh, &Scene::firstMesh, &Mesh::prevInScene, &Mesh::nextInScene,
                      SearchMeshByIndex, SearchMeshByName>;
using CameraKind = Kind<Camera, &Scene::firstCamera, &Camera::prevCamera, &Camera::nextCamera,
                        SearchCameraByIndex, SearchCameraByName, e3d::GetSceneCameraIndex>;
using LightKind = Kind<Light, &Scene::firstLight, &Light::prevLight, &Light::nextLight,
                       SearchLightByIndex, SearchLightByName, e3d::GetSceneLightIndex>;
using MaterialKind = Kind<Material, &Scene::firstMaterial, &Material::prevMaterial,
                          &Material::nextMaterial, SearchMaterialByIndex, SearchMaterialByName,
                          e3d::GetSceneMaterialIndex>;

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

TYPED_TEST(SearchTest, ByIndexAndByName) {
  using K = TypeParam;
  Scene* s = &this->scene_;
  EXPECT_EQ(K::ByIndex(s, 0), nullptr);
  EXPECT_EQ(K::ByName(s, "Omni"), nullptr);
  this->Fill({"", "Omni", "Omni01", "Omni", "Spot"});
  for (int i = 0; i < 5; ++i) EXPECT_EQ(K::ByIndex(s, i), &this->records_[i]) << i;
  EXPECT_EQ(K::ByIndex(s, 5), nullptr);
  EXPECT_EQ(K::ByIndex(s, INT_MIN), nullptr);
  // Whole names, exactly; the earlier of two; an empty name is never found.
  EXPECT_EQ(K::ByName(s, "Omni"), &this->records_[1]);
  EXPECT_EQ(K::ByName(s, "omni"), nullptr);
  EXPECT_EQ(K::ByName(s, "Omni0"), nullptr);
  EXPECT_EQ(K::ByName(s, ""), nullptr);
  EXPECT_EQ(K::ByName(s, nullptr), nullptr);
  // The index of a record is found by identity, not by name.
  if constexpr (!std::is_null_pointer_v<decltype(K::indexOf)>) {
    typename K::Record twin = this->records_[3];
    EXPECT_EQ(K::indexOf(s, &this->records_[3]), 3);
    EXPECT_EQ(K::indexOf(s, &twin), -1);
    EXPECT_EQ(K::indexOf(s, nullptr), -1);
  }
}

TEST_F(EngineTest, SkeletonsGoByTheirRootBone) {
  Scene scene{};
  Skeleton skeletons[4]{};
  EXPECT_EQ(e3d::GetSceneSkeletonIndex(&scene, &skeletons[0]), -1);
  // A skeleton is named by its root bone; the first has none and is passed over.
  Bone bones[3]{};
  std::strcpy(bones[0].name, "hips");
  std::strcpy(bones[2].name, "hips");
  for (int i = 0; i < 4; ++i) {
    if (i > 0) skeletons[i].rootBone = &bones[i - 1];
    e3d::ListAppend<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(scene.firstSkeleton, &skeletons[i]);
  }
  EXPECT_EQ(SearchSkeletonByName(&scene, "hips"), &skeletons[1]);
  EXPECT_EQ(SearchSkeletonByName(&scene, ""), nullptr);
  EXPECT_EQ(e3d::GetSceneSkeletonIndex(&scene, &skeletons[3]), 3);
}

// The chain is exactly these scenes, linked both ways.
void ExpectChain(std::initializer_list<Scene*> scenes) {
  EXPECT_EQ(e3d::firstScene, scenes.size() ? *scenes.begin() : nullptr);
  EXPECT_EQ(e3d::lastScene, scenes.size() ? *(scenes.end() - 1) : nullptr);
  Scene* prev = nullptr;
  for (Scene* s : scenes) {
    EXPECT_EQ(s->prevScene, prev);
    EXPECT_TRUE(prev == nullptr || prev->nextScene == s);
    prev = s;
  }
  EXPECT_TRUE(prev == nullptr || prev->nextScene == nullptr);
}

TEST_F(EngineTest, LinkAndUnlinkKeepTheChainConsistent) {
  Scene a{}, b{}, c{}, d{};
  b.prevScene = b.nextScene = &d;  // stale links are overwritten
  for (Scene* s : {&a, &b, &c}) e3d::LinkScene(s);
  ExpectChain({&a, &b, &c});
  // Not in the chain: nothing changes, even with links that point into it.
  d.prevScene = &a;
  d.nextScene = &c;
  e3d::UnlinkScene(&d);
  ExpectChain({&a, &b, &c});
  // Middle: the neighbours are bridged; the scene keeps its own links.
  e3d::UnlinkScene(&b);
  ExpectChain({&a, &c});
  EXPECT_TRUE(b.prevScene == &a && b.nextScene == &c);
  // Head, then tail: the unlinked scene's links clear.
  e3d::LinkScene(&b);
  e3d::UnlinkScene(&a);
  ExpectChain({&c, &b});
  EXPECT_TRUE(a.prevScene == nullptr && a.nextScene == nullptr);
  e3d::UnlinkScene(&b);
  ExpectChain({&c});
  EXPECT_TRUE(b.prevScene == nullptr && b.nextScene == nullptr);
  // The only scene, head and tail at once: the chain empties, and stays so.
  e3d::UnlinkScene(&c);
  e3d::UnlinkScene(&c);
  ExpectChain({});
  e3d::LinkScene(&a);
  ExpectChain({&a});
}

TEST_F(EngineTest, StartUpForgetsTheChainAndShutDownIsIdempotent) {
  Scene a{}, b{};
  e3d::LinkScene(&a);
  ReleaseEngine3D();  // not started: does nothing, the chain survives
  ExpectChain({&a});
  const std::size_t before = testhost::LiveBlocks();
  testhost::SetProcessorType(0xABCD4F63u);
  InitEngine3D();
  EXPECT_EQ(e3d::processorType, 0x4F63u);  // the low half
  ExpectChain({});
  EXPECT_GT(testhost::LiveBlocks(), before);  // the render tables
  e3d::LinkScene(&b);
  ReleaseEngine3D();
  EXPECT_EQ(e3d::engineInitialised, 0);
  ExpectChain({});
  ReleaseEngine3D();
  for (int cycle = 0; cycle < 3; ++cycle) {
    InitEngine3D();
    ReleaseEngine3D();
  }
  EXPECT_EQ(testhost::LiveBlocks(), before);
}

}  // namespace
