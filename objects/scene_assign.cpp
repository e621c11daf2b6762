// Moving meshes and materials in and out of a scene. Every mesh that enters
// or leaves rebuilds the scene's sort area.
#include "engine/registry.h"
#include "objects/hierarchy.h"
#include "objects/light.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "objects/scene.h"

using namespace e3d;

// Only validated top-level meshes that no scene holds enter; the mesh's own
// sort area gives way to the scene's, which grows by its whole tree.
E3D_API Mesh* E3D_CALL AssignMeshToScene(Scene* scene, Mesh* mesh, uint8_t options) {
  if ((mesh->meshFlags & kMeshValidated) == 0) return nullptr;
  if (mesh->ownerScene != nullptr) return nullptr;
  // A child mesh is sorted with its root; it never stands in a list itself.
  if (mesh->parent != nullptr && NodeIsMesh(NodeKindOf(mesh->parent))) return nullptr;
  scene->polygonCapacity += mesh->sortPolygonCount;
  RebuildSceneSortArea(scene);
  scene->vertexTotal += mesh->vertexCount;
  ListAppend<&Mesh::prevInScene, &Mesh::nextInScene>(scene->firstMesh, mesh);
  FreeMeshSortArea(mesh);
  if (options & kOptionMeshLights)
    ListEach<&Light::nextLight>(scene->firstLight,
                                [mesh](Light* light) { AssignLightToMesh(light, mesh); });
  mesh->ownerScene = scene;
  return mesh;
}

// The mesh gets an own sort area again, sized for its tree.
E3D_API int32_t E3D_CALL RemoveMeshFromScene(Scene* scene, Mesh* mesh, uint8_t options) {
  if (mesh->ownerScene != scene) return 0;
  scene->polygonCapacity -= mesh->sortPolygonCount;
  RebuildSceneSortArea(scene);
  scene->vertexTotal -= mesh->vertexCount;
  ListUnlink<&Mesh::prevInScene, &Mesh::nextInScene>(scene->firstMesh, mesh);
  GiveMeshSortArea(mesh, mesh->sortPolygonCount);
  if (options & kOptionMeshLights)
    ListEach<&Light::nextLight>(scene->firstLight,
                                [mesh](Light* light) { RemoveLightFromMesh(light, mesh); });
  mesh->ownerScene = nullptr;
  return 1;
}

// No test at all: a material given twice is linked after itself.
E3D_API int32_t E3D_CALL AssignMaterialToScene(Scene* scene, Material* material) {
  ListAppend<&Material::prevMaterial, &Material::nextMaterial>(scene->firstMaterial, material);
  return 1;
}

E3D_API int32_t E3D_CALL RemoveMaterialFromScene(Scene* scene, Material* material) {
  if (GetSceneMaterialIndex(scene, material) < 0) return 0;
  ListUnlink<&Material::prevMaterial, &Material::nextMaterial>(scene->firstMaterial, material);
  return 1;
}
