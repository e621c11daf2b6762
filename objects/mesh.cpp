// Mesh creation and deletion, and the storage a mesh owns: the one-block
// layout, the own sort area and the bounding box.
#include "objects/mesh.h"

#include "engine/math.h"
#include "engine/memory.h"

namespace {

constexpr uint64_t AlignUp(uint64_t n, uint64_t a) { return (n + a - 1) & ~(a - 1); }

// Byte offsets of the parts of a one-block mesh. On i386 nothing needs
// padding and the total is 5100 + 4 ceil(V/32) + 40 V + 112 P.
struct BlockLayout {
  uint64_t vertices, vertexBits, polygons, lightList, total;
};

BlockLayout LayoutOf(int32_t vertexCount, int32_t polygonCount) {
  BlockLayout l;
  l.vertices = AlignUp(sizeof(Mesh), alignof(MeshVertex));
  l.vertexBits = l.vertices + uint64_t(vertexCount) * sizeof(MeshVertex);
  l.polygons = AlignUp(l.vertexBits + 4 * uint64_t(e3d::MeshVertexBitWords(vertexCount)),
                       alignof(MeshPolygon));
  l.lightList = AlignUp(l.polygons + uint64_t(polygonCount) * sizeof(MeshPolygon), alignof(Light*));
  l.total = l.lightList + e3d::kMeshLightListEntries * sizeof(Light*) + e3d::kMeshFurtherBytes;
  return l;
}

// Every field zero, then the values every new mesh starts with.
void InitRecord(Mesh* mesh, uint32_t color) {
  e3d::MemoryFill(mesh, 0, sizeof(Mesh));
  mesh->nodeKind = e3d::kNodeMesh;
  mesh->meshFlags = e3d::kMeshDefaultFlags;
  e3d::MatrixIdentity(&mesh->modelMatrix);
  e3d::MatrixIdentity(&mesh->frameMatrix);
  e3d::MatrixIdentity(&mesh->worldMatrix);
  e3d::MatrixIdentity(&mesh->cameraMatrix);
  Material* m = &mesh->defaultMaterial;
  m->flags = e3d::kMeshMaterialFlags;
  m->colors[1][0] = float((color >> 16) & 0xFF);
  m->colors[1][1] = float((color >> 8) & 0xFF);
  m->colors[1][2] = float(color & 0xFF);
  m->colors[1][3] = 255.0f;
}

}  // namespace

namespace e3d {

static_assert(sizeof(Mesh) % alignof(MeshVertex) == 0);
#if defined(__i386__)
static_assert(sizeof(Mesh) + kMeshLightListEntries * 4 + kMeshFurtherBytes == 5100,
              "one-block mesh: record, light list and further area are 5100 bytes");
static_assert(sizeof(MeshVertex) == 40 && sizeof(MeshPolygon) == 112);
#endif

uint32_t MeshBlockBytes(int32_t vertexCount, int32_t polygonCount) {
  return uint32_t(LayoutOf(vertexCount, polygonCount).total);
}

void FreeMeshSortArea(Mesh* mesh) {
  Release(mesh->ownSortIndexList);
  mesh->ownPolygonRecords = nullptr;
}

bool GiveMeshSortArea(Mesh* mesh, int32_t count) {
  PolygonRecord* records;
  uint32_t* area = AllocateSortArea(count, &records);
  FreeMeshSortArea(mesh);
  if (area == nullptr) return false;
  mesh->ownSortIndexList = area;
  mesh->ownPolygonRecords = records;
  return true;
}

void FreeMeshBoundingBox(Mesh* mesh) {
  if (mesh->boundingBox == nullptr) return;
  ReleaseMeshRecord(mesh->boundingBox);
  mesh->boundingBox = nullptr;
}

void ReleaseMeshRecord(Mesh* mesh) {
  FreeMeshBoundingBox(mesh);
  Release(mesh->workArray);
  FreeMeshSortArea(mesh);
  Release(mesh->children);
  Release(mesh->normals);
  Release(mesh->skinTable);
  if (MeshIsPieceBuilt(mesh)) {
    Release(mesh->vertices);
    Release(mesh->polygons);
  }
  FreeMemory(mesh);
}

}  // namespace e3d

E3D_API Mesh* E3D_CALL CreateMesh(int32_t vertexCount, int32_t polygonCount, uint32_t color) {
  Mesh* mesh;
  if (vertexCount > 0 && polygonCount > 0) {
    BlockLayout l = LayoutOf(vertexCount, polygonCount);
    if (l.total > 0xFFFFFFFFu) return nullptr;
    mesh = static_cast<Mesh*>(AllocateMemory(uint32_t(l.total)));
    if (mesh == nullptr) return nullptr;
    InitRecord(mesh, color);
    if (!e3d::GiveMeshSortArea(mesh, polygonCount)) {
      FreeMemory(mesh);
      return nullptr;
    }
    char* base = reinterpret_cast<char*>(mesh);
    mesh->vertices = reinterpret_cast<MeshVertex*>(base + l.vertices);
    mesh->vertexBits = reinterpret_cast<uint32_t*>(base + l.vertexBits);
    mesh->polygons = reinterpret_cast<MeshPolygon*>(base + l.polygons);
    mesh->lightList = reinterpret_cast<Light**>(base + l.lightList);
    for (uint32_t i = 0; i < e3d::kMeshLightListEntries; i++) mesh->lightList[i] = nullptr;
    mesh->vertexCount = vertexCount;
    mesh->meshPolygonCount = polygonCount;
    mesh->sortPolygonCount = polygonCount;
  } else if (vertexCount == 0 && polygonCount == 0) {
    mesh = e3d::Allocate<Mesh>();
    if (mesh == nullptr) return nullptr;
    InitRecord(mesh, color);
    mesh->meshKindFlags = e3d::kMeshPieceBuilt;
  } else {
    return nullptr;
  }
  return mesh;
}

E3D_API void E3D_CALL DeleteMesh(Mesh* mesh) {
  if (mesh == nullptr) return;
  e3d::DetachMeshFromWorld(mesh);
  mesh->hostObject = 0;
  e3d::ReleaseMeshRecord(mesh);
}
