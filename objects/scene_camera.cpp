// A scene's cameras: the list, which camera is active, and the skeleton
// list, which shares the cameras' linking rules.
#include "engine/registry.h"
#include "objects/camera.h"
#include "objects/scene.h"
#include "objects/skeleton.h"

namespace {

void UnlinkCamera(Scene* scene, Camera* camera) {
  e3d::ListUnlinkTailEmpties<&Camera::prevCamera, &Camera::nextCamera>(scene->firstCamera,
                                                                       camera);
}

}  // namespace

using namespace e3d;

// The first camera of a scene becomes active at once.
E3D_API int32_t E3D_CALL AssignCameraToScene(Scene* scene, Camera* camera) {
  if (SceneHoldingCamera(camera) != nullptr) return 0;
  if (scene->firstCamera == nullptr) scene->activeCameraIndex = 0;
  ListAppend<&Camera::prevCamera, &Camera::nextCamera>(scene->firstCamera, camera);
  return 1;
}

// The active camera stays active; when it is the one removed, its successor
// (else its predecessor) takes over. Indices are looked up again after the
// unlink, so an emptied list keeps the old index.
E3D_API int32_t E3D_CALL RemoveCameraFromScene(Scene* scene, Camera* camera) {
  int32_t index = GetSceneCameraIndex(scene, camera);
  if (index < 0) return 0;
  Camera* active = SearchCameraByIndex(scene, scene->activeCameraIndex);
  Camera* prev = camera->prevCamera;
  Camera* next = camera->nextCamera;
  UnlinkCamera(scene, camera);
  Camera* candidate = index == scene->activeCameraIndex ? (next != nullptr ? next : prev) : active;
  if (candidate == nullptr) {
    scene->activeCameraIndex = -1;
  } else {
    int32_t at = GetSceneCameraIndex(scene, candidate);
    if (at >= 0) scene->activeCameraIndex = at;
  }
  return 1;
}

// Only an active index naming the camera itself is dropped; others are not
// shifted and may then name the camera that followed.
E3D_API int32_t E3D_CALL RemoveCameraFromAllScenes(Camera* camera) {
  int32_t count = 0;
  for (Scene* s = firstScene; s != nullptr; s = s->nextScene) {
    int32_t index = GetSceneCameraIndex(s, camera);
    if (index < 0) continue;
    if (index == s->activeCameraIndex) s->activeCameraIndex = -1;
    UnlinkCamera(s, camera);
    count++;
  }
  return count;
}

E3D_API int32_t E3D_CALL SetActivedSceneCamera(Scene* scene, Camera* camera) {
  if (camera == nullptr) {
    scene->activeCameraIndex = -1;
    return -1;
  }
  int32_t index = GetSceneCameraIndex(scene, camera);
  if (index >= 0) scene->activeCameraIndex = index;
  return index;
}

// Steps to the next camera, wrapping to the first; answers the camera that
// was active. Without cameras nothing changes.
E3D_API Camera* E3D_CALL SwitchActivedSceneCamera(Scene* scene) {
  if (scene->firstCamera == nullptr) return nullptr;
  Camera* current = scene->firstCamera;
  for (int32_t i = 0; i < scene->activeCameraIndex && current != nullptr; i++)
    current = current->nextCamera;
  if (current != nullptr && current->nextCamera != nullptr)
    scene->activeCameraIndex++;
  else
    scene->activeCameraIndex = 0;
  return current;
}

E3D_API Camera* E3D_CALL GetActivedSceneCamera(Scene* scene) {
  if (scene == nullptr) return nullptr;
  return SearchCameraByIndex(scene, scene->activeCameraIndex);
}

E3D_API int32_t E3D_CALL AssignSkeletonToScene(Scene* scene, Skeleton* skeleton) {
  if (SceneHoldingSkeleton(skeleton) != nullptr) return 0;
  ListAppend<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(scene->firstSkeleton, skeleton);
  return 1;
}

E3D_API int32_t E3D_CALL RemoveSkeletonFromScene(Scene* scene, Skeleton* skeleton) {
  if (GetSceneSkeletonIndex(scene, skeleton) < 0) return 0;
  ListUnlinkTailEmpties<&Skeleton::prevSkeleton, &Skeleton::nextSkeleton>(scene->firstSkeleton,
                                                                          skeleton);
  return 1;
}
