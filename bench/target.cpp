#include "target.h"

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
