// The triangle walker shared by every filled drawer. Corners enter in 28.4
// fixed point; each edge is walked exactly with a floor division and an
// error term, so every pixel whose centre lies inside the triangle is hit
// once: rows from ceil(top) up to ceil(bottom) exclusive, columns from
// ceil(left) up to ceil(right) exclusive. Adjacent triangles thus never
// overlap and never leave a gap.
//
// A drawer is a span body plugged into WalkTriangle:
//
//   struct Body {
//     using Params = ...;                 // per-triangle set-up of the body
//     static constexpr int kAttributes;   // values interpolated (1/z last when depth-tested)
//     static constexpr bool kDepth;       // reads the depth buffer
//     static constexpr bool kFixedSteps;  // optional: reads dxFixed
//     static void Span(const Params&, const SpanArgs&);
//   };
//
// The walker carries the body's attributes down the left edge and hands
// each non-empty span over with their values at its first pixel and their
// constant change per pixel.
#pragma once
#include <stdint.h>

#include <type_traits>

#include "engine/fp.h"
#include "engine/math.h"
#include "engine3d.h"
#include "objects/material.h"
#include "raster/render_state.h"
#include "viewport/viewport.h"

namespace e3d {

// Floor division for a positive denominator: the remainder is never negative.
// Nearly every edge's numerator fits in 32 bits, where the division is one
// instruction (the 64-bit one is slower, and a library call on i386).
inline void FloorDivMod(int64_t numerator, int32_t denominator, int32_t* quotient, int32_t* remainder) {
  int64_t q, r;
  if (numerator == static_cast<int32_t>(numerator)) {
    const int32_t n = static_cast<int32_t>(numerator);
    q = n / denominator;
    r = n % denominator;
  } else {
    q = numerator / denominator;
    r = numerator % denominator;
  }
  if (r < 0) {  // division truncated toward zero: round down instead
    q -= 1;
    r += denominator;
  }
  *quotient = static_cast<int32_t>(q);
  *remainder = static_cast<int32_t>(r);
}

// One edge from its top to its bottom corner. dX and dY are the edge's
// extents in 28.4 units.
struct EdgeWalker {
  int32_t x;            // first column at or right of the edge on scanline y
  int32_t xStep;        // floor(16 dX / 16 dY): whole columns per scanline
  int32_t numerator;    // (16 dX) mod (16 dY): the fraction left over
  int32_t denominator;  // 16 dY
  int32_t errorTerm;    // running fraction, 0 <= errorTerm < denominator
  int32_t y;            // current scanline
  int32_t height;       // scanlines left
};

// Scanlines ceil(y0) .. ceil(y1) - 1 of the edge (x0, y0) - (x1, y1), in
// 28.4. A zero-height edge is left at that.
inline void SetUpEdge(EdgeWalker& e, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
  e.y = (y0 + 15) >> 4;
  e.height = ((y1 + 15) >> 4) - e.y;
  if (e.height == 0) return;
  const int32_t dX = x1 - x0, dY = y1 - y0;
  e.denominator = 16 * dY;
  // x = ceil of the edge's column on scanline y: floor((p + 16 dY - 1) / 16 dY)
  const int64_t n = int64_t{16 * e.y - y0} * dX - 1 + int64_t{x0 + 16} * dY;
  FloorDivMod(n, e.denominator, &e.x, &e.errorTerm);
  FloorDivMod(int64_t{16} * dX, e.denominator, &e.xStep, &e.numerator);
}

// Down one scanline; true when the fraction carried an extra column.
inline bool StepEdge(EdgeWalker& e) {
  e.x += e.xStep;
  e.y += 1;
  e.height -= 1;
  e.errorTerm += e.numerator;
  if (e.errorTerm < e.denominator) return false;
  e.x += 1;
  e.errorTerm -= e.denominator;
  return true;
}

// A corner in walking order: 28.4 position and the values interpolated.
template <int N>
struct TriangleCorner {
  int32_t x, y;
  double attr[N > 0 ? N : 1];
};

// One scanline's worth of work for a span body.
struct SpanArgs {
  uint16_t* pixels;  // the scanline's row of pixels
  uint32_t* depth;   // its row of the depth buffer (bodies with kDepth)
  int32_t y;
  int32_t left;            // first column
  int32_t right;           // end column, exclusive; always above left
  const double* attr;      // the interpolated values at column left
  const double* dx;        // their change per column
  const int64_t* dxFixed;  // dx in 16.16, rounded (bodies with kFixedSteps)
};

template <class T>
constexpr bool StepsInFixedPoint() {
  if constexpr (requires { T::kFixedSteps; }) return T::kFixedSteps;
  return false;
}

// round(v x 65536), held within 2^40 either way (NaN at the low end).
inline int64_t RoundFixed16(double v) {
  constexpr double kLimit = 1099511627776.0;  // 2^40: far beyond any channel
  constexpr double kDirect = 1073741824.0;    // 2^30: one conversion, same rounding
  v *= 65536.0;
  if (v > -kDirect && v < kDirect) return fp::NearestInt(v);
  if (!(v > -kLimit)) v = -kLimit;
  if (v > kLimit) v = kLimit;
  return static_cast<int64_t>(fp::RoundEven(v));
}

// The material of the side a face shows and its corners in walking order.
// A front face is walked from corner 2 down to 0, a back face from 0 up to 2,
// so both sides arrive with the same screen winding and only the side
// facing the viewer fills.
struct FaceSide {
  const Material* material;
  int32_t corner[3];
};

inline constexpr uint32_t kFaceBackSide = 0x80;  // face flags: seen from the back

inline FaceSide SideOf(const MeshPolygon* face) {
  if (face->polygonFlags & kFaceBackSide) return {face->backMaterial, {0, 1, 2}};
  return {face->material, {2, 1, 0}};
}

// Positions of the corners in walking order, in 28.4; with invZLast, 1/z
// of each as its last attribute. The body's own values are the caller's.
template <int N>
inline void PlaceCorners(TriangleCorner<N>* slot, const FaceSide& side, const MeshPolygon* face,
                         const MeshVertex* vertices, bool invZLast) {
  for (int i = 0; i < 3; ++i) {
    const MeshVertex& v = vertices[face->vertexIndex[side.corner[i]]];
    slot[i].x = FloatToInt(v.screenX * 16.0f);
    slot[i].y = FloatToInt(v.screenY * 16.0f);
    if constexpr (N > 0)
      if (invZLast) slot[i].attr[N - 1] = v.invZ;
  }
}

// The alpha mode a face is drawn in: blended at full level is plain. -1 when
// nothing is drawn: blended at level 0, or a mode without a span.
int32_t DrawnAlphaMode(const Material* material);

// Orders the corners top, middle, bottom by y. Which side the middle corner
// lies on follows from the permutation's parity alone (even: right): a
// triangle of the other winding would give spans that end before they start.
struct CornerOrder {
  int top, middle, bottom;
  bool middleOnRight;
};

inline CornerOrder SortCorners(int32_t y0, int32_t y1, int32_t y2) {
  if (y0 < y1) {
    if (y2 < y0) return {2, 0, 1, true};
    if (y1 < y2) return {0, 1, 2, true};
    return {0, 2, 1, false};
  }
  if (y2 < y1) return {2, 1, 0, false};
  if (y0 < y2) return {1, 0, 2, false};
  return {1, 2, 0, true};
}

// The values of the left edge on its current scanline, at column x.
template <int N>
struct LeftEdgeValues {
  double value[N > 0 ? N : 1];
  double step[N > 0 ? N : 1];  // per scanline, without the carried column

