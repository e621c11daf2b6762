// How a mesh is drawn: render, cull and shade modes, hiding, and the
// smoothing groups of single faces. The mode setters reach the whole subtree.
#include "objects/node_helpers.h"

#include "objects/mesh.h"

namespace {

using e3d::NodeKindOf;

// A node that the mode setters change: a mesh of either kind.
Mesh* AsMesh(void* node) {
  return e3d::NodeIsMesh(NodeKindOf(node)) ? static_cast<Mesh*>(node) : nullptr;
}

// Bits 20-26 that a render mode (option bit taken out) selects, or -1 to
// keep them: the three plain modes exactly, any texture-stage bit all seven.
int64_t RenderBits(uint32_t mode) {
  switch (mode) {
    case 0x00100000:
    case 0x00300000:
    case 0x00700000:
      return mode;
    default:
      return (mode & e3d::kMaterialStageMask) ? int64_t(e3d::kMeshRenderMask) : -1;
  }
}

void SetMasked(uint32_t& word, uint32_t mask, uint32_t value) {
  word = (word & ~mask) | (value & mask);
}

bool ValidFace(const Mesh* mesh, int32_t polygon) {
  return polygon >= 0 && polygon < mesh->meshPolygonCount;
}

}  // namespace

using namespace e3d;

E3D_API void E3D_CALL SetMeshRenderMode(Mesh* node, uint32_t mode) {
  int64_t bits = RenderBits(mode & ~kRenderOption);
  ForEachNode(node, [mode, bits](void* n) {
    Mesh* mesh = AsMesh(n);
    if (mesh == nullptr) return;
    if (bits >= 0) SetMasked(mesh->meshFlags, kMeshRenderMask, uint32_t(bits));
    SetMasked(mesh->meshFlags, kRenderOption, mode);
    SetMaterialRenderMode(&mesh->defaultMaterial, mode);
  });
}

// A billboard keeps its cull mode: it always faces the camera.
E3D_API void E3D_CALL SetMeshCullMode(Mesh* node, uint32_t mode) {
  ForEachNode(node, [mode](void* n) {
    Mesh* mesh = AsMesh(n);
    if (mesh != nullptr && (mesh->meshKindFlags & kMeshBillboardMask) == 0)
      SetMasked(mesh->meshFlags, kCullModeMask, mode);
  });
}

E3D_API void E3D_CALL SetMeshShadeMode(Mesh* node, uint32_t mode) {
  uint32_t shade = mode & kShadeModeMask;
  ForEachNode(node, [shade](void* n) {
    if (Mesh* mesh = AsMesh(n)) {
      SetMasked(mesh->meshFlags, kShadeModeMask, shade);
      SetMaterialShadeMode(&mesh->defaultMaterial, shade);
    }
  });
}

E3D_API void E3D_CALL HideMesh(Mesh* node) {
  ForEachNode(node, [](void* n) {
    if (Mesh* mesh = AsMesh(n)) mesh->meshFlags |= kMeshHidden;
  });
}

// Only kind 1 is shown again: a mesh of the second kind, once hidden, stays so.
E3D_API void E3D_CALL ShowMesh(Mesh* node) {
  ForEachNode(node, [](void* n) {
    if ((NodeKindOf(n) & kNodeKindMask) == kNodeMesh) static_cast<Mesh*>(n)->meshFlags &= ~kMeshHidden;
  });
}

E3D_API uint32_t E3D_CALL GetMeshRenderMode(const Mesh* mesh) { return mesh->meshFlags & kMeshRenderMask; }

E3D_API uint32_t E3D_CALL GetMeshCullMode(const Mesh* mesh) { return mesh->meshFlags & kCullModeMask; }

E3D_API uint32_t E3D_CALL GetMeshShadeMode(const Mesh* mesh) { return mesh->meshFlags & kShadeModeMask; }

E3D_API uint32_t E3D_CALL IsHiddenMesh(const Mesh* mesh) { return mesh->meshFlags & kMeshHidden; }

E3D_API void E3D_CALL SetMeshFaceSmoothG(Mesh* mesh, int32_t polygon, int32_t group) {
  if (!ValidFace(mesh, polygon) || group < 0 || group >= int32_t(kPolygonGroupCount)) return;
  SetMasked(mesh->polygons[polygon].polygonFlags, kPolygonGroupMask,
            uint32_t(group) << kPolygonGroupShift);
}

E3D_API int32_t E3D_CALL GetMeshFaceSmoothG(const Mesh* mesh, int32_t polygon) {
  return ValidFace(mesh, polygon) ? int32_t(PolygonGroup(&mesh->polygons[polygon])) : 0;
}
