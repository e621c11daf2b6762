// Omni and direct lights: creation with numbered names, deletion, the
// accessors, the per-mesh light lists that vertex lighting walks, and the
// scenes' light lists, which keep the meshes' lists in step.
#include "objects/light.h"

#include "engine/fp.h"
#include "engine/memory.h"
#include "engine/registry.h"
#include "objects/hierarchy.h"
#include "objects/mesh.h"
#include "objects/node_helpers.h"
#include "objects/scene.h"

namespace e3d {

int32_t omniCounter = 0;
int32_t directCounter = 0;

namespace {

// Results of GetLightColor and GetLightPosition, overwritten by the next call.
float colorResult[4];
Vector3 vectorResult;

// base, a 0 below 10, then the counter: Omni00 ... Omni09, Omni10.
void NameLight(Light* light, const char* base, int32_t& counter) {
  WriteGeneratedName(light->name, base, counter);
  counter = int32_t(uint32_t(counter) + 1);
}

// A record with every word cleared (the direct light's unused attenuation
// and the omni light's target header included), both headers unlinked.
Light* NewLight(const Vector3* position, const float* color, float intensity, uint32_t flags) {
  Light* light = Allocate<Light>();
  if (light == nullptr) return nullptr;
  MemoryFill(light, 0, sizeof(Light));
  light->nodeKind = kNodeLight;
  light->targetNodeKind = kNodeLightTarget;
  light->lightFlags = flags;
  light->position = *position;
  for (int i = 0; i < 4; i++) light->color[i] = color[i];
  light->intensity = intensity;
  return light;
}

// A colour component from 0-255 to 0-1, limited to that range (negative
// zero is kept).
float ScaledComponent(float value) {
  double v = double(value) * double(0.0039215689f);
  // The sign bit tested as a bit: a compare and select that an ARM compiler
  // would make a maximum instruction, which turns -0.0 into +0.0.
  if (fp::SignBit(v) && v < 0.0) v = 0.0;
  if (v > 1.0) v = 1.0;
  return float(v);
}

// Only the first kind of mesh keeps a light list; a piece-built mesh has none.
Light** ListOf(void* node) {
  if ((NodeKindOf(node) & kNodeKindMask) != kNodeMesh) return nullptr;
  return static_cast<Mesh*>(node)->lightList;
}

// Place of light in a mesh's list, or of the terminating null when it is
// not listed; kMeshLightListEntries for a full list without it.
uint32_t SlotOf(Light* const* list, const Light* light) {
  uint32_t i = 0;
  while (i < kMeshLightListEntries && list[i] != nullptr && list[i] != light) i++;
  return i;
}

}  // namespace
}  // namespace e3d

using namespace e3d;

E3D_API Light* E3D_CALL CreateOmniLight(const Vector3* position, const float* color, float intensity,
                                        float nearAttenuation, float farAttenuation, uint32_t flags) {
  Light* light = NewLight(position, color, intensity, flags | kLightOmni);
  if (light == nullptr) return nullptr;
  light->nearAttenuation = nearAttenuation;
  light->farAttenuation = farAttenuation;
  NameLight(light, "Omni", omniCounter);
  return light;
}

E3D_API Light* E3D_CALL CreateDirectLight(const Vector3* position, const Vector3* direction,
                                          const float* color, float intensity, uint32_t flags) {
  Light* light = NewLight(position, color, intensity, flags | kLightDirect);
  if (light == nullptr) return nullptr;
  light->direction = *direction;
  NameLight(light, "Direct", directCounter);
  return light;
}

// A light stands in one scene's list: the first that lets it go held it,
// and its meshes lose it too.
E3D_API void E3D_CALL DeleteLight(Light* light) {
  for (Scene* scene = firstScene; scene != nullptr; scene = scene->nextScene)
    if (RemoveLightFromScene(scene, light)) break;
  light->hostObject = 0;
  light->hostObject2 = 0;
  UnhangNode(light);
  UnhangNode(&light->targetNodeKind);
  FreeMemory(light);
}

