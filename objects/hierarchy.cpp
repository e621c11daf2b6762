// Attaching and detaching nodes. Joined mesh nodes are sorted together: the
// polygon counts along the path to the root and the sort area of the root
// (its own, or its scene's) follow every change.
#include "objects/hierarchy.h"

#include "engine/memory.h"
#include "objects/camera.h"
#include "objects/light.h"
#include "objects/mesh.h"
#include "objects/scene.h"

namespace e3d {

namespace {

template <class T>
NodeLinks Links(T* record) {
  return {&record->nodeKind, &record->parent, &record->children, &record->childCount};
}
template <class T>
NodeLinks TargetLinks(T* record) {
  return {&record->targetNodeKind, &record->targetParent, &record->targetChildren,
          &record->targetChildCount};
}

// The record that holds the target header at p.
template <class T>
T* OwnerOfTarget(void* p) {
  return reinterpret_cast<T*>(static_cast<char*>(p) - __builtin_offsetof(T, targetNodeKind));
}

Mesh* MeshParent(const Mesh* mesh) {
  void* parent = mesh->parent;
  return parent != nullptr && NodeIsMesh(NodeKindOf(parent)) ? static_cast<Mesh*>(parent) : nullptr;
}

// Adds delta to the counts of mesh and of every mesh above it; answers the root.
Mesh* AddAlongPath(Mesh* mesh, int32_t delta) {
  for (;;) {
    mesh->sortPolygonCount += delta;
    Mesh* up = MeshParent(mesh);
    if (up == nullptr) return mesh;
    mesh = up;
  }
}

// The tree under root changed by delta polygons: resize the area it is
// sorted in, the scene's when the root stands in one.
void ResizeTreeSortArea(Mesh* root, int32_t delta) {
  if (Scene* scene = root->ownerScene) {
    scene->polygonCapacity += delta;
    RebuildSceneSortArea(scene);
  } else {
    GiveMeshSortArea(root, root->sortPolygonCount);
  }
}

bool IsAncestorOrSelf(void* node, void* of) {
  for (void* p = of; p != nullptr; p = *LinksOf(p).parent)
    if (p == node) return true;
  return false;
}

}  // namespace

NodeLinks LinksOf(void* node) {
  switch (NodeKindOf(node) & kNodeKindMask) {
    case kNodeCamera:
      return Links(static_cast<Camera*>(node));
    case kNodeCameraTarget:
      return TargetLinks(OwnerOfTarget<Camera>(node));
    case kNodeLight:
      return Links(static_cast<Light*>(node));
    case kNodeLightTarget:
      return TargetLinks(OwnerOfTarget<Light>(node));
    default:
      return Links(static_cast<Mesh*>(node));
  }
}

Mesh* MeshTreeRoot(Mesh* mesh) {
  while (Mesh* up = MeshParent(mesh)) mesh = up;
  return mesh;
}

void DetachAllChildren(void* node) {
  NodeLinks links = LinksOf(node);
  for (int32_t n = *links.childCount; n > 0 && *links.childCount > 0; n--) {
    void* child = (*links.children)[0];
    if (*LinksOf(child).childCount > 0) DetachAllChildren(child);
    DetachChildFromNode(node, child);
    if (NodeIsMesh(NodeKindOf(child)) && static_cast<Mesh*>(child)->hostObject == 0)
      DeleteMesh(static_cast<Mesh*>(child));
  }
}

void UnhangNode(void* node) {
  NodeLinks links = LinksOf(node);
  if (*links.parent != nullptr) DetachChildFromNode(*links.parent, node);
  while (*links.childCount > 0)
    DetachChildFromNode(node, (*links.children)[*links.childCount - 1]);
}

}  // namespace e3d

using namespace e3d;

// A child mesh leaves its scene and its own sort area: from now on it is
// sorted in its root's. Refused (0) only when the parent lies in the child's
// own subtree, or when memory is short.
E3D_API int32_t E3D_CALL AttachChildToNode(void* parent, void* child) {
  if (IsAncestorOrSelf(child, parent)) return 0;
  NodeLinks c = LinksOf(child);
  if (*c.parent != nullptr) DetachChildFromNode(*c.parent, child);
  NodeLinks p = LinksOf(parent);
  int32_t count = *p.childCount;
  void** children = Allocate<void*>(uint32_t(count) + 1);
  if (children == nullptr) return 0;
  for (int32_t i = 0; i < count; i++) children[i] = (*p.children)[i];
  children[count] = child;
  Release(*p.children);
  *p.children = children;
  *p.childCount = count + 1;
  *c.parent = parent;
  if (!NodeIsMesh(*p.kind) || !NodeIsMesh(*c.kind)) return 1;
  Mesh* mesh = static_cast<Mesh*>(child);
  if (mesh->ownerScene != nullptr) RemoveMeshFromScene(mesh->ownerScene, mesh, 0);
  int32_t delta = mesh->sortPolygonCount;
  Mesh* root = AddAlongPath(static_cast<Mesh*>(parent), delta);
  FreeMeshSortArea(mesh);
  ResizeTreeSortArea(root, delta);
  return 1;
}

// The detached mesh becomes a root with a sort area of its own.
E3D_API int32_t E3D_CALL DetachChildFromNode(void* parent, void* child) {
  NodeLinks p = LinksOf(parent);
  int32_t count = *p.childCount;
  void** old = *p.children;
  int32_t at = -1;
  for (int32_t i = 0; i < count && at < 0; i++)
    if (old[i] == child) at = i;
  if (at < 0) return 0;
  if (count > 1) {
    // Exactly count - 1 entries; short of memory, the old block is reused.
    void** children = Allocate<void*>(uint32_t(count) - 1);
    void** to = children != nullptr ? children : old;
    for (int32_t i = 0, j = 0; i < count; i++)
      if (i != at) to[j++] = old[i];
    if (children != nullptr) {
      FreeMemory(old);
      *p.children = children;
    }
  } else {
    Release(*p.children);
  }
  *p.childCount = count - 1;
  NodeLinks c = LinksOf(child);
  *c.parent = nullptr;
  if (!NodeIsMesh(*p.kind) || !NodeIsMesh(*c.kind)) return 1;
  Mesh* mesh = static_cast<Mesh*>(child);
  int32_t delta = -mesh->sortPolygonCount;
  ResizeTreeSortArea(AddAlongPath(static_cast<Mesh*>(parent), delta), delta);
  GiveMeshSortArea(mesh, mesh->sortPolygonCount);
  return 1;
}
