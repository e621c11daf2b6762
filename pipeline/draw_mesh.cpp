// Mesh drawing outside any scene: the mesh and its children into the mesh's
// viewport through that viewport's camera, with the mesh's own records. No
// visibility pass: every drawn node takes the near-plane routine, and the
// drawn mesh's own near-crossing bit picks the clipping entry for all.
#include "objects/camera.h"
#include "objects/mesh.h"
#include "pipeline/draw_records.h"
#include "pipeline/radix.h"
#include "pipeline/transform.h"

namespace e3d {

namespace {

// Billboards turn to the view here but take the facing-tested walks.
int32_t TransformNode(Mesh* root, Mesh* mesh, bool depthTested, int32_t written) {
  FormCameraSpace(mesh, drawState.camera, true);
  mesh->meshFlags |= kMeshNearCrossing;
  const int32_t freeRecords = root->sortPolygonCount - written;
  return TransformMesh(mesh, depthTested, false, freeRecords);
}

}  // namespace

}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL DrawMesh(Mesh* mesh) {
  if ((mesh->meshFlags & kMeshValidated) == 0 || mesh->meshViewport == nullptr) return;
  Viewport* vp = mesh->meshViewport;
  if (vp->camera == nullptr || !ViewportIsEnabled(vp)) return;
  if (mesh->ownPolygonRecords == nullptr) return;  // its records are a scene's now
  Camera* camera = vp->camera;
  drawState.viewport = vp;
  drawState.camera = camera;
  SetupViewportClip(vp);
  const bool depthTested = ViewportHasDepth(vp);
  drawState.opaqueCount = 0;
  drawState.sortedCount = 0;
  if (mesh->meshFlags & kMeshHidden) return;

  SaveViewVectors(camera, mesh);
  UpdateMeshMatrices(mesh, nullptr);
  SetupProjectionScale(vp, camera);
  BuildCameraMatrix(camera);
  PolygonRecord* records = mesh->ownPolygonRecords;
  const int32_t capacity = mesh->sortPolygonCount;
  drawState.opaqueCursor = records + capacity - 1;
  drawState.sortedCursor = records;

  int32_t drawn = 0;
  if (mesh->childCount != 0) {
    WalkDrawnMeshes(mesh, [&](Mesh* m) { drawn += TransformNode(mesh, m, depthTested, drawn); });
  } else if ((mesh->meshFlags & kMeshOutside) == 0) {
    drawn = TransformNode(mesh, mesh, depthTested, 0);
  }
  if (drawn == 0) return;
  mesh->drawRecordCount = drawn;

  RecordLists lists{records, capacity, mesh->ownSortIndexList, 0, drawn, depthTested};
  if (depthTested) {
    lists.opaqueCount = drawState.opaqueCount;
    lists.sortedCount = drawState.sortedCount;
  }
  if (lists.sortedCount != 0) SortPolygonRecords(lists.sortedCount, records, mesh->ownSortIndexList);
  SubmitRecords(lists, mesh);
}
