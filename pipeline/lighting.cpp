// Per-mesh light set-up and the per-polygon and per-corner sums.
#include "pipeline/lighting.h"

#include "engine/math.h"
#include "objects/light.h"
#include "objects/mesh.h"
#include "pipeline/lighting_routines.h"

namespace e3d {

namespace {

// Calls visit for every enabled light of the list, up to the first null.
template <class Visit>
void ForEachEnabledLight(const Mesh* mesh, Visit visit) {
  Light* const* list = mesh->lightList;
  if (list == nullptr) return;
  for (uint32_t i = 0; i < kMeshLightListEntries && list[i] != nullptr; i++)
    if (LightIsEnabled(list[i])) visit(list[i]);
}

// A world-space point in the mesh's model space.
Vector3 ToModelSpace(const Mesh* mesh, const Vector3& p) {
  Vector3 v{p.x - mesh->pivot.x, p.y - mesh->pivot.y, p.z - mesh->pivot.z};
  MatrixInverseTransformPoint(&mesh->worldMatrix, &v);
  return v;
}

// Corner colours made during the current mesh walk. A vertex shared by
// several polygons is lit once for each normal, side, material and mode it is
// seen with: the lights, the vertices and the materials do not change during
// a walk. Direct-mapped by normal index; an entry counts only in the walk
// that made it, and outside a walk nothing is remembered.
struct CornerMemo {
  uint32_t walk;
  int32_t normal, vertex;
  uint32_t renderFlags;
  bool back;
  const Material* material;
  uint32_t color;
};
constexpr uint32_t kCornerMemoSize = 256;
CornerMemo cornerMemo[kCornerMemoSize];
uint32_t cornerWalk = 0;
bool cornerWalking = false;

void ClearSums() {
  lighting.sumRed = lighting.sumGreen = lighting.sumBlue = 0.0f;
}

// The summed light over the material's colours, one channel at a time.
void SumsToChannels(const Material* material, uint32_t renderFlags, uint32_t rgb[3]) {
  const float sums[3] = {lighting.sumRed, lighting.sumGreen, lighting.sumBlue};
  for (int c = 0; c < 3; c++) {
    double lit = sums[c] * LitScale(material, renderFlags, c);
    rgb[c] = ColorChannel(lit + material->colors[2][c] + material->colors[0][c]);
  }
}

}  // namespace

// Types 5, 18 and 21 are lit by the tables but not set up here: they keep
// the working vectors of an earlier set-up.
void SetupMeshLights(Mesh* mesh) {
  ForEachEnabledLight(mesh, [mesh](Light* light) {
    switch (LightType(light)) {
      case 2:
      case 3:
      case 19:
        light->localPosition = ToModelSpace(mesh, light->savedPosition);
        break;
      case 4:
      case 20: {
        Vector3 target = ToModelSpace(mesh, light->savedDirection);
        Vector3 p = ToModelSpace(mesh, light->savedPosition);
        light->localPosition = p;
        light->localDirection = Vector3{target.x - p.x, target.y - p.y, target.z - p.z};
        VectorNormalize(&light->localDirection);
        break;
      }
      default:
        break;
    }
  });
}

void LightPolygonFlat(const Mesh* mesh, MeshPolygon* polygon, uint32_t renderFlags,
                      const Material* material) {
  ClearSums();
  lighting.vertex = &mesh->vertices[polygon->vertexIndex[0]];
  lighting.polygon = polygon;
  const LightTable<FlatRoutine>& table =
      (polygon->polygonFlags & kPolygonBackFacing) ? LightFlatBackTable : LightFlatTable;
  ForEachEnabledLight(mesh, [&table](Light* light) {
    lighting.light = light;
    table[LightType(light)]();
  });
  uint32_t rgb[3];
  SumsToChannels(material, renderFlags, rgb);
  polygon->colors[0] = PackColor555(rgb[0], rgb[1], rgb[2]);
}

void BeginCornerMemo() {
  if (++cornerWalk == 0) {  // stamps wrapped: forget them all
    for (CornerMemo& m : cornerMemo) m.walk = 0;
    cornerWalk = 1;
  }
  cornerWalking = true;
}

void EndCornerMemo() { cornerWalking = false; }

void LightPolygonCorners(const Mesh* mesh, MeshPolygon* polygon, uint32_t renderFlags,
                         const Material* material) {
  const bool back = (polygon->polygonFlags & kPolygonBackFacing) != 0;
  const LightTable<CornerRoutine>& table = back ? LightCornerBackTable : LightCornerTable;
  lighting.polygon = polygon;
  for (int i = 0; i < 3; i++) {
    const int32_t vertex = polygon->vertexIndex[i], normalIndex = polygon->normalIndex[i];
    CornerMemo* memo = nullptr;
    if (cornerWalking) {
      memo = &cornerMemo[static_cast<uint32_t>(normalIndex) % kCornerMemoSize];
      if (memo->walk == cornerWalk && memo->normal == normalIndex && memo->vertex == vertex &&
          memo->renderFlags == renderFlags && memo->back == back && memo->material == material) {
        polygon->colors[i] = memo->color;
        continue;
      }
    }
    ClearSums();
    lighting.vertex = &mesh->vertices[vertex];
    // A mesh activated without vertex normals (or whose polygons outgrew them)
    // lights its corners with the face's own normal rather than reading past them.
    Vector3 faceNormal;
    const Vector3* normal = &faceNormal;
    if (mesh->normals != nullptr && normalIndex >= 0 && normalIndex < mesh->normalCount) {
      normal = &mesh->normals[normalIndex];
    } else {
      faceNormal = {polygon->plane[0], polygon->plane[1], polygon->plane[2]};
    }
    ForEachEnabledLight(mesh, [&table, normal](Light* light) {
      lighting.light = light;
      table[LightType(light)](normal);
    });
    uint32_t rgb[3];
    SumsToChannels(material, renderFlags, rgb);
    polygon->colors[i] = (rgb[0] << 16) | (rgb[1] << 8) | rgb[2];
    if (memo != nullptr) *memo = {cornerWalk, normalIndex, vertex, renderFlags, back, material, polygon->colors[i]};
  }
}

}  // namespace e3d
