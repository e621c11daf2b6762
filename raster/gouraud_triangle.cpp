// Gouraud solid triangles: the corner colours (face words 25-27, 0x00RRGGBB)
// interpolated across the triangle in 8 bits a channel and dithered down to
// the pixel's 5, in the material's alpha mode, with and without the depth
// test. The corners are walked in the same order as the flat drawers', so
// every shade mode fills the same side of a face.
#include <type_traits>

#include "raster/span.h"
#include "raster/span_dither.h"
#include "raster/tables.h"

namespace e3d {
namespace {

struct GouraudParams {
  int32_t level;   // blending: rows of AlphaScaleTable for the colour
  int32_t target;  //   and for the target, (255 - level) * 32
};

// The three 8.16 channel accumulators of a span and the thresholds of its row.
struct GouraudShader {
  using Params = GouraudParams;
  static constexpr int kAttributes = 3;  // red, green, blue, 0..255
  static constexpr bool kFixedSteps = true;
  const GouraudParams& p;
  const uint8_t* thresholds;
  ChannelRamp red, green, blue;

  GouraudShader(const GouraudParams& params, const SpanArgs& s)
      : p(params),
        thresholds(DitherRow(s.y)),
        red(MakeChannelRamp(s.attr[0], s.dxFixed[0], s.right - s.left)),
        green(MakeChannelRamp(s.attr[1], s.dxFixed[1], s.right - s.left)),
        blue(MakeChannelRamp(s.attr[2], s.dxFixed[2], s.right - s.left)) {}
  void Step() {
    red.value += red.step;
    green.value += green.step;
    blue.value += blue.step;
  }
  // The ramp as the wide bodies take it, and n steps at once after them.
  RampRun Ramp() const {
    return {{red.value, green.value, blue.value}, {red.step, green.step, blue.step}, thresholds};
  }
  void Advance(int32_t n) {
    red.value += red.step * n;
    green.value += green.step * n;
    blue.value += blue.step * n;
  }
};

// A span of a channel combination: Combine(params, c, d) gives the 8-bit
// channel to dither from the interpolated c and the target's 5-bit d.
struct Plain;

template <class Combine>
struct GouraudSpan : GouraudShader {
  static constexpr bool kWideRamp = std::is_same_v<Combine, Plain>;
  using GouraudShader::GouraudShader;
  uint16_t Shade(int32_t x, uint16_t d) const {
    return DitherPixel(Combine::Channel(p, red.value >> 16, RedOf(d)),
                       Combine::Channel(p, green.value >> 16, GreenOf(d)),
                       Combine::Channel(p, blue.value >> 16, BlueOf(d)), thresholds[x & 3]);
  }
};

struct Plain {
  static uint32_t Channel(const GouraudParams&, uint32_t c, uint32_t) { return c; }
};

// The target's channel back in 8 bits, plus the colour, held at 255.
struct Add {
  static uint32_t Channel(const GouraudParams&, uint32_t c, uint32_t d) {
    const uint32_t e = (d << 3) + c;
    return e < 255 ? e : 255;
  }
};

// (level * c + (255 - level) * 8d) >> 8; the table takes 5-bit channels, so
// level * c is read in two parts, c >> 3 and c & 7.
struct Blend {
  static uint32_t Channel(const GouraudParams& p, uint32_t c, uint32_t d) {
    const uint32_t high = AlphaScaleTable[p.target + d] + AlphaScaleTable[p.level + (c >> 3)];
    return ((high << 3) + AlphaScaleTable[p.level + (c & 7)]) >> 8;
  }
};

// The colour less the target's channel in 8 bits, held at 0: s - d, as the
// flat drawers subtract.
struct Subtract {
  static uint32_t Channel(const GouraudParams&, uint32_t c, uint32_t d) {
    const uint32_t t = d << 3;
    return c > t ? c - t : 0;
  }
};

// Walkers indexed by alpha mode: plain, additive, blended, subtractive.
constexpr TriangleWalker<3, GouraudParams> GouraudSpanTable[4] = {
    WalkTriangle<ShadedSpan<GouraudSpan<Plain>>>,
    WalkTriangle<ShadedSpan<GouraudSpan<Add>>>,
    WalkTriangle<ShadedSpan<GouraudSpan<Blend>>>,
    WalkTriangle<ShadedSpan<GouraudSpan<Subtract>>>,
};

constexpr TriangleWalker<4, GouraudParams> GouraudSpanTableZ[4] = {
    WalkTriangle<ShadedSpan<GouraudSpan<Plain>, DepthTest::kLess>>,
    WalkTriangle<ShadedSpan<GouraudSpan<Add>, DepthTest::kLessEqual>>,
    WalkTriangle<ShadedSpan<GouraudSpan<Blend>, DepthTest::kLessEqual>>,
    WalkTriangle<ShadedSpan<GouraudSpan<Subtract>, DepthTest::kLessEqual>>,
};

// Each corner's colour as three channels, and the blend rows.
template <int N>
void SetUpGouraud(const MeshPolygon* face, const FaceSide& side, int32_t,
                  TriangleCorner<N>* corners, GouraudParams* p) {
  for (int i = 0; i < 3; ++i) {
    const uint32_t color = face->colors[side.corner[i]];
    corners[i].attr[0] = static_cast<double>((color >> 16) & 0xFF);
    corners[i].attr[1] = static_cast<double>((color >> 8) & 0xFF);
    corners[i].attr[2] = static_cast<double>(color & 0xFF);
  }
  const int32_t level = side.material->alphaLevel;
  p->level = level * 32;
  p->target = (255 - level) * 32;
}

}  // namespace
}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL GouraudSolidTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawFace(face, vertices, false, GouraudSpanTable, SetUpGouraud<3>);
}

E3D_API void E3D_CALL GouraudSolidTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawFace(face, vertices, true, GouraudSpanTableZ, SetUpGouraud<4>);
}
