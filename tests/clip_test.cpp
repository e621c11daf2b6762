// Polygon clipping, submission and DrawTriangle2D.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "objects/camera.h"
#include "objects/mesh.h"
#include "raster/clip.h"
#include "triangle_fixture.h"

namespace {

using namespace trianglefixture;

// Every fan triangle a drawer was handed, as screen vertices and face.
struct Drawn {
  MeshPolygon face;
  MeshVertex v[3];
  const MeshPolygon* facePointer;
  const MeshVertex* vertexPointer;
};
std::vector<Drawn> drawn;

void E3D_CALL Record(MeshPolygon* face, MeshVertex* vertices) {
  Drawn d{*face, {}, face, vertices};
  for (int k = 0; k < 3; ++k) d.v[k] = vertices[face->vertexIndex[k]];
  drawn.push_back(d);
}

class ClipTest : public TriangleTest {
 protected:
  void SetUp() override {
    TriangleTest::SetUp();
    drawn.clear();
    e3d::clipViewport = vp_;
    e3d::SetClipWindow(0, kW, 0, kH);
    face_.colors[0] = 0x7C1F;
  }
  static uint32_t Outcode(float x, float y) {
    return (x < 0 ? E3D_OUT_LEFT : x > kW ? E3D_OUT_RIGHT : 0) |
           (y < 0 ? E3D_OUT_TOP : y > kH ? E3D_OUT_BOTTOM : 0);
  }
  void SetCorners(const float* xy, MeshVertex* v, float dx = 0, float dy = 0) {
    for (int i = 0; i < 3; ++i) {
      v[i] = {0, 0, 0, 0, 0, 4, xy[2 * i] + dx, xy[2 * i + 1] + dy, 0.25f, 0};
      v[i].outcode = Outcode(xy[2 * i], xy[2 * i + 1]);
    }
  }
  // Clips the triangle at the screen edges and returns the polygon left.
  const e3d::ClipPolygon& ClipCorners(const float* xy) {
    SetCorners(xy, v_);
    e3d::clipPolygon.count = 3;
    e3d::clipPolygon.group = e3d::kClipPlain;
    for (int k = 0; k < 3; ++k) e3d::LoadClipVertex(k, v_[k]);
    e3d::ClipScreenEdges();
    return e3d::clipPolygon;
  }
  static bool NearEdge(const float* xy, float x, float y) {
    for (int i = 0; i < 3; ++i) {
      const float x0 = xy[2 * i], y0 = xy[2 * i + 1], x1 = xy[(2 * i + 2) % 6], y1 = xy[(2 * i + 3) % 6];
      const float cross = (x1 - x0) * (y - y0) - (y1 - y0) * (x - x0);
      if (std::fabs(cross) <= std::hypot(x1 - x0, y1 - y0) / 16) return true;
    }
    return false;
  }
  static bool Has(const e3d::ClipPolygon& p, float x, float y) {
    return std::any_of(p.in, p.in + p.count, [&](auto& v) { return v.screenX == x && v.screenY == y; });
  }
  static void ExpectClean(const e3d::ClipPolygon& p) {
    for (int i = 0; i < p.count; ++i) {
      const e3d::ClipVertex& a = p.in[i];
      EXPECT_EQ(a.outcode, 0u) << i;
      EXPECT_TRUE(a.screenX >= 0 && a.screenX <= kW && a.screenY >= 0 && a.screenY <= kH) << i;
      for (int j = i + 1; j < p.count; ++j)
        EXPECT_FALSE(a.screenX == p.in[j].screenX && a.screenY == p.in[j].screenY)
            << "duplicate " << i << " " << j;
    }
  }
};

TEST_F(ClipTest, ScreenEdgesEmitEachVertexOnce) {
  const struct {
    float xy[6];
    int count;
    std::vector<float> has;  // x, y pairs the polygon must contain
  } cases[] = {
      {{-8, 10, 48, 10, 20, 30}, 5, {0, 10, 40, 10, 20, 30}},         // opposite edges
      {{-8, -8, 24, 8, 8, 24}, 5, {0, 0, 8, 0, 0, 8, 24, 8, 8, 24}},  // left, then top
      {{-100, -100, 300, -100, -100, 300}, 4, {0, 0, 40, 0, 0, 32, 40, 32}},
      {{0, 10, -10, 0, 30, 30}, 3, {0, 10, 30, 30, 0, 7.5f}},  // cut landing on a vertex
  };
  for (const auto& c : cases) {
    const e3d::ClipPolygon& p = ClipCorners(c.xy);
    ASSERT_EQ(p.count, c.count) << c.xy[0] << "," << c.xy[1];
    ExpectClean(p);
    for (size_t i = 0; i < c.has.size(); i += 2)
      EXPECT_TRUE(Has(p, c.has[i], c.has[i + 1])) << c.has[i] << "," << c.has[i + 1];
  }
}

TEST_F(ClipTest, NearPlaneCutsAreProjected) {
  e3d::ClipPolygon& p = e3d::clipPolygon;
  p.count = 3;
  p.group = e3d::kClipTexturedGouraud;
  const float cam[3][3] = {{-6, 3, 5}, {9, 6, 20}, {3, -12, 30}};
  for (int k = 0; k < 3; ++k) {
    e3d::ClipVertex& c = p.in[k];
    c.camX = cam[k][0], c.camY = cam[k][1], c.camZ = cam[k][2];
    c.screenX = c.screenY = 20, c.invZ = 1 / cam[k][2];
    c.outcode = k == 0 ? E3D_OUT_NEAR : 0;
    c.u = c.v = 10.0f * k;
    c.color[0] = c.color[1] = c.color[2] = 30.0f * k;
  }
  e3d::ClipDepthPlane(E3D_OUT_NEAR, 10, 0.5f, -0.5f);
  ASSERT_EQ(p.count, 4);
  // (0, 1) cut a third of the way; (2, 0) cut 0.8 of the way.
  const e3d::ClipVertex& a = p.in[0];
  EXPECT_FLOAT_EQ(a.camX, -1);
  EXPECT_EQ(a.camZ, 10.0f);
  EXPECT_FLOAT_EQ(a.invZ, 0.1f);
  EXPECT_FLOAT_EQ(a.screenX, -0.5f + vp_->centerX);
  EXPECT_FLOAT_EQ(a.u, 10.0f / 3);
  EXPECT_FLOAT_EQ(a.color[2], 10);
  EXPECT_FLOAT_EQ(p.in[3].u, 20 - 20 * 0.8f);
}

// The same triangle in a viewport three times as large, offset so that it
// lies wholly inside, cropped back: clipping must not change a pixel.
TEST_F(ClipTest, DrawTriangle2DMatchesTheUnclippedTriangle) {
  constexpr int kBigW = 3 * kW, kBigH = 3 * kH;
  std::vector<uint16_t> big(kBigW * kBigH);
  SurfaceDesc surface{};
  surface.pixels = big.data();
  surface.width = kBigW, surface.height = kBigH, surface.pitch = kBigW * 2;
  Viewport* bigVp = CreateViewport(&surface, kBigW, kBigH, 0);
  const float triangles[][6] = {
      {-8, 4, 8, 12, 8, 28}, {48, 10, 32, 2, 32, 30}, {20, 40, 4, 24, 36, 24},
      {-3, -5, 45, 3, 20, 40}, {4.5f, -9, 44, 17.25f, -6, 38}};
  for (const auto& t : triangles) {
    int drawnAny = 0;
    for (int wind = 0; wind < 2; ++wind) {
      float xy[6];
      for (int i = 0; i < 6; ++i) xy[i] = t[wind ? 4 - (i & ~1) + (i & 1) : i];
      Clear(0, 0);
      std::fill(big.begin(), big.end(), 0);
      MeshVertex bigV[3];
      SetCorners(xy, bigV, kW, kH);
      for (MeshVertex& v : bigV) v.outcode = 0;
      DrawTriangle2D(&face_, bigV, bigVp);
      SetCorners(xy, v_);
      DrawTriangle2D(&face_, v_, vp_);
      int filled = 0, differ = 0;
      for (int y = 0; y < kH; ++y)
        for (int x = 0; x < kW; ++x) {
          filled += Pixel(x, y) != 0;
          // Cut points snap to the 28.4 grid: a pixel whose sample point is
          // that close to an edge may go either way.
          differ += Pixel(x, y) != big[(y + kH) * kBigW + x + kW] && !NearEdge(xy, x, y);
        }
      EXPECT_EQ(differ, 0) << t[0] << "," << t[1] << " winding " << wind;
      drawnAny += filled;
    }
    EXPECT_GT(drawnAny, 0);
  }
  EXPECT_EQ(e3d::clipViewport, vp_);  // restored
  DeleteViewport(bigVp);

  // Covering the whole viewport in one winding; outside it, nothing.
  const float shapes[3][6] = {
      {-100, -100, -100, 300, 300, -100}, {-10, 5, 5, -10, -30, -30}, {-5, 5, -5, 9, -1, 30}};
  for (int s = 0; s < 3; ++s) {
    int covered = 0;
    for (int back = 0; back < 2; ++back) {
      SetBack(back);
      Clear(0, 0);
      SetCorners(shapes[s], v_);
      DrawTriangle2D(&face_, v_, vp_);
      for (int i = 0; i < kW * kH; ++i) covered += Pixel(i % kW, i / kW) == 0x7C1F;
    }
    EXPECT_EQ(covered, s == 0 ? kW * kH : 0) << s;
  }
}

TEST(MipLevel, LinearInTheAreaRatio) {
  const float cases[][3] = {{5.9f, 1, 0}, {8, 1, 1}, {12, 1, 2}, {1000, 1, 3}, {5, 0, 0}};  // no area: 0
  for (const auto& c : cases) EXPECT_EQ(e3d::MipLevel(c[0], c[1]), c[2]) << c[0] << "/" << c[1];
}

class SubmitTest : public ClipTest {
 protected:
  void SetUp() override {
    ClipTest::SetUp();
    camera_.nearPlane = 10, camera_.farPlane = 100, camera_.projScale = 20;
    SetRenderInfos(vp_, &camera_);
    mesh_.vertices = verts_;
    record_ = {0, &mesh_, &face_, 0x00700001};
  }
  // Camera-space corners, projected as the pipeline would.
  void Place(int i, float x, float y, float z) {
    MeshVertex& v = verts_[i];
    v = {0, 0, 0, x, y, z, 0, 0, 0, 0};
    if (z <= camera_.nearPlane) {
      v.invZ = 1 / camera_.nearPlane, v.outcode = E3D_OUT_NEAR;
      return;
    }
    v.invZ = 1 / z;
    v.screenX = x * 20 * v.invZ + vp_->centerX;
    v.screenY = -y * 20 * v.invZ + vp_->centerY;
    v.outcode = Outcode(v.screenX, v.screenY) | (z > camera_.farPlane ? E3D_OUT_FAR : 0);
  }
  Camera camera_{};
  Mesh mesh_{};
  MeshVertex verts_[3];
  PolygonRecord record_;
};

TEST_F(SubmitTest, EntriesRejectCutAndFan) {
  // Wholly inside: the drawer gets the face and the mesh's own vertices.
  Place(0, 0, 0, 20), Place(1, 5, 0, 20), Place(2, 0, 5, 20);
  e3d::SubmitClippedPolygon(&record_, Record);
  ASSERT_EQ(drawn.size(), 1u);
  EXPECT_TRUE(drawn[0].facePointer == &face_ && drawn[0].vertexPointer == verts_);

  // One corner in front of the near plane: a quadrilateral, two triangles.
  drawn.clear();
  Place(0, 0, 0, 5);
  e3d::SubmitClippedPolygon(&record_, Record);
  ASSERT_EQ(drawn.size(), 2u);
  for (const Drawn& d : drawn)
    for (const MeshVertex& v : d.v) EXPECT_GE(v.camZ, 10.0f);
  EXPECT_EQ(drawn[0].face.vertexIndex[2], 2);
  EXPECT_EQ(drawn[0].face.polygonFlags & 0xC0000, 0x80000u);
  EXPECT_EQ(drawn[1].face.polygonFlags & 0xC0000, 0x40000u);

  // All three beyond one plane: nothing. Wire drawers get it all the same.
  drawn.clear();
  Place(0, 0, 0, 5), Place(1, 5, 0, 5), Place(2, 0, 5, 5);
  e3d::SubmitClippedPolygon(&record_, Record);
  e3d::SubmitPolygon(&record_, Record);
  EXPECT_TRUE(drawn.empty());
  record_.renderFlags = 0x00300001;
  e3d::SubmitPolygon(&record_, Record);
  ASSERT_EQ(drawn.size(), 1u);
  EXPECT_EQ(drawn[0].vertexPointer, verts_);
}

TEST_F(SubmitTest, TexelsAndColoursReachTheDrawer) {
  front_.stages[0].stageFlags = 0x80000000u;
  const int32_t sizes[4] = {64, 32, 16, 8};
  for (int i = 0; i < 4; ++i) front_.stages[0].levelWidths[i] = front_.stages[0].levelHeights[i] = sizes[i];
  record_.renderFlags = 0x00F00007;  // stage 0, Gouraud
  // Screen area twice 100 in a 64-texel level: 16 and 4 times the texels.
  for (int i = 0; i < 3; ++i) verts_[i] = {0, 0, 0, 0, 0, 4, i == 1 ? 20.f : 10, i == 2 ? 20.f : 10, 0.25f, 0};
  face_.colors[0] = 0x102030, face_.colors[1] = 0xFF0000, face_.colors[2] = 0x0000FF;
  const struct { float uv; int level; } cases[] = {{0.625f, 3}, {0.3125f, 0}, {0.5f, 2}};  // ratio 16, 4, 10.24
  for (const auto& c : cases) {
    drawn.clear();
    face_.corners[1] = {c.uv, 0, 0, 0};
    face_.corners[2] = {0, c.uv, 0, 0};
    e3d::SubmitPolygon(&record_, Record);
    ASSERT_EQ(drawn.size(), 1u);
    EXPECT_FLOAT_EQ(drawn[0].face.corners[1].u, (sizes[c.level] - 1) * 0.25f * c.uv);
    EXPECT_FLOAT_EQ(drawn[0].face.corners[2].v, (sizes[c.level] - 1) * 0.25f * c.uv);
    EXPECT_EQ(face_.corners[1].u, c.uv);  // the mesh's face is left alone
  }
  // Cut at the left edge: colours rebuilt, rounded, at the cut points.
  drawn.clear();
  verts_[0].screenX = -10, verts_[0].outcode = E3D_OUT_LEFT;
  e3d::SubmitPolygon(&record_, Record);
  ASSERT_EQ(drawn.size(), 2u);
  EXPECT_EQ(drawn[0].v[0].screenX, 0.0f);
  // Edge 0-1 from x -10 to 20 meets x = 0 a third of the way along.
  EXPECT_EQ(drawn[0].face.colors[0], (0x10u + 80u) << 16 | 0x15u << 8 | 0x20u);
}

}  // namespace
