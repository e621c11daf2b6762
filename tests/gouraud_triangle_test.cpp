#include <algorithm>
#include <utility>

#include "raster/span.h"
#include "raster/span_dither.h"
#include "triangle_fixture.h"

namespace {

using namespace trianglefixture;

class GouraudTriangle : public TriangleTest {
 protected:
  void Colours(uint32_t c0, uint32_t c1, uint32_t c2) {
    face_.colors[0] = c0, face_.colors[1] = c1, face_.colors[2] = c2;
  }
  uint32_t Random() { return rng_() % 3 == 0 ? 0 : rng_() % 2 ? 0xFFFFFF : rng_() & 0xFFFFFF; }
  static int Threshold(int x, int y) { return e3d::DitherMatrix[(y & 3) * 4 + (x & 3)]; }
  // 8-bit channel k in 5 bits at (x, y): up one where the threshold is below its low bits.
  static int Dithered(int k, int x, int y) {
    return (k >> 3) + (Threshold(x, y) < (k < 248 ? (k & 7) : 0));
  }
};

TEST_F(GouraudTriangle, FillsExactlyTheFlatPixels) {
  const TriangleDrawer drawers[4] = {FlatSolidTriangle, GouraudSolidTriangle, FlatSolidTriangleZ,
                                     GouraudSolidTriangleZ};
  for (int n = 0; n < 1500; ++n) {
    RandomCorners();
    uint16_t image[4][kH][kW];
    for (int d = 0; d < 4; ++d) {
      Colours(d % 2 ? Random() : 0, Random(), Random());
      Clear(0x8000, 0xFFFFFFFF);  // every drawer here writes bit 15 clear
      Draw(drawers[d]);
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) image[d][y][x] = Pixel(x, y) & 0x8000;
    }
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x)
        for (int d = 1; d < 4; ++d)
          ASSERT_EQ(image[d][y][x], image[0][y][x]) << d << " at " << x << "," << y;
  }
}

TEST_F(GouraudTriangle, DithersEachChannelByItsLowBits) {
  Corners(0, 0, 0, kH, kW, 0);
  const struct {
    uint32_t colour;
    uint16_t down, up;  // the pixel where the low bits round down, and up
    int ups;            // how many of each 4x4 block round up
  } cases[] = {
      {0xFFFFFF, 0x7FFF, 0x7FFF, 16}, {0xF8F8F8, 0x7FFF, 0x7FFF, 16},
      {0x080808, 0x0421, 0x0421, 16}, {0x040404, 0, 0x0421, 8},
      {0x0C0804, 0x0420, 0x0821, 8},  {0x070707, 0, 0x0421, 14},
  };
  for (const auto& c : cases) {
    Colours(c.colour, c.colour, c.colour);
    Draw(GouraudSolidTriangle);
    int ups = 0;
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 4; ++x) {
        const bool up = (c.colour & 7) > static_cast<uint32_t>(Threshold(x, y)) || c.ups == 16;
        ASSERT_EQ(Pixel(x, y), up ? c.up : c.down) << c.colour << " at " << x << "," << y;
        ups += up;
      }
    EXPECT_EQ(ups, c.ups) << c.colour;
  }
}

