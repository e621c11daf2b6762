// A guarded render target for the fuzz targets: the pixels and depth
// entries a draw changed must lie inside the rectangle it may draw.
#pragma once
#include <cmath>
#include <cstdint>
#include <vector>

#include "engine3d.h"
#include "fuzz_host.h"
#include "fuzz_input.h"
#include "viewport/viewport.h"

namespace fuzz {

inline constexpr int kGuardRows = 2;
inline constexpr uint16_t kGuardPixel = 0xBEEF;
inline constexpr uint32_t kGuardDepth = 0xDEADBEEF;

// Whole pixels, right and bottom exclusive.
struct Rect {
  int32_t left, right, top, bottom;
};

// The pixels a clipping entry may fill: from the ceiling of the lower bound
// to the ceiling of the upper one, exclusive. The drawers round bounds to the
// 28.4 grid first and lines do not, so either ceiling is accepted.
inline int32_t CeilPixel(float v, double nudge) {
  const double x = static_cast<double>(v) + nudge;
  if (!(x > -1e9)) return x < 0 ? -1000000000 : 0;  // and a NaN bound holds nothing
  return static_cast<int32_t>(std::ceil(x < 1e9 ? x : 1e9));
}
inline Rect ClipRect(const Viewport* vp) {
  const e3d::ViewportClip c = e3d::ViewportClipBounds(vp);
  constexpr double k = 1.0 / 32;
  return {CeilPixel(c.left, -k), CeilPixel(c.right, k), CeilPixel(c.top, -k), CeilPixel(c.bottom, k)};
}

struct Target {
  int32_t width, height, pitch;
  std::vector<uint16_t> pixels;  // kGuardRows guard rows above and below, pitch slack
  std::vector<uint32_t> depth;   // one guard row above and below
  std::vector<uint16_t> pixelsBefore;
  std::vector<uint32_t> depthBefore;
  Viewport* vp = nullptr;
  uint32_t* ownDepth = nullptr;

  // A viewport of any size over guarded pixels, with a guarded depth buffer
  // when depthBuffer is 1, any scissor and border.
  Target(Input& in, int32_t depthBuffer) {
    width = in.Range(1, 80);
    height = in.Range(1, 80);
    pitch = width + in.Range(0, 4);
    pixels.assign(pitch * (height + 2 * kGuardRows), kGuardPixel);
    depth.assign(width * (height + 2), kGuardDepth);
    SurfaceDesc surface{};
    surface.pixels = &pixels[kGuardRows * pitch];
    surface.width = width, surface.height = height, surface.pitch = pitch * 2;
    vp = CreateViewport(&surface, width, height, depthBuffer);
    FUZZ_CHECK(vp != nullptr);
    ownDepth = vp->depthBuffer;
    if (ownDepth != nullptr) vp->depthBuffer = &depth[width];
    if (in.Bool())
      SetViewportScissor(vp, in.Within(0, width), in.Within(0, width), in.Within(0, height), in.Within(0, height));
    if (in.Bool()) SetViewportBorderHeight(vp, in.Range(-1, height));
    for (int32_t y = 0; y < height; ++y)
      for (int32_t x = 0; x < width; ++x) pixels[(y + kGuardRows) * pitch + x] = static_cast<uint16_t>(x * 31 + y * 1024);
    for (int32_t i = 0; i < width * height; ++i) depth[width + i] = in.Bool() ? 0xFFFFFFFFu : 1000u * i;
  }
  ~Target() {
    CheckGuards();
    vp->depthBuffer = ownDepth;
    DeleteViewport(vp);
  }
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  void Snapshot() {
    pixelsBefore = pixels;
    depthBefore = depth;
  }
  // Everything changed since the snapshot lies inside r, and r inside the viewport.
  void Check(Rect r) const {
    if (r.left < 0) r.left = 0;
    if (r.top < 0) r.top = 0;
    if (r.right > width) r.right = width;
    if (r.bottom > height) r.bottom = height;
    for (size_t i = 0; i < pixels.size(); ++i) {
      if (pixels[i] == pixelsBefore[i]) continue;
      const int32_t y = static_cast<int32_t>(i / pitch) - kGuardRows, x = static_cast<int32_t>(i % pitch);
      FUZZ_CHECK(y >= r.top && y < r.bottom && x >= r.left && x < r.right);
    }
    for (size_t i = 0; i < depth.size(); ++i) {
      if (depth[i] == depthBefore[i]) continue;
      const int32_t y = static_cast<int32_t>(i / width) - 1, x = static_cast<int32_t>(i % width);
      FUZZ_CHECK(y >= r.top && y < r.bottom && x >= r.left && x < r.right);
    }
  }
  // The guard bands against their first picture.
  void CheckGuards() const {
    for (int32_t i = 0; i < kGuardRows * pitch; ++i)
      FUZZ_CHECK(pixels[i] == kGuardPixel && pixels[pixels.size() - 1 - i] == kGuardPixel);
    for (int32_t y = 0; y < height; ++y)
      for (int32_t x = width; x < pitch; ++x) FUZZ_CHECK(pixels[(y + kGuardRows) * pitch + x] == kGuardPixel);
    for (int32_t i = 0; i < width; ++i)
      FUZZ_CHECK(depth[i] == kGuardDepth && depth[depth.size() - 1 - i] == kGuardDepth);
  }
};

}  // namespace fuzz
