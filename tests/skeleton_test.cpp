// Skeletons and bones: the name search, the attach rules, the root-only
// skeleton look-up, bone matrices and skin tables.
#include <cstring>

#include "objects/skeleton.h"
#include "scene_fixture.h"

namespace {

class SkeletonTest : public SceneFixture {
 protected:
  static Bone* Named(const char* name) {
    Bone* bone = CreateBone();
    SetBoneName(bone, name);
    return bone;
  }
  // Bones are the host's; their children arrays were the library's.
  static void Free(Bone* bone) {
    e3d::Release(bone->children);
    FreeMemory(bone);
  }
};

TEST_F(SkeletonTest, NamesAreUniqueAndSearchedDepthFirst) {
  Scene* s = CreateScene();
  Skeleton* sk = CreateSkeleton();
  Bone *root = Named("root"), *arm = Named("arm"), *hand = Named("hand"), *leg = Named("leg");
  Bone *dup = Named("hand"), *anon1 = CreateBone(), *anon2 = CreateBone();
  EXPECT_EQ(AttachBoneToSkeleton(sk, "root", arm), 0);  // no root yet
  EXPECT_EQ(AttachBoneToSkeleton(sk, nullptr, root), 1);
  EXPECT_EQ(AttachBoneToSkeleton(sk, "root", arm), 1);
  EXPECT_EQ(AttachBoneToSkeleton(sk, "arm", hand), 1);
  EXPECT_EQ(AttachBoneToSkeleton(sk, "root", leg), 1);
  EXPECT_EQ(AttachBoneToSkeleton(sk, "leg", dup), 0);     // name taken
  EXPECT_EQ(AttachBoneToSkeleton(sk, "tail", anon1), 0);  // no such parent
  EXPECT_EQ(AttachBoneToSkeleton(sk, "hand", anon1), 1);
  EXPECT_EQ(AttachBoneToSkeleton(sk, "hand", anon2), 1);  // empty names never clash
  EXPECT_TRUE(root->childCount == 2 && root->children[1] == leg && hand->childCount == 2);
  EXPECT_TRUE(GetSkeletonBoneByName(sk, "leg") == leg && GetSkeletonBoneByName(sk, "") == nullptr);
  EXPECT_EQ(GetRootBone(anon2), root);
  // Only a root finds its skeleton.
  Skeleton* first = CreateSkeleton();
  AssignSkeletonToScene(s, first);
  AssignSkeletonToScene(s, sk);
  EXPECT_TRUE(GetSkeletonByBone(s, root) == sk && GetSkeletonByBone(s, arm) == nullptr);

  // A new root replaces the tree; the old bones are no longer reached.
  Bone* other = Named("other");
  EXPECT_TRUE(AttachBoneToSkeleton(sk, nullptr, other) == 1 && GetSkeletonBoneByName(sk, "hand") == nullptr);
  DeleteSkeleton(sk);  // out of its scene: the tail's removal empties the list
  EXPECT_EQ(s->firstSkeleton, nullptr);
  DeleteSkeleton(first);
  DeleteScene(s);
  for (Bone* b : {root, arm, hand, leg, dup, anon1, anon2, other}) Free(b);
}

TEST_F(SkeletonTest, BoneMatricesAndSkins) {
  static const float id[12] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
  Bone* b = CreateBone();
  Vector3 at{1, 2, 3};
  SetBonePosition(b, &at, 0);
  Quaternion zero{0, 0, 0, 0}, half{0, 0, 2, 0};  // half a turn about z, length 2
  SetBoneOrientation(b, &zero, 0);
  EXPECT_EQ(std::memcmp(b->matrixB.m, id, sizeof id), 0);  // position cleared too
  SetBonePosition(b, &at, 3);
  SetBoneOrientation(b, &half, 1);
  const float turned[12] = {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0};
  EXPECT_EQ(std::memcmp(b->matrixA.m, turned, sizeof turned), 0);
  Free(b);

  Mesh* m = Polygons(3);
  ASSERT_EQ(AssignSkinToMesh(m), 1);
  static const unsigned char zeros[5 * 32] = {};
  EXPECT_EQ(std::memcmp(m->skinTable, zeros, sizeof zeros), 0);
  void* table = m->skinTable;
  testhost::FailAllocation(1);
  EXPECT_TRUE(AssignSkinToMesh(m) == 0 && m->skinTable == table);
  AssignSkinToMesh(m);  // the old table is freed, the new one with the mesh
  DeleteMesh(m);
}

}  // namespace
