// Shared by the mesh and bounds tests: a leak-checked fixture whose sorter
// scratch list is already large, so no sort or reset allocates behind a
// test's back (and an allocation failure always lands on the mesh code).
#pragma once
#include <cstddef>
#include <cstdint>

#include "engine3d.h"
#include "objects/mesh.h"
#include "support/test_host.h"

class MeshFixture : public testhost::LeakCheckedTest {
 protected:
  void SetUp() override {
    ReleaseRadixSort();
    static uint32_t list[kScratch];
    ResetRadixSort(kScratch, list);
    LeakCheckedTest::SetUp();
    blocksAtStart_ = testhost::LiveBlocks();
    bytesAtStart_ = testhost::LiveBytes();
  }
  void TearDown() override {
    LeakCheckedTest::TearDown();
    ReleaseRadixSort();
  }

  // A piece-built mesh from the given vertices and triangles (a, b, c each).
  static Mesh* PieceBuilt(const float (*xyz)[3], int n, const int32_t (*tri)[3], int t,
                          uint32_t group = 0) {
    Mesh* mesh = CreateMesh(0, 0, 0x102030);
    for (int i = 0; i < n; i++) AddMeshVertex(mesh, xyz[i][0], xyz[i][1], xyz[i][2]);
    for (int i = 0; i < t; i++) AddMeshTriPolygon(mesh, tri[i][0], tri[i][1], tri[i][2], 0, group);
    return mesh;
  }

  // Blocks and bytes this test holds now.
  size_t Blocks() const { return testhost::LiveBlocks() - blocksAtStart_; }
  size_t BlockBytes() const { return testhost::LiveBytes() - bytesAtStart_; }

  static constexpr int32_t kScratch = 4096;
  size_t blocksAtStart_ = 0;
  size_t bytesAtStart_ = 0;
};
