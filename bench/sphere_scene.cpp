#include "sphere_scene.h"

#include "target.h"

namespace {

constexpr int kRings = 24, kSegments = 48;
constexpr int64_t kSphereTriangles = 2 * (kRings - 1) * kSegments;
constexpr uint16_t kClearColor = 0x0421;

// A checker of 8 x 8 cells and its three smaller levels, which the host owns.
SurfaceDesc* MakeCheckerChain(MipChain* chain) {
  SurfaceDesc* checker = CreateCheckerTexture(256, 256, 8, 0x7FFF, 0x1084);
  if (checker == nullptr) return nullptr;
  chain->levelPixels[0] = checker->pixels;
  chain->levelWidths[0] = chain->levelHeights[0] = 256;
  chain->levelPitches[0] = static_cast<int32_t>(checker->pitch);
  CreateMMTexture1555(chain);
  return checker;
}

void Translucent(Scene* scene, Mesh* mesh, uint32_t mode, int32_t level) {
  Material* mat = CreateMaterial(GetMeshDefaultMaterial(mesh));
  SetMaterialAlphaMode(mat, mode);
  SetMaterialAlphaLevel(mat, level);
  SetMaterial(mesh, mat, 2, 0);
  AssignMaterialToScene(scene, mat);
}

}  // namespace

// The grid keeps the extent of the 4 x 4 one (centres 2.5 apart, radius 1)
// whatever its size, so that more spheres mean more triangles over about
// the same pixels.
SphereGrid::SphereGrid(const SphereGridOptions& options)
    : options_(options), pixels_(std::size_t(options.width) * options.height, kClearColor) {
  InitEngine3D();
  scene_ = CreateScene();
  const Vector3 eye{0, 0, -14}, at{0, 0, 0};
  AssignCameraToScene(scene_, CreateCamera(&eye, &at, 0, 60, 10));
  if (options.textured) checker_ = MakeCheckerChain(&chain_);

  const int n = options.grid;
  const float spacing = 10.0f / float(n), radius = 4.0f / float(n);
  for (int i = 0; i < n * n; ++i) {
    Mesh* sphere = ValidateMesh(SphereCreate(radius, nullptr, kRings, kSegments, 0xD0D0D0));
    SetMeshShadeMode(sphere, 7);
    const float x = (float(i % n) - float(n - 1) * 0.5f) * spacing;
    const float y = (float(i / n) - float(n - 1) * 0.5f) * spacing;
    SetMeshModelPosition(sphere, x, y, 0);
    if (checker_ != nullptr) SetMaterialTextureChain(GetMeshDefaultMaterial(sphere), 0, &chain_, 0);
    if (options.translucent && i % 2 == 1) Translucent(scene_, sphere, i % 4 == 1 ? 2 : 1, 128);
    AssignMeshToScene(scene_, sphere, 0);
    spheres_.push_back(sphere);
    triangles_ += kSphereTriangles;
  }
  const Vector3 from{-1, 1, -1}, to{0, 0, 0};
  const float white[4] = {1, 1, 1, 1};
  Light* light = CreateDirectLight(&from, &to, white, 1, 0);
  SetLightStatus(light, 1, 0);
  AssignLightToScene(scene_, light, 1);

  viewport_ = MakeViewport(pixels_.data(), options.width, options.height, options.depthBuffer);
  SetSceneViewport(scene_, viewport_);
}

SphereGrid::~SphereGrid() {
  DeleteWholeScene(scene_);
  DeleteViewport(viewport_);
  if (checker_ != nullptr) {
    for (int level = 1; level < 4; ++level) FreeMemory(chain_.levelPixels[level]);
    FreeMemory(checker_->pixels);
    FreeMemory(checker_);
  }
  ReleaseEngine3D();
}

void SphereGrid::DrawFrame() {
  if (options_.depthBuffer) ClearViewportDepthBuffer(viewport_, 0xFFFFFFFFu);
  DrawScene(scene_);
}

void SphereGrid::Turn(float degrees) {
  for (Mesh* sphere : spheres_) SetMeshModelOrientation(sphere, 0, degrees, 0);
}

int64_t SphereGrid::CoveredPixels() const {
  int64_t covered = 0;
  for (uint16_t p : pixels_) covered += p != kClearColor;
  return covered;
}

uint32_t SphereGrid::Hash() const { return PixelHash(pixels_); }
