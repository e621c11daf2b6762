// Skeletons: trees of uniquely named bones under one root, and the skin
// tables of meshes. Skinning itself is storage only: nothing fills or reads
// the tables yet, and the influence functions do nothing.
#include "objects/skeleton.h"

#include "engine/math.h"
#include "engine/memory.h"
#include "engine/registry.h"
#include "objects/mesh.h"
#include "objects/scene.h"

namespace {

using e3d::NameMatches;

constexpr uint32_t kSkinEntryBytes = 32;

// Depth first from bone, the bone itself before its children; an empty
// name never matches.
Bone* FindBone(Bone* bone, const char* name) {
  if (NameMatches(bone->name, name)) return bone;
  for (int32_t i = 0; i < bone->childCount; i++)
    if (Bone* found = FindBone(bone->children[i], name)) return found;
  return nullptr;
}

}  // namespace

using namespace e3d;

E3D_API Skeleton* E3D_CALL CreateSkeleton(void) {
  Skeleton* skeleton = Allocate<Skeleton>();
  if (skeleton != nullptr) MemoryFill(skeleton, 0, sizeof(Skeleton));
  return skeleton;
}

// The bones stay: the host deletes them itself.
E3D_API void E3D_CALL DeleteSkeleton(Skeleton* skeleton) {
  if (Scene* scene = SceneHoldingSkeleton(skeleton)) RemoveSkeletonFromScene(scene, skeleton);
  if (skeleton != nullptr) FreeMemory(skeleton);
}

E3D_API Bone* E3D_CALL CreateBone(void) {
  Bone* bone = Allocate<Bone>();
  if (bone == nullptr) return nullptr;
  MemoryFill(bone, 0, sizeof(Bone));
  MatrixIdentity(&bone->matrixA);
  MatrixIdentity(&bone->matrixB);
  return bone;
}

// A name that does not fit is refused whole, not cut.
E3D_API void E3D_CALL SetBoneName(Bone* bone, const char* name) {
  if (bone != nullptr && name != nullptr && StringLength(name) < kBoneNameSize)
    StringCopy(bone->name, name);
}

E3D_API void E3D_CALL SetBoneOrientation(Bone* bone, const Quaternion* rotation, uint32_t options) {
  QuaternionToMatrix(rotation, BoneMatrix(bone, options));
}

E3D_API void E3D_CALL SetBonePosition(Bone* bone, const Vector3* position, uint32_t options) {
  Matrix34* m = BoneMatrix(bone, options);
  m->m[3] = position->x;
  m->m[7] = position->y;
  m->m[11] = position->z;
}

// Names are unique within a skeleton (empty names excepted). A null
// parentName makes bone the root, replacing any root there was; otherwise
// bone, with its own subtree, becomes the last child of the named bone.
E3D_API int32_t E3D_CALL AttachBoneToSkeleton(Skeleton* skeleton, const char* parentName, Bone* bone) {
  Bone* root = skeleton->rootBone;
  if (root != nullptr && FindBone(root, bone->name) != nullptr) return 0;
  if (parentName == nullptr) {
    skeleton->rootAttachCount++;
    bone->parent = nullptr;
    skeleton->rootBone = bone;
    return 1;
  }
  Bone* parent = root != nullptr ? FindBone(root, parentName) : nullptr;
  if (parent == nullptr) return 0;
  int32_t count = parent->childCount;
  Bone** children = Allocate<Bone*>(uint32_t(count) + 1);
  if (children == nullptr) return 0;
  for (int32_t i = 0; i < count; i++) children[i] = parent->children[i];
  children[count] = bone;
  Release(parent->children);
  parent->children = children;
  parent->childCount = count + 1;
  bone->parent = parent;
  return 1;
}

E3D_API Bone* E3D_CALL GetRootBone(Bone* bone) {
  while (bone->parent != nullptr) bone = bone->parent;
  return bone;
}

// Only a root bone finds its skeleton: a bone further down gives null even
// when its root is a skeleton's root.
E3D_API Skeleton* E3D_CALL GetSkeletonByBone(Scene* scene, const Bone* bone) {
  return ListFind<&Skeleton::nextSkeleton>(scene->firstSkeleton,
                                           [bone](const Skeleton* s) { return s->rootBone == bone; });
}

E3D_API Bone* E3D_CALL GetSkeletonBoneByName(Skeleton* skeleton, const char* name) {
  if (name == nullptr || skeleton->rootBone == nullptr) return nullptr;
  return FindBone(skeleton->rootBone, name);
}

// One zeroed entry of eight words a vertex. A table the mesh had is replaced.
E3D_API int32_t E3D_CALL AssignSkinToMesh(Mesh* mesh) {
  uint32_t bytes = uint32_t(mesh->vertexCount) * kSkinEntryBytes;
  void* table = AllocateMemory(bytes);
  if (table == nullptr) return 0;
  MemoryFill(table, 0, int32_t(bytes));
  Release(mesh->skinTable);
  mesh->skinTable = table;
  return 1;
}

E3D_API void E3D_CALL RemoveSkinFromMesh(Mesh* mesh) { Release(mesh->skinTable); }

// Vertex influences are not kept yet.
E3D_API int32_t E3D_CALL AssignVertexInfluence(Mesh*, int32_t, Bone*, float) { return 1; }

E3D_API int32_t E3D_CALL CheckWeightedVertices(Mesh*) { return 1; }

E3D_API void E3D_CALL RemoveVertexInfluence(Mesh*, int32_t, Bone*) {}
