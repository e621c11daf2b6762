// Span bodies built from a pixel shader and a depth test. A shader gives the
// colour of one pixel; ShadedSpan runs it along a span, with or without the
// depth buffer:
//
//   struct Shader {
//     using Params = ...;
//     static constexpr int kAttributes;             // values it interpolates
//     Shader(const Params&, const SpanArgs&);       // at the span's first pixel
//     uint16_t Shade(int32_t x, uint16_t target);   // the pixel to store at column x
//     void Step();                                  // on to the next column
//   };
//
// so a new drawer is a shader plus one ShadedSpan instantiation.
#pragma once
#include <stdint.h>

#include "engine/fp.h"
#include "engine/math.h"
#include "raster/span_wide.h"
#include "raster/triangle.h"

namespace e3d {

// The 5-bit channels of a pixel, and back.
inline uint32_t RedOf(uint32_t pixel) { return (pixel >> 10) & 31; }
inline uint32_t GreenOf(uint32_t pixel) { return (pixel >> 5) & 31; }
inline uint32_t BlueOf(uint32_t pixel) { return pixel & 31; }
inline uint16_t PackPixel(uint32_t red, uint32_t green, uint32_t blue) {
  return static_cast<uint16_t>(red << 10 | green << 5 | blue);
}

enum class DepthTest {
  kNone,
  kLess,       // strictly nearer than the stored depth; writes the depth
  kLessEqual,  // as near or nearer; leaves the depth as it is (blended spans)
};

inline constexpr int32_t kDepthBlock = 16;  // pixels between two exact depths
inline constexpr int32_t kDepthBlockShift = 4;
inline constexpr uint32_t kDepthFarthest = 0xFFFFFFFF;

// Depth-buffer value of 1/z: z x 65536, rounded. Depths past the buffer's
// range (z of 65536 and beyond, or no positive 1/z) are the farthest value.
inline uint32_t DepthOf(double invZ) {
  if (!(invZ > 0.0)) return kDepthFarthest;
  const double z = 65536.0 / invZ;
  return z < 4294967295.0 ? static_cast<uint32_t>(FloatToInt(z)) : kDepthFarthest;
}

// Optional parts of a shader: kPerspective (it reads 1/z, carried as the
// value after its own), kFixedSteps (it reads dxFixed), Block(x, end, last)
// called at the start of each block of kDepthBlock pixels (the depth test's
// blocks; last marks the span's final, shorter or equal one), and kMayKeep
// (Shade returns an int32_t, negative to leave the pixel and its depth alone).
template <class S>
constexpr bool ShaderReadsInvZ() {
  if constexpr (requires { S::kPerspective; }) return S::kPerspective;
  return false;
}
template <class S>
constexpr bool ShaderMayKeep() {
  if constexpr (requires { S::kMayKeep; }) return S::kMayKeep;
  return false;
}
template <class S>
concept BlockShader = requires(S s) { s.Block(int32_t{0}, int32_t{0}, false); };

// Shaders the wide bodies know: a plain fill (kWideFill, with its color) and
// a plain Gouraud ramp (kWideRamp, with Ramp() and Advance(n)).
template <class S>
constexpr bool WideFillShader() {
  if constexpr (requires { S::kWideFill; }) return S::kWideFill;
  return false;
}
template <class S>
constexpr bool WideRampShader() {
  if constexpr (requires { S::kWideRamp; }) return S::kWideRamp;
  return false;
}

// A span body: Shader along the span, behind the depth test kTest.
template <class Shader, DepthTest kTest = DepthTest::kNone>
struct ShadedSpan {
  using Params = typename Shader::Params;
  static constexpr bool kDepth = kTest != DepthTest::kNone;
  static constexpr bool kBlocks = BlockShader<Shader>;
  static constexpr bool kFixedSteps = StepsInFixedPoint<Shader>();
  static constexpr int kAttributes =
      Shader::kAttributes + (kDepth || ShaderReadsInvZ<Shader>() ? 1 : 0);

  // One pixel that passed the depth test (if any).
  static void Put(Shader& shader, int32_t x, uint16_t* pixel, uint32_t* depth, uint32_t z) {
    if constexpr (ShaderMayKeep<Shader>()) {
      const int32_t c = shader.Shade(x, *pixel);
      if (c < 0) return;
      if constexpr (kTest == DepthTest::kLess) *depth = z;
      *pixel = static_cast<uint16_t>(c);
    } else {
      if constexpr (kTest == DepthTest::kLess) *depth = z;
      *pixel = shader.Shade(x, *pixel);
    }
  }

