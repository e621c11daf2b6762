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
  PageStop();
  EXPECT_EQ(testhost::LiveBlocks(), live);
}
