// Scene visibility: every mesh's camera-space matrix (billboards turned to
// face the view) and its classification by bounding box: wholly outside one
// bound, reaching the near plane, or neither.
#include "engine/math.h"
#include "objects/camera.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "pipeline/transform.h"

namespace e3d {

namespace {

// Columns a billboard mode sets to identity columns: bit j for column j.
uint32_t BillboardColumns(uint32_t mode) {
  switch (mode) {
    case 16: return 7;   // all: the mesh always faces the view plane
    case 64: return 6;   // keeps the model x axis
    case 128: return 5;  // keeps the model y axis
    case 256: return 3;  // keeps the model z axis
    default: return 0;
  }
}

void SetIdentityColumns(Matrix34* m, uint32_t columns) {
  for (int j = 0; j < 3; j++)
    if (columns & (1u << j))
      for (int i = 0; i < 3; i++) m->m[4 * i + j] = i == j ? 1.0f : 0.0f;
}

void ClassifyNode(Mesh* mesh, const Camera* camera, bool billboard) {
  FormCameraSpace(mesh, camera, billboard);
  if (Mesh* box = mesh->boundingBox) {
    box->worldMatrix = mesh->worldMatrix;
    box->cameraMatrix = mesh->cameraMatrix;
  }
  TestMeshBounds(mesh);
}

// A child's flags are not cleared: the world-matrix update did that.
void MarkNodeVisibility(Mesh* mesh, const Camera* camera) {
  if (NodeIsMesh(mesh->nodeKind)) ClassifyNode(mesh, camera, false);
  ForEachChildMesh(mesh, [camera](Mesh* child) { MarkNodeVisibility(child, camera); });
}

}  // namespace

void FormCameraSpace(Mesh* mesh, const Camera* camera, bool billboard) {
  MatrixMultiplyRelative(&mesh->worldMatrix, &camera->cameraMatrix, &mesh->cameraMatrix);
  if (!billboard) return;
  const uint32_t columns = BillboardColumns(mesh->meshKindFlags & kMeshBillboardMask);
  SetIdentityColumns(&mesh->cameraMatrix, columns);
  SetIdentityColumns(&mesh->worldMatrix, columns);
}

// A corner exactly on the near plane reaches it; one on a screen bound is
// inside. All eight corners beyond one bound (or the near plane) put the
// mesh outside.
void TestMeshBounds(Mesh* mesh) {
  Mesh* box = mesh->boundingBox;
  if (box == nullptr || box->vertexCount < 8) return;
  Projector p;
  SetProjectorView(&p, drawState.viewport, drawState.camera);
  p.matrix = mesh->cameraMatrix;
  p.pivot = mesh->pivot;
  uint32_t mask = ~0u;
  for (int i = 0; i < 8; i++) {
    MeshVertex* corner = &box->vertices[i];
    p.ProjectNear(corner);
    if (corner->outcode & E3D_OUT_NEAR) {
      mesh->meshFlags |= kMeshNearCrossing;
      box->meshFlags |= kMeshNearCrossing;
    }
    mask &= corner->outcode;
  }
  if (mask != 0) mesh->meshFlags |= kMeshOutside;
}

void MarkSceneVisibility(Scene* scene) {
  const Camera* camera = drawState.camera;
  for (Mesh* mesh = scene->firstMesh; mesh != nullptr; mesh = mesh->nextInScene) {
    mesh->meshFlags &= ~(kMeshOutside | kMeshNearCrossing);
    if (mesh->boundingBox != nullptr) mesh->boundingBox->meshFlags &= ~(kMeshOutside | kMeshNearCrossing);
    if (mesh->childCount != 0)
      MarkNodeVisibility(mesh, camera);
    else
      ClassifyNode(mesh, camera, true);
  }
}

}  // namespace e3d
