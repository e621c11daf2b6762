// Textured, opacity and environment drawers.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "raster/clip.h"
#include "raster/drawer_table.h"
#include "raster/textured_texel.h"
#include "triangle_fixture.h"

namespace {

using namespace trianglefixture;
uint32_t Packed(const e3d::Texel& t) { return t.red << 24 | t.green << 16 | t.blue << 8 | t.alpha; }

const TriangleDrawer kTextured[18] = {
    NoneDiffuseTriangle,     NoneDiffuseTriangleZ,     FlatDiffuseTriangle,
    FlatDiffuseTriangleZ,    GouraudDiffuseTriangle,   GouraudDiffuseTriangleZ,
    NoneOpacityTriangle,     NoneOpacityTriangleZ,     FlatOpacityTriangle,
    FlatOpacityTriangleZ,    GouraudOpacityTriangle,   GouraudOpacityTriangleZ,
    NoneEnvironmentTriangle, NoneEnvironmentTriangleZ, FlatEnvironmentTriangle,
    FlatEnvironmentTriangleZ, GouraudEnvironmentTriangle, GouraudEnvironmentTriangleZ,
};

class Textured : public TriangleTest {
 protected:
  // A single texture of w x h texels on stage s of the front material.
  void Stage(int s, const void* texels, int w, int h, uint32_t option, uint32_t mode = 0) {
    TextureStage& t = front_.stages[s];
    t = {};
    t.levelPixels[0] = const_cast<void*>(texels);
    t.levelWidths[0] = w, t.levelHeights[0] = h;
    const bool pow2 = e3d::IsPowerOfTwo(w) && e3d::IsPowerOfTwo(h);
    t.shifts[0] = pow2 ? e3d::Log2(w) : w * ((option & 1) ? 2 : 1);
    t.stageFlags = option | mode | (pow2 ? e3d::kStagePowerOfTwo : 0);
    t.texture = reinterpret_cast<SurfaceDesc*>(&surfaceStandIn_);
    back_.stages[s] = t;
  }
  // Texture coordinates in 0..1 of each corner, as submission hands them
  // over for a level of w x h texels.
  void Uv(const float* uv, int w, int h) {
    for (int i = 0; i < 3; ++i)
      face_.corners[i] = {uv[2 * i] * (w - 1) * v_[i].invZ, uv[2 * i + 1] * (h - 1) * v_[i].invZ, 0, 0};
  }
  // Corners 1 and 2 exchanged if need be, so that the front side fills.
  void FaceFront() {
    SetBack(false);
    if (Coverage(v_, false)(1, 1)) return;
    std::swap(v_[1], v_[2]);
    std::swap(face_.corners[1], face_.corners[2]);
  }
  // A triangle over the whole viewport, uniform coordinates (texel 0, 0).
  void Cover() {
    Corners(0, 0, 0, kH, kW, 0);
    for (auto& c : face_.corners) c = {};
    FaceFront();
  }
  uint32_t surfaceStandIn_ = 0;
};

// Every filling drawer, solid or textured, fills exactly the pixels of the
// edge rule, and only in the winding of positive area.
TEST_F(Textured, EveryDrawerFillsThePixelsOfTheEdgeRule) {
  const uint16_t white = 0x7FFF;
  for (int s = 0; s < 3; ++s) Stage(s, &white, 1, 1, 0);
  std::vector<TriangleDrawer> drawers = {FlatSolidTriangle, FlatSolidTriangleZ, GouraudSolidTriangle,
                                         GouraudSolidTriangleZ};
  drawers.insert(drawers.end(), std::begin(kTextured), std::end(kTextured));
  int filled = 0;
  for (int n = 0; n < 4000; ++n) {
    RandomCorners();
    face_.colors[0] = rng_() & 0x7FFF, face_.colors[1] = rng_(), face_.colors[2] = rng_();
    const Coverage covers(v_, face_.polygonFlags != 0);
    bool any = false;
    for (size_t d = n % 7; d < drawers.size(); d += 7) {  // each drawer every seventh triangle
      Clear(0x8000, 0xFFFFFFFF);  // each drawer here writes bit 15 clear
      Draw(drawers[d]);
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) {
          any |= covers(x, y);
          if ((Pixel(x, y) != 0x8000) != covers(x, y))
            FAIL() << "drawer " << d << " at " << x << "," << y << " of triangle " << n;
        }
    }
    filled += any;
  }
  EXPECT_TRUE(filled > 1500 && filled < 2500) << filled;  // the other winding drew nothing
}

