// Viewports: creation over a host surface, deletion, and the plain accessors.
#include "viewport/viewport.h"

#include "engine/memory.h"
#include "engine3d.h"

using namespace e3d;

// The library reads the surface's pixel pointer, size and pitch and keeps no
// pointer to the record. Any depthBuffer but 1 means none.
E3D_API Viewport* E3D_CALL CreateViewport(const SurfaceDesc* surface, int32_t width,
                                          int32_t height, int32_t depthBuffer) {
  Viewport* vp = Allocate<Viewport>();
  if (vp == nullptr) return nullptr;
  vp->borderOffset = 0;
  vp->borderHeight = 0;
  vp->projectionSign = -1.0f;
  vp->depthScale = kViewportDepthScale;
  vp->width = static_cast<float>(width);
  vp->height = static_cast<float>(height);
  vp->centerX = vp->width * 0.5f;
  vp->centerY = vp->height * 0.5f;
  // 4:3 reports 1; one rounding, from the exact integers.
  vp->aspect = static_cast<float>(-(4.0 * height) / (3.0 * width));
  vp->pixels = static_cast<uint16_t*>(surface->pixels);
  vp->pitchPixels = surface->pitch >> 1;
  vp->camera = nullptr;
  vp->material = nullptr;
  vp->spare = 0;
  SetViewportScissor(vp, 0.0f, vp->width, 0.0f, vp->height);
  vp->depthBuffer = nullptr;
  vp->flags = 0;
  vp->reserved = 0;
  if (depthBuffer != 1) return vp;
  // Sized by the surface, not the viewport; the product may wrap.
  vp->depthBuffer = static_cast<uint32_t*>(AllocateMemory(surface->width * surface->height * 4));
  if (vp->depthBuffer == nullptr) {
    FreeMemory(vp);
    return nullptr;
  }
  vp->flags = kViewportDepth;
  return vp;
}

// The material goes straight back to the allocator: a host that still uses
// it clears it with SetViewportMaterial first.
E3D_API void E3D_CALL DeleteViewport(Viewport* vp) {
  Release(vp->depthBuffer);
  Release(vp->material);
  FreeMemory(vp);
}

// The whole word is OR-ed in, so a type can carry the enabled bit along.
E3D_API void E3D_CALL SetViewportType(Viewport* vp, uint32_t type) {
  if (type & kViewportTypeMask) vp->flags = (vp->flags & ~kViewportTypeMask) | type;
}

E3D_API uint32_t E3D_CALL GetViewportType(const Viewport* vp) {
  return vp->flags & kViewportTypeMask;
}

E3D_API void E3D_CALL SetViewportCamera(Viewport* vp, Camera* camera) { vp->camera = camera; }

E3D_API Camera* E3D_CALL GetViewportCamera(const Viewport* vp) { return vp->camera; }

E3D_API void E3D_CALL SetViewportMaterial(Viewport* vp, Material* material) {
  vp->material = material;
}

E3D_API float E3D_CALL GetViewportAspect(const Viewport* vp) { return -vp->aspect; }

E3D_API int32_t E3D_CALL GetViewportBorderHeight(const Viewport* vp) { return vp->borderHeight; }

E3D_API void E3D_CALL GetViewportScissor(const Viewport* vp, float* rect) {
  MemoryCopy(rect, &vp->scissorLeft, 4 * sizeof(float));
}
