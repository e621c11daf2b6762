// Scene creation, the chain of scenes, the scene's sort area, its hook slot
// and the counting exports.
#include "objects/scene.h"

#include "engine/math.h"
#include "engine/memory.h"
#include "engine/registry.h"
#include "objects/camera.h"
#include "objects/light.h"
#include "objects/mesh.h"
#include "objects/skeleton.h"

namespace e3d {

void LinkScene(Scene* scene) {
  scene->nextScene = nullptr;
  scene->prevScene = lastScene;
  if (lastScene == nullptr)
    firstScene = scene;
  else
    lastScene->nextScene = scene;
  lastScene = scene;
}

void UnlinkScene(Scene* scene) {
  if (scene == firstScene) {
    firstScene = scene->nextScene;
    if (firstScene != nullptr) firstScene->prevScene = nullptr;
    if (scene == lastScene) lastScene = nullptr;
  } else if (scene == lastScene) {
    lastScene = scene->prevScene;
    if (lastScene != nullptr) lastScene->nextScene = nullptr;
  } else {
    // Only a chained scene may be bridged over: its links are trusted then.
    if (ListIndexOf<&Scene::nextScene>(firstScene, scene) < 0) return;
    if (scene->prevScene != nullptr) scene->prevScene->nextScene = scene->nextScene;
    if (scene->nextScene != nullptr) scene->nextScene->prevScene = scene->prevScene;
    return;  // the caller frees the record right after
  }
  scene->prevScene = nullptr;
  scene->nextScene = nullptr;
}

namespace {

// Forwards to the host's function the value of entry b of the hook table
// (counted from 1); without a host function, or an entry, it answers scene.
void* DefaultSceneHook(int32_t a, int32_t b, Scene* scene) {
  if (scene == nullptr || scene->userHook == nullptr) return scene;
  if (scene->hookTable == nullptr || b < 1) return scene;
  return scene->userHook(a, b, FloatToInt(scene->hookTable[b - 1].value));
}

}  // namespace

void RebuildSceneSortArea(Scene* scene) {
  scene->sceneFlags &= ~kSceneReady;
  Release(scene->sortIndexList);
  scene->polygonRecords = nullptr;
  int32_t count = scene->polygonCapacity;
  if (count < 0) return;  // counts out of step: never draw from it
  scene->sortIndexList = AllocateSortArea(count, &scene->polygonRecords);
  if (scene->sortIndexList == nullptr) return;
  scene->sceneFlags |= kSceneReady;
}

Scene* SceneHoldingCamera(const Camera* camera) {
  return ListFind<&Scene::nextScene>(
      firstScene, [camera](const Scene* s) { return GetSceneCameraIndex(s, camera) >= 0; });
}

Scene* SceneHoldingSkeleton(const Skeleton* skeleton) {
  return ListFind<&Scene::nextScene>(
      firstScene, [skeleton](const Scene* s) { return GetSceneSkeletonIndex(s, skeleton) >= 0; });
}

}  // namespace e3d

using namespace e3d;

E3D_API Scene* E3D_CALL CreateScene(void) {
  Scene* scene = Allocate<Scene>();
  if (scene == nullptr) return nullptr;
  MemoryFill(scene, 0, sizeof(Scene));
  scene->activeCameraIndex = -1;
  scene->sceneHook = DefaultSceneHook;
  LinkScene(scene);
  return scene;
}

E3D_API int32_t E3D_CALL GetSceneNumberOfMeshes(Scene* scene) {
  return ListLength<&Mesh::nextInScene>(scene->firstMesh);
}

E3D_API int32_t E3D_CALL GetSceneNumberOfCameras(Scene* scene) {
  return ListLength<&Camera::nextCamera>(scene->firstCamera);
}

E3D_API int32_t E3D_CALL GetSceneNumberOfLights(Scene* scene) {
  return ListLength<&Light::nextLight>(scene->firstLight);
}

E3D_API int32_t E3D_CALL GetSceneNumberOfVisibleMeshes(Scene* scene) {
  return scene->visibleMeshCount;
}
