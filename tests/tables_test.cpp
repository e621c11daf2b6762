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

TEST_F(RenderTables, SpotValues) {
  InitRenderTables();
  // The drawers' tests see most entries; these are the ends they do not reach.
  // Products scale back by 32, not 31: full white darkens a channel by one step.
  EXPECT_TRUE(ModulateTable[31 * 32 + 31] == 30 && ModulateRedTable[31 * 32 + 31] == 30 << 10);
  EXPECT_TRUE(ReciprocalTable[0] == 0.0f && LineFalloffTable[59] == 1 && LineFalloffTable[60] == 0);
}

TEST_F(RenderTables, EveryInitAllocatesAfreshAndReleaseIsIdempotent) {
  const std::size_t blocks = testhost::LiveBlocks(), bytes = testhost::LiveBytes();
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
  ReleaseRenderTables();
  ReleaseRenderTables();
  EXPECT_EQ(testhost::LiveBlocks(), blocks + 6);
  EXPECT_TRUE(SaturateAddTable == nullptr && AlphaScaleTable == nullptr);
  EXPECT_EQ(ReciprocalTable[2], 0.5f);  // static tables stay
  for (void* block : lost) EXPECT_EQ(FreeMemory(block), 1);
}

TEST(DrawerTable, ChooseDrawerReadsBlockEntryAndDepthBits) {
  // Only the lit blocks draw; unlit polygons share the flat family's dots, wire and solid drawers.
  for (uint32_t p : {kDrawDots, kDrawWire, kDrawSolid}) EXPECT_EQ(DrawerTable[1]->entries[p], DrawerTable[3]->entries[p]);

  // The render word: bits 0-2 the block, from bit 19 the entry, whose bit 0
  // is replaced by the depth test. Bits 3-19 and 27-31 take no part.
  const uint32_t solid = 7u | (kDrawSolid << 19);
  EXPECT_EQ(ChooseDrawer(solid, false), DrawerTable[7]->entries[kDrawSolid]);
  EXPECT_EQ(ChooseDrawer(solid | 0xF80FFFF8u, true), DrawerTable[7]->entries[kDrawSolid + 1]);
  EXPECT_EQ(ChooseDrawer(3u | (63u << 20), true), DrawerTable[3]->entries[127]);
  EXPECT_EQ(ChooseDrawer(3u | (64u << 20) | (kDrawSolid << 19), false), NoDraw);  // past the block
  EXPECT_EQ(ChooseDrawer(5u | (kDrawSolid << 19), false), NoDraw);
  EXPECT_EQ(ChooseDrawer(7u | ((kDrawSolid + 2) << 19), false), NoDraw);
}

}  // namespace
