// The colour steps across a triangle are pinned by the Gouraud scene images;
// here the 8-bit blending and the dither that ends every span.
#include "raster/span_dither.h"
#include "triangle_fixture.h"

namespace {

using namespace trianglefixture;

class GouraudTriangle : public TriangleTest {
 protected:
  // 8-bit channel k in 5 bits at (x, y): one up where the threshold is below its low bits.
  static int Dithered(int k, int x, int y) {
    return (k >> 3) + (e3d::DitherMatrix[(y & 3) * 4 + (x & 3)] < (k < 248 ? (k & 7) : 0));
  }
};

TEST_F(GouraudTriangle, AlphaModesWorkIn8BitsThenDither) {
  Corners(0, 0, 0, kH, kW, 0, 4.0f);
  const uint32_t z = 4 * 65536;
  const struct {
    uint16_t mode, level;
    uint32_t c, d;  // colour channel (8 bits) over target channel (5 bits)
    int e;          // the 8-bit channel dithered
  } cases[] = {
      {0, 0, 4, 3, 4},     {0, 0, 250, 3, 250},    {0, 0, 255, 3, 255},  {1, 0, 128, 16, 255},
      {1, 0, 40, 4, 72},   {2, 128, 100, 16, 113},  // 40 + 32; (128 c + 127 * 8d) >> 8
      {2, 0, 255, 3, 24},  {2, 255, 7, 3, 7},       // level 0: untouched
      {3, 0, 200, 5, 160}, {3, 0, 100, 20, 0},
  };
  for (const TriangleDrawer drawer : {GouraudSolidTriangle, GouraudSolidTriangleZ}) {
    for (const auto& c : cases) {
      front_.alphaMode = c.mode, front_.alphaLevel = c.level;
      face_.colors[0] = face_.colors[1] = face_.colors[2] = c.c * 0x010101;
      // Blended spans pass at equal depth and leave it; plain ones need a nearer one.
      const bool plain = c.mode == 0 || (c.mode == 2 && c.level == 255);
      Clear(static_cast<uint16_t>(c.d * 0x0421), plain ? z + 1 : z);
      Draw(drawer);
      for (int i = 0; i < 16; ++i)
        ASSERT_EQ(Pixel(i % 4, i / 4), Dithered(c.e, i % 4, i / 4) * 0x0421)
            << c.mode << " " << c.c << " " << i;
      if (drawer == GouraudSolidTriangleZ) {
        EXPECT_EQ(Depth(1, 1), z) << "mode " << c.mode;
        Clear(0, plain ? z : z - 1);
        Draw(drawer);
        EXPECT_EQ(Pixel(1, 1), 0) << "mode " << c.mode;
      }
    }
  }
}

}  // namespace
