// Vertex projection: camera space, screen position and clip bits, each
// vertex at most once per mesh per draw.
#include "engine/memory.h"
#include "objects/camera.h"
#include "objects/mesh.h"
#include "pipeline/transform.h"

namespace e3d {

Projector projector;

namespace {

inline float Row(const Matrix34& m, int row, float x, float y, float z) {
  const float* r = &m.m[4 * row];
  return r[0] * x + r[1] * y + r[2] * z + r[3];
}

// A value on a bound is inside.
inline uint32_t ClipBits(float sx, float sy) {
  uint32_t bits = 0;
  if (sx < viewClip.left) bits = E3D_OUT_LEFT;
  else if (sx > viewClip.right) bits = E3D_OUT_RIGHT;
  if (sy < viewClip.top) bits |= E3D_OUT_TOP;
  else if (sy > viewClip.bottom) bits |= E3D_OUT_BOTTOM;
  return bits;
}

// A vertex whose numbers mean nothing (a NaN or an infinity from the host's
// positions or placement, or a point so far out that cutting its edges at
// the screen bounds would overflow) gets this bit, and every polygon that
// uses it is left out of the draw: its cuts would give NaN corners.
constexpr uint32_t kOutUnusable = 0x400;
constexpr float kUsableLimit = 1e30f;

inline bool Usable(float a, float b, float c) {
  auto within = [](float x) { return x >= -kUsableLimit && x <= kUsableLimit; };  // false for NaN
  return within(a) && within(b) && within(c);
}

}  // namespace

float Projector::Project(MeshVertex* v) const {
  const float x = v->x + pivot.x, y = v->y + pivot.y, z = v->z + pivot.z;
  const float cz = Row(matrix, 2, x, y, z);
  v->camZ = cz;
  v->invZ = 1.0f / cz;
  const float sx = projScale * v->invZ;
  const float sy = projectionSign * sx;
  v->camX = Row(matrix, 0, x, y, z);
  v->screenX = sx * v->camX + centerX;
  v->camY = Row(matrix, 1, x, y, z);
  v->screenY = sy * v->camY + centerY;
  v->outcode = ClipBits(v->screenX, v->screenY);
  if (!Usable(v->screenX, v->screenY, cz) || !Usable(v->camX, v->camY, 0.0f)) v->outcode |= kOutUnusable;
  return cz;
}

// In front of the near plane only the camera words are written, and the
// vertex adds the near distance, not its own depth, to the first key.
float Projector::ProjectNear(MeshVertex* v) const {
  const float x = v->x + pivot.x, y = v->y + pivot.y, z = v->z + pivot.z;
  const float cz = Row(matrix, 2, x, y, z);
  if (cz - nearPlane > 0.0f) return Project(v);
  v->camZ = cz;
  v->outcode = E3D_OUT_NEAR;
  v->invZ = 1.0f / nearPlane;
  v->camX = Row(matrix, 0, x, y, z);
  v->camY = Row(matrix, 1, x, y, z);
  if (!Usable(v->camX, v->camY, cz)) v->outcode |= kOutUnusable;
  return nearPlane;
}

void SetProjectorView(Projector* p, const Viewport* vp, const Camera* camera) {
  p->centerX = vp->centerX;
  p->centerY = vp->centerY;
  p->projectionSign = vp->projectionSign;
  p->projScale = camera->projScale;
  p->nearPlane = camera->nearPlane;
  p->farPlane = camera->farPlane;
}

void BeginMeshTransform(Mesh* mesh, const Viewport* vp, const Camera* camera) {
  Projector& p = projector;
  SetProjectorView(&p, vp, camera);
  p.matrix = mesh->cameraMatrix;
  p.pivot = mesh->pivot;
  p.nearRoutine = (mesh->meshFlags & kMeshNearCrossing) != 0;
  if (mesh->vertexBits != nullptr) MemoryFill(mesh->vertexBits, 0, static_cast<int32_t>(MeshVertexBitWords(mesh->vertexCount) * 4));
}

namespace {

inline float FetchVertex(Mesh* mesh, int32_t i) {
  uint32_t& word = mesh->vertexBits[i >> 5];
  const uint32_t bit = 1u << (i & 31);
  MeshVertex* v = &mesh->vertices[i];
  if (word & bit) return v->camZ;
  word |= bit;
  return projector.nearRoutine ? projector.ProjectNear(v) : projector.Project(v);
}

inline bool SharesClipBit(const Mesh* mesh, int32_t a, int32_t b, int32_t c) {
  const MeshVertex* v = mesh->vertices;
  return (v[a].outcode & v[b].outcode & v[c].outcode) != 0 ||
         ((v[a].outcode | v[b].outcode | v[c].outcode) & kOutUnusable) != 0;
}

}  // namespace

// The key adds each vertex's depth as its own projection returned it or, when
// projected earlier, its stored depth: a vertex in front of the near plane
// adds the near distance only to the first key that reaches it.
bool FetchTriangle(Mesh* mesh, int32_t a, int32_t b, int32_t c, float* key) {
  float sum = 0.0f;
  sum += FetchVertex(mesh, a);
  sum += FetchVertex(mesh, b);
  sum += FetchVertex(mesh, c);
  *key = sum;
  return SharesClipBit(mesh, a, b, c);
}

bool FetchTriangleNoKey(Mesh* mesh, int32_t a, int32_t b, int32_t c) {
  FetchVertex(mesh, a);
  FetchVertex(mesh, b);
  FetchVertex(mesh, c);
  return SharesClipBit(mesh, a, b, c);
}

// Each corner's normal, offset by the pivot like a position, turned into
// camera space without translation: its x and y are the environment pair.
void ComputeEnvironmentCoords(const Mesh* mesh, MeshPolygon* polygon) {
  const float* m = projector.matrix.m;
  for (int k = 0; k < 3; k++) {
    const Vector3& n = mesh->normals[polygon->normalIndex[k]];
    const float x = n.x + projector.pivot.x, y = n.y + projector.pivot.y, z = n.z + projector.pivot.z;
    polygon->corners[k].envU = m[0] * x + m[1] * y + m[2] * z;
    polygon->corners[k].envV = m[4] * x + m[5] * y + m[6] * z;
  }
}

}  // namespace e3d
