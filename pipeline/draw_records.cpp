// Hands a draw's records to polygon submission with their drawers.
#include "pipeline/draw_records.h"

#include "pipeline/transform.h"
#include "raster/clip.h"
#include "raster/drawer_table.h"

namespace e3d {

namespace {

inline void Submit(const PolygonRecord* record, bool depthTested, const Mesh* clipMesh) {
  const TriangleDrawer drawer = ChooseDrawer(record->renderFlags, depthTested);
  const Mesh* chooser = clipMesh != nullptr ? clipMesh : record->mesh;
  if (chooser->meshFlags & kMeshNearCrossing)
    SubmitClippedPolygon(record, drawer);
  else
    SubmitPolygon(record, drawer);
}

}  // namespace

void SubmitRecords(const RecordLists& lists, const Mesh* clipMesh) {
  SetRenderInfos(drawState.viewport, drawState.camera);
  SetClipWindow(viewClip.left, viewClip.right, viewClip.top, viewClip.bottom);
  const PolygonRecord* opaque = lists.records + lists.capacity - 1;
  for (int32_t i = 0; i < lists.opaqueCount; i++) Submit(opaque - i, lists.depthTested, clipMesh);
  // Sorted records are reached in depth order, all over the record area and
  // the meshes: fetch a record some places ahead, and its polygon nearer.
  constexpr int32_t kRecordAhead = 16, kPolygonAhead = 8;
  for (int32_t i = lists.sortedCount - 1; i >= 0; i--) {
    if (i >= kRecordAhead) __builtin_prefetch(&lists.records[lists.order[i - kRecordAhead]]);
    if (i >= kPolygonAhead) __builtin_prefetch(lists.records[lists.order[i - kPolygonAhead]].polygon);
    Submit(&lists.records[lists.order[i]], lists.depthTested, clipMesh);
  }
}

}  // namespace e3d
