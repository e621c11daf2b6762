#include "raster/render_state.h"

#include "raster/span_wide.h"

namespace e3d {

RenderInfo renderInfo = {nullptr, nullptr};
WideSpans wideSpans = {};

bool UseSpanPath(SpanPath path) {
  const WideSpans* wide = path == SpanPath::kAvx2 ? Avx2Spans() : nullptr;
  if (path != SpanPath::kBaseline && wide == nullptr) return false;
  wideSpans = wide != nullptr ? *wide : WideSpans{};
  return true;
}

}  // namespace e3d

E3D_API Viewport* E3D_CALL SetRenderInfos(Viewport* viewport, Camera* camera) {
  e3d::renderInfo.viewport = viewport;
  e3d::renderInfo.camera = camera;
  return viewport;
}

E3D_API Viewport* E3D_CALL GetRenderViewport(void) { return e3d::renderInfo.viewport; }

// A code with a family in bits 8-11 is of the original layout, whose low
// bits are model and stepping, not features.
E3D_API void E3D_CALL UpdateDrawScanline(uint32_t processorType) {
  const bool avx2 = (processorType & 0x0F00u) == 0 && (processorType & E3D_CPU_AVX2) != 0;
  e3d::UseSpanPath(avx2 ? e3d::SpanPath::kAvx2 : e3d::SpanPath::kBaseline);
}
