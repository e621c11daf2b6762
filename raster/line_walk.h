// Lines and single pixels: the walk along a line's major axis, and the pen
// that puts a pixel inside a viewport's clip rectangle in an alpha mode,
// behind the depth test if asked. Shared by the wire and dot drawers and
// DrawLine2D.
#pragma once
#include <stdint.h>

#include "engine/fp.h"
#include "raster/span.h"
#include "raster/span_dither.h"
#include "raster/textured_blend.h"
#include "viewport/viewport.h"

namespace e3d {

// A coordinate as a whole number, held well inside 32 bits.
inline int32_t ClampedInt(double v) {
  constexpr double kLimit = 1073741824.0;  // 2^30
  if (!(v > -kLimit)) return -1073741824;
  if (v > kLimit) return 1073741824;
  return static_cast<int32_t>(v);
}
inline int32_t RoundToPixel(double v) { return ClampedInt(fp::RoundEven(v)); }
inline int32_t CeilToPixel(double v) { return ClampedInt(-fp::Floor(-v)); }

// Whole pixels a line or dot may touch: columns left .. right - 1 and rows
// top .. bottom - 1, as spans count them; never outside the surface.
struct PixelRect {
  int32_t left, top, right, bottom;
  bool Holds(int32_t x, int32_t y) const { return x >= left && x < right && y >= top && y < bottom; }
};

inline PixelRect ClipPixels(const Viewport* vp) {
  const ViewportClip c = ViewportClipBounds(vp);
  const int32_t width = static_cast<int32_t>(vp->width), height = static_cast<int32_t>(vp->height);
  PixelRect r{CeilToPixel(c.left), CeilToPixel(c.top), CeilToPixel(c.right), CeilToPixel(c.bottom)};
  r.left = r.left < 0 ? 0 : r.left;
  r.top = r.top < 0 ? 0 : r.top;
  r.right = r.right > width ? width : r.right;
  r.bottom = r.bottom > height ? height : r.bottom;
  return r;
}

// Walks the line (x0, y0) - (x1, y1) one pixel a step along its major axis,
// from round(start) to round(end) inclusive, restricted to the rectangle's
// extent on that axis. For each step plot(major, centre, t) gets the
// line's minor coordinate there (exactly the endpoint's at either end) and
// the fraction t of the way from the first point. steep tells the caller
// which axis is which: x major when false.
template <class Plot>
void WalkLine(double x0, double y0, double x1, double y1, const PixelRect& r, Plot plot, bool* steep) {
  const double dx = x1 - x0, dy = y1 - y0;
  *steep = fp::Abs(dy) > fp::Abs(dx);
  const double a0 = *steep ? y0 : x0, a1 = *steep ? y1 : x1;
  const double b0 = *steep ? x0 : y0, b1 = *steep ? x1 : y1;
  if (!fp::IsFinite(a0) || !fp::IsFinite(a1) || !fp::IsFinite(b0) || !fp::IsFinite(b1)) return;
  const int32_t m0 = RoundToPixel(a0), m1 = RoundToPixel(a1);
  const int32_t first = m0 < m1 ? m0 : m1, last = m0 < m1 ? m1 : m0;
  const int32_t low = *steep ? r.top : r.left, high = (*steep ? r.bottom : r.right) - 1;
  const double span = a1 - a0, slope = span != 0.0 ? (b1 - b0) / span : 0.0;
  for (int32_t m = first > low ? first : low, end = last < high ? last : high; m <= end; ++m) {
    double t = span != 0.0 ? (m - a0) / span : 0.0;
    t = t < 0.0 ? 0.0 : t > 1.0 ? 1.0 : t;
    const double centre = m == m0 ? b0 : m == m1 ? b1 : b0 + (m - a0) * slope;
    plot(m, centre, t);
  }
}

// Puts pixels of 5-bit colour and a coverage into the render viewport, in
// an alpha mode; depth-tested pens test 1/z as the triangle twins do
// (plain: strictly nearer, and write; blended: as near, no write).
struct PixelPen {
  const Viewport* vp;
  PixelRect rect;
  int32_t mode;
  uint32_t level;
  bool depthTested;

  template <bool kCoverage>
  void Put(int32_t x, int32_t y, Rgb5 s, uint32_t coverage, double invZ) const {
    if (!rect.Holds(x, y)) return;
    if (depthTested) {
      uint32_t* depth = vp->depthBuffer + y * static_cast<int32_t>(vp->width) + x;
      const uint32_t z = DepthOf(invZ);
      if (mode == 0 ? !(z < *depth) : !(z <= *depth)) return;
      if (mode == 0) *depth = z;
    }
    uint16_t* pixel = vp->pixels + y * static_cast<int32_t>(vp->pitchPixels) + x;
    *pixel = PutOverIn<kCoverage>(mode, s, coverage, level, *pixel);
  }
};

// The 5-bit colour of 8-bit channels at pixel (x, y), dithered as the
// Gouraud spans are.
inline Rgb5 DitheredAt(int32_t x, int32_t y, const double* c) {
  const uint32_t t = DitherMatrix[(y & 3) * 4 + (x & 3)];
  uint32_t v[3];
  for (int i = 0; i < 3; ++i) {
    const int32_t k = RoundToPixel(c[i]);
    v[i] = DitherChannel(static_cast<uint32_t>(k < 0 ? 0 : k > 255 ? 255 : k), t);
  }
  return {v[0], v[1], v[2]};
}

}  // namespace e3d
