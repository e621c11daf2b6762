// The camera record: eye, target, roll, field of view, near and far, and the
// view values that every draw rebuilds from them.
#pragma once
#include <stdint.h>

#include "engine3d.h"

namespace e3d {
inline constexpr int32_t kCameraNameSize = 32;  // terminator included
}

// Completes the header's opaque handle; fields in the interface's order. The
// first eight words are the node header and the target's node header; the
// position and target sit where a light keeps its position and direction.
struct Camera {
  uint32_t nodeKind;           // kNodeCamera
  void* parent;
  void** children;             // childCount entries, attachment order
  int32_t childCount;
  uint32_t targetNodeKind;     // kNodeCameraTarget
  void* targetParent;
  void** targetChildren;
  int32_t targetChildCount;
  uint32_t cameraFlags;         // cleared at creation
  Vector3 position;            // eye
  Vector3 savedPosition;       // position as of the start of the last draw
  Vector3 target;              // point looked at
  Vector3 savedTarget;         // target as of the start of the last draw
  Vector3 direction;           // unit vector from position to target
  uint32_t spare[2];
  float roll;                  // degrees
  float fov;                   // degrees
  float projScale;             // pixels per unit at depth 1
  float nearPlane;
  float farPlane;
  Matrix34 cameraMatrix;       // view rotation, position in the last column
  Camera* prevCamera;          // links of the scene's camera list
  Camera* nextCamera;
  char name[e3d::kCameraNameSize];
  uintptr_t hostObject;        // non-zero: kept by DeleteScene
  uintptr_t hostObject2;
};
#if defined(__i386__)
static_assert(sizeof(Camera) == 220, "Camera is 55 words on i386");
static_assert(__builtin_offsetof(Camera, targetNodeKind) == 4 * 4);
static_assert(__builtin_offsetof(Camera, cameraFlags) == 4 * 8);
static_assert(__builtin_offsetof(Camera, position) == 4 * 9);
static_assert(__builtin_offsetof(Camera, target) == 4 * 15);
static_assert(__builtin_offsetof(Camera, roll) == 4 * 26);
static_assert(__builtin_offsetof(Camera, nearPlane) == 4 * 29);
static_assert(__builtin_offsetof(Camera, farPlane) == 4 * 30);
#endif

namespace e3d {

inline constexpr uint32_t kNodeCamera = 0x4;
inline constexpr uint32_t kNodeCameraTarget = 0x8;

// Numbers the default names; process-wide, never reset.
extern int32_t cameraCounter;

inline constexpr float kCameraDefaultFar = 10000.0f;
inline constexpr float kCameraMinNear = 10.0f;
inline constexpr float kCameraDefaultFov = 60.0f;

// The vector SetCameraPosition writes: 0 the eye, else the target.
inline Vector3* CameraVector(Camera* camera, int32_t which) {
  return which == 0 ? &camera->position : &camera->target;
}

}  // namespace e3d
