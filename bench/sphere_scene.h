// The sphere grid most workloads draw: n x n spheres of 24 rings x 48
// segments facing a camera at (0, 0, -14) with a 60 degree field of view, lit
// by one white direct light from (-1, 1, -1), Gouraud shaded, into a 16-bit
// target of the host's.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine3d.h"

struct SphereGridOptions {
  int width = 640, height = 480;
  int grid = 4;              // spheres per row and column
  bool depthBuffer = true;   // false: the painter path
  bool textured = false;     // a 256 x 256 mip-mapped checker on every sphere
  bool translucent = false;  // every other sphere blended at level 128 or added
};

class SphereGrid {
 public:
  explicit SphereGrid(const SphereGridOptions& options);
  ~SphereGrid();
  SphereGrid(const SphereGrid&) = delete;
  SphereGrid& operator=(const SphereGrid&) = delete;

  void DrawFrame();                // clears the depth buffer (if any) and draws
  void Turn(float degrees);        // turns every sphere about its vertical axis
  int64_t Triangles() const { return triangles_; }  // submitted each frame
  int64_t CoveredPixels() const;   // pixels that differ from the clear colour
  uint32_t Hash() const;           // of the pixels, to compare builds

 private:
  SphereGridOptions options_;
  std::vector<uint16_t> pixels_;
  std::vector<Mesh*> spheres_;
  Scene* scene_ = nullptr;
  Viewport* viewport_ = nullptr;
  SurfaceDesc* checker_ = nullptr;
  MipChain chain_{};
  int64_t triangles_ = 0;
};
