// Scenes: the object lists and their refusals, the active camera, the sort
// area, and the two kinds of deletion.
#include <cstring>

#include "scene_fixture.h"
#include "viewport/viewport.h"

namespace {

using e3d::firstScene;
using SceneTest = SceneFixture;

void* E3D_CALL EchoHook(int32_t a, int32_t b, int32_t value) {
  return reinterpret_cast<void*>(uintptr_t(a * 10000 + b * 1000 + value));
}

TEST_F(SceneTest, CreateChainsAnEmptySceneWithItsHook) {
  testhost::FailAllocation(1);
  EXPECT_EQ(CreateScene(), nullptr);
  EXPECT_EQ(firstScene, nullptr);
  Scene* a = CreateScene();
  Scene* b = CreateScene();
  EXPECT_TRUE(b->prevScene == a && a->activeCameraIndex == -1 && !e3d::SceneIsReady(a));
  // The hook answers the scene until it has a host function and a table entry.
  a->userHook = EchoHook;
  EXPECT_EQ(a->sceneHook(3, 1, a), a);
  a->hookTable = e3d::Allocate<e3d::SceneHookEntry>(2);  // freed with the scene
  a->hookTable[1] = {0, 2.5f};                            // ties go to even
  EXPECT_EQ(a->sceneHook(3, 2, a), reinterpret_cast<void*>(uintptr_t(32002)));
  DeleteScene(a);
  DeleteScene(b);
  EXPECT_EQ(e3d::lastScene, nullptr);
}

TEST_F(SceneTest, MeshesEnterOnceAndResizeTheSortArea) {
  Scene* s = CreateScene();
  Scene* other = CreateScene();
  Mesh* raw = CreateMesh(3, 1, 0);
  EXPECT_EQ(AssignMeshToScene(s, raw, 0), nullptr);  // not validated
  DeleteMesh(raw);
  Mesh *a = Polygons(10), *b = Polygons(6), *c = Polygons(3);
  EXPECT_EQ(AssignMeshToScene(s, a, 0), a);
  EXPECT_EQ(AssignMeshToScene(other, a, 0), nullptr);
  EXPECT_EQ(AssignMeshToScene(s, b, 0), b);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(16));
  EXPECT_EQ(OwnAreaBytes(a), 0u);

  EXPECT_EQ(RemoveMeshFromScene(other, a, 0), 0);
  EXPECT_EQ(RemoveMeshFromScene(s, a, 0), 1);  // the head
  EXPECT_TRUE(s->firstMesh == b && b->prevInScene == nullptr && a->nextInScene == nullptr);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(6));
  EXPECT_EQ(OwnAreaBytes(a), Bytes(10));
  AssignMeshToScene(s, a, 0);
  AssignMeshToScene(s, c, 0);    // b a c
  RemoveMeshFromScene(s, a, 0);  // the middle
  EXPECT_TRUE(b->nextInScene == c && c->prevInScene == b);
  RemoveMeshFromScene(s, c, 0);  // the tail
  EXPECT_EQ(b->nextInScene, nullptr);
  RemoveMeshFromScene(s, b, 0);  // the last: an empty area, still drawable
  EXPECT_TRUE(s->firstMesh == nullptr && s->sortIndexList != nullptr && e3d::SceneIsReady(s));

  // Short of memory for the area: the counts stay, the scene is not drawn
  // until the next change rebuilds it.
  AssignMeshToScene(s, a, 0);
  testhost::FailAllocation(1);
  EXPECT_EQ(AssignMeshToScene(s, b, 0), b);
  EXPECT_TRUE(s->sortIndexList == nullptr && s->polygonCapacity == 16);
  EXPECT_FALSE(e3d::SceneIsReady(s));
  RemoveMeshFromScene(s, a, 0);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(6));
  ExpectConsistent(s);
  DeleteMesh(a);
  DeleteMesh(c);
  DeleteScene(other);
  DeleteScene(s);  // deletes b
}

