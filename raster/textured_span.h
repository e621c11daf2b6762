// Textured triangles: the texel under each pixel, met with the polygon's
// colour, put over the target in the material's alpha mode. Three kinds
// share the spans: diffuse (stage 0), opacity (stage 1: the texel's alpha
// or intensity is its coverage) and environment (stage 2: the texel added
// to the lit colour); each in the None, Flat and Gouraud families.
//
// Texel coordinates arrive as u/z, v/z with 1/z (submission scales them to
// the chosen level's texels); they are divided out exactly at the ends of
// the blocks of 16 pixels that the depth test uses and step linearly in
// between.
#pragma once
#include <stdint.h>

#include "raster/clip.h"
#include "raster/span.h"
#include "raster/span_dither.h"
#include "raster/textured_blend.h"
#include "raster/textured_texel.h"

namespace e3d {

// How a texel meets the polygon's colour (a material's colorOp, when its
// colour-operation bit is set, picks 1 to 3).
enum ColourOp : int32_t { kOpModulate = 0, kOpAdd = 1, kOpSubtract = 2, kOpTexel = 3 };

inline Rgb5 CombineTexel(int32_t op, const Texel& t, Rgb5 c) {
  switch (op) {
    case kOpAdd:
      return {SaturateAddTable[t.red * 32 + c.red], SaturateAddTable[t.green * 32 + c.green],
              SaturateAddTable[t.blue * 32 + c.blue]};
    case kOpSubtract:
      return {SaturateSubTable[t.red * 32 + c.red], SaturateSubTable[t.green * 32 + c.green],
              SaturateSubTable[t.blue * 32 + c.blue]};
    case kOpTexel:
      return {t.red, t.green, t.blue};
    default:
      return {ModulateTable[t.red * 32 + c.red], ModulateTable[t.green * 32 + c.green],
              ModulateTable[t.blue * 32 + c.blue]};
  }
}

struct TexturedParams {
  TextureLevel level;
  Rgb5 color;           // the flat colour, for the None and Flat families
  int32_t op;           // ColourOp
  uint32_t alphaLevel;  // blended mode
};

// 16.16 texel coordinates along a span: exact at the start of each block
// and at its end (the span's last pixel for the final block), stepped
// linearly in between.
struct PerspectiveTexels {
  double uz, vz, iz, duz, dvz, diz;  // at the span's first pixel, and per pixel
  int32_t left = 0;
  int32_t u = 0, v = 0, du = 0, dv = 0;
  int32_t nextU = 0, nextV = 0;
  bool haveNext = false;

  static int32_t Fixed(double t) {
    constexpr int64_t kLimit = int64_t{1} << 29;  // 8192 texels: far beyond any level
    const int64_t f = RoundFixed16(t);
    return static_cast<int32_t>(f < -kLimit ? -kLimit : f > kLimit ? kLimit : f);
  }
  void At(int32_t x, int32_t* pu, int32_t* pv) const {
    const double n = x - left, w = iz + n * diz;
    if (!(w > 0.0)) {
      *pu = *pv = 0;
      return;
    }
    const double z = 1.0 / w;
    *pu = Fixed((uz + n * duz) * z);
    *pv = Fixed((vz + n * dvz) * z);
  }
  // u/z and v/z are values 0 and 1 of the span, 1/z value invZ.
  void Start(const SpanArgs& s, int32_t invZ) {
    uz = s.attr[0], vz = s.attr[1], iz = s.attr[invZ];
    duz = s.dx[0], dvz = s.dx[1], diz = s.dx[invZ];
    left = s.left;
    haveNext = false;
    At(left, &u, &v);
  }
  void Block(int32_t x, int32_t end, bool last) {
    if (haveNext) u = nextU, v = nextV;
    if (!last) {
      At(end, &nextU, &nextV);
      haveNext = true;
      du = (nextU - u) >> kDepthBlockShift;
      dv = (nextV - v) >> kDepthBlockShift;
    } else if (end - x > 1) {
      int32_t lastU, lastV;
      At(end - 1, &lastU, &lastV);
      du = (lastU - u) / (end - 1 - x);
      dv = (lastV - v) / (end - 1 - x);
    } else {
      du = dv = 0;
    }
  }
  void Step() { u += du, v += dv; }
};

// The shader of every textured span: kGouraud interpolates the corner
// colours (values 2-4, dithered to 5 bits), else the flat colour is used;
// kCoverage takes the texel's alpha as coverage. Keyed texels, and with
// kCoverage texels of no coverage, leave the pixel and its depth alone.
template <bool kGouraud, bool kCoverage, int kMode>
struct TexturedShader {
  using Params = TexturedParams;
  static constexpr int kAttributes = kGouraud ? 5 : 2;  // u/z, v/z, then red, green, blue
  static constexpr bool kPerspective = true;
  static constexpr bool kMayKeep = true;
  static constexpr bool kFixedSteps = kGouraud;
  const TexturedParams& p;
  PerspectiveTexels uv;
  const uint8_t* thresholds;
  ChannelRamp red{}, green{}, blue{};

