#include "target.h"

#include <cmath>
#include <random>

Target::Target(int width, int height, bool depthBuffer)
    : width_(width), height_(height), pixels_(std::size_t(width) * height, 0) {
  InitEngine3D();
  viewport_ = MakeViewport(pixels_.data(), width, height, depthBuffer);
  owner_ = CreateMesh(3, 1, 0xFFFFFF);
  SetRenderInfos(viewport_, nullptr);
}

Target::~Target() {
  DeleteMesh(owner_);
  DeleteViewport(viewport_);
  ReleaseEngine3D();
}

int64_t Target::CountPixels(uint16_t value) const {
  int64_t n = 0;
  for (uint16_t p : pixels_) n += p == value;
  return n;
}

MeshPolygon MakeFace(Material* material, uint16_t color, int32_t a, int32_t b, int32_t c) {
  MeshPolygon face{};
  face.vertexIndex[0] = a;
  face.vertexIndex[1] = b;
  face.vertexIndex[2] = c;
  face.material = face.backMaterial = material;
  face.colors[0] = face.colors[1] = face.colors[2] = color;
  return face;
}

MeshVertex ScreenVertex(float x, float y) {
  MeshVertex v{};
  v.screenX = x;
  v.screenY = y;
  v.camZ = 100;
  v.invZ = 0.01f;
  return v;
}

Viewport* MakeViewport(uint16_t* pixels, int width, int height, bool depthBuffer) {
  SurfaceDesc surface{};
  surface.pixels = pixels;
  surface.width = uint32_t(width);
  surface.height = uint32_t(height);
  surface.pitch = uint32_t(width) * 2;
  Viewport* vp = CreateViewport(&surface, width, height, depthBuffer ? 1 : 0);
  SetViewportType(vp, E3D_VIEWPORT_ENABLED | 1);
  return vp;
}

uint32_t Target::Hash() const { return PixelHash(pixels_); }

uint32_t PixelHash(const std::vector<uint16_t>& pixels) {
  uint32_t hash = 2166136261u;
  for (uint16_t p : pixels) hash = (hash ^ p) * 16777619u;
  return hash;
}

TriangleSet SmallTriangles(const Target& target, int count, uint32_t seed) {
  constexpr float kPi = 3.14159265f;
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> unit(0.0f, 1.0f);
  TriangleSet set;
  for (int i = 0; i < count; ++i) {
    const float cx = 12 + unit(random) * float(target.width() - 24);
    const float cy = 12 + unit(random) * float(target.height() - 24);
    const float a = unit(random) * 2 * kPi, b = a + (1 + unit(random)) * kPi / 3;
    const float r1 = 3 + 3 * unit(random), r2 = 3 + 3 * unit(random);
    const float area = 0.5f * r1 * r2 * std::sin(b - a);
    const float scale = std::sqrt((8 + 4 * unit(random)) / area);
    const int32_t first = int32_t(set.vertices.size());
    set.vertices.push_back(ScreenVertex(cx, cy));
    set.vertices.push_back(ScreenVertex(cx + scale * r1 * std::cos(a), cy + scale * r1 * std::sin(a)));
    set.vertices.push_back(ScreenVertex(cx + scale * r2 * std::cos(b), cy + scale * r2 * std::sin(b)));
    set.faces.push_back(
        MakeFace(target.material(), uint16_t(random() & 0x7FFF), first, first + 2, first + 1));
  }
  return set;
}
