// DrawLine2D: a line straight into a viewport, clipped to its clip
// rectangle. Style 1 and 2 lines are anti-aliased: across the line the
// intensity falls off with the distance from its centre along the minor
// axis (LineFalloffTable, 1/32 pixel a step), scaled for the slope
// (LineWidthTable) so that steep and flat lines carry the same weight.
#include "raster/line_walk.h"
#include "raster/tables.h"

using namespace e3d;

E3D_API void E3D_CALL DrawLine2D(Viewport* vp, float x0, float y0, float x1, float y1, uint32_t color,
                                 int32_t style) {
  const bool smooth = style == 1 || style == 2;
  const PixelPen pen{vp, ClipPixels(vp), style == 2 ? 1 : 0, 0, false};
  const Rgb5 s{(color >> 19) & 31, (color >> 11) & 31, (color >> 3) & 31};
  bool steep = false;
  if (!smooth) {
    WalkLine(x0, y0, x1, y1, pen.rect, [&](int32_t m, double centre, double) {
      const int32_t minor = RoundToPixel(centre);
      pen.Put<false>(steep ? minor : m, steep ? m : minor, s, 255, 0.0);
    }, &steep);
    return;
  }
  // The coverage by distance from the centre, for this line's slope.
  const double dx = fp::Abs(static_cast<double>(x1) - x0), dy = fp::Abs(static_cast<double>(y1) - y0);
  const double slope = dx > dy ? dy / dx : dx < dy ? dx / dy : 1.0;
  const int32_t w = LineWidthTable[slope * 32 < 31 ? static_cast<int32_t>(slope * 32) : 31];
  uint32_t coverage[64];
  for (int i = 0; i < 64; ++i) {
    const int32_t c = (LineFalloffTable[i] * w) >> 8;
    coverage[i] = static_cast<uint32_t>(c < 0 ? 0 : c > 255 ? 255 : c);
  }
  WalkLine(x0, y0, x1, y1, pen.rect, [&](int32_t m, double centre, double) {
    const int32_t at = RoundToPixel(centre * 32), base = at >> 5;  // 1/32 pixel units
    for (int32_t p = base - 1; p <= base + 2; ++p) {
      const int32_t d = p * 32 > at ? p * 32 - at : at - p * 32;
      if (d < 64 && coverage[d] != 0) pen.Put<true>(steep ? p : m, steep ? m : p, s, coverage[d], 0.0);
    }
  }, &steep);
}
