// The scene record: the per-kind object lists, the active camera, the target
// viewport and the sort area that the drawing pipeline fills.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "objects/polygon_record.h"

namespace e3d {

// One entry of a scene's hook table; the default hook reads the float.
struct SceneHookEntry {
  uint32_t key;
  float value;
};

// The scene hook slot and the host function the default hook forwards to.
typedef void* (*SceneHook)(int32_t a, int32_t b, Scene* scene);
typedef void* (E3D_CALL* SceneUserHook)(int32_t a, int32_t b, int32_t value);

}  // namespace e3d

// Completes the header's opaque handle; fields in the interface's order.
struct Scene {
  uint32_t sceneFlags;         // kSceneReady
  Mesh* firstMesh;             // list heads; links live in the members
  Camera* firstCamera;
  Light* firstLight;
  Material* firstMaterial;
  Skeleton* firstSkeleton;
  int32_t visibleMeshCount;    // meshes counted by the last draw
  int32_t activeCameraIndex;   // position in the camera list, -1 for none
  uint32_t* sortIndexList;     // sort area: polygonCapacity index entries,
  PolygonRecord* polygonRecords;  // then polygonCapacity records
  int32_t polygonCount;        // records written by the current draw
  int32_t vertexTotal;         // vertices of all meshes in the scene
  int32_t polygonCapacity;     // polygons of all meshes in the scene
  Viewport* viewport;          // drawn into by DrawScene
  Scene* prevScene;            // the process-wide scene chain
  Scene* nextScene;
  uint32_t hookReserved;
  e3d::SceneHook sceneHook;
  e3d::SceneUserHook userHook;
  e3d::SceneHookEntry* hookTable;  // owned by the scene
  uint32_t hookSpare;
  uint32_t hookSpare2;
};
#if defined(__i386__)
static_assert(sizeof(Scene) == 88, "Scene is 22 words on i386");
static_assert(__builtin_offsetof(Scene, firstMesh) == 4);
static_assert(__builtin_offsetof(Scene, firstSkeleton) == 20);
static_assert(__builtin_offsetof(Scene, activeCameraIndex) == 28);
static_assert(__builtin_offsetof(Scene, polygonCapacity) == 48);
static_assert(__builtin_offsetof(Scene, prevScene) == 56);
static_assert(__builtin_offsetof(Scene, sceneHook) == 68);
static_assert(__builtin_offsetof(Scene, hookSpare2) == 84);
#endif
static_assert(sizeof(e3d::SceneHookEntry) == 8);

namespace e3d {

// sceneFlags: the sort area matches the scene's meshes and it may be drawn.
inline constexpr uint32_t kSceneReady = 0x1;

// Options bit 0 of the Assign...ToScene calls: keep the meshes' light lists
// in step with the scene's lights.
inline constexpr uint8_t kOptionMeshLights = 0x1;

inline bool SceneIsReady(const Scene* scene) { return (scene->sceneFlags & kSceneReady) != 0; }

// Frees the scene's sort area and allocates one for polygonCapacity polygons,
// resetting the sorter on it. The scene is marked ready only when that
// worked: a scene left without its area is never drawn.
void RebuildSceneSortArea(Scene* scene);

// The chain of all scenes (firstScene .. lastScene), appended at the tail by
// CreateScene.
void LinkScene(Scene* scene);
void UnlinkScene(Scene* scene);  // no effect when not chained

// Position of an object in a scene's list of its kind (identity, not name), or -1.
int32_t GetSceneSkeletonIndex(const Scene* scene, const Skeleton* skeleton);
int32_t GetSceneCameraIndex(const Scene* scene, const Camera* camera);
int32_t GetSceneLightIndex(const Scene* scene, const Light* light);
int32_t GetSceneMaterialIndex(const Scene* scene, const Material* material);

// The scene of the chain whose camera (skeleton) list holds the object, or null.
Scene* SceneHoldingCamera(const Camera* camera);
Scene* SceneHoldingSkeleton(const Skeleton* skeleton);

// Unlinks item from a list whose head is head, bridging its neighbours and
// moving the head past it; both links of item are cleared.
template <auto Prev, auto Next, class T>
void ListUnlink(T*& head, T* item) {
  T* prev = item->*Prev;
  T* next = item->*Next;
  if (head == item) head = next;
  if (prev != nullptr) prev->*Next = next;
  if (next != nullptr) next->*Prev = prev;
  item->*Prev = nullptr;
  item->*Next = nullptr;
}

// The camera and skeleton lists unlink by their links alone, and removing the
// member that has no successor empties the list head, even when members
// precede it: those stay linked to each other but belong to no scene.
template <auto Prev, auto Next, class T>
void ListUnlinkTailEmpties(T*& head, T* item) {
  T* prev = item->*Prev;
  T* next = item->*Next;
  if (prev != nullptr)
    prev->*Next = next;
  else
    head = next;
  if (next != nullptr)
    next->*Prev = prev;
  else
    head = nullptr;
  item->*Prev = nullptr;
  item->*Next = nullptr;
}

// Calls f(member) for every member, taking each successor before f runs, so
// that f may unlink or free the member.
template <auto Next, class T, class F>
void ListEach(T* head, F f) {
  for (T* p = head; p != nullptr;) {
    T* next = p->*Next;
    f(p);
    p = next;
  }
}

}  // namespace e3d
