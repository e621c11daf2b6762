// Wire and dot drawers, and DrawLine2D.
#include <gtest/gtest.h>

#include "objects/camera.h"
#include "raster/drawer_table.h"
#include "triangle_fixture.h"

namespace {

using namespace trianglefixture;
uint32_t Red(uint16_t p) { return (p >> 10) & 31; }
uint32_t Blue(uint16_t p) { return p & 31; }

class Wire : public TriangleTest {
 protected:
  void SetUp() override {
    TriangleTest::SetUp();
    Clear(0, 0xFFFFFFFF);
    face_.colors[0] = 0x7FFF;
  }
  // Vertex i at camera-space (x, y, z) and screen (sx, sy).
  void Place(int i, float x, float y, float z, float sx, float sy) {
    v_[i] = {0, 0, 0, x, y, z, sx, sy, 1 / z, z < near_ ? E3D_OUT_NEAR : 0u};
  }
  int Lit() {
    int n = 0;
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) n += Pixel(x, y) != 0;
    return n;
  }
  float near_ = 1.0f;
};

// The two halves of a quad draw its outline once and no diagonal; the
// table reaches the wire drawers of each family.
TEST_F(Wire, QuadOutlineWithoutDiagonal) {
  const float px[4] = {5, 25, 25, 5}, py[4] = {5, 5, 20, 20};
  const int halves[2][3] = {{0, 1, 2}, {0, 2, 3}};
  const uint32_t edges[2] = {0x600, 0xC00};  // 0-1 and 1-2; 2-3 and 3-0
  for (const uint32_t shade : {1u, 3u, 7u}) {
    Clear(0, 0xFFFFFFFF);
    face_.colors[1] = face_.colors[2] = 0xFFFFFF;
    face_.colors[0] = shade == 7 ? 0xFFFFFF : 0x7FFF;
    for (int h = 0; h < 2; ++h) {
      for (int i = 0; i < 3; ++i) Place(i, 0, 0, 4, px[halves[h][i]], py[halves[h][i]]);
      face_.polygonFlags = 0x00300000 | edges[h];
      e3d::ChooseDrawer(0x00300000 | shade, false)(&face_, v_);
    }
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) {
        const bool border = ((x == 5 || x == 25) && y >= 5 && y <= 20) || ((y == 5 || y == 20) && x >= 5 && x <= 25);
        ASSERT_EQ(Pixel(x, y), border ? 0x7FFF : 0) << x << "," << y << " shade " << shade;
      }
  }
}

// Edges are cut at the camera's near plane; nothing beyond it is drawn,
// and dots skip corners in front of it. Without a camera such edges drop.
TEST_F(Wire, NearPlaneCut) {
  Camera camera{};
  camera.nearPlane = near_, camera.projScale = 4;
  SetRenderInfos(vp_, &camera);
  const float cx = vp_->centerX, cy = vp_->centerY;
  Place(0, 0, 0, 4, cx, cy);
  Place(1, 4, 0, 0.5f, 1000, cy);  // its screen words are not to be used
  Place(2, 0, 1, 8, cx, cy + 0.5f);
  face_.polygonFlags = 0x200;  // edge 0-1 only
  ClipAndDrawFlatWireTriangle(&face_, v_);
  // The cut lies at x = 4 * 3/3.5 in camera space, 4 pixels a unit.
  const int end = static_cast<int>(std::lround(cx + 16 * 3 / 3.5f));
  for (int x = 0; x < kW; ++x) ASSERT_EQ(Pixel(x, static_cast<int>(cy)), x >= cx && x <= end ? 0x7FFF : 0) << x;
  EXPECT_EQ(Lit(), end - static_cast<int>(cx) + 1);

  Clear(0, 0xFFFFFFFF);
  ClipAndDrawFlatDotsTriangle(&face_, v_);
  EXPECT_EQ(Lit(), 1);  // corners 0 and 2 share a pixel, corner 1 is cut

  Clear(0, 0xFFFFFFFF);
  SetRenderInfos(vp_, nullptr);
  ClipAndDrawFlatWireTriangle(&face_, v_);
  EXPECT_EQ(Lit(), 0);
}

