// Flat solid triangles: one 16-bit colour (face word 25) in the material's
// alpha mode, with and without the depth test.
#include "raster/span.h"
#include "raster/tables.h"

namespace e3d {
namespace {

// The colour, prepared once per triangle for the span of its alpha mode.
// Adding and subtracting take each channel as a table row, channel * 32;
// blending takes level * channel, and the target's row (255 - level) * 32.
struct FlatParams {
  uint16_t color;   // plain: stored as it is
  uint32_t guards;  // packed subtraction: the colour with a guard bit above each channel
  int32_t red, green, blue;
  int32_t target;
};

// Shaders of the flat spans: the same pixel all along.
struct FlatShader {
  using Params = FlatParams;
  static constexpr int kAttributes = 0;
  const FlatParams& p;
  FlatShader(const FlatParams& params, const SpanArgs&) : p(params) {}
  void Step() {}
};

// The colour held by value: read through p, it would be reloaded after
// every store in case the store changed it.
struct FlatFill : FlatShader {
  static constexpr bool kWideFill = true;
  const uint16_t color;
  FlatFill(const FlatParams& params, const SpanArgs& s) : FlatShader(params, s), color(params.color) {}
  uint16_t Shade(int32_t, uint16_t) const { return color; }
};

struct FlatAdd : FlatShader {
  using FlatShader::FlatShader;
  uint16_t Shade(int32_t, uint16_t d) const {
    return PackPixel(SaturateAddTable[p.red + RedOf(d)], SaturateAddTable[p.green + GreenOf(d)],
                     SaturateAddTable[p.blue + BlueOf(d)]);
  }
};

// (level * s + (255 - level) * d) >> 8: a shift, not a division by 255.
struct FlatBlend : FlatShader {
  using FlatShader::FlatShader;
  uint16_t Shade(int32_t, uint16_t d) const {
    return PackPixel((AlphaScaleTable[p.target + RedOf(d)] + p.red) >> 8,
                     (AlphaScaleTable[p.target + GreenOf(d)] + p.green) >> 8,
                     (AlphaScaleTable[p.target + BlueOf(d)] + p.blue) >> 8);
  }
};

// s - d of all three channels in one subtraction. The guard bits 0x8420 sit
// above blue, green and red; one that survives means its channel did not
// borrow, and guards - guards >> 5 masks exactly those channels. The guards
// of blue and green take the lowest bit of green and red, which this mode
// therefore loses.
struct FlatSubtractPacked : FlatShader {
  using FlatShader::FlatShader;
  uint16_t Shade(int32_t, uint16_t d) const {
    const uint32_t difference = p.guards - (d & 0x7BDFu);
    const uint32_t guards = difference & 0x8420u;
    return static_cast<uint16_t>(difference & (guards - (guards >> 5)));
  }
};

// s - d per channel through the table, without the packed form's losses.
struct FlatSubtract : FlatShader {
  using FlatShader::FlatShader;
  uint16_t Shade(int32_t, uint16_t d) const {
    return PackPixel(SaturateSubTable[p.red + RedOf(d)], SaturateSubTable[p.green + GreenOf(d)],
                     SaturateSubTable[p.blue + BlueOf(d)]);
  }
};

// Walkers indexed by alpha mode: plain, additive, blended, subtractive.
constexpr TriangleWalker<0, FlatParams> FlatSpanTable[4] = {
    WalkTriangle<ShadedSpan<FlatFill>>,
    WalkTriangle<ShadedSpan<FlatAdd>>,
    WalkTriangle<ShadedSpan<FlatBlend>>,
    WalkTriangle<ShadedSpan<FlatSubtractPacked>>,
};

constexpr TriangleWalker<1, FlatParams> FlatSpanTableZ[4] = {
    WalkTriangle<ShadedSpan<FlatFill, DepthTest::kLess>>,
    WalkTriangle<ShadedSpan<FlatAdd, DepthTest::kLessEqual>>,
    WalkTriangle<ShadedSpan<FlatBlend, DepthTest::kLessEqual>>,
    WalkTriangle<ShadedSpan<FlatSubtract, DepthTest::kLessEqual>>,
};

// The colour terms of the span of the alpha mode.
template <int N>
void SetUpFlat(const MeshPolygon* face, const FaceSide& side, int32_t mode, TriangleCorner<N>*,
               FlatParams* p) {
  const uint32_t color = face->colors[0] & 0xFFFF;
  p->color = static_cast<uint16_t>(color);
  p->guards = color | 0x8420u;
  const int32_t red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
  if (mode == 2) {
    const int32_t level = side.material->alphaLevel;
    p->red = AlphaScaleTable[level * 32 + red];
    p->green = AlphaScaleTable[level * 32 + green];
    p->blue = AlphaScaleTable[level * 32 + blue];
    p->target = (255 - level) * 32;
  } else {
    p->red = red * 32;
    p->green = green * 32;
    p->blue = blue * 32;
    p->target = 0;
  }
}

}  // namespace
}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL FlatSolidTriangle(MeshPolygon* face, MeshVertex* vertices) {
  DrawFace(face, vertices, false, FlatSpanTable, SetUpFlat<0>);
}

E3D_API void E3D_CALL FlatSolidTriangleZ(MeshPolygon* face, MeshVertex* vertices) {
  DrawFace(face, vertices, true, FlatSpanTableZ, SetUpFlat<1>);
}
