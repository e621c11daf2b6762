#include "triangle_fixture.h"

namespace {

using namespace trianglefixture;

// (Which pixels the solid drawers fill is checked with the textured ones.)
using FlatTriangle = TriangleTest;

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