// A plane tilted away: the texel under each pixel follows the projective
// mapping, not the affine one.
TEST_F(Textured, PerspectiveCorrect) {
  uint16_t texels[32 * 32];
  for (int i = 0; i < 32 * 32; ++i) texels[i] = static_cast<uint16_t>(i);  // (v, u) in the bits
  Stage(0, texels, 32, 32, 0);
  // Corners of a floor: near edge at z 2 along the bottom, far edge at z 12.
  const float z[4] = {2, 2, 12, 12}, sx[4] = {-1, 1, 1, -1}, uq[4] = {0, 1, 1, 0}, vq[4] = {0, 0, 1, 1};
  MeshVertex q[4];
  for (int i = 0; i < 4; ++i)
    q[i] = {0, 0, 0, 0, 0, z[i], 20 + 36 * sx[i] / z[i], 4 + 48 / z[i], 1 / z[i], 0};
  const int tri[2][3] = {{0, 1, 2}, {0, 2, 3}};
  int checked = 0;
  for (const auto& t : tri) {
    for (int i = 0; i < 3; ++i) v_[i] = q[t[i]];
    const float uv[6] = {uq[t[0]], vq[t[0]], uq[t[1]], vq[t[1]], uq[t[2]], vq[t[2]]};
    Uv(uv, 32, 32);
    SetBack(false);
    Draw(NoneDiffuseTriangle);
    SetBack(true);
    Draw(NoneDiffuseTriangle);
  }
  // The floor at screen row y lies at z = 48 / (y - 4); x maps linearly there.
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) {
      const double zz = 48.0 / (y - 4), u = ((x - 20) * zz / 36 + 1) / 2, v = (zz - 2) / 10;
      if (y <= 4 || u < 0.02 || u > 0.98 || v < 0.02 || v > 0.98) continue;
      const double tu = u * 31, tv = v * 31;
      if (std::fabs(tu - std::floor(tu) - 0.5) < 0.1 || std::fabs(tv - std::floor(tv) - 0.5) < 0.1) continue;
      ASSERT_EQ(Pixel(x, y), std::lround(tv) * 32 + std::lround(tu)) << x << "," << y;
      ++checked;
    }
  EXPECT_GT(checked, 150);

  // Both builds give the same bits: bilinear, Gouraud-modulated, depth-tested,
  // with an anti-aliased line over it.
  Stage(0, texels, 32, 32, e3d::kOptionBilinear, e3d::kModeWrap);
  Clear(0, 0xFFFFFFFF);
  face_.colors[0] = 0xFF8040, face_.colors[1] = 0x40FF80, face_.colors[2] = 0x8040FF;
  for (int side = 0; side < 2; ++side) {
    for (int i = 0; i < 3; ++i) v_[i] = q[tri[0][i]];
    const float uv[6] = {0, 0, 3, 0, 3, 2};
    Uv(uv, 32, 32);
    SetBack(side == 1);
    Draw(GouraudDiffuseTriangleZ);
  }
  DrawLine2D(vp_, 3.3f, 30.1f, 36.6f, 6.8f, 0xC0F0A0, 1);
  uint32_t hash = 2166136261u;
  for (int i = 0; i < kW * kH; ++i) hash = (hash ^ Pixel(i % kW, i / kW) ^ Depth(i % kW, i / kW)) * 16777619u;
  EXPECT_EQ(hash, 785828118u);
}

