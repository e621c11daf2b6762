// The page's scene, through the public header only.
#include "page.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

#include "engine3d.h"
#include "model_parts.h"

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
  ModelParts model;  // the last model file read, drawn as primitive 5
  bool hasModel = false;
  std::string error;
} page;

constexpr int kModel = 5;
constexpr int kVertexLimit = 32768;

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

// The shading's drawing and material settings on one mesh.
void Shade(Mesh* mesh, int shading) {
  Material* mat = GetMeshDefaultMaterial(mesh);
  SetMeshShadeMode(mesh, shading == 0 ? 3 : 7);
  if (shading == 2) SetMaterialTextureChain(mat, 0, &page.chain, 1 | 4);
  if (shading == 3) SetMaterialTextureChain(mat, 2, &page.chain, 1);
  if (shading == 4) {
    SetMaterialAlphaMode(mat, 2);
    SetMaterialAlphaLevel(mat, 140);
    SetMeshCullMode(mesh, 0x08);  // the far side shows through
  }
  SetMeshRenderMode(mesh, shading == 5 ? 0x00300000 : shading == 6 ? 0x00100000 : 0x00F00000);
}

// One engine mesh of a part's triangles (source corners), its vertices
// centred, scaled and turned into the engine's left-handed space.
Mesh* ModelMesh(const ModelPart& part, const ModelMaterial& material, const std::vector<unsigned>& triangles,
                const Vec3& centre, float scale, std::vector<int32_t>* local, int shading) {
  std::vector<unsigned> used;
  for (unsigned v : triangles)
    if ((*local)[v] < 0) (*local)[v] = int32_t(used.size()), used.push_back(v);
  auto channel = [](float c) { return uint32_t(c <= 0 ? 0 : c >= 1 ? 255 : c * 255.0f + 0.5f); };
  const Color3& d = material.diffuse;
  Mesh* mesh = CreateMesh(int32_t(used.size()), int32_t(triangles.size() / 3),
                          channel(d.r) << 16 | channel(d.g) << 8 | channel(d.b));
  if (mesh != nullptr) {
    for (size_t i = 0; i < used.size(); i++) {
      const Vec3& p = part.vertices[used[i]];
      SetMeshVertex(mesh, int32_t(i), (p.x - centre.x) * scale, (p.y - centre.y) * scale,
                    (centre.z - p.z) * scale);
    }
    // The z flip turns the winding over; the corners turn it back.
    for (size_t t = 0; t < triangles.size() / 3; t++)
      SetMeshTriPolygon(mesh, int32_t(t), (*local)[triangles[3 * t + 2]], (*local)[triangles[3 * t + 1]],
                        (*local)[triangles[3 * t]], 0, 0);
  }
  for (unsigned v : used) (*local)[v] = -1;
  Mesh* valid = mesh != nullptr ? ValidateMesh(mesh) : nullptr;
  if (valid == nullptr) {
    if (mesh != nullptr) DeleteMesh(mesh);
    return nullptr;
  }
  SetMeshCullMode(valid, 0x08);  // both sides: files seldom say which side is out
  Material* mat = GetMeshDefaultMaterial(valid);
  SetMaterialColor(mat, 0, 38.0f * d.r, 38.0f * d.g, 38.0f * d.b);
  SetMaterialColor(mat, 1, 255.0f * d.r, 255.0f * d.g, 255.0f * d.b);
  Shade(valid, shading);
  return valid;
}

// The model as engine meshes of at most kVertexLimit vertices, polygons
// fanned to triangles, joined under the first one so that one assignment
// takes them all into the scene. Null when the engine refuses memory.
Mesh* ModelTree(int shading, int* triangles) {
  Vec3 low(1e30f, 1e30f, 1e30f), high(-1e30f, -1e30f, -1e30f);
  for (const ModelPart& part : page.model.parts)
    for (const Vec3& p : part.vertices) {
      low = Vec3(fminf(low.x, p.x), fminf(low.y, p.y), fminf(low.z, p.z));
      high = Vec3(fmaxf(high.x, p.x), fmaxf(high.y, p.y), fmaxf(high.z, p.z));
    }
  const Vec3 centre((low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2);
  const Vec3 span(high.x - low.x, high.y - low.y, high.z - low.z);
  const float radius = span.Length() / 2, scale = radius > 0 && isfinite(radius) ? kRadius / radius : 1.0f;
  ModelMaterial white;  // formats without materials draw in white
  white.diffuse = Color3(1, 1, 1);
  Mesh* root = nullptr;
  *triangles = 0;
  for (size_t m = 0; m < page.model.parts.size(); m++) {
    const ModelPart& part = page.model.parts[m];
    const ModelMaterial& material = m < page.model.materials.size() ? page.model.materials[m] : white;
    std::vector<int32_t> local(part.vertices.size(), -1);
    std::vector<unsigned> chunk, fresh;
    size_t at = 0;
    auto flush = [&]() {
      if (chunk.empty()) return true;
      Mesh* mesh = ModelMesh(part, material, chunk, centre, scale, &local, shading);
      if (mesh == nullptr) return false;
      *triangles += int(chunk.size() / 3);
      if (root == nullptr)
        root = mesh;
      else
        AttachChildToNode(root, mesh);
      chunk.clear(), fresh.clear();
      return true;
    };
    for (unsigned size : part.sizes) {
      const unsigned* c = &part.corners[at];
      at += size;
      for (unsigned i = 2; i < size; i++) {
        if (c[0] == c[i - 1] || c[i - 1] == c[i] || c[0] == c[i]) continue;
        if (fresh.size() + 3 > size_t(kVertexLimit) && !flush()) return root;
        for (unsigned v : {c[0], c[i - 1], c[i]}) {
          if (local[v] == -2) continue;
          local[v] = -2, fresh.push_back(v);  // counted for this chunk
        }
        chunk.insert(chunk.end(), {c[0], c[i - 1], c[i]});
      }
    }
    if (!flush()) return root;
  }
  return root;
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
  int triangles = 0;
  Mesh* mesh = nullptr;
  if (primitive == kModel) {
    if (!page.hasModel) return 0;
    mesh = ModelTree(shading, &triangles);
  } else {
    mesh = Primitive(primitive);
    if (mesh != nullptr) {
      ActivateMesh(mesh);
      SetMaterialColor(GetMeshDefaultMaterial(mesh), 0, 24, 24, 28);
      Shade(mesh, shading);
      triangles = Slots(mesh);
    }
  }
  if (mesh == nullptr) return 0;
  if (AssignMeshToScene(page.scene, mesh, 1) == nullptr) {
    DeleteMesh(mesh);
    return 0;
  }
  page.mesh = mesh;
  page.triangles = triangles;
  return 1;
}

extern "C" int PageLoad(const char* bytes, int length, int format, int shading) {
  static const char* const kFormats[] = {"obj", "ply", "stl"};
  ModelParts model;
  if (format < 0 || format > 2 || length < 0) {
    page.error = "not a model file this page reads (OBJ, PLY or STL)";
    return 0;
  }
  if (!ReadModelParts(std::string_view(bytes, size_t(length)), kFormats[format], "", &model, &page.error))
    return 0;
  long long polygons = 0;
  for (const ModelPart& part : model.parts) polygons += (long long)part.sizes.size();
  if (polygons == 0) {
    page.error = "no polygons to draw";
    return 0;
  }
  page.model = std::move(model);
  page.hasModel = true;
  if (!PageShow(kModel, shading)) {
    page.error = "the engine has no memory for this model";
    return 0;
  }
  page.error.clear();
  return 1;
}

extern "C" const char* PageError(void) { return page.error.c_str(); }

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
