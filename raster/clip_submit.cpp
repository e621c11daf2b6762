// The two submission entries: trivial tests, the near or far cut, the
// texel coordinates and mip level, and the fan.
#include "engine/math.h"
#include "objects/camera.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "raster/clip.h"
#include "raster/render_state.h"
#include "viewport/viewport.h"

namespace e3d {

int32_t MipLevel(float texelArea, float screenArea) {
  // A triangle without area makes the quotient infinite or undefined: level 0.
  const int32_t level = FloatToInt(static_cast<double>(texelArea) / (screenArea * 4.0) - 1.0);
  return level < 0 ? 0 : level > 3 ? 3 : level;
}

int32_t textureLevel = 0;

namespace {

constexpr uint32_t kFilledMask = 0x00700000;  // all three: filled, not dots or wire
constexpr uint32_t kGouraudShade = 7;

MeshPolygon faceCopy;

float Magnitude(float x) { return x < 0.0f ? -x : x; }

// Twice the area of the polygon of n points, sign dropped.
template <class Point>
float TwiceArea(int32_t n, Point point) {
  float sum = 0.0f;
  for (int32_t i = 0; i < n; ++i) {
    float x0, y0, x1, y1;
    point(i, &x0, &y0);
    point(i + 1 < n ? i + 1 : 0, &x1, &y1);
    sum += x0 * y1 - x1 * y0;
  }
  return Magnitude(sum);
}

// The stage the render word's texture field names, or null for none or for
// more than one.
const TextureStage* ActiveStage(const MeshPolygon* face, uint32_t renderWord, int32_t* stageIndex) {
  const Material* m = (face->polygonFlags & kPolygonBackFacing) ? face->backMaterial : face->material;
  switch (renderWord & kPolygonTextured) {
    case 0x00800000: *stageIndex = 0; break;
    case 0x01000000: *stageIndex = 1; break;
    case 0x02000000: *stageIndex = 2; break;
    case 0x04000000: *stageIndex = 3; break;
    default: return nullptr;
  }
  return &m->stages[*stageIndex];
}

// The face's three corners into the clip list, with their texture pair
// (the second for stage 2) as given, and their colours as floats.
const TextureStage* LoadFace(const MeshPolygon* face, const MeshVertex* vertices, uint32_t renderWord) {
  ClipPolygon& p = clipPolygon;
  p.count = 3;
  p.group = ((renderWord & kPolygonTextured) ? kClipTextured : 0) |
            ((renderWord & 7) == kGouraudShade ? kClipGouraud : 0);
  int32_t stageIndex = 0;
  const TextureStage* stage = nullptr;
  if (p.group & kClipTextured) stage = ActiveStage(face, renderWord, &stageIndex);
  for (int k = 0; k < 3; ++k) {
    ClipVertex& c = p.in[k];
    LoadClipVertex(k, vertices[face->vertexIndex[k]]);
    const PolygonCorner& t = face->corners[k];
    c.u = stageIndex == 2 ? t.envU : t.u;
    c.v = stageIndex == 2 ? t.envV : t.v;
    const uint32_t color = face->colors[k];
    c.color[0] = static_cast<float>((color >> 16) & 0xFF);
    c.color[1] = static_cast<float>((color >> 8) & 0xFF);
    c.color[2] = static_cast<float>(color & 0xFF);
  }
  return stage;
}

// Texel coordinates of the chosen level, divided by depth. A mip chain
// picks its level by the ratio of texel to screen area: that of the face's
// first pairs over its corners, or that of the clipped polygon after a cut.
void PlaceTexels(const MeshPolygon* face, const TextureStage* stage, bool cut) {
  ClipPolygon& p = clipPolygon;
  int32_t level = 0;
  if (stage->stageFlags & kStageMipChain) {
    const float w = static_cast<float>(stage->levelWidths[0]);
    const float h = static_cast<float>(stage->levelHeights[0]);
    const float screen = TwiceArea(p.count, [&](int32_t i, float* x, float* y) {
      *x = p.in[i].screenX, *y = p.in[i].screenY;
    });
    const float texels = cut ? TwiceArea(p.count, [&](int32_t i, float* x, float* y) {
      *x = p.in[i].u * w, *y = p.in[i].v * h;
    })
                             : TwiceArea(3, [&](int32_t i, float* x, float* y) {
                                 *x = face->corners[i].u * w, *y = face->corners[i].v * h;
                               });
    level = MipLevel(texels, screen);
  }
  textureLevel = level;
  const float w = static_cast<float>(stage->levelWidths[level] - 1);
  const float h = static_cast<float>(stage->levelHeights[level] - 1);
  for (int32_t i = 0; i < p.count; ++i) {
    ClipVertex& c = p.in[i];
    c.u = w * c.invZ * c.u;
    c.v = h * c.invZ * c.v;
  }
}

// Screen edges and fan of the loaded polygon. One that needs no cut goes to
// the drawer as it is, with its own vertices.
void DrawLoaded(MeshPolygon* face, MeshVertex* vertices, uint32_t outcodes, TriangleDrawer drawer) {
  if (outcodes != 0) {
    ClipScreenEdges();
    DrawClipFan(face, drawer);
    return;
  }
  if ((clipPolygon.group & kClipTextured) == 0) {
    drawer(face, vertices);
    return;
  }
  faceCopy = *face;
  for (int k = 0; k < 3; ++k) faceCopy.corners[k].u = clipPolygon.in[k].u, faceCopy.corners[k].v = clipPolygon.in[k].v;
  drawer(&faceCopy, vertices);
}

// Dots and wire drawers clip for themselves; a triangle wholly beyond one
// plane is dropped. False when the entry is done with it.
bool PassesTrivialTests(MeshPolygon* face, MeshVertex* vertices, uint32_t renderWord,
                        TriangleDrawer drawer, uint32_t* outcodes) {
  if ((renderWord & kFilledMask) != kFilledMask) {
    drawer(face, vertices);
    return false;
  }
  const uint32_t a = vertices[face->vertexIndex[0]].outcode;
  const uint32_t b = vertices[face->vertexIndex[1]].outcode;
  const uint32_t c = vertices[face->vertexIndex[2]].outcode;
  *outcodes = a | b | c;
  return (a & b & c) == 0;
}

void SubmitInside(MeshPolygon* face, MeshVertex* vertices, uint32_t renderWord, TriangleDrawer drawer,
                  uint32_t outcodes) {
  clipViewport = renderInfo.viewport;
  const TextureStage* stage = LoadFace(face, vertices, renderWord);
  if (stage != nullptr) PlaceTexels(face, stage, false);
  DrawLoaded(face, vertices, outcodes, drawer);
  textureLevel = 0;
}

}  // namespace

void SubmitFace(MeshPolygon* face, MeshVertex* vertices, uint32_t renderWord, TriangleDrawer drawer) {
  uint32_t outcodes;
  if (PassesTrivialTests(face, vertices, renderWord, drawer, &outcodes))
    SubmitInside(face, vertices, renderWord, drawer, outcodes);
}

void SubmitPolygon(const PolygonRecord* entry, TriangleDrawer drawer) {
  SubmitFace(entry->polygon, entry->mesh->vertices, entry->renderFlags, drawer);
}

// Only one depth plane is cut: the near one when a corner is in front of
// it, else the far one.
void SubmitClippedPolygon(const PolygonRecord* entry, TriangleDrawer drawer) {
  MeshPolygon* face = entry->polygon;
  uint32_t outcodes;
  if (!PassesTrivialTests(face, entry->mesh->vertices, entry->renderFlags, drawer, &outcodes)) return;
  if ((outcodes & (E3D_OUT_NEAR | E3D_OUT_FAR)) == 0) {
    SubmitInside(face, entry->mesh->vertices, entry->renderFlags, drawer, outcodes);
    return;
  }
  const Camera* camera = renderInfo.camera;
  clipViewport = renderInfo.viewport;
  const uint32_t bit = (outcodes & E3D_OUT_NEAR) ? E3D_OUT_NEAR : E3D_OUT_FAR;
  const float plane = bit == E3D_OUT_NEAR ? camera->nearPlane : camera->farPlane;
  const float horizontal = 1.0f / plane * camera->projScale;
  const float vertical = horizontal * clipViewport->projectionSign;

  const TextureStage* stage = LoadFace(face, entry->mesh->vertices, entry->renderFlags);
  ClipDepthPlane(bit, plane, horizontal, vertical);
  if (clipPolygon.count < 3) return;
  if (stage != nullptr) PlaceTexels(face, stage, true);
  ClipScreenEdges();
  DrawClipFan(face, drawer);
  textureLevel = 0;
}

}  // namespace e3d
