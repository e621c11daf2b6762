// The steps of mesh deletion that reach into scenes and the node hierarchy.
#include "objects/hierarchy.h"
#include "objects/mesh.h"

namespace e3d {

// The scene the mesh records is used directly, so a mesh of a scene that a
// second InitEngine3D forgot still leaves its list.
void DetachMeshFromWorld(Mesh* mesh) {
  if (mesh->ownerScene != nullptr) RemoveMeshFromScene(mesh->ownerScene, mesh, 1);
  if (mesh->parent != nullptr) DetachChildFromNode(mesh->parent, mesh);
  if (mesh->childCount > 0) DetachAllChildren(mesh);
}

}  // namespace e3d