// Addressing, formats, key and filter, read straight from a level.
TEST(TexelAccess, WrapClampKeyFormatsAndBilinear) {
  ReleaseRenderTables();
  InitRenderTables();
  TextureStage stage{};
  e3d::TextureLevel level;
  e3d::Texel texel;
  auto use = [&](void* texels, int w, int h, int shift, uint32_t flags) {
    stage.levelPixels[0] = texels;
    stage.levelWidths[0] = w, stage.levelHeights[0] = h, stage.shifts[0] = shift;
    stage.stageFlags = flags;
    return e3d::SetUpTextureLevel(&stage, 2, &level);  // not a chain: level 0
  };
  auto red = [&](int u, int v) { return level.Sample(u << 16, v << 16, &texel) ? int(texel.red) : -1; };

  uint16_t t16[3 * 2] = {Rgb(1, 0, 0), Rgb(2, 0, 0), Rgb(3, 0, 0), Rgb(4, 0, 0), 0x8000, Rgb(6, 0, 0)};
  ASSERT_TRUE(use(t16, 3, 2, 3, 0));
  EXPECT_EQ(red(-5, 7), 4);  // 3 x 2 clamps by default
  EXPECT_EQ(red(1, 1), 0);   // the key is a texel like others when not keyed
  ASSERT_TRUE(use(t16, 3, 2, 3, e3d::kModeWrap | e3d::kOptionKeyed));
  EXPECT_EQ(red(-1, 0), 3);
  EXPECT_EQ(red(5, 3), 6);
  EXPECT_EQ(red(4, 1), -1);
  EXPECT_FALSE(use(t16, 3, 2, 2, 0));  // rows shorter than the level
  EXPECT_FALSE(use(nullptr, 3, 2, 3, 0));

  // A power-of-two 8888 level wraps by default; channels come from the top
  // five bits of each byte, coverage from the alpha byte.
  uint32_t t32[2 * 2] = {0x80F81008, 0xFF000000, 0x00000000, 0x11223344};
  ASSERT_TRUE(use(t32, 2, 2, 1, e3d::kOptionWide | e3d::kStagePowerOfTwo));
  ASSERT_TRUE(level.Sample(2 << 16, -2 << 16, &texel));
  EXPECT_EQ(Packed(texel), 0x1F020180u);
  ASSERT_TRUE(use(t32, 2, 2, 1, e3d::kOptionWide | e3d::kStagePowerOfTwo | e3d::kModeClamp | e3d::kOptionKeyed));
  EXPECT_FALSE(level.Sample(9 << 16, -9 << 16, &texel));

  // Bilinear between four texels: the centre is their mean, a quarter of
  // the way 3/4 of one and 1/4 of the other; 31 stays 31.
  uint16_t quad[4] = {Rgb(0, 31, 8), Rgb(16, 31, 8), Rgb(0, 31, 24), Rgb(16, 31, 24)};
  ASSERT_TRUE(use(quad, 2, 2, 1, e3d::kOptionBilinear | e3d::kStagePowerOfTwo | e3d::kModeClamp));
  const struct { int32_t u, v; uint32_t want; } mix[] = {
      {0x8000, 0x8000, 0x081F10}, {0x4000, 0xC000, 0x041F14}, {0x10000, 0x10000, 0x101F18}};
  for (const auto& m : mix) {
    ASSERT_TRUE(level.Sample(m.u, m.v, &texel));
    EXPECT_EQ(Packed(texel) >> 8, m.want);
  }
  ReleaseRenderTables();
}

// Colour operations, alpha modes, opacity and environment on one pixel.
TEST_F(Textured, ColourFormulas) {
  const uint16_t texel = Rgb(20, 10, 31);
  const uint32_t texel8888 = 0x40A05028;  // alpha 64; channels 20, 10, 5
  const uint16_t target = Rgb(4, 30, 8);
  const struct {
    TriangleDrawer drawer;
    int stage;
    bool wide;
    uint16_t mode, level, colorOp, want;
  } cases[] = {
      {NoneDiffuseTriangle, 0, false, 0, 0, 0, texel},
      {FlatDiffuseTriangle, 0, false, 0, 0, 0, Rgb(20 * 16 >> 5, 10 * 31 >> 5, 31 * 2 >> 5)},
      {FlatDiffuseTriangle, 0, false, 0, 0, 0x101, Rgb(31, 31, 31)},  // add
      {FlatDiffuseTriangle, 0, false, 0, 0, 0x102, Rgb(4, 0, 29)},    // texel - colour
      {FlatDiffuseTriangle, 0, false, 0, 0, 0x103, texel},
      {NoneDiffuseTriangle, 0, false, 1, 0, 0, Rgb(24, 31, 31)},
      {NoneDiffuseTriangle, 0, false, 2, 51, 0, Rgb(7, 26, 12)},      // d + (s - d) / 5
      {NoneDiffuseTriangle, 0, false, 3, 0, 0, Rgb(16, 0, 23)},
      // d + (s - d) x a / 255, a the intensity 167 (61 / 93 of 255) or the alpha byte 64
      {NoneOpacityTriangle, 1, false, 0, 0, 0, Rgb(14, 16, 23)},
      {NoneOpacityTriangle, 1, true, 0, 0, 0, Rgb(8, 24, 7)},
      {NoneOpacityTriangle, 1, true, 1, 0, 0, Rgb(9, 31, 9)},          // d + s x a / 255
      {NoneEnvironmentTriangle, 2, false, 0, 0, 0, Rgb(31, 31, 31)},  // texel + colour
  };
  for (const auto& c : cases) {
    Stage(c.stage, c.wide ? static_cast<const void*>(&texel8888) : &texel, 1, 1, c.wide ? 1 : 0);
    front_.alphaMode = c.mode, front_.alphaLevel = c.level;
    front_.colorOp = c.colorOp & 0xFF, front_.flags = c.colorOp & 0x100;
    face_.colors[0] = Rgb(16, 31, 2);
    Clear(target, 0xFFFFFFFF);
    Cover();
    Draw(c.drawer);
    EXPECT_EQ(Pixel(5, 5), c.want) << &c - cases;
  }
}

