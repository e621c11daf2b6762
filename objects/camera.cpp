// Cameras: creation with a numbered name, deletion, and the accessors of
// eye, target, roll, field of view and near distance.
#include "objects/camera.h"

#include "engine/memory.h"
#include "engine/registry.h"
#include "engine3d.h"
#include "objects/hierarchy.h"
#include "objects/scene.h"

namespace e3d {

int32_t cameraCounter = 0;

namespace {


}  // namespace
}  // namespace e3d

using namespace e3d;

// No range rules here: only the setters clamp.
E3D_API Camera* E3D_CALL CreateCamera(const Vector3* position, const Vector3* target, float roll,
                                      float fov, float nearPlane) {
  Camera* camera = Allocate<Camera>();
  if (camera == nullptr) return nullptr;
  camera->position = *position;
  camera->target = *target;
  camera->roll = roll;
  camera->fov = fov;
  camera->nearPlane = nearPlane;
  camera->farPlane = kCameraDefaultFar;
  WriteGeneratedName(camera->name, "Camera", cameraCounter);
  cameraCounter = static_cast<int32_t>(static_cast<uint32_t>(cameraCounter) + 1);
  camera->nodeKind = kNodeCamera;
  camera->parent = nullptr;
  camera->children = nullptr;
  camera->childCount = 0;
  camera->targetNodeKind = kNodeCameraTarget;
  camera->targetParent = nullptr;
  camera->targetChildren = nullptr;
  camera->targetChildCount = 0;
  camera->cameraFlags = 0;
  camera->prevCamera = nullptr;
  camera->nextCamera = nullptr;
  camera->hostObject = 0;
  camera->hostObject2 = 0;
  return camera;
}

// A camera stands in at most one scene: the first that lets it go held it.
E3D_API void E3D_CALL DeleteCamera(Camera* camera) {
  for (Scene* scene = firstScene; scene != nullptr; scene = scene->nextScene)
    if (RemoveCameraFromScene(scene, camera)) break;
  camera->hostObject = 0;
  camera->hostObject2 = 0;
  UnhangNode(camera);
  UnhangNode(&camera->targetNodeKind);
  FreeMemory(camera);
}

// Cut to the field: the name lies near the end of the block.
E3D_API void E3D_CALL SetCameraName(Camera* camera, const char* name) {
  if (name == nullptr) return;
  StringCopyN(camera->name, name, kCameraNameSize - 1);
  camera->name[kCameraNameSize - 1] = 0;
}

E3D_API void E3D_CALL SetCameraPosition(Camera* camera, const Vector3* value, int32_t which) {
  *CameraVector(camera, which) = *value;
}

E3D_API Vector3 E3D_CALL GetCameraPosition(const Camera* camera, int32_t which) {
  return which == 0 ? camera->position : camera->target;
}

E3D_API void E3D_CALL SetCameraRoll(Camera* camera, float roll) { camera->roll = roll; }

E3D_API float E3D_CALL GetCameraRoll(const Camera* camera) { return camera->roll; }

// Anything outside (0, 180], NaN included, falls back to the default.
E3D_API void E3D_CALL SetCameraFov(Camera* camera, float fov) {
  camera->fov = (fov > 0.0f && fov <= 180.0f) ? fov : kCameraDefaultFov;
}

E3D_API float E3D_CALL GetCameraFov(const Camera* camera) { return camera->fov; }

// Only a lower bound: the far distance is not looked at.
E3D_API void E3D_CALL SetCameraNear(Camera* camera, float nearPlane) {
  camera->nearPlane = nearPlane < kCameraMinNear ? kCameraMinNear : nearPlane;
}

E3D_API float E3D_CALL GetCameraNear(const Camera* camera) { return camera->nearPlane; }