// Gouraud edges blend their corners; depth-tested twins test and write 1/z.
TEST_F(Wire, GouraudAndDepth) {
  Place(0, 0, 0, 2, 4, 10), Place(1, 0, 0, 2, 35, 10), Place(2, 0, 0, 2, 4, 30);
  face_.colors[0] = 0xFF0000, face_.colors[1] = 0x0000FF, face_.colors[2] = 0;
  face_.polygonFlags = 0x200;
  for (int x = 0; x < kW; ++x) Depth(x, 10) = x < 20 ? 0xFFFFFFFF : 100;
  ClipAndDrawGouraudWireTriangleZ(&face_, v_);
  EXPECT_EQ(Pixel(4, 10), Rgb(31, 0, 0));
  EXPECT_EQ(Depth(4, 10), 2u * 65536);
  EXPECT_EQ(Depth(19, 10), 2u * 65536);
  const uint16_t mid = Pixel(12, 10);
  EXPECT_GT(Red(mid), 15u);
  EXPECT_LT(Blue(mid), 16u);
  EXPECT_GT(Blue(mid), 3u);
  EXPECT_EQ(Pixel(20, 10), 0);  // behind
  EXPECT_EQ(Depth(20, 10), 100u);

  // Blended edges test one step looser and leave the depth alone.
  front_.alphaMode = 1;
  face_.colors[0] = Rgb(2, 2, 2);
  Clear(Rgb(1, 1, 1), 2u * 65536);
  ClipAndDrawFlatWireTriangleZ(&face_, v_);
  EXPECT_EQ(Pixel(10, 10), Rgb(3, 3, 3));
  EXPECT_EQ(Depth(10, 10), 2u * 65536);
}

class Line : public Wire {};

TEST_F(Line, OnePixelExactEndpointsAndClipped) {
  DrawLine2D(vp_, 2.2f, 3.7f, 30.6f, 10.2f, 0xFFFFFF, 0);
  EXPECT_EQ(Pixel(2, 4), 0x7FFF);
  EXPECT_EQ(Pixel(31, 10), 0x7FFF);
  for (int x = 0; x < kW; ++x) {
    int inColumn = 0;
    for (int y = 0; y < kH; ++y) inColumn += Pixel(x, y) != 0;
    ASSERT_EQ(inColumn, x >= 2 && x <= 31 ? 1 : 0) << x;
  }
  // Unknown styles draw style 0; lines far outside are cut to the scissor.
  Clear(0, 0);
  SetViewportScissor(vp_, 10, 20, 5, 15);
  DrawLine2D(vp_, -1e6f, -1e6f, 1e6f, 1e6f, 0x00FF00, 9);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x)
      ASSERT_EQ(Pixel(x, y), x == y && x >= 10 && x < 15 ? Rgb(0, 31, 0) : 0) << x << "," << y;
}

// Anti-aliased lines (style 1 is in the textured drawers' hash): symmetric
// about their centre, brightest there, blended (style 1) or added (style 2).
TEST_F(Line, AntiAliasedSymmetric) {
  DrawLine2D(vp_, 5, 5, 25, 25, 0xFFFFFF, 1);
  for (int x = 7; x < 24; ++x) {
    ASSERT_EQ(Pixel(x, x - 1), Pixel(x, x + 1)) << x;
    ASSERT_GT(Red(Pixel(x, x)), Red(Pixel(x, x + 1))) << x;
  }
  // A 45-degree line keeps nearly its full weight at its centre; a flat one less.
  EXPECT_EQ(Pixel(15, 15), Rgb(30, 30, 30));

  Clear(Rgb(10, 10, 10), 0);
  DrawLine2D(vp_, 5, 10, 30, 10, 0x808080, 2);
  EXPECT_EQ(Pixel(15, 10), Rgb(10 + 16 * 181 / 255, 10 + 16 * 181 / 255, 10 + 16 * 181 / 255));
  EXPECT_EQ(Pixel(15, 9), Pixel(15, 11));
  EXPECT_EQ(Pixel(15, 12), Rgb(10, 10, 10));
}

}  // namespace
