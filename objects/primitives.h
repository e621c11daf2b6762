// Shared parts of the primitive generators: argument checks, the rings of
// vertices that solids of revolution are made of, the bands of polygons that
// join two rings, and the common ending (normals, box, name).
#pragma once
#include <stdint.h>

#include "engine3d.h"

namespace e3d {

// Largest vertex or slot count a generator asks for: keeps the one-block
// size of the mesh inside 32 bits.
inline constexpr int64_t kMaxGeneratedCount = int64_t(1) << 24;

// Smoothing groups: curved surfaces share group 0, flat faces that meet them
// at an edge take group 1, so that the edge stays hard.
inline constexpr uint32_t kCurvedGroup = 0;
inline constexpr uint32_t kFlatGroup = 1;

// The scale argument with null read as 1, 1, 1.
Vector3 GeneratorScale(const Vector3* scale);

// CreateMesh for counts computed in 64 bits; null when a count is out of range.
Mesh* CreateGeneratedMesh(int64_t vertices, int64_t slots, uint32_t color);

// Cosine and sine of an angle in degrees, in double.
void DegreesCosSin(double degrees, double* c, double* s);

// Vertex normals, bounding box and name "<base>NN" from the counter, which
// then advances. On failure the mesh is deleted and null returned.
Mesh* FinishGeneratedMesh(Mesh* mesh, const char* base, int32_t* counter);

// Replaces the edge bits of a polygon slot (edges that a wireframe draws).
void SetPolygonEdges(Mesh* mesh, int32_t slot, uint32_t edges);

// A closed loop of vertices around the y axis, numbered in the direction of
// increasing angle from +x towards +z, in equal sections (the chamfered cube
// has four, one per vertical edge; other solids one). A section of one vertex is a
// single point: a pole, apex or centre, or a corner of the chamfered cube's
// flat top and bottom.
struct Loop {
  int32_t first;      // first vertex
  int32_t sections;
  int32_t points;     // vertices per section
  float v;            // texture v of a wrapped band
  float radius;       // radius over the rim radius, for a flat cap's texture
  float step;         // texture length between neighbours inside a section
  float length;       // texture length of a whole section, gap to the next included
};

// A loop of count evenly spaced vertices, or a single point for count 1.
Loop EvenLoop(int32_t first, int32_t count, float v, float radius);

// Texture u at position w (0 to the vertex count; the count closes the loop at 1).
float LoopU(const Loop& loop, int32_t w);

// How a band's polygons are set.
struct BandStyle {
  uint32_t color;
  uint32_t group;
  uint32_t bridgeGroup;  // quads between two sections of a dense loop
  bool flat;             // texture projected on the plane y = const (a cap)
};

// Joins two loops of the same number of sections, the upper one first when
// the surface runs downwards along the outside (so its polygons face out). Each
// section of one loop either matches the other's or is a single point, which
// then fans out to the other's section; quads and triangles are set from
// *slot onwards, which advances.
void SetBand(Mesh* mesh, int32_t* slot, const Loop& upper, const Loop& lower, const BandStyle& style);

// Sets count vertices evenly spaced on a circle of the given radius, from
// angle 0 upwards: around the y axis at height y (already scaled) for a solid,
// or in the plane z = 0 for a flat shape (y unused). Returns the next index.
enum class CirclePlane { kXZ, kXY };
int32_t SetCircleVertices(Mesh* mesh, int32_t first, int32_t count, double radius, double y,
                          const Vector3& scale, CirclePlane plane = CirclePlane::kXZ);

}  // namespace e3d
