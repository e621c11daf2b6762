// The render state: where the triangle drawers draw. Set by each drawing pass
// (and by DrawTriangle2D) before it draws, never reset afterwards.
#pragma once
#include "engine3d.h"

namespace e3d {

struct RenderInfo {
  Viewport* viewport;  // pixels, pitch, depth buffer, scissor and centre come from it
  Camera* camera;      // or null; the wire drawers cut edges at its near plane
};

extern RenderInfo renderInfo;

}  // namespace e3d
