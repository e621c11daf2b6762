// Skeleton and bone records: a tree of named bones under one root.
#pragma once
#include <stdint.h>

#include "engine3d.h"

// Completes the header's opaque handle; fields in the interface's order.
struct Skeleton {
  uint32_t reserved;
  int32_t rootAttachCount;   // times a root bone was attached
  Bone* rootBone;            // null when empty
  Skeleton* prevSkeleton;    // links of the scene's skeleton list
  Skeleton* nextSkeleton;
};
#if defined(__i386__)
static_assert(sizeof(Skeleton) == 20, "Skeleton is 5 words on i386");
static_assert(__builtin_offsetof(Skeleton, rootBone) == 8);
static_assert(__builtin_offsetof(Skeleton, prevSkeleton) == 12);
#endif

namespace e3d {
inline constexpr int32_t kBoneNameSize = 32;  // terminator included
}

struct Bone {
  uint32_t reserved;
  Bone* parent;              // null for a root
  Matrix34 matrixA;          // selected by option bit 0 = 1
  Matrix34 matrixB;          // selected by option bit 0 = 0
  char name[e3d::kBoneNameSize];
  int32_t childCount;
  Bone** children;           // exactly childCount entries, attachment order
};
#if defined(__i386__)
static_assert(sizeof(Bone) == 144, "Bone is 36 words on i386");
static_assert(__builtin_offsetof(Bone, matrixA) == 8);
static_assert(__builtin_offsetof(Bone, matrixB) == 56);
static_assert(__builtin_offsetof(Bone, name) == 104);
static_assert(__builtin_offsetof(Bone, childCount) == 136);
#endif

namespace e3d {

// Option bit 0 of the bone setters chooses the matrix.
inline constexpr uint32_t kBoneOptionMatrixA = 0x1;

inline Matrix34* BoneMatrix(Bone* bone, uint32_t options) {
  return (options & kBoneOptionMatrixA) ? &bone->matrixA : &bone->matrixB;
}

}  // namespace e3d
