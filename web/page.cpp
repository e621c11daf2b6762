// The page's scene, through the public header only.
#include "page.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

#include "engine3d.h"

namespace {

constexpr float kRadius = 60.0f;
constexpr int kTexture = 64;

struct Page {
  int width = 0, height = 0;
  uint16_t* pixels = nullptr;
  uint8_t* rgba = nullptr;
  Viewport* viewport = nullptr;
  Scene* scene = nullptr;
  Camera* camera = nullptr;
  Mesh* mesh = nullptr;
  int triangles = 0;
  uint32_t texels[kTexture * kTexture];
  MipChain chain;
} page;

Mesh* Primitive(int kind) {
  switch (kind) {
    case 1:
      return TorusCreate(kRadius * 0.7f, kRadius * 0.3f, nullptr, 16, 32, 0xE0A040);
    case 2:
      return CubeCreate(kRadius * 1.2f, nullptr, 0x40A0E0);
    case 3:
      return CylinderCreate(kRadius * 0.6f, kRadius * 0.6f, kRadius * 1.4f, nullptr, 32, 0x60D080);
    case 4:
      return ChCubeCreate(kRadius * 1.2f, kRadius * 0.2f, nullptr, 4, 0xD06080);
    default:
      return SphereCreate(kRadius, nullptr, 24, 32, 0xC0C0D0);
  }
}

// Checks over a gradient, for the textured and reflecting surfaces.
void MakeTexture() {
  for (int y = 0; y < kTexture; y++)
    for (int x = 0; x < kTexture; x++) {
      const uint32_t check = ((x / 8 + y / 8) & 1) ? 0xF0C040u : 0x2060C0u;
      page.texels[y * kTexture + x] = 0xFF000000u | (check + uint32_t(y / 4) * 0x010101u);
    }
  memset(&page.chain, 0, sizeof page.chain);
  page.chain.levelPixels[0] = page.texels;
  page.chain.levelWidths[0] = page.chain.levelHeights[0] = kTexture;
  page.chain.levelPitches[0] = kTexture * 4;
  CreateMMTexture8888(&page.chain);
}

// Whether slot is a polygon slot of the mesh: the interface has no count,
// but a smoothing group set on a real slot reads back (and is put back).
bool HasSlot(Mesh* mesh, int32_t slot) {
  const int32_t group = GetMeshFaceSmoothG(mesh, slot);
  SetMeshFaceSmoothG(mesh, slot, group == 0 ? 1 : 0);
  const bool real = GetMeshFaceSmoothG(mesh, slot) != group;
  SetMeshFaceSmoothG(mesh, slot, group);
  return real;
}

int32_t Slots(Mesh* mesh) {
  int32_t low = 0, high = 1;  // slots below low exist, slot high - 1 (once found) does not
  while (HasSlot(mesh, high - 1)) low = high, high *= 2;
  while (high - low > 1) {
    const int32_t mid = low + (high - low) / 2;
    (HasSlot(mesh, mid - 1) ? low : high) = mid;
  }
  return low;
}

}  // namespace

extern "C" int PageStart(int width, int height) {
  if (width < 16 || height < 16 || width > 4096 || height > 4096 || page.scene != nullptr) return 0;
  InitEngine3D();
  page.width = width, page.height = height;
  page.pixels = static_cast<uint16_t*>(calloc(size_t(width) * height, 2));
  page.rgba = static_cast<uint8_t*>(calloc(size_t(width) * height, 4));
  page.scene = CreateScene();
  if (page.pixels == nullptr || page.rgba == nullptr || page.scene == nullptr) return 0;
  SurfaceDesc surface;
  memset(&surface, 0, sizeof surface);
  surface.pixels = page.pixels;
  surface.width = uint32_t(width), surface.height = uint32_t(height);
  surface.pitch = uint32_t(width) * 2;
  page.viewport = CreateViewport(&surface, width, height, 1);
  if (page.viewport == nullptr) return 0;
  SetViewportType(page.viewport, E3D_VIEWPORT_ENABLED | 1);
  SetSceneViewport(page.scene, page.viewport);
  const Vector3 origin = {0, 0, 0}, sun = {-200, 250, -200}, side = {180, -40, -150}, eye = {0, 0, -200};
  const float warm[4] = {1.0f, 0.92f, 0.8f, 1}, cool[4] = {0.5f, 0.6f, 1.0f, 1};
  Light* key = CreateDirectLight(&sun, &origin, warm, 0.9f, 0);
  Light* fill = CreateOmniLight(&side, cool, 0.4f, 0, 0, 0);
  page.camera = CreateCamera(&eye, &origin, 0, 45, 10);
  if (key == nullptr || fill == nullptr || page.camera == nullptr) return 0;
  SetLightStatus(key, 1, 0);
  SetLightStatus(fill, 1, 0);
  AssignLightToScene(page.scene, key, 1);
  AssignLightToScene(page.scene, fill, 1);
  AssignCameraToScene(page.scene, page.camera);
  MakeTexture();
  PageView(30, 20, 1);
  return PageShow(0, 1);
}

