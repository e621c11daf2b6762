// Scenes: the object lists and their refusals, the active camera, the sort
// area, and the two kinds of deletion.
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
  EXPECT_TRUE(CreateScene() == nullptr && firstScene == nullptr);
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

// Answers, lists and areas over many operations are checked by the random
// sequences; these are the cases those do not reach.
TEST_F(SceneTest, SortAreaEdgeCases) {
  Scene* s = CreateScene();
  Mesh *a = Polygons(10), *b = Polygons(6);
  AssignMeshToScene(s, a, 0);
  RemoveMeshFromScene(s, a, 0);  // the last: an empty area, still drawable
  EXPECT_TRUE(s->firstMesh == nullptr && s->sortIndexList != nullptr && e3d::SceneIsReady(s));

  // Short of memory for the area: the counts stay, the scene is not drawn
  // until the next change rebuilds it.
  AssignMeshToScene(s, a, 0);
  testhost::FailAllocation(1);
  EXPECT_EQ(AssignMeshToScene(s, b, 0), b);
  EXPECT_TRUE(s->sortIndexList == nullptr && s->polygonCapacity == 16 && !e3d::SceneIsReady(s));
  RemoveMeshFromScene(s, a, 0);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(6));
  ExpectConsistent(s);
  DeleteMesh(a);
  DeleteScene(s);  // deletes b
}

TEST_F(SceneTest, TheActiveCameraSurvivesRemovalsAndSwitches) {
  Scene* s = CreateScene();
  Scene* other = CreateScene();
  Camera *a = NewCamera(), *b = NewCamera(), *c = NewCamera(), *d = NewCamera();
  auto assignABC = [&] { for (Camera* k : {a, b, c}) AssignCameraToScene(s, k); };
  assignABC();
  EXPECT_EQ(s->activeCameraIndex, 0);  // the first, at once
  AssignCameraToScene(other, d);

  // Switching answers the camera active before and wraps; from -1 it starts.
  SetActivedSceneCamera(s, c);
  EXPECT_TRUE(SwitchActivedSceneCamera(s) == c && s->activeCameraIndex == 0);
  SetActivedSceneCamera(s, nullptr);
  EXPECT_TRUE(SwitchActivedSceneCamera(s) == a && s->activeCameraIndex == 0);

  // The active camera removed: its successor takes over; an inactive one
  // removed before it: the index follows the active camera down.
  SetActivedSceneCamera(s, b);
  EXPECT_EQ(RemoveCameraFromScene(s, b), 1);
  EXPECT_EQ(GetActivedSceneCamera(s), c);
  RemoveCameraFromScene(s, a);
  EXPECT_TRUE(s->firstCamera == c && s->activeCameraIndex == 0);
  EXPECT_TRUE(RemoveCameraFromScene(s, c) == 1 && s->activeCameraIndex == -1);

  // Removing the tail keeps the head; an active index not found again stays.
  assignABC();
  SetActivedSceneCamera(s, c);
  RemoveCameraFromScene(s, c);
  EXPECT_TRUE(s->firstCamera == nullptr && s->activeCameraIndex == 2 && a->nextCamera == b);

  // Removal from all scenes drops only an index naming the camera itself.
  s->activeCameraIndex = -1;
  assignABC();
  SetActivedSceneCamera(s, c);
  EXPECT_EQ(RemoveCameraFromAllScenes(a), 1);
  EXPECT_TRUE(s->activeCameraIndex == 2 && s->firstCamera == b);
  EXPECT_TRUE(RemoveCameraFromAllScenes(d) == 1 && other->activeCameraIndex == -1);

  // A viewport lends its camera to a scene without an active one.
  Viewport vp{};
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
  Light* l[2] = {Omni(), Omni()};
  Mesh *a = Polygons(2), *b = Polygons(3);
  AssignMeshToScene(s, a, 0);
  AssignLightToScene(s, l[0], 1);  // to the meshes too
  AssignLightToScene(s, l[1], 0);
  AssignMeshToScene(s, b, 1);  // takes every light of the scene
  EXPECT_EQ(b->lightList[1], l[1]);
  EXPECT_EQ(RemoveLightFromScene(s, l[0]), 1);  // always leaves the meshes
  EXPECT_TRUE(a->lightList[0] == nullptr && b->lightList[0] == l[1]);
  RemoveMeshFromScene(s, b, 1);
  EXPECT_EQ(b->lightList[0], nullptr);
  AssignLightToScene(s, l[0], 0);
  l[0]->hostObject = 5;

  Material m{};
  AssignMaterialToScene(s, &m);
  EXPECT_EQ(AssignMaterialToScene(s, &m), 1);  // given twice: after itself
  EXPECT_TRUE(m.nextMaterial == &m && m.prevMaterial == &m);
  s->firstMaterial = nullptr;

  Skeleton k{};
  AssignSkeletonToScene(s, &k);
  ExpectConsistent(s);

  // The untagged light goes with the scene, the tagged one and the skeleton stay.
  DeleteScene(s);
  EXPECT_EQ(l[0]->nextLight, nullptr);
  DeleteLight(l[0]);
  DeleteMesh(b);
}

// Which objects each deletion spares is checked by the random sequences (a
// wrong one leaks or frees twice); here what the spared ones keep.
TEST_F(SceneTest, DeleteSceneLeavesTheSparedObjectsClean) {
  Scene* s = CreateScene();
  Mesh* kept = Polygons(10, 7);
  Camera* keptCamera = NewCamera();
  Light* keptLight = Omni();
  keptCamera->hostObject = 3;
  keptLight->hostObject = 1;
  AssignMeshToScene(s, kept, 0);
  AssignMeshToScene(s, Polygons(6), 0);
  AssignCameraToScene(s, NewCamera());
  AssignCameraToScene(s, keptCamera);
  AssignLightToScene(s, keptLight, 1);
  DeleteScene(s);
  EXPECT_TRUE(kept->ownerScene == nullptr && kept->hostObject == 7u && kept->lightList[0] == nullptr);
  EXPECT_TRUE(OwnAreaBytes(kept) == Bytes(10) && keptCamera->prevCamera == nullptr);
  DeleteMesh(kept);
  DeleteCamera(keptCamera);
  DeleteLight(keptLight);
}

}  // namespace
