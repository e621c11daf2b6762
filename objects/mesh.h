// The mesh record: vertices, triangles, the embedded default material, the
// placement matrices and the links into a scene and a node hierarchy.
#pragma once
#include <stddef.h>
#include <stdint.h>

#include "engine3d.h"
#include "objects/material.h"
#include "objects/polygon_record.h"

namespace e3d {
inline constexpr int32_t kMeshNameSize = 32;  // terminator included
}

// Completes the header's opaque handle; fields in the interface's order. The
// first four words are the node header shared with cameras and lights.
//
// A mesh is either one block (CreateMesh with both counts > 0, and every
// validated mesh): record, vertices, vertex bits, polygons, light list and a
// further area in one allocation, plus an own sort area; or piece-built
// (CreateMesh(0, 0, c)): the record alone, with vertex and polygon arrays
// grown one element at a time, and no light list or sort area.
struct Mesh {
  uint32_t nodeKind;            // kNodeMesh
  void* parent;                 // parent node, null at top level
  void** children;              // childCount entries, attachment order
  int32_t childCount;
  uint32_t meshFlags;           // kMesh... bits
  uint32_t meshKindFlags;       // billboard mode in bits 4-8, kMeshPieceBuilt
  int32_t vertexCount;
  int32_t meshPolygonCount;     // polygon slots; a quad takes two
  int32_t sortPolygonCount;     // own polygons plus those of all mesh nodes below
  MeshVertex* vertices;
  void* workArray;              // the pipeline's, freed with the mesh
  MeshPolygon* polygons;
  uint32_t* vertexBits;         // one bit per vertex: transformed this draw
  uint32_t* ownSortIndexList;   // sort area when not in a scene: 20 bytes a polygon,
  PolygonRecord* ownPolygonRecords;  // its records 4 bytes a polygon after its start
  Vector3 pivot;                // added to every position before placement
  Matrix34 modelMatrix;         // orientation and position
  Matrix34 frameMatrix;         // combined with modelMatrix into worldMatrix
  Matrix34 worldMatrix;
  Matrix34 cameraMatrix;        // camera space, formed every draw
  Mesh* boundingBox;            // eight-vertex box mesh from CreateAABB, owned
  Light** lightList;            // kMeshMaxLights entries, null-terminated when not full
  Material defaultMaterial;     // polygons point here until given a material
  Mesh* prevInScene;            // links of the scene's mesh list
  Mesh* nextInScene;
  char name[e3d::kMeshNameSize];
  Viewport* meshViewport;       // target of DrawMesh
  Scene* ownerScene;            // scene whose list holds the mesh
  uintptr_t hostObject;         // non-zero: kept by DeleteScene
  int32_t normalCount;          // vertex normals, one per vertex per smoothing group
  Vector3* normals;             // normalCount entries, owned
  void* skinTable;              // 32 bytes a vertex, owned
  int32_t drawRecordCount;      // records written by the last DrawMesh
};
#if defined(__i386__)
static_assert(sizeof(Mesh) == 748, "Mesh record is 187 words on i386");
static_assert(__builtin_offsetof(Mesh, meshFlags) == 4 * 4);
static_assert(__builtin_offsetof(Mesh, vertexCount) == 4 * 6);
static_assert(__builtin_offsetof(Mesh, vertices) == 4 * 9);
static_assert(__builtin_offsetof(Mesh, ownPolygonRecords) == 4 * 14);
static_assert(__builtin_offsetof(Mesh, pivot) == 4 * 15);
static_assert(__builtin_offsetof(Mesh, modelMatrix) == 4 * 18);
static_assert(__builtin_offsetof(Mesh, boundingBox) == 4 * 66);
static_assert(__builtin_offsetof(Mesh, defaultMaterial) == 4 * 68);
static_assert(__builtin_offsetof(Mesh, prevInScene) == 4 * 170);
static_assert(__builtin_offsetof(Mesh, hostObject) == 4 * 182);
#endif

