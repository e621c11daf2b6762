// Full-screen effects: the two blurs, and the post-effect quad with its colour
// sum, its clip rectangle, an alpha mode, and its depth.
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "triangle_fixture.h"

namespace {

using trianglefixture::kGuard, trianglefixture::kW, trianglefixture::kH, trianglefixture::Rgb;
constexpr int kSlack = 5;  // guard pixels before and after an image

// An image of w x h pixels between guards; start shifts it off 4-byte alignment.
struct Image {
  Image(int width, int height, unsigned seed, int offset = 0) : w(width), h(height), start(offset) {
    buffer.assign(w * h + 2 * kSlack + start, kGuard);
    std::mt19937 rng(seed);
    for (int i = 0; i < w * h; ++i) at(i) = static_cast<uint16_t>(rng());
    original = buffer;
  }
  uint16_t* pixels() { return &buffer[kSlack + start]; }
  uint16_t& at(int i) { return buffer[kSlack + start + i]; }
  uint16_t Old(int x, int y) const { return original[kSlack + start + y * w + x]; }
  bool Untouched() const { return buffer == original; }
  bool GuardsIntact() const {
    for (size_t i = 0; i < buffer.size(); ++i)
      if ((i < size_t(kSlack + start) || i >= size_t(kSlack + start + w * h)) && buffer[i] != kGuard) return false;
    return true;
  }
  int w, h, start;
  std::vector<uint16_t> buffer, original;
};

TEST(Blur, ThreeTapsOneRowUp) {
  for (int start : {0, 1}) {
    Image im(9, 7, 11 + start, start);
    FSBlur(im.pixels(), im.w, im.h);
    for (int y = 0; y < im.h; ++y)
      for (int x = 0; x < im.w; ++x) {
        uint16_t want = im.Old(x, y);
        if (y < im.h - 2 && x > 0 && x < im.w - 1) {
          const int c = im.Old(x, y + 1), r = im.Old(x + 1, y + 1), b = im.Old(x, y + 2);
          want = static_cast<uint16_t>(c & 0x8000);
          for (int s : {10, 5, 0})
            want |= (((c >> s & 31) >> 1) + ((((b >> s & 31) >> 1) + ((r >> s & 31) >> 1)) >> 1))
                    << s;
        }
        ASSERT_EQ(im.at(y * im.w + x), want) << x << "," << y;
      }
    EXPECT_TRUE(im.GuardsIntact());
  }
}

// The fast blur works on pixel pairs with its own odd first and last words and
// a halved last row; the bits are pinned by a hash of images whose every word
// was checked against a per-channel model of the steps when the hash was taken.
TEST(Blur, FastBlurFiveTapsOneRowUp) {
  uint32_t hash = 2166136261u;
  for (auto [w, h, start] : {std::tuple{10, 6, 0}, {4, 3, 1}, {6, 2, 0}}) {
    Image im(w, h, 7 + w, start);
    FSBlurFast(im.pixels(), w, h);
    EXPECT_TRUE(im.GuardsIntact()) << w << "x" << h;
    // Interior: C/2 + ((T/2 + B/2)/2 + (L/2 + R/2)/2)/2 per channel, with the
    // centre's bit 15 and lowest channel bits kept.
    if (w == 10) {
      const int c = im.Old(4, 2), t = im.Old(4, 1), b = im.Old(4, 3), l = im.Old(3, 2), r = im.Old(5, 2);
      int want = (c & 0x8000) | (c & 0x0421);
      for (int s : {10, 5, 0}) {
        auto half = [s](int p) { return (p >> s & 31) >> 1; };
        want |= (half(c) + ((half(t) + half(b)) / 2 + (half(l) + half(r)) / 2) / 2) << s;
      }
      EXPECT_EQ(im.at(1 * w + 4), want);
    }
    for (int i = 0; i < w * h; ++i) hash = (hash ^ im.at(i)) * 16777619u;
  }
  EXPECT_EQ(hash, 3599022562u);

  // Images too small for the taps are left alone; the fast blur also needs an even width.
  const struct { decltype(&FSBlur) blur; int w, h; } small[] = {
      {FSBlur, 2, 6}, {FSBlur, 6, 2}, {FSBlur, -3, 5}, {FSBlurFast, 7, 4}, {FSBlurFast, 2, 4}, {FSBlurFast, 8, 1}};
  for (const auto& c : small) {
    Image im(c.w > 0 ? c.w : 0, c.h, 5);
    c.blur(im.pixels(), c.w, c.h);
    EXPECT_TRUE(im.Untouched()) << c.w << "x" << c.h;
  }
}

// The guarded target of the triangle tests, its viewport (with a depth
// buffer) and one without, both drawing with a material of the test's.
class PostFX : public trianglefixture::TriangleTest {
 protected:
  void SetUp() override {
    TriangleTest::SetUp();
    SurfaceDesc surface{};
    surface.pixels = &Pixel(0, 0);
    surface.width = kW, surface.height = kH, surface.pitch = trianglefixture::kPitch * 2;
    plain_ = CreateViewport(&surface, kW, kH, 0);
    material_.flags = 0x00700003;  // filled, flat shade: drawn in the unlit row all the same
    for (Viewport* vp : {plain_, vp_}) SetViewportMaterial(vp, &material_);
    Clear(kBackdrop, 0xFFFFFFFF);
  }
  void TearDown() override {
    for (Viewport* vp : {plain_, vp_}) SetViewportMaterial(vp, nullptr);
    DeleteViewport(plain_);
    TriangleTest::TearDown();
  }
  void Color(int i, float r, float g, float b) { SetMaterialColor(&material_, i, r, g, b); }
  // Pixels of the rectangle equal inside, kBackdrop outside.
  void ExpectRect(int left, int top, int right, int bottom, uint16_t inside) {
    for (int y = 0; y < kH; ++y)
      for (int x = 0; x < kW; ++x) {
        const bool in = x >= left && x < right && y >= top && y < bottom;
        ASSERT_EQ(Pixel(x, y), in ? inside : kBackdrop) << x << "," << y;
      }
  }

