#include "raster/render_state.h"

namespace e3d {

RenderInfo renderInfo = {nullptr, nullptr};

}  // namespace e3d

E3D_API Viewport* E3D_CALL SetRenderInfos(Viewport* viewport, Camera* camera) {
  e3d::renderInfo.viewport = viewport;
  e3d::renderInfo.camera = camera;
  return viewport;
}

E3D_API Viewport* E3D_CALL GetRenderViewport(void) { return e3d::renderInfo.viewport; }

// Every processor uses the same span drawers: nothing to choose.
E3D_API void E3D_CALL UpdateDrawScanline(uint32_t) {}
