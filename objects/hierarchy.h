// The node hierarchy: meshes, cameras, lights and the targets of cameras and
// direct lights begin with the same four-word node header, and any node can
// hang below any other. Mesh trees are sorted as one, so the polygon counts
// along the path to the root and the root's sort area follow every change.
#pragma once
#include <stdint.h>

#include "engine3d.h"

namespace e3d {

// The four header words of a node, wherever the record keeps them.
struct NodeLinks {
  uint32_t* kind;
  void** parent;
  void*** children;  // *childCount entries, attachment order; null when none
  int32_t* childCount;
};

// Header words of node: the start of a mesh, camera or light, or the
// target header inside a camera or a direct light.
NodeLinks LinksOf(void* node);

inline uint32_t NodeKindOf(const void* node) { return *static_cast<const uint32_t*>(node); }

// The mesh whose sort area serves the tree of mesh: the topmost mesh reached
// through mesh parents.
Mesh* MeshTreeRoot(Mesh* mesh);

// Takes a node out of the hierarchy both ways before its record is freed.
// Its children only lose their parent: the host still owns them.
void UnhangNode(void* node);

// Detaches every child of node (its children's children first); child meshes
// with a zero host tag are deleted, cameras and lights only detached.
void DetachAllChildren(void* node);

}  // namespace e3d
