// The look-ups of objects inside a scene, by position and by name, and the
// positions of objects in their scene's lists.
#include "engine/registry.h"
#include "engine3d.h"
#include "objects/camera.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "objects/skeleton.h"

namespace e3d {

int32_t GetSceneSkeletonIndex(const Scene* scene, const Skeleton* skeleton) {
  return ListIndexOf<&Skeleton::nextSkeleton>(scene->firstSkeleton, skeleton);
}

int32_t GetSceneCameraIndex(const Scene* scene, const Camera* camera) {
  return ListIndexOf<&Camera::nextCamera>(scene->firstCamera, camera);
}

int32_t GetSceneLightIndex(const Scene* scene, const Light* light) {
  return ListIndexOf<&Light::nextLight>(scene->firstLight, light);
}

int32_t GetSceneMaterialIndex(const Scene* scene, const Material* material) {
  return ListIndexOf<&Material::nextMaterial>(scene->firstMaterial, material);
}

namespace {

// The ByName searches over lists whose members carry their own name.
template <auto Next, class T>
T* SearchByName(T* head, const char* name) {
  return ListFind<Next>(head, [name](const T* item) { return NameMatches(item->name, name); });
}

}  // namespace

}  // namespace e3d

using namespace e3d;

E3D_API Mesh* E3D_CALL SearchMeshByIndex(Scene* scene, int32_t index) {
  return ListAt<&Mesh::nextInScene>(scene->firstMesh, index);
}

E3D_API Camera* E3D_CALL SearchCameraByIndex(Scene* scene, int32_t index) {
  return ListAt<&Camera::nextCamera>(scene->firstCamera, index);
}

E3D_API Light* E3D_CALL SearchLightByIndex(Scene* scene, int32_t index) {
  return ListAt<&Light::nextLight>(scene->firstLight, index);
}

E3D_API Material* E3D_CALL SearchMaterialByIndex(Scene* scene, int32_t index) {
  return ListAt<&Material::nextMaterial>(scene->firstMaterial, index);
}

E3D_API Mesh* E3D_CALL SearchMeshByName(Scene* scene, const char* name) {
  return SearchByName<&Mesh::nextInScene>(scene->firstMesh, name);
}

E3D_API Camera* E3D_CALL SearchCameraByName(Scene* scene, const char* name) {
  return SearchByName<&Camera::nextCamera>(scene->firstCamera, name);
}

E3D_API Light* E3D_CALL SearchLightByName(Scene* scene, const char* name) {
  return SearchByName<&Light::nextLight>(scene->firstLight, name);
}

E3D_API Material* E3D_CALL SearchMaterialByName(Scene* scene, const char* name) {
  return SearchByName<&Material::nextMaterial>(scene->firstMaterial, name);
}

// A skeleton is known by its root bone's name; without a root it has none.
E3D_API Skeleton* E3D_CALL SearchSkeletonByName(Scene* scene, const char* name) {
  return ListFind<&Skeleton::nextSkeleton>(scene->firstSkeleton, [name](const Skeleton* s) {
    return s->rootBone != nullptr && NameMatches(s->rootBone->name, name);
  });
}
