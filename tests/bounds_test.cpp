// Vertex normals by smoothing group, and bounding boxes.
#include <bit>
#include <cmath>

#include "engine/math.h"
#include "mesh_fixture.h"

namespace {

using BoundsTest = MeshFixture;

// A cube of side 2 with six quads in the box's face layout; face f in group groups[f].
Mesh* Cube(const uint32_t groups[6]) {
  static const float corners[8][3] = {{-1, 1, -1}, {1, 1, -1}, {1, -1, -1}, {-1, -1, -1},
                                      {-1, 1, 1},  {1, 1, 1},  {1, -1, 1},  {-1, -1, 1}};
  static const int32_t faces[6][4] = {{0, 1, 2, 3}, {1, 5, 6, 2}, {5, 4, 7, 6},
                                      {4, 0, 3, 7}, {4, 5, 1, 0}, {3, 2, 6, 7}};
  Mesh* mesh = CreateMesh(8, 12, 0);
  for (int i = 0; i < 8; i++) SetMeshVertex(mesh, i, corners[i][0], corners[i][1], corners[i][2]);
  for (int f = 0; f < 6; f++)
    SetMeshQuadPolygon(mesh, 2 * f, faces[f][0], faces[f][1], faces[f][2], faces[f][3], 0, groups[f]);
  return mesh;
}

const Vector3& CornerNormal(const Mesh* mesh, int polygon, int corner) {
  return mesh->normals[mesh->polygons[polygon].normalIndex[corner]];
}

TEST_F(BoundsTest, NormalsAreSharedOnlyInsideASmoothingGroup) {
  // Six groups: every corner gets its face's own direction, 4 per face.
  const uint32_t reversed[6] = {5, 4, 3, 2, 1, 0};
  Mesh* mesh = Cube(reversed);
  CalcMeshVerticesNormal(mesh);
  ASSERT_EQ(mesh->normalCount, 24);
  for (int p = 0; p < 12; p++)
    for (int k = 0; k < 3; k++) {
      const Vector3& n = CornerNormal(mesh, p, k);
      const float* plane = mesh->polygons[p].plane;
      EXPECT_TRUE(n.x == plane[0] && n.y == plane[1] && n.z == plane[2]) << p;
    }

  // One group: one normal per vertex, the unit sum of the faces around it.
  for (int p = 0; p < 12; p++) mesh->polygons[p].polygonFlags &= ~e3d::kPolygonGroupMask;
  CalcMeshVerticesNormal(mesh);
  ASSERT_EQ(mesh->normalCount, 8);
  int32_t normalOf[8];
  for (int& n : normalOf) n = -1;
  for (int p = 0; p < 12; p++)
    for (int k = 0; k < 3; k++) {
      int32_t v = mesh->polygons[p].vertexIndex[k], n = mesh->polygons[p].normalIndex[k];
      if (normalOf[v] < 0) normalOf[v] = n;
      EXPECT_EQ(normalOf[v], n) << "vertex " << v;
    }
  for (int i = 0; i < 8; i++) EXPECT_NEAR(e3d::VectorLength(&mesh->normals[i]), 1.0f, 1e-6f);

  // Out of memory: the old normals are gone and none are left.
  const size_t withNormals = Blocks();
  testhost::FailAllocation(1);
  CalcMeshVerticesNormal(mesh);
  EXPECT_TRUE(mesh->normalCount == 0 && mesh->normals == nullptr && Blocks() == withNormals - 1);
  DeleteMesh(mesh);
}

TEST_F(BoundsTest, FaceNormalsAreSummedUnweighted) {
  // A tiny triangle and a large one meet at vertex 0 at a right angle: the
  // shared normal is halfway between them whatever their areas.
  const float xyz[5][3] = {{0, 0, 0}, {0.01f, 0, 0}, {0, 0.01f, 0}, {0, 0, 10}, {0, 10, 0}};
  Mesh* mesh = CreateMesh(5, 3, 0);
  for (int i = 0; i < 5; i++) SetMeshVertex(mesh, i, xyz[i][0], xyz[i][1], xyz[i][2]);
  SetMeshTriPolygon(mesh, 0, 0, 1, 2, 0, 4);
  SetMeshTriPolygon(mesh, 1, 0, 3, 4, 0, 4);
  // Vertex 0 also lies in a second group: it gets a second normal there.
  SetMeshTriPolygon(mesh, 2, 0, 2, 1, 0, 9);
  CalcMeshVerticesNormal(mesh);
  EXPECT_EQ(mesh->normalCount, 5 + 3);
  const Vector3& n = CornerNormal(mesh, 0, 2);  // vertex 0 is corner 2
  EXPECT_EQ(&n, &CornerNormal(mesh, 1, 2));
  EXPECT_LT(std::fabs(n.x - std::sqrt(0.5f)) + std::fabs(n.y) + std::fabs(n.z + std::sqrt(0.5f)), 3e-6f);
  // The second group's face is the first one turned over: its own normal.
  EXPECT_EQ(CornerNormal(mesh, 2, 2).z, 1.0f);

  // Opposite faces in one group cancel; normalising nothing gives NaN.
  SetMeshTriPolygon(mesh, 2, 0, 2, 1, 0, 4);
  CalcMeshVerticesNormal(mesh);
  EXPECT_TRUE(std::isnan(CornerNormal(mesh, 0, 0).x));

  // A corner naming a vertex past the mesh (an unchecked slot) gets a normal
  // of its own, and nothing is written outside the scratch blocks.
  mesh->polygons[2].vertexIndex[0] = 7;
  CalcMeshVerticesNormal(mesh);
  EXPECT_EQ(mesh->normalCount, 6);
  EXPECT_EQ(CornerNormal(mesh, 2, 0).z, 1.0f);
  DeleteMesh(mesh);
}

TEST_F(BoundsTest, BoxCornersFacesAndMaterial) {
  const float xyz[4][3] = {{1, -2, 3}, {-4, 5, 0.5f}, {2, 0, -6}, {0, 1, 1}};
  Mesh* mesh = CreateMesh(4, 1, 0);
  for (int i = 0; i < 4; i++) SetMeshVertex(mesh, i, xyz[i][0], xyz[i][1], xyz[i][2]);
  Mesh* box = CreateAABB(mesh);
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(mesh->boundingBox, nullptr);  // the caller keeps it
  const float lx = -4, ly = -2, lz = -6, hx = 2, hy = 5, hz = 3;
  const float corners[8][3] = {{lx, hy, lz}, {hx, hy, lz}, {hx, ly, lz}, {lx, ly, lz},
                               {lx, hy, hz}, {hx, hy, hz}, {hx, ly, hz}, {lx, ly, hz}};
  ASSERT_TRUE(box->vertexCount == 8 && box->meshPolygonCount == 12);
  for (int i = 0; i < 8; i++)
    EXPECT_TRUE(box->vertices[i].x == corners[i][0] && box->vertices[i].y == corners[i][1] &&
                box->vertices[i].z == corners[i][2])
        << i;
  // Each face a quad in its own group, drawn as wire with the diagonal hidden.
  EXPECT_TRUE(box->polygons[6].polygonFlags == 0x00703C47u && box->polygons[7].polygonFlags == 0x00703647u);
  EXPECT_EQ(box->meshFlags, 0x300021u);
  DeleteMesh(box);

  // One vertex: every corner is that vertex. A difference of -0.0 is not
  // below zero, so +0.0 stays the minimum.
  Mesh* point = CreateMesh(2, 1, 0);
  SetMeshVertex(point, 0, 0.0f, 7, -1);
  SetMeshVertex(point, 1, -0.0f, 7, -1);
  point->vertexCount = 1;
  box = CreateAABB(point);
  for (int i = 0; i < 8; i++) EXPECT_TRUE(box->vertices[i].y == 7.0f && box->vertices[i].z == -1.0f);
  DeleteMesh(box);
  point->vertexCount = 2;
  box = CreateAABB(point);
  EXPECT_EQ(__builtin_bit_cast(uint32_t, box->vertices[0].x), 0u);
  DeleteMesh(box);
  DeleteMesh(point);
  DeleteMesh(mesh);
}

}  // namespace
