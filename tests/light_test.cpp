// Lights: creation and names, colour scaling, and the per-mesh light lists
// that reach children and bring lights into the mesh's scene.
#include <cmath>
#include <cstring>

#include "objects/light.h"
#include "scene_fixture.h"

namespace {

using LightTest = SceneFixture;

TEST_F(LightTest, CreationNamesAndColour) {
  e3d::omniCounter = 9;
  e3d::directCounter = 123;
  Vector3 at{1, 2, 3}, to{4, 5, 6};
  float color[4] = {0.5f, 0.25f, 2, 1};
  Light* o = CreateOmniLight(&at, color, 2, 10, 100, 0x10);
  Light* d = CreateDirectLight(&at, &to, color, 3, 0);
  EXPECT_STREQ(o->name, "Omni09");
  EXPECT_STREQ(d->name, "Direct123");
  EXPECT_TRUE(o->lightFlags == 0x12u && d->lightFlags == 0x4u);
  EXPECT_EQ(o->color[2], 2.0f);  // kept as given
  testhost::FailAllocation(1);
  EXPECT_EQ(Omni(), nullptr);
  EXPECT_EQ(e3d::omniCounter, 10);  // a failed creation uses up no number
  // Colours are scaled to [0, 1] and clamped, -0.0 kept.
  SetLightColor(o, 255, 510, -5);
  const float want[4] = {1, 1, 0, 0};
  EXPECT_EQ(std::memcmp(o->color, want, sizeof want), 0);
  SetLightColor(o, 51, -0.0f, 0);
  EXPECT_TRUE(std::fabs(o->color[0] - 0.2f) < 1e-7f && std::signbit(o->color[1]));
  DeleteLight(o);
  DeleteLight(d);
}

TEST_F(LightTest, MeshListHoldsSixtyFourWithoutGaps) {
  Mesh* m = Polygons(2);
  Light* lights[65];
  for (Light*& l : lights) l = Omni();
  for (Light* l : lights) EXPECT_EQ(AssignLightToMesh(l, m), 0);
  EXPECT_EQ(m->lightList[63], lights[63]);  // the 65th is refused
  // Removal closes the gap and frees the last place; no duplicates.
  RemoveLightFromMesh(lights[5], m);
  EXPECT_TRUE(m->lightList[5] == lights[6] && m->lightList[62] == lights[63] && !m->lightList[63]);
  for (Light* l : lights) RemoveLightFromMesh(l, m);
  EXPECT_EQ(GetMeshLightList(m), nullptr);
  for (int i : {0, 1, 0}) AssignLightToMesh(lights[i], m);
  EXPECT_EQ(m->lightList[2], nullptr);  // no duplicates
  DeleteMesh(m);
  for (Light* l : lights) DeleteLight(l);
}

TEST_F(LightTest, LightsReachChildrenAndTheMeshesScene) {
  // a (in s) -> (b -> camera -> belowCamera, kind2)
  Scene* s = CreateScene();
  Mesh *a = Polygons(2), *b = Polygons(2), *kind2 = Polygons(2), *belowCamera = Polygons(2);
  Camera* cam = NewCamera();
  AssignMeshToScene(s, a, 0);
  AttachChildToNode(a, b);
  AttachChildToNode(a, kind2);
  AttachChildToNode(b, cam);
  AttachChildToNode(cam, belowCamera);
  kind2->nodeKind = 2;
  Light* l = Omni();
  AssignLightToMesh(l, a);
  EXPECT_EQ(belowCamera->lightList[0], l);
  EXPECT_EQ(kind2->lightList[0], nullptr);  // only the first kind keeps a list
  EXPECT_EQ(s->firstLight, l);
  AssignLightToMesh(l, b);
  EXPECT_EQ(GetSceneNumberOfLights(s), 1);  // once
  // Taking it from the meshes leaves the scene alone.
  RemoveLightFromMesh(l, a);
  EXPECT_EQ(GetMeshLightList(belowCamera), nullptr);
  EXPECT_EQ(s->firstLight, l);
  // Deleting the light takes it out of the scene, its meshes and the hierarchy.
  AssignLightToMesh(l, a);
  AttachChildToNode(a, l);
  Light* child = Omni();
  AttachChildToNode(&l->targetNodeKind, child);
  DeleteLight(l);
  EXPECT_TRUE(GetSceneNumberOfLights(s) == 0 && GetMeshLightList(b) == nullptr);
  EXPECT_TRUE(a->childCount == 2 && child->parent == nullptr);
  kind2->nodeKind = 1;
  DeleteCamera(cam);
  DeleteMesh(belowCamera);
  DeleteLight(child);
  DeleteWholeScene(s);
}

}  // namespace
