// The node hierarchy: children arrays, the polygon counts along the path to
// the root, and the sort area of the root or of its scene.
#include "objects/hierarchy.h"
#include "scene_fixture.h"

namespace {

class HierarchyTest : public SceneFixture {};

TEST_F(HierarchyTest, MeshTreesSortInTheRootsArea) {
  Scene* s = CreateScene();
  Scene* elsewhere = CreateScene();
  Mesh* a = Polygons(6);
  Mesh* b = Polygons(10);
  Mesh* c = Polygons(4);
  AssignMeshToScene(s, a, 0);
  AssignMeshToScene(elsewhere, b, 0);

  EXPECT_EQ(AttachChildToNode(a, b), 1);  // b leaves its scene for a's tree
  EXPECT_EQ(b->parent, a);
  EXPECT_EQ(a->children[0], b);
  EXPECT_EQ(elsewhere->firstMesh, nullptr);
  EXPECT_EQ(a->sortPolygonCount, 16);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(16));
  EXPECT_EQ(OwnAreaBytes(b), 0u);
  EXPECT_EQ(AssignMeshToScene(elsewhere, b, 0), nullptr);  // a child never by itself
  AttachChildToNode(b, c);
  EXPECT_EQ(b->sortPolygonCount, 14);
  EXPECT_EQ(a->sortPolygonCount, 20);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(20));
  ExpectConsistent(s);

  // b goes with c below it: b becomes a root with an area for both.
  EXPECT_EQ(DetachChildFromNode(a, c), 0);
  EXPECT_EQ(DetachChildFromNode(a, b), 1);
  EXPECT_EQ(a->children, nullptr);
  EXPECT_EQ(b->parent, nullptr);
  EXPECT_EQ(a->sortPolygonCount, 6);
  EXPECT_EQ(SceneAreaBytes(s), Bytes(6));
  EXPECT_EQ(OwnAreaBytes(b), Bytes(14));
  // Out of any scene the root's own area follows its tree; moving a child
  // detaches it from its old parent first.
  Mesh* d = Polygons(2);
  AttachChildToNode(b, d);
  EXPECT_EQ(OwnAreaBytes(b), Bytes(16));
  AttachChildToNode(d, c);
  EXPECT_EQ(b->childCount, 1);
  EXPECT_EQ(d->sortPolygonCount, 6);
  EXPECT_EQ(b->sortPolygonCount, 16);
  EXPECT_EQ(e3d::MeshTreeRoot(c), b);
  EXPECT_EQ(AttachChildToNode(c, b), 0);  // no cycles
  EXPECT_EQ(AttachChildToNode(b, b), 0);
  // A tree enters and leaves a scene whole.
  AssignMeshToScene(elsewhere, b, 0);
  EXPECT_EQ(SceneAreaBytes(elsewhere), Bytes(16));
  DetachChildFromNode(d, c);
  EXPECT_EQ(elsewhere->polygonCapacity, 12);
  EXPECT_EQ(OwnAreaBytes(c), Bytes(4));
  ExpectConsistent(elsewhere);
  RemoveMeshFromScene(elsewhere, b, 0);
  EXPECT_EQ(OwnAreaBytes(b), Bytes(12));

  // Short of memory for the children array: refused, the child stands alone.
  testhost::FailAllocation(3);  // detach: b's area, d's area; attach: the array
  EXPECT_EQ(AttachChildToNode(a, d), 0);
  EXPECT_EQ(d->parent, nullptr);
  EXPECT_EQ(b->childCount, 0);
  EXPECT_EQ(OwnAreaBytes(b), Bytes(10));
  EXPECT_EQ(OwnAreaBytes(d), Bytes(2));
  DeleteMesh(b);
  DeleteMesh(c);
  DeleteMesh(d);
  DeleteWholeScene(s);
  DeleteWholeScene(elsewhere);
}

TEST_F(HierarchyTest, CamerasLightsAndDeletionOfATree) {
  Scene* s = CreateScene();
  Mesh* a = Polygons(6);
  Mesh* b = Polygons(4);
  Mesh* kept = Polygons(3, 9);
  Mesh* below = Polygons(5);
  Camera* cam = NewCamera();
  Light* light = Omni();
  AssignMeshToScene(s, a, 0);
  AssignMeshToScene(s, b, 0);

  // Cameras below meshes and meshes below cameras count no polygons: b keeps
  // its place in the scene.
  EXPECT_EQ(AttachChildToNode(a, cam), 1);
  EXPECT_EQ(AttachChildToNode(cam, b), 1);
  EXPECT_EQ(b->ownerScene, s);
  EXPECT_EQ(a->sortPolygonCount, 6);
  EXPECT_EQ(s->polygonCapacity, 10);
  EXPECT_EQ(e3d::MeshTreeRoot(b), b);
  // Target headers are nodes too.
  void* target = &cam->targetNodeKind;
  EXPECT_EQ(AttachChildToNode(target, light), 1);
  EXPECT_EQ(cam->targetChildren[0], light);
  EXPECT_EQ(cam->childCount, 1);
  EXPECT_EQ(AttachChildToNode(light, target), 0);
  EXPECT_EQ(DetachChildFromNode(target, light), 1);
  EXPECT_EQ(cam->targetChildCount, 0);

  // Deleting a takes its whole subtree apart: untagged meshes go (b leaves
  // the scene on the way), the camera and tagged meshes stand alone.
  AttachChildToNode(a, kept);
  AttachChildToNode(kept, below);
  EXPECT_EQ(s->polygonCapacity, 18);
  DeleteMesh(a);
  EXPECT_EQ(s->firstMesh, nullptr);
  EXPECT_EQ(s->polygonCapacity, 0);
  EXPECT_EQ(cam->parent, nullptr);
  EXPECT_EQ(cam->childCount, 0);
  EXPECT_EQ(kept->parent, nullptr);
  EXPECT_EQ(kept->childCount, 0);
  EXPECT_EQ(OwnAreaBytes(kept), Bytes(3));
  DeleteMesh(kept);
  DeleteCamera(cam);
  DeleteLight(light);
  DeleteScene(s);
}

}  // namespace
