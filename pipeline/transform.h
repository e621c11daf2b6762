// The transform stage: per-draw view set-up, the per-mesh projector, lazy
// vertex projection with clip bits, and the eight polygon walks that cull,
// colour and queue a mesh's polygons as records. All state is module-wide:
// one draw at a time, on the caller's thread.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "objects/mesh.h"
#include "objects/polygon_record.h"
#include "viewport/viewport.h"

namespace e3d {

// Where the current draw goes and where its records are written. In the
// depth-buffer path the two lists share one buffer, growing toward each other.
struct DrawState {
  Viewport* viewport;
  Camera* camera;
  PolygonRecord* opaqueCursor;  // next unsorted record, moving toward the start
  int32_t opaqueCount;
  PolygonRecord* sortedCursor;  // next keyed record, moving toward the end
  int32_t sortedCount;
  MeshPolygon* currentPolygon;
};
extern DrawState drawState;

// The clip bounds of the draw: the scissor rectangle less the letter-box bars.
extern ViewportClip viewClip;

// Projects points of one mesh: its camera-space matrix and pivot, the
// viewport's centre and vertical sign, the camera's scale and near plane.
struct Projector {
  Matrix34 matrix;
  Vector3 pivot;
  float centerX, centerY, projectionSign, projScale, nearPlane, farPlane;
  bool nearRoutine;  // the mesh reaches the near plane: test every vertex

  // Writes the camera and screen words and the clip bits of v; returns the
  // depth the vertex adds to a key (the near distance when in front of it).
  float Project(MeshVertex* v) const;
  float ProjectNear(MeshVertex* v) const;
};
extern Projector projector;

// The view part of a projector: centre, sign, scale, near and far.
void SetProjectorView(Projector* p, const Viewport* vp, const Camera* camera);

// Calls visit for each child of the node that is a mesh, in child order.
template <class Visit>
void ForEachChildMesh(Mesh* mesh, Visit visit) {
  for (int32_t i = 0; i < mesh->childCount; i++) {
    void* child = mesh->children[i];
    if (NodeIsMesh(*static_cast<const uint32_t*>(child))) visit(static_cast<Mesh*>(child));
  }
}

// Per-draw set-up, in this order: clip bounds, then (after the world
// matrices) the camera's projection scale and matrix.
void SetupViewportClip(const Viewport* vp);
void SetupProjectionScale(const Viewport* vp, Camera* camera);
void BuildCameraMatrix(Camera* camera);

// Takes the camera's and the listed lights' current vectors as those of this
// draw, for the mesh and every mesh below it.
void SaveViewVectors(Camera* camera, Mesh* mesh);

// World matrices of the scene's meshes (children through their parents); the
// outside and near-crossing bits are cleared.
void UpdateSceneMeshMatrices(Scene* scene);
void UpdateMeshMatrices(Mesh* mesh, const Matrix34* parentWorld);

// The mesh's camera-space matrix from its world matrix and the camera,
// turned by its billboard mode when asked.
void FormCameraSpace(Mesh* mesh, const Camera* camera, bool billboard);

// Scene visibility: camera-space matrices and the outside and near-crossing
// bits of every mesh, from its bounding box.
void MarkSceneVisibility(Scene* scene);
void TestMeshBounds(Mesh* mesh);

// Per-mesh set-up of the projector and the vertex-done bits.
void BeginMeshTransform(Mesh* mesh, const Viewport* vp, const Camera* camera);

// Projects the corners a, b, c not yet projected this draw; true when all
// three share a clip bit (the polygon is rejected). The keyed form sums
// their depths into *key.
bool FetchTriangle(Mesh* mesh, int32_t a, int32_t b, int32_t c, float* key);
bool FetchTriangleNoKey(Mesh* mesh, int32_t a, int32_t b, int32_t c);

// Environment texel pairs of the polygon's corners from their normals.
void ComputeEnvironmentCoords(const Mesh* mesh, MeshPolygon* polygon);

// The polygon walks. Each writes the records of the mesh's kept polygons at
// the cursors of drawState and returns how many it wrote. Billboard walks
// take the first material and never cull; Z walks queue opaque polygons
// unsorted.
int32_t TransformMeshUnlit(Mesh* mesh);
int32_t TransformMeshLit(Mesh* mesh);
int32_t TransformBillboardUnlit(Mesh* mesh);
int32_t TransformBillboardLit(Mesh* mesh);
int32_t TransformMeshUnlitZ(Mesh* mesh);
int32_t TransformMeshLitZ(Mesh* mesh);
int32_t TransformBillboardUnlitZ(Mesh* mesh);
int32_t TransformBillboardLitZ(Mesh* mesh);

// The walk for a path, a billboard mode and a shade mode.
typedef int32_t (*TransformVariant)(Mesh* mesh);
TransformVariant ChooseTransform(bool depthTested, bool billboard, bool unlit);

// Sets up the projector for the mesh and runs the walk chosen by its modes,
// unless its polygons would overflow the free records (a mesh changed after
// its buffer was sized); returns the records written.
int32_t TransformMesh(Mesh* mesh, bool depthTested, bool billboardVariants, int32_t freeRecords);

}  // namespace e3d
