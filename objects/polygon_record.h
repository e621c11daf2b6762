// One polygon queued for drawing: written by the transform stage, ordered by
// the radix sorter on its depth key, consumed by polygon submission.
#pragma once
#include <stdint.h>

#include "engine3d.h"

struct PolygonRecord {
  float depthKey;        // sum of the three camera-space depths; 0 when not sorted
  Mesh* mesh;            // owner; its flags tell whether near-plane clipping is needed
  MeshPolygon* polygon;  // the polygon, with this frame's facing, material and colour
  uint32_t renderFlags;  // bits 0-2 shade mode, bits 20-26 render mode and texture stages
};
#if defined(__i386__)
static_assert(sizeof(PolygonRecord) == 16, "PolygonRecord is four words on i386");
#endif

namespace e3d {

// A sort area in one block: count sorter indexes, then count records. The
// index list is reset for the sorter. Returns the block, or null when it
// cannot be had; *records points into it.
uint32_t* AllocateSortArea(int32_t count, PolygonRecord** records);

}  // namespace e3d