// The light goes into the first free place (or stays where it is) of every
// mesh list of the subtree; a full list of 64 takes nothing. A mesh in a
// scene brings the light into that scene.
E3D_API int32_t E3D_CALL AssignLightToMesh(Light* light, Mesh* node) {
  ForEachNode(node, [light](void* n) {
    Light** list = ListOf(n);
    if (list == nullptr) return;
    uint32_t i = SlotOf(list, light);
    if (i >= kMeshLightListEntries) return;
    list[i] = light;
    Scene* scene = static_cast<Mesh*>(n)->ownerScene;
    if (scene != nullptr) AssignLightToScene(scene, light, 0);
  });
  return 0;
}

// Later entries move down so the list keeps no gap; the scene is not touched.
E3D_API int32_t E3D_CALL RemoveLightFromMesh(Light* light, Mesh* node) {
  ForEachNode(node, [light](void* n) {
    Light** list = ListOf(n);
    if (list == nullptr) return;
    uint32_t i = SlotOf(list, light);
    if (i >= kMeshLightListEntries || list[i] == nullptr) return;
    for (; i + 1 < kMeshLightListEntries && list[i] != nullptr; i++) list[i] = list[i + 1];
    list[i] = nullptr;
  });
  return 0;
}

// From 0-255 to the 0-1 the lighting works in; alpha is cleared.
E3D_API void E3D_CALL SetLightColor(Light* light, float red, float green, float blue) {
  light->color[0] = ScaledComponent(red);
  light->color[1] = ScaledComponent(green);
  light->color[2] = ScaledComponent(blue);
  light->color[3] = 0.0f;
}

E3D_API float* E3D_CALL GetLightColor(const Light* light) {
  for (int i = 0; i < 4; i++) colorResult[i] = float(double(light->color[i]) * 255.0);
  return colorResult;
}

E3D_API void E3D_CALL SetLightIntensity(Light* light, float intensity) { light->intensity = intensity; }

E3D_API float E3D_CALL GetLightIntensity(const Light* light) { return light->intensity; }

E3D_API void E3D_CALL SetLightAttenuation(Light* light, float nearAttenuation, float farAttenuation) {
  light->nearAttenuation = nearAttenuation;
  light->farAttenuation = farAttenuation;
}

E3D_API float E3D_CALL GetLightNearAttenuation(const Light* light) { return light->nearAttenuation; }

E3D_API float E3D_CALL GetLightFarAttenuation(const Light* light) { return light->farAttenuation; }

E3D_API void E3D_CALL SetLightPosition(Light* light, const Vector3* value, int32_t which) {
  *LightVector(light, which) = *value;
}

E3D_API Vector3* E3D_CALL GetLightPosition(Light* light, int32_t which) {
  vectorResult = *LightVector(light, which);
  return &vectorResult;
}

// a turns the light on or off, b its attenuation.
E3D_API void E3D_CALL SetLightStatus(Light* light, int32_t a, int32_t b) {
  light->lightFlags = (light->lightFlags & ~(kLightEnabled | kLightAttenuated)) |
                      (a != 0 ? kLightEnabled : 0) | (b != 0 ? kLightAttenuated : 0);
}

E3D_API void E3D_CALL SetLightName(Light* light, const char* name) {
  CopyName(light->name, kLightNameSize, name);
}

// Refused only when this scene holds the light: a light given to a second
// scene is relinked there, and the first scene's list no longer reaches it.
E3D_API int32_t E3D_CALL AssignLightToScene(Scene* scene, Light* light, uint8_t options) {
  if (GetSceneLightIndex(scene, light) >= 0) return 0;
  ListAppend<&Light::prevLight, &Light::nextLight>(scene->firstLight, light);
  if (options & kOptionMeshLights)
    ListEach<&Mesh::nextInScene>(scene->firstMesh, [light](Mesh* mesh) { AssignLightToMesh(light, mesh); });
  return 1;
}

// The light also leaves the light lists of the scene's meshes.
E3D_API int32_t E3D_CALL RemoveLightFromScene(Scene* scene, Light* light) {
  if (GetSceneLightIndex(scene, light) < 0) return 0;
  ListUnlink<&Light::prevLight, &Light::nextLight>(scene->firstLight, light);
  ListEach<&Mesh::nextInScene>(scene->firstMesh, [light](Mesh* mesh) { RemoveLightFromMesh(light, mesh); });
  return 1;
}
