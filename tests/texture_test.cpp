// Checker boards and the mip levels of 1555 and 8888 chains.
#include <string>
#include <vector>

#include "engine3d.h"
#include "support/test_host.h"

namespace {

class TextureTest : public testhost::LeakCheckedTest {};

using Rows = std::vector<std::string>;

// The rows of a new checker board as letters a and b; the board is freed.
Rows Checker(int w, int h, int cells) {
  SurfaceDesc* t = CreateCheckerTexture(w, h, cells, 'a', 'b');
  EXPECT_EQ(t->pitch, 2u * w);
  EXPECT_EQ(t->textureWidth * t->textureHeight, t->width * t->height);
  Rows rows;
  for (int y = 0; y < h; y++) {
    const uint16_t* p = static_cast<const uint16_t*>(t->pixels) + y * w;
    rows.emplace_back(p, p + w);
  }
  FreeMemory(t->pixels);
  FreeMemory(t);
  return rows;
}

TEST_F(TextureTest, CheckerBoards) {
  EXPECT_EQ(Checker(8, 8, 2), (Rows{"bbbbaaaa", "bbbbaaaa", "bbbbaaaa", "bbbbaaaa",
                                    "aaaabbbb", "aaaabbbb", "aaaabbbb", "aaaabbbb"}));
  // Truncated cells: boundaries at multiples of 3 across, the last cell wider.
  EXPECT_EQ(Checker(10, 4, 3), (Rows{"bbbaaabbba", "aaabbbaaab", "bbbaaabbba", "aaabbbaaab"}));
  // Cell width 0 (more cells than texels, or none): one colour per row.
  EXPECT_EQ(Checker(2, 6, 5), (Rows{"aa", "bb", "aa", "bb", "aa", "bb"}));
}

// A chain over the given level 0 (pitch in texels); levels 1-3 start marked.
template <class T>
MipChain MakeChain(std::vector<T>& level0, int w, int h, int pitch) {
  static int mark;
  MipChain c = {0, {level0.data(), &mark, &mark, &mark}, {w, 9, 9, 9}, {h, 9, 9, 9},
                {pitch * int(sizeof(T)), 9, 9, 9}};
  return c;
}
template <class T>
T At(const MipChain& c, int level, int x, int y) {
  return static_cast<const T*>(c.levelPixels[level])[y * c.levelWidths[level] + x];
}
void FreeLevels(MipChain& c) {
  for (int i = 1; i < 4; i++)
    if (c.levelWidths[i] != 9) FreeMemory(c.levelPixels[i]);
}

TEST_F(TextureTest, Mip1555) {
  // 5 x 5 rows padded to 8 texels: blocks of white/white/black/black (bit 15 of
  // a plain texel ignored), one key, channel sums 10, and full red.
  std::vector<uint16_t> t = {0x7FFF, 0xFFFF, 0x1234, 0, 1, 0x8000, 0x8000, 0x8000,
                             0, 0, 0, 0x8000, 1, 0x8000, 0x8000, 0x8000,
                             0x0421, 0x0842, 0x7C00, 0x7C00, 1, 0x8000, 0x8000, 0x8000,
                             0x0C63, 0x1084, 0x7C00, 0x7C00, 1, 0x8000, 0x8000, 0x8000,
                             1, 1, 1, 1, 1, 0x8000, 0x8000, 0x8000};
  MipChain c = MakeChain(t, 5, 5, 8);
  CreateMMTexture1555(&c);
  ASSERT_TRUE(c.levelWidths[1] == 2 && c.levelHeights[1] == 2);
  EXPECT_EQ(c.levelPitches[1], 4);  // packed
  const uint16_t want[4] = {0x3DEF, 0x8000, 0x0842, 0x7C00};
  for (int i = 0; i < 4; i++) EXPECT_EQ(At<uint16_t>(c, 1, i % 2, i / 2), want[i]) << i;
  EXPECT_TRUE(c.levelWidths[2] * c.levelHeights[2] == 1 && At<uint16_t>(c, 2, 0, 0) == 0x8000);
  EXPECT_EQ(c.levelWidths[3], 9);  // 1 x 1 ends the chain
  FreeLevels(c);
  CreateMMTexture1555(nullptr);
}

TEST_F(TextureTest, Mip8888CopiesTheLastColumnAndRow) {
  std::vector<uint32_t> t(6 * 6);
  for (int i = 0; i < 36; i++) t[i] = 0x11000000u | (0x10101u * i);
  t[8] = 0x00FFFFFDu;  // block (1,0): bytes summed alone, no carry between them
  t[2] = t[3] = t[9] = 0x00FFFFFFu;
  t[24] = 0xFF000000u;  // block (0,2) lies in the copied last row: no key effect
  t[12] = 0xFF000000u;  // block (0,1)
  MipChain c = MakeChain(t, 6, 6, 6);
  CreateMMTexture8888(&c);
  ASSERT_TRUE(c.levelWidths[1] == 3 && c.levelPitches[1] == 12);
  EXPECT_EQ(At<uint32_t>(c, 1, 0, 0), 0x00030303u);  // (0+1+6+7) >> 2
  EXPECT_EQ(At<uint32_t>(c, 1, 1, 0), 0x00FFFFFEu);
  EXPECT_EQ(At<uint32_t>(c, 1, 0, 1), 0xFF000000u);
  EXPECT_EQ(At<uint32_t>(c, 1, 2, 0), t[2]);       // source (w - 1, 2y)
  EXPECT_EQ(At<uint32_t>(c, 1, 2, 1), t[2 * 6 + 2]);
  for (int x = 0; x < 3; x++) EXPECT_EQ(At<uint32_t>(c, 1, x, 2), t[3 * 6 + 2 * x]);  // row 2h - 3
  // Level 2 comes from a source three high: its last (only) row copies source row 0.
  EXPECT_EQ(At<uint32_t>(c, 2, 0, 0), At<uint32_t>(c, 1, 0, 0));
  EXPECT_EQ(c.levelWidths[3], 9);
  FreeLevels(c);
}

TEST_F(TextureTest, FailedLevelEndsTheChain) {
  for (int texel = 2; texel <= 4; texel += 2)
    for (int failing = 1; failing <= 3; failing++) {
      size_t live = testhost::LiveBlocks();
      std::vector<uint32_t> level0(16 * 16, 0x00102030u);
      MipChain c = MakeChain(level0, 16, 16, 4 * texel);  // 16 texels of this size
      testhost::FailAllocation(failing);
      texel == 2 ? CreateMMTexture1555(&c) : CreateMMTexture8888(&c);
      for (int i = 1; i < 4; i++) {
        EXPECT_EQ(c.levelPixels[i] != nullptr, i < failing);
        EXPECT_EQ(c.levelWidths[i], i < failing ? 16 >> i : 0);
        EXPECT_EQ(c.levelPitches[i], i < failing ? (16 >> i) * texel : 0);
      }
      EXPECT_EQ(testhost::LiveBlocks() - live, size_t(failing - 1));
      for (int i = 1; i < 4; i++) FreeMemory(c.levelPixels[i]);
    }
}

}  // namespace