TEST_F(SceneTest, TheActiveCameraSurvivesRemovalsAndSwitches) {
  Scene* s = CreateScene();
  Scene* other = CreateScene();
  Camera *a = NewCamera(), *b = NewCamera(), *c = NewCamera(), *d = NewCamera();
  auto assignABC = [&] { for (Camera* k : {a, b, c}) AssignCameraToScene(s, k); };
  assignABC();
  EXPECT_EQ(s->activeCameraIndex, 0);           // the first, at once
  EXPECT_EQ(AssignCameraToScene(other, b), 0);  // any scene holding it refuses
  AssignCameraToScene(other, d);
  EXPECT_EQ(SetActivedSceneCamera(s, d), -1);
  EXPECT_EQ(s->activeCameraIndex, 0);

  // Switching answers the camera active before and wraps; from -1 it starts.
  EXPECT_EQ(SwitchActivedSceneCamera(s), a);
  EXPECT_EQ(s->activeCameraIndex, 1);
  SetActivedSceneCamera(s, c);
  EXPECT_EQ(SwitchActivedSceneCamera(s), c);
  EXPECT_EQ(s->activeCameraIndex, 0);
  SetActivedSceneCamera(s, nullptr);
  EXPECT_EQ(SwitchActivedSceneCamera(s), a);
  EXPECT_EQ(s->activeCameraIndex, 0);

  // The active camera removed: its successor takes over; an inactive one
  // removed before it: the index follows the active camera down.
  SetActivedSceneCamera(s, b);
  EXPECT_EQ(RemoveCameraFromScene(s, b), 1);
  EXPECT_EQ(GetActivedSceneCamera(s), c);
  RemoveCameraFromScene(s, a);
  EXPECT_TRUE(s->firstCamera == c && s->activeCameraIndex == 0);
  RemoveCameraFromScene(s, c);
  EXPECT_EQ(s->activeCameraIndex, -1);

  // Removing the tail keeps the head; an active index not found again stays.
  assignABC();
  SetActivedSceneCamera(s, c);
  RemoveCameraFromScene(s, c);
  EXPECT_EQ(s->firstCamera, nullptr);
  EXPECT_EQ(s->activeCameraIndex, 2);
  EXPECT_EQ(a->nextCamera, b);
  EXPECT_EQ(SwitchActivedSceneCamera(s), nullptr);

  // Removal from all scenes drops only an index naming the camera itself.
  s->activeCameraIndex = -1;
  assignABC();
  SetActivedSceneCamera(s, c);
  EXPECT_EQ(RemoveCameraFromAllScenes(a), 1);
  EXPECT_TRUE(s->activeCameraIndex == 2 && s->firstCamera == b);
  EXPECT_EQ(RemoveCameraFromAllScenes(d), 1);
  EXPECT_EQ(other->activeCameraIndex, -1);

  // A viewport lends its camera to a scene without an active one.
  Viewport vp;
  std::memset(&vp, 0, sizeof vp);
  vp.camera = c;
  EXPECT_EQ(SetSceneViewport(other, &vp), -1);  // c is held by s
  SetActivedSceneCamera(s, nullptr);
  EXPECT_EQ(SetSceneViewport(s, &vp), 1);  // c is s's second camera
  DeleteCamera(a);
  DeleteCamera(d);
  DeleteWholeScene(s);
  DeleteWholeScene(other);
}

