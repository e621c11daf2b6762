// Polygon submission: a mesh triangle on its way to its drawer is rejected
// when wholly outside, cut at the near or far plane and at the four screen
// edges one plane at a time, given texel coordinates and a mip level, and
// drawn as a fan of triangles. All working state is static: no allocation
// per draw, and not reentrant.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "objects/polygon_record.h"

namespace e3d {

// The working vertex: a MeshVertex's screen words and the attributes the
// drawers interpolate.
struct ClipVertex {
  float unused[3];
  float camX, camY, camZ;
  float screenX, screenY, invZ;
  uint32_t outcode;
  float u, v;       // texel coordinates times 1/z
  float color[3];   // the corner colour's channels, 0..255, highest byte first
  float spare;
};
static_assert(sizeof(ClipVertex) == 64, "ClipVertex is sixteen words");

// Attribute groups: which values a cut carries besides the position.
inline constexpr int32_t kClipPlain = 0;
inline constexpr int32_t kClipTextured = 1;
inline constexpr int32_t kClipGouraud = 2;
inline constexpr int32_t kClipTexturedGouraud = 3;

// Three vertices cut by five planes leave at most eight; the rest is slack
// for polygons that rounding leaves not quite convex.
inline constexpr int32_t kClipCapacity = 12;

// The polygon being clipped: input list (count vertices), output list.
struct ClipPolygon {
  int32_t count;
  int32_t outCount;
  int32_t group;
  ClipVertex in[kClipCapacity];
  ClipVertex out[kClipCapacity];
};
extern ClipPolygon clipPolygon;

// Outcodes of cut points are set against this window; the caller sets it
// before submitting (the viewport's clip bounds; the whole viewport for
// DrawTriangle2D).
struct ClipWindow {
  float xmin, xmax, ymin, ymax;
};
extern ClipWindow clipWindow;
void SetClipWindow(float xmin, float xmax, float ymin, float ymax);

// The viewport whose scissor and border place the screen edges.
extern Viewport* clipViewport;

// Cuts clipPolygon at each screen edge that one of its vertices lies
// beyond: left, right, top, bottom in that order.
void ClipScreenEdges();

// Cuts clipPolygon at the plane z = plane, whose outside bit is planeBit.
// Cut points are projected with the factors and the viewport's centre.
void ClipDepthPlane(uint32_t planeBit, float plane, float horizontal, float vertical);

// Sets up vertex i of clipPolygon from a screen vertex (position words only).
void LoadClipVertex(int32_t i, const MeshVertex& v);

// Draws clipPolygon as the fan (0, i, i + 1) with copies of face and of its
// vertices; nothing when fewer than three vertices are left.
void DrawClipFan(const MeshPolygon* face, TriangleDrawer drawer);

// The mip level of a chain: linear in the ratio of twice the texel area to
// twice the screen area (4 gives 0, 8 gives 1, 12 gives 2), clamped to 0..3.
int32_t MipLevel(float texelArea, float screenArea);

// The mip level that submission chose for the triangle now being drawn,
// for the textured drawers; 0 whenever no submission is under way, so a
// drawer called on its own reads level 0.
extern int32_t textureLevel;

// Submission of one face whose vertices' outcodes are set against the clip
// window (the direct entry without its polygon record).
void SubmitFace(MeshPolygon* face, MeshVertex* vertices, uint32_t renderWord, TriangleDrawer drawer);

// Submission entries for a polygon record and its drawer. The clipping
// entry also cuts at the near or far plane of the render camera.
void SubmitPolygon(const PolygonRecord* entry, TriangleDrawer drawer);
void SubmitClippedPolygon(const PolygonRecord* entry, TriangleDrawer drawer);

}  // namespace e3d
