// Meshes: the one-block layout, polygon setters, piece-by-piece growth,
// validation and deletion.
#include <cmath>
#include <cstring>
#include <vector>

#include "mesh_fixture.h"

namespace {

using MeshTest = MeshFixture;

const float kSquare[4][3] = {{0, 0, 2}, {1, 0, 2}, {1, 1, 2}, {0, 1, 2}};

// A one-block mesh whose first four vertices are the square.
Mesh* Square(int32_t vertices, int32_t slots) {
  Mesh* mesh = CreateMesh(vertices, slots, 0);
  for (int i = 0; i < 4; i++) SetMeshVertex(mesh, i, kSquare[i][0], kSquare[i][1], kSquare[i][2]);
  return mesh;
}
// The square built piece by piece, with its first `tris` of two triangles.
Mesh* PieceSquare(int tris = 2) {
  Mesh* mesh = CreateMesh(0, 0, 0x102030);
  for (auto& v : kSquare) AddMeshVertex(mesh, v[0], v[1], v[2]);
  if (tris > 0) AddMeshTriPolygon(mesh, 0, 1, 2, 0, 0);
  if (tris > 1) AddMeshTriPolygon(mesh, 0, 2, 3, 0, 0);
  return mesh;
}
std::vector<unsigned char> Bytes(const void* p, size_t n) {
  const unsigned char* b = static_cast<const unsigned char*>(p);
  return std::vector<unsigned char>(b, b + n);
}

TEST_F(MeshTest, CreationLayoutAndDefaults) {
  for (auto c : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-1, -1}})
    EXPECT_EQ(CreateMesh(c.first, c.second, 0), nullptr) << c.first << "," << c.second;
  EXPECT_EQ(testhost::Allocations(), 0u);
  Mesh* mesh = CreateMesh(33, 6, 0xFF8000);
  ASSERT_NE(mesh, nullptr);
  EXPECT_EQ(Blocks(), 2u);  // the block and the own sort area
  EXPECT_EQ(BlockBytes(), e3d::MeshBlockBytes(33, 6) + 4 * 6 + 6 * sizeof(PolygonRecord));
  // Record, vertices, vertex bits, polygons, light list: in this order, in one block.
  char* base = reinterpret_cast<char*>(mesh);
  EXPECT_EQ(reinterpret_cast<char*>(mesh->vertices), base + sizeof(Mesh));
  EXPECT_EQ(reinterpret_cast<char*>(mesh->lightList), reinterpret_cast<char*>(mesh->polygons + 6));
  EXPECT_EQ(base + e3d::MeshBlockBytes(33, 6) - e3d::kMeshFurtherBytes,
            reinterpret_cast<char*>(mesh->lightList + 64));
  for (uint32_t i = 0; i < 6; i++) EXPECT_EQ(mesh->ownSortIndexList[i], i);
  const float colors[3][4] = {{0, 0, 0, 0}, {255, 128, 0, 255}, {0, 0, 0, 0}};  // not left as poison
  EXPECT_EQ(std::memcmp(mesh->defaultMaterial.colors, colors, sizeof colors), 0);
  DeleteMesh(mesh);
}

TEST_F(MeshTest, PolygonsStoreCornersReversedWithFlagsAndPlane) {
  Mesh* mesh = Square(4, 6);
  ASSERT_EQ(SetMeshTriPolygon(mesh, 0, 0, 1, 2, 0, 0), 1);
  const MeshPolygon* p = &mesh->polygons[0];
  EXPECT_EQ(p->polygonFlags, 0x00700E47u);
  EXPECT_TRUE(p->vertexIndex[0] == 2 && p->vertexIndex[1] == 1 && p->vertexIndex[2] == 0);
  EXPECT_TRUE(p->material == &mesh->defaultMaterial && p->backMaterial == &mesh->defaultMaterial);
  // Reversed corners face -z; the plane n.p + d = 0 holds at z = 2.
  EXPECT_TRUE(p->plane[0] == 0.0f && p->plane[1] == 0.0f && p->plane[2] == -1.0f);
  EXPECT_FLOAT_EQ(p->plane[3], 2.0f);
  SetMeshTriPolygon(mesh, 1, 0, 1, 2, 0, 32);  // groups beyond 31 are none
  EXPECT_EQ(mesh->polygons[1].polygonFlags, 0x00700E47u);

  // Quad a, b, c, d: triangles (d, b, a) and (d, c, b), diagonal hidden in both.
  ASSERT_EQ(SetMeshQuadPolygon(mesh, 2, 0, 1, 2, 3, 0, 7), 1);
  const MeshPolygon* q = &mesh->polygons[2];
  EXPECT_EQ(q[0].polygonFlags, 0x00700C47u | (7u << 12));
  EXPECT_EQ(q[1].polygonFlags, 0x00700647u | (7u << 12));
  EXPECT_TRUE(q[0].vertexIndex[0] == 3 && q[0].vertexIndex[1] == 1 && q[0].vertexIndex[2] == 0);
  EXPECT_TRUE(q[1].vertexIndex[0] == 3 && q[1].vertexIndex[1] == 2 && q[1].vertexIndex[2] == 1);
  // Texture coordinates go to the corners in reverse too, and mark the polygon.
  SetMeshTriTexCoords(mesh, 0, 0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f);
  EXPECT_EQ(p->polygonFlags, 0x00700E47u | 0x07800000u);
  EXPECT_TRUE(p->corners[2].u == 0.1f && p->corners[2].v == 0.2f && p->corners[1].u == 0.3f &&
              p->corners[0].v == 0.6f);
  SetMeshQuadTexCoords(mesh, 2, 1, 2, 3, 4, 5, 6, 7, 8);  // (d, b, a) and (d, c, b) again
  EXPECT_TRUE(q[0].corners[0].u == 7 && q[0].corners[1].v == 4 && q[1].corners[1].u == 5);
  // A triangle on one line has no direction.
  SetMeshVertex(mesh, 3, 2, 0, 2);
  ASSERT_EQ(SetMeshTriPolygon(mesh, 4, 0, 1, 3, 0, 0), 1);
  EXPECT_TRUE(std::isnan(mesh->polygons[4].plane[0]));
  DeleteMesh(mesh);
}