TEST_F(SceneTest, LightsMaterialsAndSkeletonsKeepTheirListRules) {
  Scene* s = CreateScene();
  Scene* other = CreateScene();
  Light* l[3] = {Omni(), Omni(), Omni()};
  Mesh *a = Polygons(2), *b = Polygons(3);
  AssignMeshToScene(s, a, 0);
  EXPECT_EQ(AssignLightToScene(s, l[0], 1), 1);  // to the meshes too
  EXPECT_EQ(AssignLightToScene(s, l[1], 0), 1);
  EXPECT_EQ(AssignLightToScene(s, l[1], 1), 0);
  AssignMeshToScene(s, b, 1);  // takes every light of the scene
  EXPECT_EQ(b->lightList[1], l[1]);
  EXPECT_EQ(RemoveLightFromScene(other, l[0]), 0);
  EXPECT_EQ(RemoveLightFromScene(s, l[0]), 1);  // always leaves the meshes
  EXPECT_TRUE(a->lightList[0] == nullptr && b->lightList[0] == l[1]);
  RemoveMeshFromScene(s, b, 1);
  EXPECT_EQ(b->lightList[0], nullptr);
  AssignLightToScene(s, l[2], 0);  // l1 l2: a removed tail keeps the list
  RemoveLightFromScene(s, l[2]);
  EXPECT_TRUE(s->firstLight == l[1] && l[1]->nextLight == nullptr);
  AssignLightToScene(s, l[0], 0);
  l[0]->hostObject = 5;

  Material m[3];
  std::memset(m, 0, sizeof m);
  for (Material& mat : m) AssignMaterialToScene(s, &mat);
  EXPECT_EQ(RemoveMaterialFromScene(other, &m[1]), 0);
  EXPECT_EQ(RemoveMaterialFromScene(s, &m[1]), 1);
  EXPECT_TRUE(m[0].nextMaterial == &m[2] && m[2].prevMaterial == &m[0]);
  RemoveMaterialFromScene(s, &m[2]);
  EXPECT_EQ(AssignMaterialToScene(s, &m[0]), 1);  // given twice: after itself
  EXPECT_TRUE(m[0].nextMaterial == &m[0] && m[0].prevMaterial == &m[0]);
  s->firstMaterial = nullptr;

  Skeleton k[2];
  std::memset(k, 0, sizeof k);
  for (Skeleton& sk : k) AssignSkeletonToScene(s, &sk);
  EXPECT_EQ(AssignSkeletonToScene(other, &k[0]), 0);
  EXPECT_EQ(RemoveSkeletonFromScene(other, &k[0]), 0);
  EXPECT_EQ(RemoveSkeletonFromScene(s, &k[0]), 1);
  EXPECT_TRUE(s->firstSkeleton == &k[1] && k[1].prevSkeleton == nullptr);
  ExpectConsistent(s);

  // The untagged light goes with the scene, the tagged one and the skeleton stay.
  DeleteScene(s);
  EXPECT_TRUE(l[0]->nextLight == nullptr && k[1].prevSkeleton == nullptr);
  DeleteLight(l[0]);
  DeleteLight(l[2]);
  DeleteMesh(b);
  DeleteScene(other);
}

TEST_F(SceneTest, DeleteSceneSparesTaggedObjectsAndDeleteWholeSceneNone) {
  Scene* s = CreateScene();
  Mesh* kept = Polygons(10, 7);
  std::size_t before = testhost::LiveBlocks();
  Mesh* gone = Polygons(6);
  std::size_t meshBlocks = testhost::LiveBlocks() - before;  // own area included
  Camera *keptCamera = NewCamera(), *goneCamera = NewCamera();
  Material* keptMaterial = CreateMaterial(&gone->defaultMaterial);
  Material* goneMaterial = CreateMaterial(&gone->defaultMaterial);
  Light* keptLight = Omni();
  keptCamera->hostObject = 3;
  keptMaterial->keep = 1;
  keptLight->hostObject = 1;
  auto fill = [&] {
    for (Mesh* m : {gone, kept}) AssignMeshToScene(s, m, 0);
    for (Camera* c : {goneCamera, keptCamera}) AssignCameraToScene(s, c);
    for (Material* m : {goneMaterial, keptMaterial}) AssignMaterialToScene(s, m);
    AssignLightToScene(s, keptLight, 1);
  };
  fill();
  std::size_t live = testhost::LiveBlocks();
  DeleteScene(s);
  // Gone: the scene and its area, the untagged mesh (whose own area was gone
  // already), camera and material; the kept mesh has an area of its own again.
  EXPECT_EQ(live - testhost::LiveBlocks(), 2 + (meshBlocks - 1) + 1 + 1 - 1);
  EXPECT_TRUE(kept->ownerScene == nullptr && kept->hostObject == 7u && kept->lightList[0] == nullptr);
  EXPECT_EQ(OwnAreaBytes(kept), Bytes(10));
  EXPECT_EQ(keptCamera->nextCamera, nullptr);

  // DeleteWholeScene deletes tagged objects too (the leak check sees it).
  s = CreateScene();
  gone = Polygons(1);
  goneCamera = NewCamera();
  goneMaterial = CreateMaterial(&kept->defaultMaterial);
  fill();
  DeleteWholeScene(s);
  EXPECT_EQ(firstScene, nullptr);
}

}  // namespace
