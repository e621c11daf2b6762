// What the object kinds share: the walk over a node and its whole subtree
// (meshes, lights, scenes), and the copying of names into fixed fields.
#pragma once
#include <stdint.h>

#include "engine/memory.h"
#include "objects/hierarchy.h"

namespace e3d {

// Calls f(node) and then walks every child in child-array order, whatever
// the node's kind: a mesh below a camera or a light is reached too.
template <class F>
void ForEachNode(void* node, F f) {
  f(node);
  NodeLinks links = LinksOf(node);
  for (int32_t i = 0; i < *links.childCount; i++) ForEachNode((*links.children)[i], f);
}

// Copies name into a field of size bytes, cut to size - 1 characters so a
// long name cannot run into the fields behind it. Null copies nothing.
inline void CopyName(char* field, int32_t size, const char* name) {
  if (name == nullptr) return;
  StringCopyN(field, name, size - 1);
  field[size - 1] = 0;
}

}  // namespace e3d