  TexturedShader(const TexturedParams& params, const SpanArgs& s) : p(params), thresholds(DitherRow(s.y)) {
    uv.Start(s, kAttributes);
    if constexpr (kGouraud) {
      red = MakeChannelRamp(s.attr[2], s.dxFixed[2], s.right - s.left);
      green = MakeChannelRamp(s.attr[3], s.dxFixed[3], s.right - s.left);
      blue = MakeChannelRamp(s.attr[4], s.dxFixed[4], s.right - s.left);
    }
  }
  void Block(int32_t x, int32_t end, bool last) { uv.Block(x, end, last); }
  void Step() {
    uv.Step();
    if constexpr (kGouraud) red.value += red.step, green.value += green.step, blue.value += blue.step;
  }
  int32_t Shade(int32_t x, uint16_t target) const {
    Texel t;
    if (!p.level.Sample(uv.u, uv.v, &t)) return -1;
    if constexpr (kCoverage)
      if (t.alpha == 0) return -1;
    Rgb5 c = p.color;
    if constexpr (kGouraud) {
      const uint32_t th = thresholds[x & 3];
      c = {DitherChannel(red.value >> 16, th), DitherChannel(green.value >> 16, th),
           DitherChannel(blue.value >> 16, th)};
    }
    return PutOver<kMode, kCoverage>(CombineTexel(p.op, t, c), t.alpha, p.alphaLevel, target);
  }
};

// Walkers by alpha mode: plain, added, blended, subtracted.
template <bool kGouraud, bool kCoverage, bool kDepth>
struct TexturedWalkers {
  template <int kMode>
  using Body = ShadedSpan<TexturedShader<kGouraud, kCoverage, kMode>,
                          !kDepth ? DepthTest::kNone : kMode == 0 ? DepthTest::kLess : DepthTest::kLessEqual>;
  static constexpr int N = Body<0>::kAttributes;
  static constexpr TriangleWalker<N, TexturedParams> table[4] = {
      WalkTriangle<Body<0>>, WalkTriangle<Body<1>>, WalkTriangle<Body<2>>, WalkTriangle<Body<3>>};
};

enum class TexturedKind { kDiffuse, kOpacity, kEnvironment };
enum class ShadeFamily { kNone, kFlat, kGouraud };

// Level, corner values and colour terms of one face; false when its stage
// has no texels.
template <TexturedKind K, ShadeFamily F, int N>
bool SetUpTextured(const MeshPolygon* face, const FaceSide& side, int32_t, TriangleCorner<N>* corners,
                   TexturedParams* p) {
  const Material* m = side.material;
  const int32_t stage = K == TexturedKind::kDiffuse ? 0 : K == TexturedKind::kOpacity ? 1 : 2;
  if (!SetUpTextureLevel(&m->stages[stage], textureLevel, &p->level)) return false;
  for (int i = 0; i < 3; ++i) {
    const PolygonCorner& t = face->corners[side.corner[i]];
    corners[i].attr[0] = t.u;
    corners[i].attr[1] = t.v;
    if constexpr (F == ShadeFamily::kGouraud) {
      const uint32_t color = face->colors[side.corner[i]];
      corners[i].attr[2] = static_cast<double>((color >> 16) & 0xFF);
      corners[i].attr[3] = static_cast<double>((color >> 8) & 0xFF);
      corners[i].attr[4] = static_cast<double>(color & 0xFF);
    }
  }
  p->color = ChannelsOf(face->colors[0] & 0x7FFF);
  const int32_t op = m->colorOp;
  if (K == TexturedKind::kEnvironment)
    p->op = kOpAdd;
  else if (F == ShadeFamily::kNone)
    p->op = kOpTexel;
  else
    p->op = (m->flags & kMaterialColorOpOn) && op >= kOpAdd && op <= kOpTexel ? op : kOpModulate;
  p->alphaLevel = m->alphaLevel < 255 ? m->alphaLevel : 255;
  return true;
}

template <TexturedKind K, ShadeFamily F>
void DrawTextured(MeshPolygon* face, MeshVertex* vertices, bool depthTested) {
  constexpr bool kGouraud = F == ShadeFamily::kGouraud, kCoverage = K == TexturedKind::kOpacity;
  using Plain = TexturedWalkers<kGouraud, kCoverage, false>;
  using Tested = TexturedWalkers<kGouraud, kCoverage, true>;
  if (depthTested)
    DrawFace(face, vertices, true, Tested::table, SetUpTextured<K, F, Tested::N>);
  else
    DrawFace(face, vertices, true, Plain::table, SetUpTextured<K, F, Plain::N>);
}

}  // namespace e3d