extern "C" int PageShow(int primitive, int shading) {
  if (page.scene == nullptr) return 0;
  if (page.mesh != nullptr) {
    RemoveMeshFromScene(page.scene, page.mesh, 1);
    DeleteMesh(page.mesh);
    page.mesh = nullptr;
  }
  Mesh* mesh = Primitive(primitive);
  if (mesh == nullptr) return 0;
  ActivateMesh(mesh);
  Material* mat = GetMeshDefaultMaterial(mesh);
  SetMaterialColor(mat, 0, 24, 24, 28);
  SetMeshShadeMode(mesh, shading == 0 ? 3 : 7);
  if (shading == 2) SetMaterialTextureChain(mat, 0, &page.chain, 1 | 4);
  if (shading == 3) SetMaterialTextureChain(mat, 2, &page.chain, 1);
  if (shading == 4) {
    SetMaterialAlphaMode(mat, 2);
    SetMaterialAlphaLevel(mat, 140);
    SetMeshCullMode(mesh, 0x08);  // the far side shows through
  }
  SetMeshRenderMode(mesh, shading == 5 ? 0x00300000 : shading == 6 ? 0x00100000 : 0x00F00000);
  if (AssignMeshToScene(page.scene, mesh, 1) == nullptr) {
    DeleteMesh(mesh);
    return 0;
  }
  page.mesh = mesh;
  page.triangles = Slots(mesh);
  return 1;
}

extern "C" void PageView(float yaw, float pitch, float zoom) {
  if (page.camera == nullptr) return;
  const float a = yaw * 0.017453292f, b = pitch * 0.017453292f, d = 280.0f * zoom;
  const Vector3 eye = {d * cosf(b) * sinf(a), d * sinf(b), -d * cosf(b) * cosf(a)}, origin = {0, 0, 0};
  SetCameraPosition(page.camera, &eye, 0);
  SetCameraPosition(page.camera, &origin, 1);
}

extern "C" int PageDraw(void) {
  if (page.scene == nullptr) return 0;
  for (int i = 0; i < page.width * page.height; i++) page.pixels[i] = 0x0C66;
  ClearViewportDepthBuffer(page.viewport, 0xFFFFFFFFu);
  DrawScene(page.scene);
  return page.triangles;
}

extern "C" void PageStop(void) {
  if (page.scene != nullptr) DeleteWholeScene(page.scene);  // the mesh, lights and camera
  if (page.viewport != nullptr) DeleteViewport(page.viewport);
  for (int i = 1; i < 4; i++)
    if (page.chain.levelPixels[i] != nullptr) FreeMemory(page.chain.levelPixels[i]);
  free(page.pixels);
  free(page.rgba);
  page = Page();
  ReleaseEngine3D();
}

extern "C" const uint16_t* PagePixels(void) { return page.pixels; }

// Each 5-bit channel widened to 8 as the tools' pictures do: c << 3 | c >> 2.
extern "C" const uint8_t* PageRgba(void) {
  for (int i = 0; i < page.width * page.height; i++) {
    const uint16_t p = page.pixels[i];
    const uint8_t c[3] = {uint8_t(p >> 10 & 31), uint8_t(p >> 5 & 31), uint8_t(p & 31)};
    for (int k = 0; k < 3; k++) page.rgba[4 * i + k] = uint8_t(c[k] << 3 | c[k] >> 2);
    page.rgba[4 * i + 3] = 255;
  }
  return page.rgba;
}

extern "C" uint32_t PageHash(void) {
  uint32_t hash = 2166136261u;
  for (int i = 0; i < page.width * page.height; i++)
    hash = (((hash ^ (page.pixels[i] & 0xFFu)) * 16777619u) ^ (page.pixels[i] >> 8)) * 16777619u;
  return hash;
}
