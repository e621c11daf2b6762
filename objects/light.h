// The light record: an omni or a direct light, and the per-mesh light list.
#pragma once
#include <stdint.h>

#include "engine3d.h"

namespace e3d {
inline constexpr int32_t kLightNameSize = 32;  // terminator included
}

// Completes the header's opaque handle; fields in the interface's order. The
// first eight words are the node header and the direction target's node
// header; position and direction sit where a camera keeps position and target.
struct Light {
  uint32_t nodeKind;           // kNodeLight
  void* parent;
  void** children;             // childCount entries, attachment order
  int32_t childCount;
  uint32_t targetNodeKind;     // kNodeLightTarget (direct lights)
  void* targetParent;
  void** targetChildren;
  int32_t targetChildCount;
  uint32_t lightFlags;         // type index in bits 0-4, kLightEnabled
  Vector3 position;
  Vector3 savedPosition;       // position as of the start of the last draw
  Vector3 direction;           // the direct light's target point
  Vector3 savedDirection;      // direction as of the start of the last draw
  Vector3 localPosition;       // position in the model space of the mesh being lit
  Vector3 localDirection;      // unit direction to the target, same space
  float color[4];              // red, green, blue, alpha, 0 to 1
  float intensity;
  float nearAttenuation;
  float farAttenuation;
  Light* prevLight;            // links of the scene's light list
  Light* nextLight;
  char name[e3d::kLightNameSize];
  uintptr_t hostObject;        // non-zero: kept by DeleteScene
  uintptr_t hostObject2;
};
#if defined(__i386__)
static_assert(sizeof(Light) == 184, "Light is 46 words on i386");
static_assert(__builtin_offsetof(Light, targetNodeKind) == 4 * 4);
static_assert(__builtin_offsetof(Light, lightFlags) == 4 * 8);
static_assert(__builtin_offsetof(Light, position) == 4 * 9);
static_assert(__builtin_offsetof(Light, direction) == 4 * 15);
static_assert(__builtin_offsetof(Light, color) == 4 * 27);
static_assert(__builtin_offsetof(Light, prevLight) == 4 * 34);
static_assert(__builtin_offsetof(Light, name) == 4 * 36);
static_assert(__builtin_offsetof(Light, hostObject) == 4 * 44);
#endif

namespace e3d {

// Number the default names "Omni00", "Direct00", ...; process-wide, never reset.
extern int32_t omniCounter;
extern int32_t directCounter;

inline constexpr uint32_t kNodeLight = 0x10;
inline constexpr uint32_t kNodeLightTarget = 0x20;

// lightFlags. The low five bits index the lighting routines.
inline constexpr uint32_t kLightAttenuated = 0x1;   // SetLightStatus b
inline constexpr uint32_t kLightOmni = 0x2;
inline constexpr uint32_t kLightDirect = 0x4;
inline constexpr uint32_t kLightOneSided = 0x10;    // host option: direct lights light one side
inline constexpr uint32_t kLightTypeMask = 0x1F;
inline constexpr uint32_t kLightEnabled = 0x80000000u;  // SetLightStatus a

inline uint32_t LightType(const Light* light) { return light->lightFlags & kLightTypeMask; }
inline bool LightIsEnabled(const Light* light) { return (light->lightFlags & kLightEnabled) != 0; }

// The vector chosen by the position setters and getters: 0 the position, else the direction.
inline Vector3* LightVector(Light* light, int32_t which) {
  return which == 0 ? &light->position : &light->direction;
}

}  // namespace e3d