  // Values at the edge's first pixel from the plane through corner c.
  void Start(const EdgeWalker& e, const TriangleCorner<N>& c, const double* dx, const double* dy) {
    const double ox = e.x - c.x / 16.0, oy = e.y - c.y / 16.0;
    for (int i = 0; i < N; ++i) {
      value[i] = c.attr[i] + dx[i] * ox + dy[i] * oy;
      step[i] = dy[i] + dx[i] * e.xStep;
    }
  }
  void Step(bool carried, const double* dx) {
    for (int i = 0; i < N; ++i) value[i] += carried ? step[i] + dx[i] : step[i];
  }
};

// Fills the triangle of three corners into the render viewport with Body's
// spans. Only corners running clockwise on the screen (y down) fill; a
// triangle without area fills nothing.
template <class Body>
void WalkTriangle(const TriangleCorner<Body::kAttributes>* c, const typename Body::Params& params) {
  constexpr int N = Body::kAttributes;
  const Viewport* vp = renderInfo.viewport;
  uint32_t* depth = nullptr;
  int32_t depthStride = 0;
  if constexpr (Body::kDepth) {
    depth = vp->depthBuffer;
    if (depth == nullptr) return;
    depthStride = static_cast<int32_t>(vp->width);
  }
  // A corner off the viewport (a triangle handed over unclipped, or a NaN
  // that became 0 beside corners that did not) would walk outside its
  // pixels: such a triangle is dropped. Clipped corners always lie inside.
  const double xLimit = 16.0 * vp->width, yLimit = 16.0 * vp->height;
  for (int i = 0; i < 3; ++i)
    if (c[i].x < 0 || c[i].x > xLimit || c[i].y < 0 || c[i].y > yLimit) return;
  // Twice the signed area, in 28.4 squared: positive for the winding that fills.
  const int64_t ax = c[1].x - c[0].x, ay = c[1].y - c[0].y;
  const int64_t bx = c[2].x - c[0].x, by = c[2].y - c[0].y;
  const int64_t area = ax * by - bx * ay;
  if (area <= 0) return;

  // The plane of each attribute, per pixel in x and y.
  double dx[N > 0 ? N : 1], dy[N > 0 ? N : 1];
  if constexpr (N > 0) {
    const double scale = 16.0 / static_cast<double>(area);
    for (int i = 0; i < N; ++i) {
      const double da = c[1].attr[i] - c[0].attr[i], db = c[2].attr[i] - c[0].attr[i];
      dx[i] = (da * static_cast<double>(by) - db * static_cast<double>(ay)) * scale;
      dy[i] = (db * static_cast<double>(ax) - da * static_cast<double>(bx)) * scale;
    }
  }

  const CornerOrder o = SortCorners(c[0].y, c[1].y, c[2].y);
  const TriangleCorner<N>& top = c[o.top];
  const TriangleCorner<N>& middle = c[o.middle];
  const TriangleCorner<N>& bottom = c[o.bottom];
  EdgeWalker longEdge, upper, lower;
  SetUpEdge(longEdge, top.x, top.y, bottom.x, bottom.y);
  if (longEdge.height == 0) return;
  SetUpEdge(upper, top.x, top.y, middle.x, middle.y);
  SetUpEdge(lower, middle.x, middle.y, bottom.x, bottom.y);

  SpanArgs span;
  span.pixels = vp->pixels + longEdge.y * static_cast<int32_t>(vp->pitchPixels);
  span.depth = nullptr;
  if constexpr (Body::kDepth) span.depth = depth + longEdge.y * depthStride;
  span.dx = dx;
  // Rounded once for the triangle rather than at every span.
  int64_t dxFixed[N > 0 ? N : 1];
  if constexpr (N > 0 && StepsInFixedPoint<Body>())
    for (int i = 0; i < N; ++i) dxFixed[i] = RoundFixed16(dx[i]);
  span.dxFixed = dxFixed;
  LeftEdgeValues<N> left{};
  span.attr = left.value;

  EdgeWalker* l = o.middleOnRight ? &longEdge : &upper;
  EdgeWalker* r = o.middleOnRight ? &upper : &longEdge;
  if constexpr (N > 0)
    if (l->height > 0) left.Start(*l, top, dx, dy);
  const auto pitch = vp->pitchPixels;
  span.y = longEdge.y;
  for (int half = 0; half < 2; ++half) {
    // The rows step copies of the two edges, which stay in registers; only
    // the long edge's column and fraction carry over into the lower half.
    const int32_t rows = (half == 0 ? upper : lower).height;
    if (rows > 0) {
      EdgeWalker lw = *l, rw = *r;
      for (int32_t n = rows; n > 0; --n) {
        if (rw.x > lw.x) {
          span.left = lw.x;
          span.right = rw.x;
          Body::Span(params, span);
        }
        StepEdge(rw);
        const bool carried = StepEdge(lw);
        if constexpr (N > 0) left.Step(carried, dx);
        span.y += 1;
        span.pixels += pitch;
        if constexpr (Body::kDepth) span.depth += depthStride;
      }
      l->x = lw.x, l->errorTerm = lw.errorTerm;
      r->x = rw.x, r->errorTerm = rw.errorTerm;
    }
    // The middle corner's edge gives way to the one below it.
    if (o.middleOnRight) {
      r = &lower;
    } else {
      l = &lower;
      if constexpr (N > 0)
        if (lower.height > 0) left.Start(lower, middle, dx, dy);
    }
  }
}

// A walker instantiated for one span body, as the drawers' span tables hold them.
template <int N, class Params>
using TriangleWalker = void (*)(const TriangleCorner<N>*, const Params&);

// What every drawer does: the side shown picks the material, its alpha mode
// the walker from spans (0 plain, 1 additive, 2 blended, 3 subtractive), and
// setUp adds the body's own corner values and parameters; a setUp that
// returns false draws nothing. With carryInvZ, 1/z is the last value (the
// depth-tested and the perspective-correct drawers).
template <int N, class Params, class SetUp>
void DrawFace(const MeshPolygon* face, const MeshVertex* vertices, bool carryInvZ,
              const TriangleWalker<N, Params> (&spans)[4], SetUp setUp) {
  const FaceSide side = SideOf(face);
  const int32_t mode = DrawnAlphaMode(side.material);
  if (mode < 0) return;
  TriangleCorner<N> corners[3];
  PlaceCorners(corners, side, face, vertices, carryInvZ);
  Params params;
  if constexpr (std::is_same_v<decltype(setUp(face, side, mode, corners, &params)), bool>) {
    if (!setUp(face, side, mode, corners, &params)) return;
  } else {
    setUp(face, side, mode, corners, &params);
  }
  spans[mode](corners, params);
}

}  // namespace e3d
