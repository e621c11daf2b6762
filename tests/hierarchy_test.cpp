// The node hierarchy: children arrays, the polygon counts along the path to
// the root, and the sort area of the root or of its scene.
#include "objects/hierarchy.h"
#include "scene_fixture.h"

namespace {

using HierarchyTest = SceneFixture;

TEST_F(HierarchyTest, MeshTreesSortInTheRootsArea) {
  Scene* s = CreateScene();
  Scene* elsewhere = CreateScene();
  Mesh *a = Polygons(6), *b = Polygons(10), *c = Polygons(4), *d = Polygons(2);
  AssignMeshToScene(s, a, 0);
  AssignMeshToScene(elsewhere, b, 0);
  EXPECT_EQ(AttachChildToNode(a, b), 1);  // b leaves its scene for a's tree
  EXPECT_TRUE(b->parent == a && a->children[0] == b && elsewhere->firstMesh == nullptr);
  EXPECT_EQ(OwnAreaBytes(b), 0u);
  EXPECT_EQ(AssignMeshToScene(elsewhere, b, 0), nullptr);  // a child never by itself
  AttachChildToNode(b, c);
  EXPECT_TRUE(b->sortPolygonCount == 14 && a->sortPolygonCount == 20);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(20));
  ExpectConsistent(s);

  // b goes with c below it: b becomes a root with an area for both.
  EXPECT_EQ(DetachChildFromNode(a, c), 0);
  EXPECT_EQ(DetachChildFromNode(a, b), 1);
  EXPECT_TRUE(a->children == nullptr && b->parent == nullptr);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(6));
  EXPECT_EQ(OwnAreaBytes(b), Bytes(14));
  // Out of any scene the root's own area follows its tree; moving a child
  // detaches it from its old parent first.
  AttachChildToNode(b, d);
  EXPECT_EQ(OwnAreaBytes(b), Bytes(16));
  AttachChildToNode(d, c);
  EXPECT_TRUE(b->childCount == 1 && d->sortPolygonCount == 6 && b->sortPolygonCount == 16);
  EXPECT_EQ(AttachChildToNode(c, b), 0);  // no cycles
  EXPECT_EQ(AttachChildToNode(b, b), 0);
  // A tree enters and leaves a scene whole.
  AssignMeshToScene(elsewhere, b, 0);
  EXPECT_EQ(SceneAreaBytes(elsewhere), Bytes(16));
  DetachChildFromNode(d, c);
  EXPECT_EQ(SceneAreaBytes(elsewhere), Bytes(12));
  EXPECT_EQ(OwnAreaBytes(c), Bytes(4));
  RemoveMeshFromScene(elsewhere, b, 0);
  EXPECT_EQ(OwnAreaBytes(b), Bytes(12));

  // Short of memory for the children array: refused, the child stands alone.
  testhost::FailAllocation(3);  // detach: b's area, d's area; attach: the array
  EXPECT_EQ(AttachChildToNode(a, d), 0);
  EXPECT_TRUE(d->parent == nullptr && b->childCount == 0);
  EXPECT_EQ(OwnAreaBytes(b), Bytes(10));
  EXPECT_EQ(OwnAreaBytes(d), Bytes(2));
  for (Mesh* m : {b, c, d}) DeleteMesh(m);
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
  EXPECT_EQ(AttachChildToNode(a, cam), 1);
  EXPECT_EQ(AttachChildToNode(cam, b), 1);
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
  EXPECT_TRUE(cam->parent == nullptr && cam->childCount == 0);
  EXPECT_TRUE(kept->parent == nullptr && kept->childCount == 0);
  EXPECT_EQ(OwnAreaBytes(kept), Bytes(3));
  DeleteMesh(kept);
  DeleteCamera(cam);
  DeleteLight(light);
  DeleteScene(s);
}

}  // namespace
