#include <cstdint>

#include "engine3d.h"
#include "raster/drawer_table.h"
#include "raster/render_state.h"
#include "raster/tables.h"
#include "support/test_host.h"

namespace {

using namespace e3d;

class RenderTables : public testhost::LeakCheckedTest {
 protected:
  // The tables are process-wide: start and end every test without them.
  void SetUp() override {
    ReleaseRenderTables();
    LeakCheckedTest::SetUp();
  }
  void TearDown() override {
    ReleaseRenderTables();
    LeakCheckedTest::TearDown();
  }
};

TEST_F(RenderTables, ChannelTablesHoldTheirValues) {
  InitRenderTables();
  for (int a = 0; a < 32; ++a) {
    for (int b = 0; b < 32; ++b) {
      const int i = a * 32 + b;
      ASSERT_EQ(SaturateAddTable[i], a + b > 31 ? 31 : a + b) << a << "," << b;
      ASSERT_EQ(SaturateSubTable[i], a - b < 0 ? 0 : a - b) << a << "," << b;
      const int m = (a * b) / 32;
      ASSERT_EQ(ModulateTable[i], m) << a << "," << b;
      ASSERT_EQ(ModulateGreenTable[i], m << 5) << a << "," << b;
      ASSERT_EQ(ModulateRedTable[i], m << 10) << a << "," << b;
    }
  }
  // Products scale back by 32, not 31: full white darkens a channel by one
  // step and 31 * 1 vanishes.
  EXPECT_EQ(ModulateTable[31 * 32 + 31], 30);
  EXPECT_EQ(ModulateRedTable[31 * 32 + 31], 30720);
  EXPECT_EQ(ModulateTable[31 * 32 + 1], 0);
  EXPECT_EQ(ModulateTable[16 * 32 + 30], 15);
  for (int level = 0; level < 256; ++level)
    for (int c = 0; c < 32; ++c) ASSERT_EQ(AlphaScaleTable[level * 32 + c], level * c);
  EXPECT_EQ(AlphaScaleTable[255 * 32 + 31], 7905);

  EXPECT_EQ(ReciprocalTable[0], 0.0f);
  EXPECT_EQ(ReciprocalTable[1], 1.0f);
  EXPECT_EQ(ReciprocalTable[3], static_cast<float>(1.0 / 3));
  EXPECT_EQ(ReciprocalTable[255], static_cast<float>(1.0 / 255));
  EXPECT_EQ(tablesBuilt, 0u);
}

TEST_F(RenderTables, LineTablesHoldTheirValues) {
  InitRenderTables();
  const int32_t width[32] = {181, 181, 182, 182, 183, 184, 185, 186, 187, 189, 191,
                             192, 194, 196, 199, 201, 204, 206, 209, 212, 215, 218,
                             221, 225, 228, 231, 235, 239, 242, 246, 250, 254};
  const int32_t falloff[64] = {256, 255, 253, 251, 247, 243, 238, 232, 226, 219, 211, 203, 195,
                               187, 178, 169, 160, 150, 141, 132, 123, 115, 106, 98,  90,  83,
                               76,  69,  62,  57,  51,  46,  41,  36,  32,  29,  25,  22,  20,
                               17,  15,  13,  11,  10,  8,   7,   6,   5,   4,   4,   3,   3,
                               2,   2,   1,   1,   1,   1,   1,   1,   0,   0,   0,   0};
  for (int i = 0; i < 32; ++i) EXPECT_EQ(LineWidthTable[i], width[i]) << i;
  for (int i = 0; i < 64; ++i) EXPECT_EQ(LineFalloffTable[i], falloff[i]) << i;
  EXPECT_EQ(lineTablesReady, 1u);
}

TEST_F(RenderTables, EveryInitAllocatesAfreshAndReleaseIsIdempotent) {
  ReleaseRenderTables();  // before any init: nothing to free
  const std::size_t blocks = testhost::LiveBlocks();
  const std::size_t bytes = testhost::LiveBytes();
  InitRenderTables();
  EXPECT_EQ(testhost::LiveBlocks(), blocks + 6);
  EXPECT_EQ(testhost::LiveBytes(), bytes + 3 * 1024 + 2 * 2048 + 16384);

  // A second init without release rebuilds into new blocks and loses the
  // old ones (kept here only to hand them back at the end).
  void* lost[6] = {SaturateAddTable, SaturateSubTable, ModulateTable,
                   ModulateGreenTable, ModulateRedTable, AlphaScaleTable};
  InitRenderTables();
  EXPECT_NE(static_cast<void*>(SaturateAddTable), lost[0]);
  EXPECT_EQ(SaturateAddTable[31 * 32 + 31], 31);
  EXPECT_EQ(testhost::LiveBlocks(), blocks + 12);

  ReleaseRenderTables();
  EXPECT_EQ(testhost::LiveBlocks(), blocks + 6);
  EXPECT_EQ(SaturateAddTable, nullptr);
  EXPECT_EQ(AlphaScaleTable, nullptr);
  ReleaseRenderTables();
  EXPECT_EQ(testhost::LiveBlocks(), blocks + 6);
  EXPECT_EQ(ReciprocalTable[2], 0.5f);  // static tables stay
  for (void* block : lost) EXPECT_EQ(FreeMemory(block), 1);
}

TEST(RenderState, HoldsWhatWasLastSet) {
  Viewport* v1 = reinterpret_cast<Viewport*>(uintptr_t{0x1000});
  Viewport* v2 = reinterpret_cast<Viewport*>(uintptr_t{0x2000});
  Camera* c = reinterpret_cast<Camera*>(uintptr_t{0x3000});
  EXPECT_EQ(SetRenderInfos(v1, c), v1);
  EXPECT_EQ(GetRenderViewport(), v1);
  EXPECT_EQ(renderInfo.camera, c);
  EXPECT_EQ(SetRenderInfos(v2, nullptr), v2);
  EXPECT_EQ(GetRenderViewport(), v2);
  EXPECT_EQ(renderInfo.camera, nullptr);
  SetRenderInfos(nullptr, nullptr);
}

TEST(DrawerTable, OnlyListedEntriesOfLitBlocksCanDraw) {
  const uint32_t populated[] = {kDrawDots, kDrawWire, kDrawSolid, kDrawDiffuse, kDrawOpacity, kDrawOpacity2};
  for (uint32_t shade = 0; shade < 8; ++shade) {
    const bool lit = shade == 1 || shade == 3 || shade == 7;
    for (uint32_t i = 0; i < kShadeBlockSize; ++i) {
      bool listed = false;
      for (uint32_t p : populated) listed = listed || i == p || i == p + 1;
      if (!lit || !listed) {
        ASSERT_EQ(DrawerTable[shade]->entries[i], NoDraw) << shade << "/" << i;
      }
    }
  }
  // Unlit polygons share the flat family's dots, wire and solid drawers.
  for (uint32_t p : {kDrawDots, kDrawWire, kDrawSolid}) {
    EXPECT_EQ(DrawerTable[1]->entries[p], DrawerTable[3]->entries[p]);
    EXPECT_EQ(DrawerTable[1]->entries[p + 1], DrawerTable[3]->entries[p + 1]);
  }
}

TEST(DrawerTable, RenderWordPicksBlockEntryAndTwin) {
  // Bits 3-19 and 27-31 take no part; bit 0 of the index is the depth test.
  const uint32_t solid = 7u | (kDrawSolid << 19);
  const uint32_t noise = 0xF80FFFF8u;
  EXPECT_EQ(ChooseDrawer(solid, false), DrawerTable[7]->entries[kDrawSolid]);
  EXPECT_EQ(ChooseDrawer(solid, true), DrawerTable[7]->entries[kDrawSolid + 1]);
  EXPECT_EQ(ChooseDrawer(solid | noise, true), ChooseDrawer(solid, true));
  EXPECT_EQ(ChooseDrawer(3u | (63u << 20), true), DrawerTable[3]->entries[127]);
  EXPECT_EQ(ChooseDrawer(3u | (64u << 20) | (kDrawSolid << 19), false), NoDraw);  // past the block
  for (uint32_t shade : {0u, 2u, 4u, 5u, 6u}) EXPECT_EQ(ChooseDrawer(shade | (kDrawSolid << 19), false), NoDraw);
  NoDraw(nullptr, nullptr);  // returns at once, touching nothing
}

}  // namespace
