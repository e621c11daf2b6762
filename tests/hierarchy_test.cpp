// The node hierarchy: children arrays, the polygon counts along the path to
// the root, and the sort area of the root or of its scene.
#include "objects/hierarchy.h"
#include "scene_fixture.h"

namespace {

using HierarchyTest = SceneFixture;

// Areas, counts and refusals after every kind of move are checked by the
// random scene sequences; here what those do not reach.
TEST_F(HierarchyTest, AChildMovesOutOfItsSceneAndAloneWhenShortOfMemory) {
  Scene* s = CreateScene();
  Scene* elsewhere = CreateScene();
  Mesh *a = Polygons(6), *b = Polygons(10), *c = Polygons(4), *d = Polygons(2);
  AssignMeshToScene(s, a, 0);
  AssignMeshToScene(elsewhere, b, 0);
  EXPECT_EQ(AttachChildToNode(a, b), 1);  // b leaves its scene for a's tree
  EXPECT_TRUE(b->parent == a && elsewhere->firstMesh == nullptr && OwnAreaBytes(b) == 0u);
  EXPECT_EQ(DetachChildFromNode(a, b), 1);
  AttachChildToNode(b, d);
  AttachChildToNode(d, c);
  // Short of memory for the children array: refused, the child stands alone.
  testhost::FailAllocation(3);  // detach: b's area, d's area; attach: the array
  EXPECT_EQ(AttachChildToNode(a, d), 0);
  EXPECT_TRUE(d->parent == nullptr && b->childCount == 0);
  EXPECT_TRUE(OwnAreaBytes(b) == Bytes(10) && OwnAreaBytes(d) == Bytes(6));
  for (Mesh* m : {b, d}) DeleteMesh(m);  // c goes with d
  DeleteWholeScene(s);
  DeleteWholeScene(elsewhere);
}

TEST_F(HierarchyTest, CamerasLightsAndDeletionOfATree) {
  Scene* s = CreateScene();
  Mesh *a = Polygons(6), *b = Polygons(4), *kept = Polygons(3, 9), *below = Polygons(5);
  Camera* cam = NewCamera();
  Light* light = Omni();
  AssignMeshToScene(s, a, 0);
  AssignMeshToScene(s, b, 0);
  // Cameras below meshes and meshes below cameras count no polygons: b keeps
  // its place in the scene.
  EXPECT_EQ(AttachChildToNode(a, cam) + AttachChildToNode(cam, b), 2);
  EXPECT_EQ(b->ownerScene, s);
  EXPECT_TRUE(a->sortPolygonCount == 6 && s->polygonCapacity == 10);
  // Target headers are nodes too.
  void* target = &cam->targetNodeKind;
  EXPECT_EQ(AttachChildToNode(target, light), 1);
  EXPECT_TRUE(cam->targetChildren[0] == light && cam->childCount == 1);
  EXPECT_EQ(AttachChildToNode(light, target), 0);
  EXPECT_EQ(DetachChildFromNode(target, light), 1);
  // Deleting a takes its whole subtree apart: untagged meshes go (b leaves
  // the scene on the way), the camera and tagged meshes stand alone.
  AttachChildToNode(a, kept);
  AttachChildToNode(kept, below);
  DeleteMesh(a);
  EXPECT_TRUE(s->firstMesh == nullptr && s->polygonCapacity == 0);
  EXPECT_TRUE(cam->parent == nullptr && cam->childCount == 0 && kept->parent == nullptr);
  EXPECT_TRUE(kept->childCount == 0 && OwnAreaBytes(kept) == Bytes(3));
  DeleteMesh(kept);
  DeleteCamera(cam);
  DeleteLight(light);
  DeleteScene(s);
}

}  // namespace
