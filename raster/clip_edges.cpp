// Edge-by-edge clipping of the working polygon, one plane at a time, with
// one cut function per plane kind and attribute group.
#include "raster/clip.h"
#include "viewport/viewport.h"

namespace e3d {

ClipPolygon clipPolygon;
ClipWindow clipWindow;
Viewport* clipViewport = nullptr;

void SetClipWindow(float xmin, float xmax, float ymin, float ymax) {
  clipWindow = {xmin, xmax, ymin, ymax};
}

namespace {

// The plane being clipped and, for the depth planes, how a cut projects.
float clipPlane;
float horizontalFactor, verticalFactor;

constexpr uint32_t kOutX = E3D_OUT_LEFT | E3D_OUT_RIGHT;
constexpr uint32_t kOutY = E3D_OUT_TOP | E3D_OUT_BOTTOM;

// Outside low when value - bound is negative, high when positive: a value
// on a bound is inside.
uint32_t OutBits(float value, float low, float high, uint32_t lowBit, uint32_t highBit) {
  if (value - low < 0.0f) return lowBit;
  if (value - high > 0.0f) return highBit;
  return 0;
}
uint32_t OutX(float x) { return OutBits(x, clipWindow.xmin, clipWindow.xmax, E3D_OUT_LEFT, E3D_OUT_RIGHT); }
uint32_t OutY(float y) { return OutBits(y, clipWindow.ymin, clipWindow.ymax, E3D_OUT_TOP, E3D_OUT_BOTTOM); }

enum PlaneKind { kVerticalEdge, kHorizontalEdge, kDepthPlane };

// The point where a - b meets the plane, from a towards b. The caller has
// set its outcode; the cut recomputes the bits of the other axis.
template <int Group, PlaneKind Kind>
void Cut(ClipVertex* out, const ClipVertex& a, const ClipVertex& b) {
  const float ca = Kind == kVerticalEdge ? a.screenX : Kind == kHorizontalEdge ? a.screenY : a.camZ;
  const float cb = Kind == kVerticalEdge ? b.screenX : Kind == kHorizontalEdge ? b.screenY : b.camZ;
  const float t = (clipPlane - ca) / (cb - ca);
  auto at = [t](float p, float q) { return p + (q - p) * t; };
  out->camX = at(a.camX, b.camX);
  out->camY = at(a.camY, b.camY);
  out->camZ = at(a.camZ, b.camZ);
  if constexpr ((Group & kClipTextured) != 0) {
    out->u = at(a.u, b.u);
    out->v = at(a.v, b.v);
  }
  if constexpr ((Group & kClipGouraud) != 0)
    for (int i = 0; i < 3; ++i) out->color[i] = at(a.color[i], b.color[i]);
  if constexpr (Kind == kDepthPlane) {
    out->camZ = clipPlane;
    out->screenX = out->camX * horizontalFactor + clipViewport->centerX;
    out->screenY = out->camY * verticalFactor + clipViewport->centerY;
    out->invZ = 1.0f / clipPlane;
    out->outcode = (out->outcode & ~(kOutX | kOutY)) | OutX(out->screenX) | OutY(out->screenY);
  } else {
    out->invZ = at(a.invZ, b.invZ);
    if constexpr (Kind == kVerticalEdge) {
      out->screenX = clipPlane;
      out->screenY = at(a.screenY, b.screenY);
      out->outcode = (out->outcode & ~kOutY) | OutY(out->screenY);
    } else {
      out->screenX = at(a.screenX, b.screenX);
      out->screenY = clipPlane;
      out->outcode = (out->outcode & ~kOutX) | OutX(out->screenX);
    }
  }
}

using CutFunction = void (*)(ClipVertex*, const ClipVertex&, const ClipVertex&);

template <int Group>
constexpr CutFunction kCutGroup[3] = {Cut<Group, kVerticalEdge>, Cut<Group, kHorizontalEdge>,
                                      Cut<Group, kDepthPlane>};

// Per attribute group: vertical screen edge, horizontal screen edge, depth plane.
constexpr const CutFunction* ClipFunctionTable[4] = {kCutGroup<0>, kCutGroup<1>, kCutGroup<2>,
                                                     kCutGroup<3>};

// One Sutherland-Hodgman step: the edge a - b against the plane whose
// outside bit is bit, into the output list. A cut that lands on the inside
// vertex it starts from (or ends at) is not emitted a second time.
void ClipEdge(const ClipVertex& a, const ClipVertex& b, uint32_t bit, CutFunction cut) {
  ClipPolygon& p = clipPolygon;
  if (p.outCount + 2 > kClipCapacity) return;  // unreachable for a convex polygon
  ClipVertex* out = &p.out[p.outCount];
  if (a.outcode & bit) {
    if (b.outcode & bit) return;
    out->outcode = a.outcode;
    cut(out, a, b);
    if (out->screenX == b.screenX && out->screenY == b.screenY) return;
    out->outcode &= ~bit;
    p.outCount += 1;
    return;
  }
  out[0] = a;
  p.outCount += 1;
  if ((b.outcode & bit) == 0) return;
  out[1].outcode = b.outcode;
  cut(&out[1], a, b);
  if (out[1].screenX == a.screenX && out[1].screenY == a.screenY) return;
  out[1].outcode &= ~bit;
  p.outCount += 1;
}

// Clips every edge of the input list, closing edge last, and makes the
// output the new input.
void ClipPlane(uint32_t bit, float plane, PlaneKind kind) {
  ClipPolygon& p = clipPolygon;
  const CutFunction cut = ClipFunctionTable[p.group][kind];
  clipPlane = plane;
  p.outCount = 0;
  for (int32_t i = 0; i + 1 < p.count; ++i) ClipEdge(p.in[i], p.in[i + 1], bit, cut);
  if (p.count > 0) ClipEdge(p.in[p.count - 1], p.in[0], bit, cut);
  for (int32_t i = 0; i < p.outCount; ++i) p.in[i] = p.out[i];
  p.count = p.outCount;
}

}  // namespace

void LoadClipVertex(int32_t i, const MeshVertex& v) {
  ClipVertex& c = clipPolygon.in[i];
  c.camX = v.camX, c.camY = v.camY, c.camZ = v.camZ;
  c.screenX = v.screenX, c.screenY = v.screenY, c.invZ = v.invZ;
  c.outcode = v.outcode;
}

void ClipDepthPlane(uint32_t planeBit, float plane, float horizontal, float vertical) {
  horizontalFactor = horizontal;
  verticalFactor = vertical;
  ClipPlane(planeBit, plane, kDepthPlane);
}

// The edges sit on the viewport's scissor, less the letter-box bars. A cut
// between corners far apart (1e20 and beyond) can cancel to a point outside
// an edge already passed, or one not planned; such points are pulled onto
// the window. Otherwise they lie within rounding of it, where the fixed-point
// corners of the drawers do not tell the difference.
void ClipScreenEdges() {
  uint32_t outcodes = 0;
  for (int32_t i = 0; i < clipPolygon.count; ++i) outcodes |= clipPolygon.in[i].outcode;
  const ViewportClip bounds = ViewportClipBounds(clipViewport);
  if (outcodes & E3D_OUT_LEFT) ClipPlane(E3D_OUT_LEFT, bounds.left, kVerticalEdge);
  if (outcodes & E3D_OUT_RIGHT) ClipPlane(E3D_OUT_RIGHT, bounds.right, kVerticalEdge);
  if (outcodes & E3D_OUT_TOP) ClipPlane(E3D_OUT_TOP, bounds.top, kHorizontalEdge);
  if (outcodes & E3D_OUT_BOTTOM) ClipPlane(E3D_OUT_BOTTOM, bounds.bottom, kHorizontalEdge);
  for (int32_t i = 0; i < clipPolygon.count; ++i) {
    ClipVertex& c = clipPolygon.in[i];
    if ((c.outcode & (kOutX | kOutY)) == 0) continue;
    c.screenX = c.screenX < bounds.left ? bounds.left : c.screenX > bounds.right ? bounds.right : c.screenX;
    c.screenY = c.screenY < bounds.top ? bounds.top : c.screenY > bounds.bottom ? bounds.bottom : c.screenY;
    c.outcode &= ~(kOutX | kOutY);
  }
}

}  // namespace e3d