TEST_F(GouraudTriangle, ColoursFollowTheirVertices) {
  // Every channel within a hair of the plane through the corner colours, at
  // the rims too, where it reaches 0 or 255.
  for (int n = 0; n < 600; ++n) {
    RandomCorners();
    SetBack(false);
    const uint32_t colour[3] = {Random(), Random(), Random()};
    Colours(colour[0], colour[1], colour[2]);
    Clear(0, 0);
    Draw(GouraudSolidTriangle);
    const Coverage covers(v_, false);
    double x[3], y[3];
    for (int i = 0; i < 3; ++i)
      x[i] = Fixed(v_[i].screenX) / 16.0, y[i] = Fixed(v_[i].screenY) / 16.0;
    const double area = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
    for (int py = 0; py < kH; ++py)
      for (int px = 0; px < kW; ++px) {
        if (!covers(px, py)) continue;
        const double w1 = ((px - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (py - y[0])) / area;
        const double w2 = ((x[1] - x[0]) * (py - y[0]) - (px - x[0]) * (y[1] - y[0])) / area;
        for (int c = 0; c < 3; ++c) {
          const int s = 16 - 8 * c, got = Pixel(px, py) >> (10 - 5 * c) & 31;
          const double v = (1 - w1 - w2) * (colour[0] >> s & 255) + w1 * (colour[1] >> s & 255) +
                           w2 * (colour[2] >> s & 255);
          bool near = false;
          for (double e : {-0.01, 0.01}) {
            near |=
                got == Dithered(std::clamp(static_cast<int>(std::floor(v + e)), 0, 255), px, py);
          }
          ASSERT_TRUE(near) << "triangle " << n << " channel " << c << " at " << px << "," << py
                            << ": " << got << " for " << v;
        }
      }
    // From the back, with its corners the other way round, the same face.
    uint16_t image[kH][kW];
    for (int py = 0; py < kH; ++py)
      for (int px = 0; px < kW; ++px) image[py][px] = Pixel(px, py);
    std::swap(v_[0], v_[2]);
    std::swap(face_.colors[0], face_.colors[2]);
    SetBack(true);
    Clear(0, 0);
    Draw(GouraudSolidTriangle);
    for (int py = 0; py < kH; ++py)
      for (int px = 0; px < kW; ++px)
        ASSERT_EQ(Pixel(px, py), image[py][px]) << n << ": " << px << "," << py;
  }
}

TEST_F(GouraudTriangle, AlphaModesWorkIn8BitsAndTestDepth) {
  Corners(0, 0, 0, kH, kW, 0, 4.0f);
  const uint32_t z = 4 * 65536;
  const struct {
    uint16_t mode, level;
    uint32_t c, d;  // colour channel (8 bits) over target channel (5 bits)
    int e;          // the 8-bit channel dithered
  } cases[] = {
      {0, 0, 64, 3, 64},      {1, 0, 128, 16, 255}, {1, 0, 40, 4, 72},    // 40 + 32
      {2, 128, 128, 16, 127},                                             // (128 c + 127 * 8d) >> 8
      {2, 128, 100, 16, 113}, {2, 0, 255, 3, 24},   {2, 255, 64, 3, 64},  // level 0: as it was
      {3, 0, 200, 5, 160},    {3, 0, 100, 20, 0},
  };
  for (const TriangleDrawer drawer : {GouraudSolidTriangle, GouraudSolidTriangleZ}) {
    for (const auto& c : cases) {
      front_.alphaMode = c.mode, front_.alphaLevel = c.level;
      Colours(c.c * 0x010101, c.c * 0x010101, c.c * 0x010101);
      // Blended spans pass at equal depth and leave it; plain ones need a nearer one.
      const bool plain = c.mode == 0 || (c.mode == 2 && c.level == 255);
      Clear(static_cast<uint16_t>(c.d * 0x0421), plain ? z + 1 : z);
      Draw(drawer);
      for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
          ASSERT_EQ(Pixel(x, y), Dithered(c.e, x, y) * 0x0421)
              << "mode " << c.mode << " c " << c.c << " at " << x << "," << y;
      if (drawer == GouraudSolidTriangleZ) {
        EXPECT_EQ(Depth(1, 1), z) << "mode " << c.mode;
        Clear(0, plain ? z : z - 1);
        Draw(drawer);
        EXPECT_EQ(Pixel(1, 1), 0) << "mode " << c.mode;
      }
    }
  }
}

TEST(ChannelRamp, StaysInsideTheChannelAtBothEnds) {
  const struct {
    double value, step;
    int32_t count;
    double start;  // within 0.01
  } cases[] = {
      {0.0, -0.0001, 10, 0.0},       // would end a hair below 0: shifted up
      {255.99, 0.0001, 10, 255.99},  // would pass 255: shifted down
      {-0.00001, 0.0, 1, 0.0},
      {128.0, 1000.0, 3, 0.0},  // far too steep: flattened
  };
  for (const auto& c : cases) {
    const e3d::ChannelRamp r = e3d::MakeChannelRamp(c.value, c.step, c.count);
    const int64_t last = r.value + int64_t{r.step} * (c.count - 1);
    EXPECT_TRUE(r.value >= 0 && r.value <= 0xFFFFFF && last >= 0 && last <= 0xFFFFFF) << c.value;
    EXPECT_NEAR(r.value / 65536.0, c.start, 0.01) << c.value;
  }
}

}  // namespace
