// Vertex normals and axis-aligned bounding boxes of meshes.
#include <bit>

#include "engine/math.h"
#include "engine/memory.h"
#include "objects/mesh.h"

namespace {

// A vertex seen in the current smoothing group and the normal it got there.
struct VertexNormal {
  int32_t vertex;  // or, indexed by vertex, the run that saw it
  int32_t normal;
};

// The scratch blocks of one normal computation.
struct NormalScratch {
  Vector3* sums;       // three per polygon slot at most
  VertexNormal* seen;  // one per vertex at most
  uint32_t* groups;    // sort keys: smoothing group of each slot
  uint32_t* order;     // slots by ascending group, slot order within one

  bool Allocate(int32_t vertexCount, int32_t polygonCount) {
    sums = e3d::Allocate<Vector3>(3 * uint32_t(polygonCount));
    seen = e3d::Allocate<VertexNormal>(uint32_t(vertexCount));
    groups = e3d::Allocate<uint32_t>(uint32_t(polygonCount));
    order = e3d::Allocate<uint32_t>(uint32_t(polygonCount));
    return sums && seen && groups && order;
  }
  void Free() {
    e3d::Release(sums);
    e3d::Release(seen);
    e3d::Release(groups);
    e3d::Release(order);
  }
};

// Adds a face normal to normal n's sum; returns n.
int32_t AddFace(NormalScratch* s, int32_t n, const Vector3& face) {
  Vector3* sum = &s->sums[n];
  sum->x += face.x;
  sum->y += face.y;
  sum->z += face.z;
  return n;
}

// Sums the face normals of the polygons that share a vertex inside one
// smoothing group, unweighted; returns the number of normals made. Each run
// of one group starts with an empty table of the vertices seen in it.
int32_t SumGroupNormals(Mesh* mesh, NormalScratch* s) {
  const int32_t slots = mesh->meshPolygonCount;
  int32_t made = 0;
  for (int32_t i = 0; i < slots;) {
    const uint32_t group = s->groups[s->order[i]];
    int32_t seenCount = 0;
    for (; i < slots && s->groups[s->order[i]] == group; i++) {
      MeshPolygon* p = &mesh->polygons[s->order[i]];
      const Vector3 face = {p->plane[0], p->plane[1], p->plane[2]};
      for (int32_t k = 0; k < 3; k++) {
        const int32_t vertex = p->vertexIndex[k];
        int32_t j = 0;
        while (j < seenCount && s->seen[j].vertex != vertex) j++;
        if (j < seenCount) {
          p->normalIndex[k] = AddFace(s, s->seen[j].normal, face);
          continue;
        }
        // Only corners naming vertices outside the mesh can fill the table.
        if (seenCount < mesh->vertexCount) s->seen[seenCount++] = {vertex, made};
        s->sums[made] = face;
        p->normalIndex[k] = made++;
      }
    }
  }
  return made;
}

bool CornersInRange(const Mesh* mesh) {
  const uint32_t count = uint32_t(mesh->vertexCount);
  for (int32_t i = 0; i < mesh->meshPolygonCount; i++) {
    const int32_t* v = mesh->polygons[i].vertexIndex;
    if (uint32_t(v[0]) >= count || uint32_t(v[1]) >= count || uint32_t(v[2]) >= count) return false;
  }
  return true;
}

// The same sums when every corner names a vertex of the mesh: the table is
// indexed by vertex, an entry belonging to the run that stamped it, so the
// look-up costs no search.
int32_t SumGroupNormalsIndexed(Mesh* mesh, NormalScratch* s) {
  const int32_t slots = mesh->meshPolygonCount;
  for (int32_t v = 0; v < mesh->vertexCount; v++) s->seen[v].vertex = -1;
  int32_t made = 0;
  for (int32_t i = 0, run = 0; i < slots; run++) {
    const uint32_t group = s->groups[s->order[i]];
    for (; i < slots && s->groups[s->order[i]] == group; i++) {
      MeshPolygon* p = &mesh->polygons[s->order[i]];
      const Vector3 face = {p->plane[0], p->plane[1], p->plane[2]};
      for (int32_t k = 0; k < 3; k++) {
        VertexNormal* entry = &s->seen[p->vertexIndex[k]];
        if (entry->vertex == run) {
          p->normalIndex[k] = AddFace(s, entry->normal, face);
          continue;
        }
        *entry = {run, made};
        s->sums[made] = face;
        p->normalIndex[k] = made++;
      }
    }
  }
  return made;
}

// The new minimum and maximum are taken on the sign of the difference: a
// zero difference, of either sign, keeps the old value.
void Widen(float value, float* lo, float* hi) {
  const uint32_t below = __builtin_bit_cast(uint32_t, value - *lo);
  const uint32_t above = __builtin_bit_cast(uint32_t, value - *hi);
  if (int32_t(below) < 0 && below != 0x80000000u) *lo = value;
  if (int32_t(above) > 0) *hi = value;
}

// Corners of the box, and its faces as quads (the cube's face layout).
const int32_t kBoxQuads[6][4] = {{0, 1, 2, 3}, {1, 5, 6, 2}, {5, 4, 7, 6},
                                 {4, 0, 3, 7}, {4, 5, 1, 0}, {3, 2, 6, 7}};

}  // namespace