// Keyed texels leave pixel and depth alone; the others are depth-tested.
TEST_F(Textured, KeyedTexelsAndDepth) {
  const uint16_t texels[4] = {0x8000, Rgb(1, 2, 3), Rgb(1, 2, 3), 0x8000};
  Stage(0, texels, 2, 2, e3d::kOptionKeyed, e3d::kModeClamp);
  Clear(0x1234, 0xFFFFFFFF);
  Corners(0, 0, 0, kH, kW, 0, 2.0f);
  const float uv[6] = {0, 0, 0, 2, 2, 0};
  Uv(uv, 2, 2);
  FaceFront();
  Draw(NoneDiffuseTriangleZ);
  EXPECT_EQ(Pixel(2, 2), 0x1234);
  EXPECT_EQ(Depth(2, 2), 0xFFFFFFFFu);
  EXPECT_EQ(Pixel(30, 2), Rgb(1, 2, 3));
  EXPECT_EQ(Depth(30, 2), 2u * 65536);
}

// Submission picks the mip level by the texel-to-pixel area ratio; the
// drawer reads that level.
TEST_F(Textured, MipLevelFollowsDistance) {
  uint16_t level[4][64 * 64];
  TextureStage& t = front_.stages[0];
  t = {};
  for (int l = 0; l < 4; ++l) {
    for (uint16_t& p : level[l]) p = static_cast<uint16_t>(l + 1);
    t.levelPixels[l] = level[l], t.levelWidths[l] = t.levelHeights[l] = 64 >> l, t.shifts[l] = 6 - l;
  }
  t.stageFlags = e3d::kStageMipChain | e3d::kStagePowerOfTwo;
  e3d::clipViewport = vp_;
  e3d::SetClipWindow(0, kW, 0, kH);
  for (const float size : {32.0f, 22.0f, 4.0f}) {  // 4, 8.5 and 256 texels a pixel
    Clear(0, 0xFFFFFFFF);
    Corners(0, 0, 0, size, size, 0);
    const float uv[6] = {0, 0, 0, 1, 1, 0};
    for (int i = 0; i < 3; ++i) face_.corners[i] = {uv[2 * i], uv[2 * i + 1], 0, 0};
    FaceFront();
    e3d::SubmitFace(&face_, v_, 0x00F00001, e3d::ChooseDrawer(0x00F00001, false));
    EXPECT_EQ(Pixel(1, 1), size == 32 ? 1 : size == 22 ? 2 : 4) << size;
    EXPECT_EQ(e3d::textureLevel, 0);
  }
}

// A textured post-effect material maps its texture over the viewport
// through submission, cut to the scissor without moving the texels.
TEST_F(Textured, PostEffectTexture) {
  const uint16_t a = Rgb(1, 0, 0), b = Rgb(2, 0, 0), c = Rgb(3, 0, 0), d = Rgb(4, 0, 0);
  const uint16_t texels[4] = {a, b, c, d};
  Stage(0, texels, 2, 2, 0, e3d::kModeClamp);
  front_.flags = 0x00F00000;
  SetViewportMaterial(vp_, &front_);
  DrawViewportPostFX(vp_);
  // Upper right triangle: u = 1 - y / h, v = 1 - x / w; lower left:
  // u = x / w, v = 1 - y / h + x / w.
  EXPECT_EQ(Pixel(38, 1), b);
  EXPECT_EQ(Pixel(30, 3), b);
  EXPECT_EQ(Pixel(10, 1), d);
  EXPECT_EQ(Pixel(2, 30), a);
  EXPECT_EQ(Pixel(3, 10), c);

  Clear(0, 0xFFFFFFFF);
  e3d::SetClipWindow(1, 2, 3, 4);
  SetViewportScissor(vp_, 10, 30, 5, 25);
  DrawViewportPostFX(vp_);
  for (int y = 0; y < kH; ++y)
    for (int x = 0; x < kW; ++x) ASSERT_EQ(Pixel(x, y) != 0, x >= 10 && x < 30 && y >= 5 && y < 25) << x << "," << y;
  EXPECT_EQ(Pixel(28, 6), b);
  EXPECT_EQ(e3d::clipWindow.xmax, 2.0f);
  SetViewportMaterial(vp_, nullptr);
}

}  // namespace
