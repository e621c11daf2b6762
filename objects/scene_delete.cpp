// The two ways a scene is deleted: DeleteScene spares the objects the host
// has tagged, DeleteWholeScene deletes every object it lists. Skeletons are
// never touched: they outlive the scene.
#include "engine/memory.h"
#include "engine/registry.h"
#include "objects/camera.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "objects/scene.h"

namespace {

// Takes every member of a list out of the scene, first to last, then deletes
// it when whole, or when its host tag is zero. The head is read afresh each
// time: deleting a mesh frees the untagged meshes of its tree, and one of
// them (hung below a light or camera of that tree) may stand in this list.
template <auto Next, auto Tag, class T, class Remove, class Delete>
void TakeOut(T* const& head, Remove remove, Delete del, bool whole) {
  while (T* item = head) {
    remove(item);
    if (head == item) return;  // refused: the lists are out of step, stop
    if (whole || item->*Tag == 0) del(item);
  }
}

void DeleteMeshes(Scene* scene, bool whole) {
  TakeOut<&Mesh::nextInScene, &Mesh::hostObject>(
      scene->firstMesh, [scene](Mesh* m) { RemoveMeshFromScene(scene, m, 1); }, DeleteMesh, whole);
}

void DeleteLights(Scene* scene, bool whole) {
  TakeOut<&Light::nextLight, &Light::hostObject>(
      scene->firstLight, [scene](Light* l) { RemoveLightFromScene(scene, l); }, DeleteLight, whole);
}

void DeleteMaterials(Scene* scene, bool whole) {
  TakeOut<&Material::nextMaterial, &Material::keep>(
      scene->firstMaterial, [scene](Material* m) { RemoveMaterialFromScene(scene, m); },
      DeleteMaterial, whole);
}

void DeleteCameras(Scene* scene, bool whole) {
  TakeOut<&Camera::nextCamera, &Camera::hostObject>(
      scene->firstCamera, [scene](Camera* c) { RemoveCameraFromScene(scene, c); }, DeleteCamera,
      whole);
}

void FreeScene(Scene* scene) {
  e3d::UnlinkScene(scene);
  e3d::Release(scene->hookTable);
  e3d::Release(scene->sortIndexList);
  FreeMemory(scene);
}

}  // namespace

E3D_API void E3D_CALL DeleteScene(Scene* scene) {
  DeleteMeshes(scene, false);
  DeleteLights(scene, false);
  DeleteMaterials(scene, false);
  DeleteCameras(scene, false);
  FreeScene(scene);
}

E3D_API void E3D_CALL DeleteWholeScene(Scene* scene) {
  DeleteMaterials(scene, true);
  DeleteCameras(scene, true);
  DeleteMeshes(scene, true);
  DeleteLights(scene, true);
  FreeScene(scene);
}