namespace e3d {

// nodeKind, the low six bits: kinds 1 and 2 are drawn as meshes.
inline constexpr uint32_t kNodeKindMask = 0x3F;
inline constexpr uint32_t kNodeMesh = 0x1;
inline constexpr uint32_t kNodeMesh2 = 0x2;

// meshFlags.
inline constexpr uint32_t kMeshSkipped = 0x2000;      // not drawn, like a hidden mesh
inline constexpr uint32_t kMeshHidden = 0x4000;
inline constexpr uint32_t kMeshValidated = 0x8000;
inline constexpr uint32_t kMeshOutside = 0x20000;     // box wholly outside the view
inline constexpr uint32_t kMeshNearCrossing = 0x80000;  // box reaches the near plane
inline constexpr uint32_t kMeshRenderMask = 0x07F00000;  // render mode and texture stages
inline constexpr uint32_t kMeshDefaultFlags = 0x07F00027;
inline constexpr uint32_t kMeshBoxFlags = 0x00300021;

// meshKindFlags.
inline constexpr uint32_t kMeshBillboardMask = 0x1F0;
inline constexpr uint32_t kMeshPieceBuilt = 0x1;  // vertex and polygon arrays are blocks of their own

// polygonFlags. Edge e joins corner e and corner e + 1 (mod 3).
inline constexpr uint32_t kPolygonBackFacing = 0x80;   // camera sees the back side this draw
inline constexpr uint32_t kPolygonEdge01 = 0x200;
inline constexpr uint32_t kPolygonEdge12 = 0x400;
inline constexpr uint32_t kPolygonEdge20 = 0x800;
inline constexpr uint32_t kPolygonEdgeMask = 0xE00;
inline constexpr uint32_t kPolygonGroupShift = 12;
inline constexpr uint32_t kPolygonGroupMask = 0x1F000;
inline constexpr uint32_t kPolygonGroupCount = 32;
inline constexpr uint32_t kPolygonTextured = 0x07800000;
inline constexpr uint32_t kPolygonTriangle = 0x00700E47;
inline constexpr uint32_t kPolygonQuadFirst = 0x00700C47;   // quad halves: the shared
inline constexpr uint32_t kPolygonQuadSecond = 0x00700647;  // diagonal is not an edge

// Default material of a new mesh.
inline constexpr uint32_t kMeshMaterialFlags = 0x00700063;

// Bytes of the one-block area behind the light list (the pipeline's).
inline constexpr uint32_t kMeshFurtherBytes = 4096;
inline constexpr uint32_t kMeshLightListEntries = 64;

inline uint32_t PolygonGroup(const MeshPolygon* polygon) {
  return (polygon->polygonFlags & kPolygonGroupMask) >> kPolygonGroupShift;
}
inline bool NodeIsMesh(uint32_t nodeKind) {
  uint32_t kind = nodeKind & kNodeKindMask;
  return kind == kNodeMesh || kind == kNodeMesh2;
}
inline bool MeshIsPieceBuilt(const Mesh* mesh) {
  return (mesh->meshKindFlags & kMeshPieceBuilt) != 0;
}
inline uint32_t MeshVertexBitWords(int32_t vertexCount) {
  return (static_cast<uint32_t>(vertexCount) + 31) / 32;
}

// Size of the one-block allocation for V vertices and P polygon slots.
uint32_t MeshBlockBytes(int32_t vertexCount, int32_t polygonCount);

// Gives the mesh a new own sort area of 20 bytes a polygon for count polygons
// (freeing the old one) and resets the sorter on it. False when out of memory:
// the mesh then has no sort area.
bool GiveMeshSortArea(Mesh* mesh, int32_t count);
void FreeMeshSortArea(Mesh* mesh);

// Frees the bounding box (its inner sort area first) and clears the reference.
void FreeMeshBoundingBox(Mesh* mesh);
// Replaces the bounding box by a new one from CreateAABB; false when that fails
// (the mesh then has none).
bool RebuildMeshBoundingBox(Mesh* mesh);

// Vertex normals as CalcMeshVerticesNormal computes them; false when out of
// memory, leaving the mesh without normals.
bool ComputeMeshNormals(Mesh* mesh);

// Frees everything the mesh owns and the record itself, without touching the
// scene or the hierarchy: what DeleteMesh does once the mesh is unlinked.
void ReleaseMeshRecord(Mesh* mesh);

// Takes the mesh out of its scene and out of the node hierarchy (children
// are detached and, when untagged, freed). Called by DeleteMesh first.
void DetachMeshFromWorld(Mesh* mesh);

}  // namespace e3d
