// A host's 16-bit render target for the drawer workloads, and the triangle
// records the drawers take.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine3d.h"

class Target {
 public:
  Target(int width, int height, bool depthBuffer);
  ~Target();
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;

  Viewport* viewport() const { return viewport_; }
  uint16_t* pixels() { return pixels_.data(); }
  int width() const { return width_; }
  int height() const { return height_; }
  // A plain material of alpha mode 0 for hand-made faces.
  Material* material() const { return GetMeshDefaultMaterial(owner_); }
  int64_t CountPixels(uint16_t value) const;
  uint32_t Hash() const;

 private:
  int width_, height_;
  std::vector<uint16_t> pixels_;
  Viewport* viewport_ = nullptr;
  Mesh* owner_ = nullptr;
};

// A face over vertices a, b, c; the drawers fill it when a, b, c run
// counter-clockwise on the screen (y down). The vertices carry screen x and y
// only and lie inside the target (no clip bits).
MeshPolygon MakeFace(Material* material, uint16_t color, int32_t a, int32_t b, int32_t c);
MeshVertex ScreenVertex(float x, float y);

// count flat triangles of 8 to 12 pixels inside the target, from a fixed seed
// (the W3 workload), for DrawTriangle2D.
struct TriangleSet {
  std::vector<MeshVertex> vertices;
  std::vector<MeshPolygon> faces;
};
TriangleSet SmallTriangles(const Target& target, int count, uint32_t seed);

// An enabled viewport over a host buffer of width x height pixels, rows
// width pixels apart.
Viewport* MakeViewport(uint16_t* pixels, int width, int height, bool depthBuffer);

// FNV-1a of the pixels: equal hashes from two builds mean equal pictures.
uint32_t PixelHash(const std::vector<uint16_t>& pixels);