  // A whole block of kDepthBlock pixels through a wide body, where there is one.
  static bool WideBlock(Shader& shader, int32_t x, uint16_t* pixels, const DepthRun& d) {
    static_assert(kDepthBlock == kWideBlock);
    if constexpr (WideFillShader<Shader>()) {
      if (wideSpans.fillLess == nullptr) return false;
      wideSpans.fillLess(pixels + x, d, shader.color);
    } else {
      if (wideSpans.rampLess == nullptr) return false;
      wideSpans.rampLess(pixels + x, x, d, shader.Ramp());
      shader.Advance(kWideBlock);
    }
    return true;
  }

  static void Span(const Params& params, const SpanArgs& s) {
    Shader shader(params, s);
    uint16_t* pixels = s.pixels;
    if constexpr (!kDepth && !kBlocks) {
      int32_t x = s.left;
      if constexpr (WideFillShader<Shader>() || WideRampShader<Shader>()) {
        const int32_t wide = (s.right - x) & -kWideBlock;
        if (wide > 0 && WideFillShader<Shader>() && wideSpans.fill != nullptr) {
          if constexpr (WideFillShader<Shader>()) wideSpans.fill(pixels + x, s.right - x, shader.color);
          x = s.right;
        } else if (wide > 0 && WideRampShader<Shader>() && wideSpans.ramp != nullptr) {
          if constexpr (WideRampShader<Shader>()) {
            wideSpans.ramp(pixels + x, x, wide, shader.Ramp());
            shader.Advance(wide);
          }
          x += wide;
        }
      }
      for (; x < s.right; ++x) {
        Put(shader, x, pixels + x, nullptr, 0);
        shader.Step();
      }
    } else {
      // Depths come from 1/z at the start of every block of 16 pixels and
      // at the span's last pixel; in between they step in whole units.
      uint32_t* depth = s.depth;
      [[maybe_unused]] const double invZ = s.attr[kAttributes - 1], invZStep = s.dx[kAttributes - 1];
      uint32_t z = 0;
      if constexpr (kDepth) z = DepthOf(invZ);
      for (int32_t x = s.left;;) {
        const bool last = s.right - x <= kDepthBlock;
        const int32_t end = last ? s.right : x + kDepthBlock;
        uint32_t next = 0;
        int32_t zStep = 0;
        if constexpr (kDepth) {
          if (!last) {
            next = DepthOf(invZ + (end - s.left) * invZStep);
            zStep = static_cast<int32_t>(next - z) >> kDepthBlockShift;
          } else if (end - x > 1) {
            zStep = static_cast<int32_t>(DepthOf(invZ + (end - 1 - s.left) * invZStep) - z) /
                    (end - 1 - x);
          }
        }
        if constexpr (kBlocks) shader.Block(x, end, last);
        if constexpr (kTest == DepthTest::kLess && (WideFillShader<Shader>() || WideRampShader<Shader>())) {
          if (!last && WideBlock(shader, x, pixels, DepthRun{depth + x, z, zStep})) x = end;
        }
        for (; x < end; ++x) {
          if constexpr (!kDepth)
            Put(shader, x, pixels + x, nullptr, 0);
          else if (kTest == DepthTest::kLess ? z < depth[x] : z <= depth[x])
            Put(shader, x, pixels + x, depth + x, z);
          shader.Step();
          z += static_cast<uint32_t>(zStep);
        }
        if (last) return;
        z = next;
      }
    }
  }
};

// An 8.16 channel ramp along a span: its value at the first pixel and its
// change per pixel (the span's dxFixed), each round(value x 65536). Rounding
// can carry an interpolated channel a hair outside 0..255 at the rim of a
// triangle, where it would read outside the channel tables: the ramp is
// shifted, or if it must flattened, to stay inside 0..255 at both ends.
struct ChannelRamp {
  int32_t value;
  int32_t step;
};

inline ChannelRamp MakeChannelRamp(double value, int64_t step, int32_t count) {
  constexpr int64_t kMax = 0xFFFFFF;
  int64_t v = RoundFixed16(value), d = step;
  v = v < 0 ? 0 : v > kMax ? kMax : v;
  int64_t last = v + d * (count - 1);
  if (last < 0) {
    v -= last;
    last = 0;
  } else if (last > kMax) {
    v -= last - kMax;
    last = kMax;
  }
  if (v < 0 || v > kMax) {
    v = v < 0 ? 0 : kMax;
    d = (last - v) / (count - 1);
  }
  return {static_cast<int32_t>(v), static_cast<int32_t>(d)};
}

}  // namespace e3d
