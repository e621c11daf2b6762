// The stage: camera framing by orbit angles, a light rig that follows the
// camera, and the viewport over the stage's own pixels.
#include "stage.h"

#include <math.h>
#include <stdlib.h>
#include <string.h>

namespace {

constexpr float kRadians = 3.14159265f / 180.0f;

Viewport* NewViewport(Stage* s) {
  SurfaceDesc surface;
  memset(&surface, 0, sizeof surface);
  surface.pixels = s->pixels;
  surface.width = uint32_t(s->width);
  surface.height = uint32_t(s->height);
  surface.pitch = uint32_t(s->width) * 2;
  Viewport* vp = CreateViewport(&surface, s->width, s->height, s->depth);
  if (vp == nullptr) return nullptr;
  SetViewportType(vp, E3D_VIEWPORT_ENABLED | 1);
  SetViewportCamera(vp, s->camera);
  return vp;
}

Vector3 Add(Vector3 a, Vector3 b, float k) { return {a.x + b.x * k, a.y + b.y * k, a.z + b.z * k}; }

}  // namespace

uint16_t PixelFromRgb(uint32_t rgb) {
  return uint16_t((rgb >> 19 & 31) << 10 | (rgb >> 11 & 31) << 5 | (rgb >> 3 & 31));
}

int CreateStage(Stage* s, Scene* scene, int width, int height, int depth, float radius, int withLights) {
  memset(s, 0, sizeof *s);
  s->scene = scene;
  s->width = width;
  s->height = height;
  s->depth = depth;
  s->radius = radius;
  s->yaw = 30;
  s->pitch = 20;
  s->zoom = 1;
  s->fov = 45;
  const Vector3 eye = {0, 0, -1}, origin = {0, 0, 0};
  s->pixels = static_cast<uint16_t*>(calloc(size_t(width) * height, 2));
  // Taking a camera out of a scene's list again can empty the whole list, so
  // a scene that has a camera keeps its list as it is.
  s->camera = GetActivedSceneCamera(scene);
  if (s->camera == nullptr) {
    s->camera = CreateCamera(&eye, &origin, 0, s->fov, 10);
    s->ownCamera = s->camera != nullptr;
    if (s->camera != nullptr && !AssignCameraToScene(scene, s->camera)) {
      FreeStage(s);
      return 0;
    }
  }
  if (s->pixels == nullptr || s->camera == nullptr) {
    FreeStage(s);
    return 0;
  }
  SetCameraFov(s->camera, s->fov);
  if (withLights) {
    const float white[4] = {1.0f, 0.97f, 0.92f, 1.0f}, cool[4] = {0.75f, 0.85f, 1.0f, 1.0f};
    s->key = CreateDirectLight(&eye, &origin, white, 0.8f, 0);
    s->fill = CreateOmniLight(&eye, cool, 0.35f, 0, 0, 0);
    if (s->key == nullptr || s->fill == nullptr) {
      FreeStage(s);
      return 0;
    }
    SetLightStatus(s->key, 1, 0);
    SetLightStatus(s->fill, 1, 0);
    AssignLightToScene(scene, s->key, 1);
    AssignLightToScene(scene, s->fill, 1);
  }
  s->viewport = NewViewport(s);
  if (s->viewport == nullptr) {
    FreeStage(s);
    return 0;
  }
  SetSceneViewport(scene, s->viewport);
  PlaceStageCamera(s);
  return 1;
}

void FreeStage(Stage* s) {
  if (s->scene != nullptr) SetSceneViewport(s->scene, nullptr);
  if (s->ownCamera) DeleteCamera(s->camera);
  if (s->key != nullptr) DeleteLight(s->key);
  if (s->fill != nullptr) DeleteLight(s->fill);
  if (s->viewport != nullptr) DeleteViewport(s->viewport);
  free(s->pixels);
  memset(s, 0, sizeof *s);
}

int SetStageDepth(Stage* s, int depth) {
  if (depth == s->depth) return 1;
  const int old = s->depth;
  s->depth = depth;
  Viewport* vp = NewViewport(s);
  if (vp == nullptr) {
    s->depth = old;
    return 0;
  }
  SetSceneViewport(s->scene, vp);
  DeleteViewport(s->viewport);
  s->viewport = vp;
  return 1;
}

void PlaceStageCamera(Stage* s) {
  // Far enough that the sphere fits the narrower of the two angles. A 4:3
  // viewport takes the field of view across, any other shape up and down.
  const float half = s->fov * 0.5f * kRadians, ratio = float(s->width) / float(s->height);
  const bool across = 4 * s->height == 3 * s->width;
  const float halfV = across ? atanf(tanf(half) / ratio) : half;
  const float halfH = across ? half : atanf(tanf(half) * ratio);
  const float narrow = halfV < halfH ? halfV : halfH;
  const float distance = s->zoom * s->radius / sinf(narrow);
  const float cy = cosf(s->yaw * kRadians), sy = sinf(s->yaw * kRadians);
  const float cp = cosf(s->pitch * kRadians), sp = sinf(s->pitch * kRadians);
  const Vector3 origin = {0, 0, 0};
  const Vector3 back = {-sy * cp, sp, -cy * cp};  // from the origin toward the eye
  const Vector3 right = {cy, 0, -sy};
  const Vector3 up = {sy * sp, cp, cy * sp};
  const Vector3 eye = Add(origin, back, distance);
  SetCameraPosition(s->camera, &eye, 0);
  SetCameraPosition(s->camera, &origin, 1);
  if (s->key != nullptr) {
    // Key from above on the left, fill low on the right, both in front.
    const Vector3 key = Add(Add(eye, up, distance * 0.8f), right, -distance * 0.6f);
    const Vector3 fill = Add(Add(eye, up, -distance * 0.3f), right, distance * 0.9f);
    SetLightPosition(s->key, &key, 0);
    SetLightPosition(s->key, &origin, 1);
    SetLightPosition(s->fill, &fill, 0);
  }
}

void DrawStage(Stage* s, uint32_t background) {
  const uint16_t pixel = PixelFromRgb(background);
  for (int i = 0; i < s->width * s->height; i++) s->pixels[i] = pixel;
  if (s->depth) ClearViewportDepthBuffer(s->viewport, 0xFFFFFFFFu);
  DrawScene(s->scene);
}

void SetSceneDrawModes(Scene* scene, uint32_t shade, int wireframe, int textures) {
  const uint32_t mode = wireframe ? 0x00300000u : textures ? 0x00F00000u : 0x00700000u;
  for (int i = 0;; i++) {
    Mesh* mesh = SearchMeshByIndex(scene, i);
    if (mesh == nullptr) break;
    SetMeshShadeMode(mesh, shade);
    SetMeshRenderMode(mesh, mode);
  }
}
