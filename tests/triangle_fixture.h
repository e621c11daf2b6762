// A guarded render target for the triangle drawer tests, and the pixel
// coverage rule the drawers must follow, stated without the walker.
#pragma once
#include <cmath>
#include <cstdint>
#include <random>

#include "engine3d.h"
#include "objects/material.h"
#include "support/test_host.h"
#include "viewport/viewport.h"

namespace trianglefixture {

inline constexpr int kW = 40, kH = 32;  // the viewport; each row is kPitch pixels
inline constexpr int kPitch = kW + 7;   // and there are two guard rows above and below
inline constexpr uint16_t kGuard = 0xBEEF;

inline uint16_t Rgb(int r, int g, int b) { return static_cast<uint16_t>(r << 10 | g << 5 | b); }
inline int64_t Fixed(float v) { return static_cast<int64_t>(std::nearbyint(v * 16.0f)); }

// A pixel is filled when its centre lies inside the triangle of the 28.4
// corners in walking order (front faces from corner 2, back faces from 0),
// on an edge going up the screen or along its top, but not on one going down
// or along its bottom. Only the winding of positive area fills.
class Coverage {
 public:
  Coverage(const MeshVertex* v, bool back) {
    for (int i = 0; i < 3; ++i)
      x_[i] = Fixed(v[back ? i : 2 - i].screenX), y_[i] = Fixed(v[back ? i : 2 - i].screenY);
    fills_ = (x_[1] - x_[0]) * (y_[2] - y_[0]) - (x_[2] - x_[0]) * (y_[1] - y_[0]) > 0;
  }
  bool operator()(int px, int py) const {
    for (int i = 0, j = 1; i < 3; ++i, j = (i + 1) % 3) {
      const int64_t e = (x_[j] - x_[i]) * (16 * py - y_[i]) - (y_[j] - y_[i]) * (16 * px - x_[i]);
      if (y_[j] < y_[i] || (y_[j] == y_[i] && x_[j] > x_[i]) ? e < 0 : e <= 0) return false;
    }
    return fills_;
  }

 private:
  int64_t x_[3], y_[3];
  bool fills_;
};

class TriangleTest : public testhost::LeakCheckedTest {
 protected:
  void SetUp() override {
    ReleaseRenderTables();  // process-wide: start from none
    LeakCheckedTest::SetUp();
    InitRenderTables();
    SurfaceDesc surface{};
    surface.pixels = &pixels_[2 * kPitch];
    surface.width = kW, surface.height = kH, surface.pitch = kPitch * 2;
    vp_ = CreateViewport(&surface, kW, kH, 1);
    ownDepth_ = vp_->depthBuffer;
    vp_->depthBuffer = &depth_[kW];  // a guard row before and after
    SetRenderInfos(vp_, nullptr);
    for (uint16_t& p : pixels_) p = kGuard;
    for (uint32_t& d : depth_) d = kGuard;
    Clear(0, 0xFFFFFFFF);
    face_.vertexIndex[1] = 1, face_.vertexIndex[2] = 2;
    face_.material = &front_, face_.backMaterial = &back_;
  }
  void TearDown() override {
    bool intact = true;
    for (int i = 0; i < kPitch * (kH + 4); ++i)
      intact &=
          pixels_[i] == kGuard || (i >= 2 * kPitch && i < (kH + 2) * kPitch && i % kPitch < kW);
    for (int i = 0; i < kW; ++i)
      intact &= depth_[i] == kGuard && depth_[(kH + 1) * kW + i] == kGuard;
    EXPECT_TRUE(intact) << "written outside the viewport";
    vp_->depthBuffer = ownDepth_;
    DeleteViewport(vp_);
    ReleaseRenderTables();
    LeakCheckedTest::TearDown();
  }

  uint16_t& Pixel(int x, int y) { return pixels_[(y + 2) * kPitch + x]; }
  uint32_t& Depth(int x, int y) { return depth_[(y + 1) * kW + x]; }
  void Clear(uint16_t pixel, uint32_t depth) {
    for (int i = 0; i < kW * kH; ++i) Pixel(i % kW, i / kW) = pixel, Depth(i % kW, i / kW) = depth;
  }
  void Corners(float x0, float y0, float x1, float y1, float x2, float y2, float z = 4.0f) {
    const float xy[6] = {x0, y0, x1, y1, x2, y2};
    for (int i = 0; i < 3; ++i) v_[i] = {0, 0, 0, 0, 0, 0, xy[2 * i], xy[2 * i + 1], 1 / z, 0};
  }
  void SetBack(bool back) { face_.polygonFlags = back ? 0x80u : 0u; }
  void Draw(TriangleDrawer drawer) { drawer(&face_, v_); }

  // Corners anywhere in the viewport, often on whole pixels or the 28.4
  // grid, often sharing a coordinate so that edges run flat or upright.
  void RandomCorners() {
    float c[6];
    for (int i = 0; i < 6; ++i) {
      const unsigned limit = i % 2 ? kH : kW, r = rng_() % 3;
      c[i] = r == 0   ? rng_() % (limit + 1)
             : r == 1 ? (rng_() % (limit * 16 + 1)) / 16.0f
                      : limit * (rng_() % 100000) / 100000.0f;
    }
    if (rng_() % 4 == 0) c[2 * (rng_() % 3) + 1] = c[2 * (rng_() % 3) + 1];
    if (rng_() % 8 == 0) c[2 * (rng_() % 3)] = c[2 * (rng_() % 3)];
    Corners(c[0], c[1], c[2], c[3], c[4], c[5]);
    SetBack(rng_() % 2);
  }

  uint16_t pixels_[kPitch * (kH + 4)];
  uint32_t depth_[kW * (kH + 2)];
  uint32_t* ownDepth_ = nullptr;
  Viewport* vp_ = nullptr;
  MeshPolygon face_{};
  MeshVertex v_[3];
  Material front_{}, back_{};
  std::mt19937 rng_{12345};
};

}  // namespace trianglefixture