TEST_F(MeshTest, RefusalsLeaveTheMeshUnchanged) {
  Mesh* mesh = Square(4, 4);
  SetMeshQuadPolygon(mesh, 0, 0, 1, 2, 3, 0, 1);
  SetMeshQuadPolygon(mesh, 2, 0, 1, 2, 3, 0, 2);
  const auto before = Bytes(mesh, e3d::MeshBlockBytes(4, 4));
  // Slot or vertex out of range, or a corner repeated.
  const int32_t badTris[][4] = {{4, 0, 1, 2}, {0, -1, 1, 2}, {0, 0, 1, 4}, {0, 1, 2, 1}};
  for (auto& t : badTris) EXPECT_EQ(SetMeshTriPolygon(mesh, t[0], t[1], t[2], t[3], 0, 0), 0);
  const int32_t badQuads[][5] = {{3, 0, 1, 2, 3}, {0, 0, 1, 2, 4}, {0, 0, 1, 2, 0}};
  for (auto& q : badQuads) EXPECT_EQ(SetMeshQuadPolygon(mesh, q[0], q[1], q[2], q[3], q[4], 0, 0), 0);
  EXPECT_EQ(SetMeshVertex(mesh, -1, 9, 9, 9) + SetMeshVertex(mesh, 5, 9, 9, 9), 0);
  SetMeshTriTexCoords(mesh, 5, 9, 9, 9, 9, 9, 9);
  SetMeshQuadTexCoords(mesh, -1, 9, 9, 9, 9, 9, 9, 9, 9);
  // The piece-by-piece builders refuse a one-block mesh.
  EXPECT_EQ(AddMeshVertex(mesh, 9, 9, 9), 0);
  EXPECT_EQ(AddMeshTriPolygon(mesh, 0, 1, 2, 0, 0), 0);
  EXPECT_EQ(AddMeshQuadPolygon(mesh, 0, 1, 2, 3, 0, 0), 1);
  EXPECT_TRUE(Bytes(mesh, e3d::MeshBlockBytes(4, 4)) == before);

  // The vertex and texture-coordinate index tests include the count itself:
  // those writes land just past the last element, inside the block.
  EXPECT_EQ(SetMeshVertex(mesh, 4, 9, 9, 9), 1);
  EXPECT_EQ(mesh->vertices[4].x, 9.0f);
  SetMeshTriTexCoords(mesh, 4, 9, 9, 9, 9, 9, 9);
  EXPECT_EQ(mesh->polygons[4].polygonFlags, 0x07800000u);
  EXPECT_EQ(reinterpret_cast<void*>(&mesh->polygons[4]), reinterpret_cast<void*>(mesh->lightList));
  DeleteMesh(mesh);
}