  static constexpr uint16_t kBackdrop = 5 << 10 | 25 << 5 | 3;
  Material material_{};
  Viewport* plain_ = nullptr;
};

TEST_F(PostFX, CoversTheClipRectangleWithTheColourSum) {
  // Red sums past 255 and clamps; blue sums to 7.5, which rounds to 8.
  for (int i = 0; i < 3; ++i) Color(i, 100, 8 * i, 2.5f);
  DrawViewportPostFX(plain_);
  ExpectRect(0, 0, kW, kH, Rgb(31, 3, 1));

  // Scissor and border bars limit it.
  Clear(kBackdrop, 0);
  SetViewportScissor(plain_, 3, 13, 0, 31);
  SetViewportBorderHeight(plain_, 2);
  Color(0, 0, 0, 0);
  DrawViewportPostFX(plain_);
  ExpectRect(3, 2, 13, kH - 2, Rgb(25, 3, 0));  // blue sums to 5

  // In the material's alpha mode, as the flat drawers blend: ((255 - 64) d + 64 s) >> 8.
  Clear(kBackdrop, 0);
  SetViewportScissor(plain_, 0, kW, 0, kH);
  SetViewportBorderHeight(plain_, 0);
  Color(0, 160, 160, 160), Color(1, 0, 0, 0), Color(2, 0, 0, 0);  // 20 a channel
  material_.alphaMode = 2, material_.alphaLevel = 64;
  DrawViewportPostFX(plain_);
  const auto mix = [](int d) { return (191 * d + 64 * 20) >> 8; };
  ExpectRect(0, 0, kW, kH, Rgb(mix(5), mix(25), mix(3)));
}

TEST_F(PostFX, DepthTestedAtOneOverZPointTwo) {
  for (int x = 0; x < kW; ++x) Depth(x, 4) = 100;  // row 4 is nearer
  Color(0, 0, 0, 255);
  DrawViewportPostFX(vp_);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      ASSERT_EQ(Pixel(x, y), y == 4 ? kBackdrop : Rgb(0, 0, 31)) << x << "," << y;
      ASSERT_NEAR(Depth(x, y), y == 4 ? 100 : 5 * 65536.0, y == 4 ? 0 : 1.0);
    }
}

}  // namespace
