// The web page's fixed frame, drawn natively: the page in a browser must
// give the same hash (web.PageDrawsInABrowser), and so must every build.
#include <gtest/gtest.h>

#include "page.h"
#include "support/test_host.h"

TEST(WebPage, FixedFrameAndEveryMode) {
  const size_t live = testhost::LiveBlocks();
  ASSERT_EQ(PageStart(320, 240), 1);
  EXPECT_EQ(PageDraw(), 1472);
  EXPECT_EQ(PageHash(), E3D_WEB_FRAME_HASH);
  // Every primitive in every shading draws over the background (dots: one
  // a vertex, eight on the cube).
  for (int primitive = 0; primitive < 5; primitive++)
    for (int shading = 0; shading < 7; shading++) {
      ASSERT_EQ(PageShow(primitive, shading), 1);
      EXPECT_GT(PageDraw(), 0);
      int drawn = 0;
      for (int i = 0; i < 320 * 240; i++) drawn += PagePixels()[i] != 0x0C66;
      EXPECT_GT(drawn, shading == 6 ? 4 : 500) << primitive << "/" << shading;
    }
  EXPECT_EQ(PageRgba()[3], 255);

  // A model file read by the tools' readers; a damaged one is refused with
  // a message and the picture keeps the model shown before.
  const char tetra[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 3 2\nf 1 2 4\nf 1 4 3\nf 2 3 4 1\n";
  ASSERT_EQ(PageLoad(tetra, int(sizeof tetra - 1), 0, 1), 1) << PageError();
  EXPECT_EQ(PageDraw(), 5);  // the quad is fanned
  const uint32_t shown = PageHash();
  for (int shading = 0; shading < 7; shading++) EXPECT_EQ(PageShow(5, shading), 1);
  ASSERT_EQ(PageShow(5, 1), 1);
  const char damaged[] = "v 0 0 0\nf 1 2 3\n";
  EXPECT_EQ(PageLoad(damaged, int(sizeof damaged - 1), 0, 1), 0);
  EXPECT_STRNE(PageError(), "");
  PageDraw();
  EXPECT_EQ(PageHash(), shown);
  PageStop();
  EXPECT_EQ(testhost::LiveBlocks(), live);
}