TEST_F(MeshTest, PieceBuiltMeshGrowsOneAtATime) {
  Mesh* mesh = CreateMesh(0, 0, 0);
  // Nothing to write into yet, not even at the count itself.
  EXPECT_EQ(SetMeshVertex(mesh, 0, 1, 1, 1), 0);
  SetMeshTriTexCoords(mesh, 0, 9, 9, 9, 9, 9, 9);
  for (auto& v : kSquare) ASSERT_EQ(AddMeshVertex(mesh, v[0], v[1], v[2]), 1);
  EXPECT_EQ(AddMeshTriPolygon(mesh, 0, 1, 2, 0, 3), 1);
  EXPECT_EQ(mesh->polygons[0].polygonFlags, 0x00700E47u | (3u << 12));
  // A refused triangle keeps its new, unset slot.
  EXPECT_EQ(AddMeshTriPolygon(mesh, 0, 0, 1, 0, 0), 0);
  EXPECT_EQ(mesh->meshPolygonCount, 2);
  EXPECT_EQ(Blocks(), 3u);
  // Each array keeps one element of room for the setters' inclusive index tests.
  EXPECT_EQ(BlockBytes(), sizeof(Mesh) + 5 * sizeof(MeshVertex) + 3 * sizeof(MeshPolygon));
  EXPECT_EQ(SetMeshVertex(mesh, 4, 9, 9, 9), 1);
  SetMeshTriTexCoords(mesh, 2, 9, 9, 9, 9, 9, 9);
  SetMeshQuadTexCoords(mesh, 1, 9, 9, 9, 9, 9, 9, 9, 9);
  // Out of memory while growing refuses and keeps what was there.
  testhost::FailAllocation(1);
  EXPECT_EQ(AddMeshVertex(mesh, 5, 5, 5), 0);
  EXPECT_TRUE(mesh->vertexCount == 4 && mesh->vertices[3].y == 1.0f);
  DeleteMesh(mesh);  // frees the separate arrays as well
}

TEST_F(MeshTest, ValidatingPieceBuiltMeshMakesNewOneBlockMesh) {
  Mesh* src = PieceSquare();
  Material other;
  src->polygons[1].backMaterial = &other;
  src->hostObject = 77;
  src->meshFlags |= 0x4000;
  std::strcpy(src->name, "Piece");
  src->workArray = AllocateMemory(16);
  ASSERT_EQ(Blocks(), 4u);

  Mesh* mesh = ValidateMesh(src);
  ASSERT_NE(mesh, nullptr);
  // The old record, its two arrays and its work array are gone; the new mesh
  // has its block, sort area, normals, and a box of block and sort area.
  EXPECT_EQ(Blocks(), 5u);
  EXPECT_FALSE(e3d::MeshIsPieceBuilt(mesh));
  EXPECT_TRUE(mesh->vertexCount == 4 && mesh->meshPolygonCount == 2 && mesh->normalCount == 4);
  EXPECT_TRUE(mesh->polygons[1].material == &mesh->defaultMaterial && mesh->polygons[1].backMaterial == &other);
  EXPECT_EQ(mesh->defaultMaterial.colors[1][2], float(0x30));  // the source's colour
  EXPECT_EQ(mesh->meshFlags, 0x07F00027u | 0x4000 | 0x8000);
  EXPECT_TRUE(mesh->hostObject == 77u && mesh->name[0] == '\0' && mesh->boundingBox != nullptr);
  // Adding to it is refused; validating again keeps the record.
  EXPECT_EQ(AddMeshVertex(mesh, 0, 0, 0), 0);
  EXPECT_EQ(ValidateMesh(mesh), mesh);
  // Deletion frees what the mesh owns besides its blocks.
  mesh->workArray = AllocateMemory(64);
  mesh->skinTable = AllocateMemory(4 * 32);
  mesh->children = static_cast<void**>(AllocateMemory(sizeof(void*)));
  DeleteMesh(mesh);
  DeleteMesh(nullptr);
}

TEST_F(MeshTest, ValidationFailures) {
  // Piece-built without polygons, or without anything: deleted.
  EXPECT_EQ(ValidateMesh(PieceSquare(0)), nullptr);
  EXPECT_EQ(ValidateMesh(CreateMesh(0, 0, 0)), nullptr);
  EXPECT_EQ(Blocks(), 0u);
  // (A refused piece-built mesh is kept as it was: see the hostile inputs.)
  // One-block with a polygon never set: refused, nothing changes.
  Mesh* mesh = Square(4, 3);
  SetMeshQuadPolygon(mesh, 0, 0, 1, 2, 3, 0, 0);
  const auto block = Bytes(mesh, e3d::MeshBlockBytes(4, 3));
  EXPECT_EQ(ValidateMesh(mesh), nullptr);
  EXPECT_TRUE(Bytes(mesh, e3d::MeshBlockBytes(4, 3)) == block);
  SetMeshTriPolygon(mesh, 2, 3, 1, 0, 0, 0);
  EXPECT_EQ(ValidateMesh(mesh), mesh);
  EXPECT_NE(mesh->meshFlags & 0x8000, 0u);
  DeleteMesh(mesh);
}

}  // namespace
