// Shared by the mesh tests: a leak-checked fixture whose sorter scratch list
// is already large, so an allocation failure always lands on the mesh code.
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
    static uint32_t list[4096];
    ResetRadixSort(4096, list);
    LeakCheckedTest::SetUp();
    blocksAtStart_ = testhost::LiveBlocks();
    bytesAtStart_ = testhost::LiveBytes();
  }
  void TearDown() override {
    LeakCheckedTest::TearDown();
    ReleaseRadixSort();
  }
  // Blocks and bytes this test holds now.
  size_t Blocks() const { return testhost::LiveBlocks() - blocksAtStart_; }
  size_t BlockBytes() const { return testhost::LiveBytes() - bytesAtStart_; }
  size_t blocksAtStart_ = 0, bytesAtStart_ = 0;
};
