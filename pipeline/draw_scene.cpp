// Scene drawing: transform every visible mesh into the scene's records, sort
// what needs sorting, and submit. The painter path keys and sorts every
// polygon; the depth-buffer path draws opaque polygons unsorted first, then
// the translucent ones far to near.
#include "objects/camera.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "pipeline/draw_records.h"
#include "pipeline/radix.h"
#include "pipeline/transform.h"

namespace e3d {

namespace {

// Places the cursors for the next mesh and transforms it.
void TransformSceneMesh(Scene* scene, Mesh* mesh, bool depthTested) {
  PolygonRecord* records = scene->polygonRecords;
  DrawState& s = drawState;
  int32_t freeRecords;
  if (depthTested) {
    freeRecords = scene->polygonCapacity - s.opaqueCount - s.sortedCount;
    s.opaqueCursor = records + (scene->polygonCapacity - s.opaqueCount - 1);
    s.sortedCursor = records + s.sortedCount;
  } else {
    freeRecords = scene->polygonCapacity - scene->polygonCount;
    s.sortedCursor = records + scene->polygonCount;
  }
  scene->polygonCount += TransformMesh(mesh, depthTested, true, freeRecords);
}

Camera* ActiveCamera(const Scene* scene) {
  Camera* camera = scene->firstCamera;
  for (int32_t i = 0; i < scene->activeCameraIndex && camera != nullptr; i++) camera = camera->nextCamera;
  return camera;
}

}  // namespace

}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL DrawScene(Scene* scene) {
  if (!SceneIsReady(scene) || scene->firstMesh == nullptr || scene->viewport == nullptr ||
      scene->activeCameraIndex == -1 || !ViewportIsEnabled(scene->viewport))
    return;
  Camera* camera = ActiveCamera(scene);
  if (camera == nullptr) return;  // an index past the end of the list
  Viewport* vp = scene->viewport;
  drawState.viewport = vp;
  drawState.camera = camera;
  SetupViewportClip(vp);
  scene->polygonCount = 0;
  const bool depthTested = ViewportHasDepth(vp);
  drawState.opaqueCount = 0;
  drawState.sortedCount = 0;

  for (Mesh* mesh = scene->firstMesh; mesh != nullptr; mesh = mesh->nextInScene) SaveViewVectors(camera, mesh);
  UpdateSceneMeshMatrices(scene);
  SetupProjectionScale(vp, camera);
  BuildCameraMatrix(camera);
  MarkSceneVisibility(scene);

  // Only childless top-level meshes are counted: hosts read the count so.
  scene->visibleMeshCount = 0;
  for (Mesh* mesh = scene->firstMesh; mesh != nullptr; mesh = mesh->nextInScene) {
    if (mesh->childCount != 0) {
      WalkDrawnMeshes(mesh, [scene, depthTested](Mesh* m) { TransformSceneMesh(scene, m, depthTested); });
    } else if ((mesh->meshFlags & kMeshNotDrawn) == 0) {
      scene->visibleMeshCount++;
      TransformSceneMesh(scene, mesh, depthTested);
    }
  }
  if (scene->polygonCapacity == 0) return;

  RecordLists lists{scene->polygonRecords, scene->polygonCapacity, scene->sortIndexList, 0, 0, depthTested};
  if (depthTested) {
    lists.opaqueCount = drawState.opaqueCount;
    lists.sortedCount = drawState.sortedCount;
  } else {
    lists.sortedCount = scene->polygonCount;
  }
  SortPolygonRecords(lists.sortedCount, lists.records, scene->sortIndexList);
  SubmitRecords(lists, nullptr);
}
