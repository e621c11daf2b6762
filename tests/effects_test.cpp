// Full-screen effects: the two blurs against their per-channel definitions,
// and the post-effect quad in each alpha mode, with and without depth.
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "triangle_fixture.h"

namespace {

using trianglefixture::kGuard, trianglefixture::kW, trianglefixture::kH;
constexpr int kSlack = 5;  // guard pixels before and after an image

uint16_t Rgb(int r, int g, int b) { return static_cast<uint16_t>(r << 10 | g << 5 | b); }

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

// The fast blur's interior pixel: C/2 + ((T/2 + B/2)/2 + (L/2 + R/2)/2)/2 per
// channel, with the centre's bit 15 and lowest channel bits kept.
uint16_t FastPixel(int c, int t, int b, int l, int r) {
  int v = (c & 0x8000) | (c & 0x0421);
  for (int s : {10, 5, 0}) {
    auto h = [s](int p) { return (p >> s & 31) >> 1; };
    v |= (h(c) + ((h(t) + h(b)) / 2 + (h(l) + h(r)) / 2) / 2) << s;
  }
  return static_cast<uint16_t>(v);
}

// The first word of a row: the word's halves summed without masks, its
// first pixel standing in for its missing left neighbour.
uint32_t FastFirstWord(uint32_t c, uint32_t t, uint32_t b, uint32_t next) {
  const uint32_t l = c << 16 | (c & 0xFFFF), r = c >> 16 | next << 16;
  return (c >> 1) + ((((t >> 1) + (b >> 1)) / 2 + ((l >> 1) + (r >> 1)) / 2) >> 1);
}

TEST(Blur, FastBlurFiveTapsOneRowUp) {
  for (auto [w, h, start] : {std::tuple{10, 6, 0}, {4, 3, 1}, {6, 2, 0}}) {
    Image im(w, h, 7 + w, start);
    FSBlurFast(im.pixels(), w, h);
    auto word = [&](int x, int y) { return im.Old(x, y) | uint32_t{im.Old(x + 1, y)} << 16; };
    for (int y = 0; y < h; ++y) {
      const int cy = y + 1, by = y + 2 < h ? y + 2 : y + 1;  // the last pass has no row below
      for (int x = 0; x < w; ++x) {
        uint16_t want;
        if (y == h - 1) {
          const int p = im.Old(x, y);
          want = Rgb((p >> 10 & 31) >> 1, (p >> 5 & 31) >> 1, (p & 31) >> 1);
        } else if (x >= w - 2 || (x < 2 && y == h - 2)) {
          want = im.Old(x, cy);
        } else if (x < 2) {
          const uint32_t first = FastFirstWord(word(0, cy), word(0, y), word(0, by), word(2, cy));
          want = static_cast<uint16_t>(first >> 16 * x);
        } else {
          want = FastPixel(im.Old(x, cy), im.Old(x, y), im.Old(x, by), im.Old(x - 1, cy),
                           im.Old(x + 1, cy));
        }
        ASSERT_EQ(im.at(y * w + x), want) << w << "x" << h << " at " << x << "," << y;
      }
    }
    EXPECT_TRUE(im.GuardsIntact());
  }

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
}

TEST_F(PostFX, DrawsInTheMaterialsAlphaMode) {
  Color(0, 160, 160, 160);  // 20 a channel
  Color(1, 0, 0, 0), Color(2, 0, 0, 0);
  const struct { uint16_t mode, level, want; } cases[] = {
      {0, 0, Rgb(20, 20, 20)},
      {1, 0, Rgb(25, 31, 23)},
      // ((255 - 64) * d + 64 * s) >> 8
      {2, 64, Rgb((191 * 5 + 64 * 20) >> 8, (191 * 25 + 64 * 20) >> 8, (191 * 3 + 64 * 20) >> 8)},
      {3, 0, Rgb(16, 0, 17)},  // one packed subtraction: red and green lose their lowest bit
  };
  for (const auto& c : cases) {
    Clear(kBackdrop, 0);
    material_.alphaMode = c.mode, material_.alphaLevel = c.level;
    DrawViewportPostFX(plain_);
    ExpectRect(0, 0, kW, kH, c.want);
  }
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