namespace e3d {

bool ComputeMeshNormals(Mesh* mesh) {
  mesh->normalCount = 0;
  Release(mesh->normals);
  const int32_t slots = mesh->meshPolygonCount;
  if (slots <= 0 || mesh->vertexCount <= 0) return true;
  NormalScratch s;
  if (!s.Allocate(mesh->vertexCount, slots)) {
    s.Free();
    return false;
  }
  ResetRadixSort(slots, s.order);
  for (int32_t i = 0; i < slots; i++) s.groups[i] = PolygonGroup(&mesh->polygons[i]);
  RadixLongSorter(slots, s.groups, s.order, 0);
  const int32_t made = CornersInRange(mesh) ? SumGroupNormalsIndexed(mesh, &s) : SumGroupNormals(mesh, &s);
  for (int32_t i = 0; i < made; i++) VectorNormalize(&s.sums[i]);
  Vector3* normals = Allocate<Vector3>(uint32_t(made));
  if (normals != nullptr) MemoryCopy(normals, s.sums, uint32_t(made) * uint32_t(sizeof(Vector3)));
  s.Free();
  if (normals == nullptr) return false;
  mesh->normals = normals;
  mesh->normalCount = made;
  return true;
}

}  // namespace e3d

// Out of memory leaves the mesh without normals (count 0, no array).
E3D_API void E3D_CALL CalcMeshVerticesNormal(Mesh* mesh) { e3d::ComputeMeshNormals(mesh); }

E3D_API Mesh* E3D_CALL CreateAABB(Mesh* mesh) {
  Vector3 lo = {0.0f, 0.0f, 0.0f};
  if (mesh->vertices != nullptr) {
    const MeshVertex* v = mesh->vertices;
    lo = {v[0].x, v[0].y, v[0].z};
  }
  Vector3 hi = lo;
  for (int32_t i = 1; i < mesh->vertexCount; i++) {
    const MeshVertex* v = &mesh->vertices[i];
    Widen(v->x, &lo.x, &hi.x);
    Widen(v->y, &lo.y, &hi.y);
    Widen(v->z, &lo.z, &hi.z);
  }
  Mesh* box = CreateMesh(8, 12, 0xFFFFFF);
  if (box == nullptr) return nullptr;
  const Vector3 corners[8] = {{lo.x, hi.y, lo.z}, {hi.x, hi.y, lo.z}, {hi.x, lo.y, lo.z}, {lo.x, lo.y, lo.z},
                              {lo.x, hi.y, hi.z}, {hi.x, hi.y, hi.z}, {hi.x, lo.y, hi.z}, {lo.x, lo.y, hi.z}};
  for (int32_t i = 0; i < 8; i++) SetMeshVertex(box, i, corners[i].x, corners[i].y, corners[i].z);
  for (int32_t f = 0; f < 6; f++) {
    const int32_t* q = kBoxQuads[f];
    SetMeshQuadPolygon(box, 2 * f, q[0], q[1], q[2], q[3], 0x7FFF, uint32_t(f));
  }
  Material* m = &box->defaultMaterial;
  SetMaterialRenderMode(m, 0x300000);
  SetMaterialShadeMode(m, 1);
  m->colors[1][0] = 255.0f;
  m->colors[1][1] = 255.0f;
  m->colors[1][2] = 255.0f;
  m->colors[1][3] = 0.0f;
  box->meshFlags = e3d::kMeshBoxFlags;
  return box;
}
