// Record submission shared by the scene and mesh drivers, and the walk over
// a node tree that both use to transform meshes below a parent.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "objects/mesh.h"
#include "objects/polygon_record.h"

namespace e3d {

// The records of one draw: opaqueCount unsorted ones at the end of the
// buffer, then sortedCount ones ordered by order (ascending keys).
struct RecordLists {
  PolygonRecord* records;
  int32_t capacity;
  const uint32_t* order;
  int32_t opaqueCount;
  int32_t sortedCount;
  bool depthTested;
};

// Publishes the render state, then draws the unsorted records in the order
// they were produced and the sorted ones far to near. With clipMesh set its
// near-crossing bit chooses the entry for every record, else each record's
// own mesh does.
void SubmitRecords(const RecordLists& lists, const Mesh* clipMesh);

// Meshes skipped by the walks but whose children are still drawn.
inline constexpr uint32_t kMeshNotDrawn = kMeshSkipped | kMeshHidden | kMeshOutside;

// Visits every mesh of a tree that is drawn, parents before children; a node
// that is not a mesh of the first kind ends the walk below it.
template <class Visit>
void WalkDrawnMeshes(void* node, Visit visit) {
  if ((*static_cast<const uint32_t*>(node) & kNodeKindMask) != kNodeMesh) return;
  Mesh* mesh = static_cast<Mesh*>(node);
  if ((mesh->meshFlags & kMeshNotDrawn) == 0) visit(mesh);
  for (int32_t i = 0; i < mesh->childCount; i++) WalkDrawnMeshes(mesh->children[i], visit);
}

}  // namespace e3d
