// Mesh attributes: the mode setters over whole subtrees with their kind
// tests, face smoothing groups and activation.
#include <cstring>

#include "scene_fixture.h"

namespace {

using AttributesTest = SceneFixture;

TEST_F(AttributesTest, ModeSettersSelectBits) {
  Mesh* m = Polygons(2);
  SetMeshRenderMode(m, 0x00800000);  // a stage bit alone: all seven bits
  EXPECT_EQ(m->meshFlags & 0x07F00040u, 0x07F00000u);
  SetMeshRenderMode(m, 0x00100000);
  SetMeshRenderMode(m, 0x00100001);  // none of the plain modes, no stage bit
  EXPECT_EQ(GetMeshRenderMode(m), 0x00100000u);
  uint32_t others = m->meshFlags & ~0x7Fu;
  SetMeshShadeMode(m, 0xFFFFFFF3);
  SetMeshCullMode(m, 0xFFFFFFD7);
  EXPECT_TRUE(GetMaterialShadeMode(&m->defaultMaterial) == 3u && GetMeshCullMode(m) == 0x10u);
  EXPECT_EQ(m->meshFlags & ~0x7Fu, others);
  // Smoothing groups 0 to 31 on existing faces only.
  SetMeshFaceSmoothG(m, 0, 31);
  SetMeshFaceSmoothG(m, 0, 32);
  SetMeshFaceSmoothG(m, 2, 5);
  EXPECT_EQ(m->polygons[0].polygonFlags, 0x00700E47u | (31u << 12));
  EXPECT_EQ(GetMeshFaceSmoothG(m, 2), 0);
  DeleteMesh(m);
}

TEST_F(AttributesTest, NodeSettersWalkSubtreeButChangeOnlyMeshes) {
  // camera -> a -> (b of the second kind, billboard c -> d)
  Camera* camera = NewCamera();
  Mesh *a = Polygons(2), *b = Polygons(2), *c = Polygons(2), *d = Polygons(2);
  AttachChildToNode(camera, a);
  AttachChildToNode(a, b);
  AttachChildToNode(a, c);
  AttachChildToNode(c, d);
  b->nodeKind = 2;
  SetMeshBillboardMode(c, 0x10);
  unsigned char before[sizeof(Camera)];
  std::memcpy(before, camera, sizeof before);
  Mesh* top = reinterpret_cast<Mesh*>(camera);
  SetMeshShadeMode(top, 2);
  HideMesh(top);
  EXPECT_EQ(std::memcmp(before, camera, sizeof before), 0);
  for (Mesh* m : {a, b, c, d}) EXPECT_TRUE(GetMeshShadeMode(m) == 2u && IsHiddenMesh(m) == 0x4000u);
  // The billboard keeps its cull mode; the mesh below it does not.
  SetMeshCullMode(a, 0x08);
  EXPECT_TRUE(GetMeshCullMode(c) == 0x20u && GetMeshCullMode(d) == 0x08u);
  // A mesh of the second kind stays hidden.
  ShowMesh(a);
  EXPECT_TRUE((IsHiddenMesh(a) | IsHiddenMesh(d)) == 0u && IsHiddenMesh(b) == 0x4000u);
  b->nodeKind = 1;
  DeleteMesh(a);  // the untagged meshes below go with it
  DeleteCamera(camera);
}

TEST_F(AttributesTest, ActivatedMeshEntersAScene) {
  Scene* s = CreateScene();
  Mesh* m = CreateMesh(3, 1, 0);
  SetMeshTriPolygon(m, 0, 0, 1, 2, 0, 0);
  EXPECT_EQ(AssignMeshToScene(s, m, 0), nullptr);
  ActivateMesh(m);  // without normals or a bounding box
  EXPECT_TRUE(AssignMeshToScene(s, m, 0) == m && m->boundingBox == nullptr);
  DeleteWholeScene(s);
}

}  // namespace
