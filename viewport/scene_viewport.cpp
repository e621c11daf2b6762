// The binding of a scene to the viewport it draws into, and the camera the
// scene takes from it.
#include "engine3d.h"
#include "objects/camera.h"
#include "objects/scene.h"
#include "viewport/viewport.h"

using namespace e3d;

// A null viewport unbinds. Otherwise a scene without an active camera adopts
// the viewport's camera, taking it into its list when no scene holds it yet.
E3D_API int32_t E3D_CALL SetSceneViewport(Scene* scene, Viewport* viewport) {
  scene->viewport = viewport;
  if (viewport == nullptr) return 0;
  if (scene->activeCameraIndex != -1) return scene->activeCameraIndex;
  Camera* camera = viewport->camera;
  if (camera == nullptr) return 0;
  int32_t index = GetSceneCameraIndex(scene, camera);
  if (index < 0 && SceneHoldingCamera(camera) == nullptr) {
    AssignCameraToScene(scene, camera);
    index = GetSceneCameraIndex(scene, camera);
  }
  if (index >= 0) scene->activeCameraIndex = index;
  return index;
}

E3D_API Viewport* E3D_CALL GetSceneViewport(Scene* scene) { return scene->viewport; }
