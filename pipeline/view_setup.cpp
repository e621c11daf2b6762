// Per-draw view set-up: clip bounds, projection scale, the camera matrix,
// the saved view vectors and the world matrices of a scene's meshes.
#include "engine/fp.h"
#include "engine/math.h"
#include "engine/memory.h"
#include "objects/camera.h"
#include "objects/light.h"
#include "objects/mesh.h"
#include "objects/scene.h"
#include "pipeline/transform.h"

namespace e3d {

DrawState drawState;
ViewportClip viewClip;

void SetupViewportClip(const Viewport* vp) { viewClip = ViewportClipBounds(vp); }

// The stored aspect is negated. Aspect 1 drops the 0.75 factor, so 1 and
// 4:3 give the same scale: hosts rely on that jump.
void SetupProjectionScale(const Viewport* vp, Camera* camera) {
  const float halfAngle = camera->fov * 0.5f * 0.017453292f;
  const float base = vp->centerX / Tan(halfAngle);
  const float aspect = vp->aspect;
  camera->projScale = aspect + 1.0f != 0.0f ? base * (aspect * -0.75f) : base;
}

// Rows right, up, forward; straight up or down turns about x instead. The
// roll turns the rows about forward. The last column is the eye itself.
void BuildCameraMatrix(Camera* camera) {
  Vector3 d{camera->target.x - camera->position.x, camera->target.y - camera->position.y,
            camera->target.z - camera->position.z};
  VectorNormalize(&d);
  camera->direction = d;
  double rot[3][3];
  if (d.y != 1.0f && d.y != -1.0f) {
    const double dx = d.x, dy = d.y, dz = d.z;
    const double s = fp::Sqrt(1.0 - dy * dy);
    const double k = 1.0 / s;
    const double rows[3][3] = {{k * dz, 0.0, -k * dx}, {-dy * dx * k, s, -dz * dy * k}, {dx, dy, dz}};
    MemoryCopy(rot, rows, sizeof(rot));
  } else {
    const double sa = d.y < 0.0f ? -1.0 : 1.0;  // sin of -90 or +90 degrees; cos is 0
    const double rows[3][3] = {{1.0, 0.0, 0.0}, {0.0, 0.0, -sa}, {0.0, sa, 0.0}};
    MemoryCopy(rot, rows, sizeof(rot));
  }
  double sr, cr;
  SinCosD(static_cast<double>(camera->roll) * DegToRad, &sr, &cr);
  const double roll[3][3] = {{cr, -sr, 0.0}, {sr, cr, 0.0}, {0.0, 0.0, 1.0}};
  float* m = camera->cameraMatrix.m;
  for (int i = 0; i < 3; i++)
    for (int j = 0; j < 3; j++)
      m[4 * i + j] = static_cast<float>(roll[i][0] * rot[0][j] + roll[i][1] * rot[1][j] + roll[i][2] * rot[2][j]);
  m[3] = camera->position.x;
  m[7] = camera->position.y;
  m[11] = camera->position.z;
}

namespace {

void SaveLightVectors(Mesh* mesh) {
  if (Light** list = mesh->lightList)
    for (uint32_t i = 0; i < kMeshLightListEntries && list[i] != nullptr; i++) {
      list[i]->savedPosition = list[i]->position;
      list[i]->savedDirection = list[i]->direction;
    }
  ForEachChildMesh(mesh, SaveLightVectors);
}

}  // namespace

void SaveViewVectors(Camera* camera, Mesh* mesh) {
  camera->savedPosition = camera->position;
  camera->savedTarget = camera->target;
  SaveLightVectors(mesh);
}

// World = frame after model. A child's frame is its parent's world matrix;
// a top-level mesh keeps its own frame (the identity unless a host set it).
void UpdateMeshMatrices(Mesh* mesh, const Matrix34* parentWorld) {
  mesh->meshFlags &= ~(kMeshNearCrossing | kMeshOutside);
  if (parentWorld != nullptr) mesh->frameMatrix = *parentWorld;
  const Matrix34& f = mesh->frameMatrix;
  const Matrix34& a = mesh->modelMatrix;
  Matrix34& w = mesh->worldMatrix;
  MatrixMultiply3x3(&a, &f, &w);
  for (int row = 0; row < 3; row++) {
    const double t = static_cast<double>(f.m[4 * row]) * a.m[3] + static_cast<double>(f.m[4 * row + 1]) * a.m[7] +
                     static_cast<double>(f.m[4 * row + 2]) * a.m[11];
    w.m[4 * row + 3] = static_cast<float>(t + f.m[4 * row + 3]);
  }
  ForEachChildMesh(mesh, [mesh](Mesh* child) { UpdateMeshMatrices(child, &mesh->worldMatrix); });
}

void UpdateSceneMeshMatrices(Scene* scene) {
  for (Mesh* mesh = scene->firstMesh; mesh != nullptr; mesh = mesh->nextInScene) UpdateMeshMatrices(mesh, nullptr);
}

}  // namespace e3d
