// The polygon walks: cull by facing, project, pick the material and the
// colour, and queue a record. One template serves all eight variants.
#include "engine/math.h"
#include "objects/camera.h"
#include "objects/mesh.h"
#include "pipeline/lighting.h"
#include "pipeline/transform.h"

namespace e3d {

namespace {

inline constexpr uint32_t kCullNone = 8;
inline constexpr uint32_t kCullFront = 16;  // draw polygons facing the camera
inline constexpr uint32_t kCullBack = 32;   // draw polygons facing away
inline constexpr uint32_t kMaterialTwoSided = 8;
inline constexpr uint32_t kFacingBits = kRenderOption | kPolygonBackFacing;
inline constexpr uint32_t kEnvironmentOnly = 0x02000000;  // texture stage 2 alone

inline float Facing(const MeshPolygon* p, const Vector3& eye, const Vector3& pivot) {
  const float* n = p->plane;
  return n[0] * eye.x + n[1] * eye.y + n[2] * eye.z + n[3] - (pivot.x * n[0] + pivot.y * n[1] + pivot.z * n[2]);
}

// Lit: colour by lights or headlight. Billboard: first material, no culling.
// Depth: opaque polygons unsorted at the back of the buffer.
template <bool kLit, bool kBillboard, bool kDepth>
int32_t WalkPolygons(Mesh* mesh) {
  Vector3 eye = drawState.camera->position;
  MatrixInverseTransformPoint(&mesh->worldMatrix, &eye);
  if (kLit) SetupMeshLights(mesh);
  if (mesh->vertexBits == nullptr) return 0;  // never validated: nothing to project into
  if (kLit) BeginCornerMemo();
  const Vector3 pivot = mesh->pivot;
  const uint32_t meshFlags = mesh->meshFlags;
  int32_t written = 0;
  MeshPolygon* const end = mesh->polygons + mesh->meshPolygonCount;
  for (MeshPolygon* p = mesh->polygons; p < end; p++) {
    drawState.currentPolygon = p;
    const Material* facing = p->material;
    uint32_t cull = kCullNone;
    if (kBillboard) {
      p->polygonFlags &= ~kFacingBits;
    } else {
      cull = meshFlags & kCullModeMask;
      if (cull & kCullFront) facing = p->backMaterial;
      if (facing->flags & kMaterialTwoSided) cull = kCullNone;
    }
    const float f = Facing(p, eye, pivot);
    if (cull == kCullFront && !(f >= 0.0f)) continue;
    if (cull == kCullBack && !(f < 0.0f)) continue;

    // The key decision reads the option bit as the previous draw left it.
    const bool keyed = !kDepth || facing->alphaMode != 0 || (p->polygonFlags & kRenderOption) != 0;
    const int32_t* vi = p->vertexIndex;
    const bool rejected = keyed ? FetchTriangle(mesh, vi[0], vi[1], vi[2], &drawState.sortedCursor->depthKey)
                                : FetchTriangleNoKey(mesh, vi[0], vi[1], vi[2]);
    if (rejected) continue;

    const Material* material = p->material;
    if (!kBillboard) {
      if (f >= 0.0f) {
        p->polygonFlags = (p->polygonFlags | kPolygonBackFacing) & ~kRenderOption;
        material = p->backMaterial;
      } else {
        p->polygonFlags &= ~kFacingBits;
      }
    }
    if (meshFlags & material->flags & kRenderOption) p->polygonFlags |= kRenderOption;

    const uint32_t modes = meshFlags & p->polygonFlags & material->flags & kMeshRenderMask;
    uint32_t renderFlags;
    if (kLit) {
      const uint32_t shade = meshFlags & p->polygonFlags & material->flags & kShadeMask;
      renderFlags = ShadeLitPolygon(mesh, p, modes | shade, material, &eye);
    } else {
      renderFlags = modes | kShadeUnlit;
      p->colors[0] = UnlitPolygonColor(material, modes);
    }
    if ((modes & kMaterialStageMask) == kEnvironmentOnly && mesh->normals != nullptr) ComputeEnvironmentCoords(mesh, p);

    PolygonRecord* record;
    if (kDepth && material->alphaMode == 0 && (p->polygonFlags & kRenderOption) == 0) {
      record = drawState.opaqueCursor--;
      drawState.opaqueCount++;
    } else {
      record = drawState.sortedCursor++;
      drawState.sortedCount++;
    }
    record->mesh = mesh;
    record->polygon = p;
    record->renderFlags = renderFlags;
    written++;
  }
  if (kLit) EndCornerMemo();
  return written;
}

}  // namespace

int32_t TransformMeshUnlit(Mesh* mesh) { return WalkPolygons<false, false, false>(mesh); }
int32_t TransformMeshLit(Mesh* mesh) { return WalkPolygons<true, false, false>(mesh); }
int32_t TransformBillboardUnlit(Mesh* mesh) { return WalkPolygons<false, true, false>(mesh); }
int32_t TransformBillboardLit(Mesh* mesh) { return WalkPolygons<true, true, false>(mesh); }
int32_t TransformMeshUnlitZ(Mesh* mesh) { return WalkPolygons<false, false, true>(mesh); }
int32_t TransformMeshLitZ(Mesh* mesh) { return WalkPolygons<true, false, true>(mesh); }
int32_t TransformBillboardUnlitZ(Mesh* mesh) { return WalkPolygons<false, true, true>(mesh); }
int32_t TransformBillboardLitZ(Mesh* mesh) { return WalkPolygons<true, true, true>(mesh); }

TransformVariant ChooseTransform(bool depthTested, bool billboard, bool unlit) {
  static constexpr TransformVariant kVariants[8] = {
      TransformMeshLit,  TransformMeshUnlit,  TransformBillboardLit,  TransformBillboardUnlit,
      TransformMeshLitZ, TransformMeshUnlitZ, TransformBillboardLitZ, TransformBillboardUnlitZ};
  return kVariants[(depthTested ? 4 : 0) + (billboard ? 2 : 0) + (unlit ? 1 : 0)];
}

int32_t TransformMesh(Mesh* mesh, bool depthTested, bool billboardVariants, int32_t freeRecords) {
  if (mesh->meshPolygonCount > freeRecords) return 0;
  BeginMeshTransform(mesh, drawState.viewport, drawState.camera);
  drawState.currentPolygon = mesh->polygons;
  const bool billboard = billboardVariants && (mesh->meshKindFlags & kMeshBillboardMask) != 0;
  const bool unlit = (mesh->meshFlags & kShadeMask) == kShadeUnlit;
  return ChooseTransform(depthTested, billboard, unlit)(mesh);
}

}  // namespace e3d
