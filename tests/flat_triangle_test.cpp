#include "triangle_fixture.h"

namespace {

using namespace trianglefixture;

uint16_t Rgb(int r, int g, int b) { return static_cast<uint16_t>(r << 10 | g << 5 | b); }

class FlatTriangle : public TriangleTest {};

// Every solid drawer fills the same pixels: those of the edge rule.
TEST_F(FlatTriangle, FillsExactlyThePixelsOfTheEdgeRule) {
  const TriangleDrawer drawers[4] = {FlatSolidTriangle, FlatSolidTriangleZ, GouraudSolidTriangle,
                                     GouraudSolidTriangleZ};
  int filled = 0;
  for (int n = 0; n < 4000; ++n) {
    RandomCorners();
    face_.colors[0] = rng_() & 0x7FFF, face_.colors[1] = rng_(), face_.colors[2] = rng_();
    const Coverage covers(v_, face_.polygonFlags != 0);
    int count = 0;
    for (int d = 0; d < (n < 1000 ? 4 : 1); ++d) {
      Clear(0x8000, 0xFFFFFFFF);  // each drawer here writes bit 15 clear
      Draw(drawers[d]);
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) {
          count += covers(x, y);
          if ((Pixel(x, y) != 0x8000) != covers(x, y))
            FAIL() << "drawer " << d << " at " << x << "," << y << " of triangle " << n;
        }
    }
    filled += count > 0;
  }
  EXPECT_GT(filled, 1500);  // and as many of the other winding drew nothing
  EXPECT_LT(filled, 2500);
}

TEST_F(FlatTriangle, FansNeitherOverlapNorLeaveGaps) {
  front_.alphaMode = 1;  // each triangle adds 1 to blue
  face_.colors[0] = 1;
  std::uniform_real_distribution<float> unit(0, 1);
  for (int n = 0; n < 400; ++n) {
    Clear(0, 0);
    const float cx = 12 + 16 * unit(rng_), cy = 11 + 10 * unit(rng_), r = 3 + 7 * unit(rng_);
    const int k = 3 + static_cast<int>(rng_() % 8);
    float px[11], py[11];
    int64_t fx[11], fy[11];
    for (int i = 0; i <= k; ++i) {
      const float a = (i % k + 0.4f * unit(rng_)) * 6.2831853f / k;
      px[i] = i == k ? px[0] : cx + r * std::cos(a), py[i] = i == k ? py[0] : cy + r * std::sin(a);
      fx[i] = Fixed(px[i]), fy[i] = Fixed(py[i]);
    }
    for (int i = 0; i < k; ++i) {
      Corners(px[i + 1], py[i + 1], px[i], py[i], cx, cy);
      Draw(FlatSolidTriangle);
    }
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) {
        bool inside = true, onOrInside = true;
        for (int i = 0; i < k; ++i) {
          const int64_t e =
              (fx[i + 1] - fx[i]) * (16 * y - fy[i]) - (fy[i + 1] - fy[i]) * (16 * x - fx[i]);
          inside &= e > 0, onOrInside &= e >= 0;
        }
        const int times = Pixel(x, y);
        if (times > 1 || (inside && times != 1) || (!onOrInside && times != 0))
          FAIL() << "filled " << times << " times at " << x << "," << y << " in fan " << n;
      }
  }
}

TEST_F(FlatTriangle, AlphaModesCombineColourAndTarget) {
  const struct {
    uint16_t mode, level, colour, target, plain, depthTested;
  } cases[] = {
      {1, 0, Rgb(10, 20, 30), Rgb(25, 5, 1), Rgb(31, 25, 31), Rgb(31, 25, 31)},
      {2, 64, Rgb(31, 16, 0), Rgb(0, 16, 31), Rgb(7, 15, 23), Rgb(7, 15, 23)},  // / 256
      {2, 0, Rgb(31, 31, 31), Rgb(1, 2, 3), Rgb(1, 2, 3), Rgb(1, 2, 3)},
      {2, 255, 0x8123, Rgb(1, 2, 3), 0x8123, 0x8123},  // plain, bit 15 and all
      // The packed subtraction loses the lowest bit of red and green.
      {3, 0, Rgb(20, 20, 20), Rgb(5, 5, 5), Rgb(17, 17, 15), Rgb(15, 15, 15)},
      {3, 0, Rgb(31, 0, 31), Rgb(0, 31, 0), Rgb(30, 0, 31), Rgb(31, 0, 31)},
      {3, 0, Rgb(3, 3, 3), Rgb(10, 10, 10), 0, 0},
  };
  Corners(0, 0, 0, kH, kW, 0);
  for (const auto& c : cases) {
    front_.alphaMode = c.mode, front_.alphaLevel = c.level;
    face_.colors[0] = c.colour;
    for (const TriangleDrawer drawer : {FlatSolidTriangle, FlatSolidTriangleZ}) {
      Clear(c.target, 0xFFFFFFFF);
      Draw(drawer);
      EXPECT_EQ(Pixel(5, 5), drawer == FlatSolidTriangle ? c.plain : c.depthTested) << c.colour;
      EXPECT_EQ(Pixel(kW - 1, kH - 1), c.target);
    }
  }
}

TEST_F(FlatTriangle, DepthBufferHoldsZTimes65536AndTestsIt) {
  face_.colors[0] = 0x7FFF;
  for (float z : {4.0f, 0.75f, 300.0f}) {
    Corners(2.5f, 1, 3, 30, 37.25f, 17, z);
    Clear(0, 0xFFFFFFFF);
    Draw(FlatSolidTriangleZ);
    const uint32_t want = static_cast<uint32_t>(std::lround(65536.0 / v_[0].invZ));
    const Coverage covers(v_, false);
    for (int i = 0; i < kW * kH; ++i)
      ASSERT_EQ(Depth(i % kW, i / kW), covers(i % kW, i / kW) ? want : 0xFFFFFFFF) << i;
  }

  Corners(0, 0, 0, kH, kW, 0, 4.0f);
  face_.colors[0] = Rgb(1, 1, 1);
  const uint32_t z = 4 * 65536;
  const struct {
    uint16_t mode, pixel;
    uint32_t stored, depth;
  } cases[] = {  // plain needs a nearer z and stores it; adding passes at equal z and keeps it
      {0, Rgb(2, 2, 2), z, z}, {0, Rgb(1, 1, 1), z + 1, z},     {0, Rgb(2, 2, 2), z - 1, z - 1},
      {1, Rgb(3, 3, 3), z, z}, {1, Rgb(3, 3, 3), z + 1, z + 1}, {1, Rgb(2, 2, 2), z - 1, z - 1},
  };
  for (const auto& c : cases) {
    front_.alphaMode = c.mode;
    Clear(Rgb(2, 2, 2), c.stored);
    Draw(FlatSolidTriangleZ);
    EXPECT_TRUE(Pixel(3, 3) == c.pixel && Depth(3, 3) == c.depth) << c.mode << " over " << c.stored;
  }
}

}  // namespace
