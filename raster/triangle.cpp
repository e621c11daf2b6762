// The parts of the triangle walker that are not templates.
#include "raster/triangle.h"

namespace e3d {

int32_t DrawnAlphaMode(const Material* material) {
  const int32_t mode = material->alphaMode;
  if (mode > 3) return -1;
  if (mode == 2) {
    if (material->alphaLevel == 0) return -1;
    if (material->alphaLevel >= 255) return 0;
  }
  return mode;
}

}  // namespace e3d
