// Materials: names, colours, modes, texture stages, and materials on polygons.
#include <cmath>
#include <cstring>

#include "engine3d.h"
#include "objects/material.h"
#include "objects/mesh.h"
#include "support/test_host.h"

namespace {

class MaterialTest : public testhost::LeakCheckedTest {
 protected:
  Material mat;
  uint16_t texels[4] = {};
  void SetUp() override {
    LeakCheckedTest::SetUp();
    std::memset(&mat, 0, sizeof mat);
  }
  SurfaceDesc Texture(uint32_t w, uint32_t h, uint32_t pitch) {
    SurfaceDesc t;
    std::memset(&t, 0xCD, sizeof t);
    t.pixels = texels, t.textureWidth = w, t.textureHeight = h, t.pitch = pitch;
    return t;
  }
};

TEST_F(MaterialTest, CreateMaterialRenamesTheSourceNotTheCopy) {
  e3d::materialCounter = 0;
  std::strcpy(mat.name, "Brick");
  Material* copy = CreateMaterial(&mat);
  ASSERT_NE(copy, nullptr);
  EXPECT_STREQ(copy->name, "Brick");
  EXPECT_STREQ(mat.name, "Material00");
  EXPECT_EQ(DeleteMaterial(copy), 1);

  // Every call counts and names the source, a failed one too.
  e3d::materialCounter = 9;
  testhost::FailAllocation(1);
  EXPECT_EQ(CreateMaterial(&mat), nullptr);
  EXPECT_STREQ(mat.name, "Material09");
  DeleteMaterial(CreateMaterial(&mat));
  EXPECT_STREQ(mat.name, "Material10");
  EXPECT_EQ(SetMaterialName(&mat, "Stone"), mat.name + 5);
}

TEST_F(MaterialTest, SettersClampOrRefuse) {
  SetMaterialColor(&mat, 1, 300.0f, -5.0f, 128.0f);
  const float rgba[4] = {255.0f, 0.0f, 128.0f, 255.0f};
  EXPECT_EQ(std::memcmp(GetMaterialColor(&mat, 1), rgba, sizeof rgba), 0);
  Material before = mat;
  SetMaterialColor(&mat, 3, 1.0f, 1.0f, 1.0f);
  EXPECT_EQ(std::memcmp(&before, &mat, sizeof mat), 0);
  EXPECT_EQ(GetMaterialColor(&mat, 5), reinterpret_cast<float*>(&mat));

  SetMaterialAlphaLevel(&mat, 300);
  SetMaterialAlphaMode(&mat, 7);
  EXPECT_EQ(GetMaterialAlphaLevel(&mat) * 10 + GetMaterialAlphaMode(&mat), 2550);

  mat.flags = 0x700063;
  SetMaterialShadeMode(&mat, 8);  // 8 & 7 = 0: unchanged
  SetMaterialCullMode(&mat, 0x40);
  EXPECT_EQ(mat.flags, 0x700063u);
  SetMaterialShadeMode(&mat, 0xF1);
  SetMaterialCullMode(&mat, 0x08);
  SetMaterialRenderMode(&mat, 0x100000);  // option cleared, mode replaced
  SetMaterialRenderMode(&mat, 0x40);      // option set, mode kept
  EXPECT_EQ(GetMaterialRenderMode(&mat), 0x100040u);
  SetMaterialRenderMode(&mat, 0x07A00040);  // stage bits are not taken
  SetMaterialColorOp(&mat, 0xBEEF, 7);
  EXPECT_EQ(mat.flags, 0x200149u);
}

TEST_F(MaterialTest, TextureStages) {
  SurfaceDesc pow2 = Texture(64, 32, 256), wide = Texture(48, 32, 100), tall = Texture(64, 48, 130);
  TextureStage* s = SetMaterialTexture(&mat, 2, &pow2, 0xFD);
  ASSERT_EQ(s, GetMaterialTexture(&mat, 2));
  EXPECT_EQ(s->stageFlags, 0x40000005u);
  EXPECT_TRUE(s->shifts[0] == 6 && s->levelPixels[0] == texels && s->texture == &pow2);
  EXPECT_EQ(SetMaterialTexture(&mat, 0, &wide, 1)->shifts[0], 50);  // pitch in texels
  EXPECT_EQ(SetMaterialTexture(&mat, 1, &tall, 0)->stageFlags, 0u);
  EXPECT_EQ(mat.flags, 0x3800000u);

  // Chains: bit 31, each level its own shift, bit 30 when any level is a power of two.
  MipChain chain = {0, {texels, texels, texels, texels}, {64, 32, 6, 1}, {32, 16, 6, 0}, {}};
  s = SetMaterialTextureChain(&mat, 3, &chain, 0x0A);
  EXPECT_EQ(s->stageFlags, 0xC0000002u);
  const int shifts[4] = {6, 5, 6, 1};
  EXPECT_EQ(std::memcmp(s->shifts, shifts, sizeof shifts), 0);
  chain.levelWidths[0] = chain.levelWidths[1] = 3;
  EXPECT_EQ(SetMaterialTextureChain(&mat, 3, &chain, 0)->stageFlags, 0x80000000u);

  // Null empties a stage; stages are checked as unsigned.
  s = SetMaterialTexture(&mat, 2, nullptr, 3);
  EXPECT_TRUE(s->stageFlags == 0 && s->texture == nullptr && s->levelPixels[0] == nullptr);
  SetMaterialTextureChain(&mat, 3, nullptr, 0);
  EXPECT_EQ(mat.flags, 0x1800000u);
  Material before = mat;
  EXPECT_EQ(SetMaterialTextureChain(&mat, -1, &chain, 0), nullptr);
  SetMaterialTextureMode(&mat, 4, 0x10);
  EXPECT_EQ(std::memcmp(&before, &mat, sizeof mat), 0);

  // A texture leaves a material only when its stage is the one active.
  RemoveTextureFromMaterial(&wide, &mat);  // two stages active
  EXPECT_EQ(mat.flags, 0x1800000u);
  SetMaterialTexture(&mat, 1, nullptr, 0);
  RemoveTextureFromMaterial(&tall, &mat);
  RemoveTextureFromMaterial(&wide, &mat);
  EXPECT_EQ(mat.flags, 0u);
  EXPECT_EQ(mat.stages[0].levelPixels[0], nullptr);
  SetMaterialTextureChain(&mat, 2, &chain, 0);
  RemoveTextureFromMaterial(nullptr, &mat);  // a chain holds no texture
  EXPECT_EQ(mat.flags, 0x2000000u);
}

// A mesh record built by hand: only what the material exports touch.
struct TestMesh {
  Mesh mesh;
  MeshPolygon polygons[4];
  TestMesh() {
    std::memset(this, 0, sizeof *this);
    mesh.nodeKind = e3d::kNodeMesh;
    mesh.polygons = polygons;
    mesh.meshPolygonCount = 4;
    for (MeshPolygon& p : polygons) p.material = p.backMaterial = dflt();
  }
  Material* dflt() { return &mesh.defaultMaterial; }
};

TEST_F(MaterialTest, MaterialsOnPolygons) {
  TestMesh root, child, grandchild;
  uint32_t camera[4] = {4, 0, 0, 0};
  void* rootChildren[2] = {camera, &child.mesh};
  void* childChildren[1] = {&grandchild.mesh};
  root.mesh.children = rootChildren;
  root.mesh.childCount = 2;
  child.mesh.children = childChildren;
  child.mesh.childCount = 1;
  grandchild.mesh.nodeKind = e3d::kNodeMesh2;

  EXPECT_EQ(SetMaterial(&root.mesh, &mat, 1, 1), 1);
  for (TestMesh* m : {&root, &child, &grandchild})
    EXPECT_TRUE(m->polygons[3].backMaterial == &mat && m->polygons[3].material == m->dflt());
  EXPECT_EQ(camera[1], 0u);  // not a mesh: untouched
  EXPECT_EQ(GetMaterial(&root.mesh, 1), &mat);
  // Null is each mesh's own default; only recursive = 1 descends.
  EXPECT_EQ(SetMaterial(&root.mesh, nullptr, 2, 1), 1);
  EXPECT_EQ(grandchild.polygons[0].backMaterial, grandchild.dflt());
  EXPECT_EQ(SetMaterial(&root.mesh, &mat, 0, 2), 1);
  EXPECT_EQ(child.polygons[0].material, child.dflt());
  EXPECT_EQ(SetMaterial(&root.mesh, nullptr, 3, 1), 0);
  EXPECT_EQ(root.polygons[0].material, &mat);

  // Faces: pairs reach the next face only when there is one.
  EXPECT_EQ(SetFaceMaterial(&child.mesh, 1, &mat, 1, 2) + SetFaceMaterial(&child.mesh, 3, &mat, 1, 1), 2);
  EXPECT_EQ(SetFaceMaterial(&child.mesh, 2, nullptr, 0, 0) + SetFaceMaterial(&child.mesh, -1, &mat, 1, 2), 2);
  EXPECT_EQ(SetFaceMaterial(&child.mesh, 0, &mat, 1, 5), 0);
  Material* d = child.dflt();
  Material* expected[4][2] = {{d, d}, {&mat, &mat}, {d, &mat}, {d, &mat}};
  for (int i = 0; i < 8; i++) EXPECT_EQ(GetFaceMaterial(&child.mesh, i / 2, i % 2), expected[i / 2][i % 2]) << i;
  EXPECT_EQ(GetFaceMaterial(&child.mesh, 4, 0), nullptr);

  // Names: polygons in order, front before back; an empty name never matches.
  Material red = mat;
  std::strcpy(red.name, "Red");
  std::strcpy(mat.name, "Red");
  child.polygons[0].backMaterial = &red;
  EXPECT_EQ(GetMaterialByName(&child.mesh, "Red"), &red);
  EXPECT_EQ(GetMaterialByName(&child.mesh, ""), nullptr);
  RemoveMaterialFromMesh(&red, &child.mesh);
  EXPECT_EQ(GetMaterialByName(&child.mesh, "Red"), &mat);
  RemoveMaterialFromMesh(&mat, &child.mesh);
  for (MeshPolygon& p : child.polygons) EXPECT_TRUE(p.material == d && p.backMaterial == d);

  // SetTexture: one default stage active, addressed by pitch whatever the size.
  SurfaceDesc t = Texture(64, 64, 130);
  d->flags = 0x700063 | 0x6800000;
  SetTexture(&child.mesh, &t, 7);
  EXPECT_EQ(d->flags, 0x1700063u);
  TextureStage* s = &d->stages[1];
  EXPECT_TRUE(s->stageFlags == 2 && s->shifts[0] == 65 && s->texture == &t);
  SetTexture(&child.mesh, &t, 0);
  EXPECT_EQ(d->flags, 0x0F00063u);
}

}  // namespace
