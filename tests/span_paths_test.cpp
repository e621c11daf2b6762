// Every span path draws the same bits: random triangles through the drawers
// the wide bodies serve, in every alpha mode and on both sides, over a
// random picture and depth buffer, drawn once on the baseline path and once
// on each other path this build and processor have.
#include <cstring>

#include "raster/span_wide.h"
#include "triangle_fixture.h"

namespace {

using e3d::SpanPath;

class SpanPaths : public trianglefixture::TriangleTest {
 protected:
  void TearDown() override {
    e3d::UseSpanPath(SpanPath::kBaseline);
    TriangleTest::TearDown();
  }
};

TEST_F(SpanPaths, EveryPathDrawsTheSameBitsAsTheBaseline) {
  if (!testhost::ProcessorHasAvx2() || !e3d::UseSpanPath(SpanPath::kAvx2))
    GTEST_SKIP() << "no AVX2 path here";
  const TriangleDrawer drawers[] = {FlatSolidTriangle, FlatSolidTriangleZ, GouraudSolidTriangle,
                                    GouraudSolidTriangleZ};
  using trianglefixture::kH;
  using trianglefixture::kW;
  int differing = 0;
  for (int n = 0; n < 2000 && differing == 0; ++n) {
    RandomCorners();
    for (MeshVertex& v : v_) v.invZ = 1.0f / (1.0f + rng_() % 5000 / 7.0f);
    // Channels often near the top, where the dither's low bits stop at 248.
    for (uint32_t& c : face_.colors) {
      c = 0;
      for (int k = 0; k < 3; ++k) c = c << 8 | (rng_() % 2 ? 240 + rng_() % 16 : rng_() % 256);
    }
    Material& side = (face_.polygonFlags & 0x80u) ? back_ : front_;
    side.alphaMode = static_cast<uint16_t>(rng_() % 4);
    side.alphaLevel = static_cast<uint16_t>(rng_() % 256);
    for (int i = 0; i < kW * kH; ++i)
      Pixel(i % kW, i / kW) = static_cast<uint16_t>(rng_() & 0x7FFF), Depth(i % kW, i / kW) = rng_();
    uint16_t pixels[sizeof pixels_ / 2];
    uint32_t depths[sizeof depth_ / 4];
    std::memcpy(pixels, pixels_, sizeof pixels_);
    std::memcpy(depths, depth_, sizeof depth_);
    const TriangleDrawer drawer = drawers[n % 4];
    e3d::UseSpanPath(SpanPath::kBaseline);
    Draw(drawer);
    std::swap_ranges(pixels, pixels + sizeof pixels_ / 2, pixels_);
    std::swap_ranges(depths, depths + sizeof depth_ / 4, depth_);
    e3d::UseSpanPath(SpanPath::kAvx2);
    Draw(drawer);
    differing =
        std::memcmp(pixels, pixels_, sizeof pixels_) != 0 || std::memcmp(depths, depth_, sizeof depth_) != 0;
    EXPECT_FALSE(differing) << "triangle " << n << ", drawer " << n % 4 << ", alpha mode " << side.alphaMode;
  }
}

// The processor code chooses: AVX2 only from a code of the current layout;
// an original code (a family in bits 8-11, model and stepping below) never
// turns it on, whatever its low bits.
TEST_F(SpanPaths, TheProcessorCodeChoosesThePath) {
  const bool built = e3d::Avx2Spans() != nullptr;
  for (uint32_t family : {0x0600u, 0x0F00u}) {
    UpdateDrawScanline(family | 0xFFu | E3D_CPU_SSE2);
    EXPECT_EQ(e3d::wideSpans.fill, nullptr) << family;
  }
  UpdateDrawScanline(E3D_CPU_SSE2 | E3D_CPU_AVX2);
  EXPECT_EQ(e3d::wideSpans.fill != nullptr, built);
  UpdateDrawScanline(0);
  EXPECT_EQ(e3d::wideSpans.rampLess, nullptr);
}

}  // namespace
