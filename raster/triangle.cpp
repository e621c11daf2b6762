// The parts of the triangle walker that are not templates.
#include "raster/triangle.h"

namespace e3d {

void FloorDivMod(int64_t numerator, int32_t denominator, int32_t* quotient, int32_t* remainder) {
  int64_t q = numerator / denominator;
  int64_t r = numerator % denominator;
  if (r < 0) {  // division truncated toward zero: round down instead
    q -= 1;
    r += denominator;
  }
  *quotient = static_cast<int32_t>(q);
  *remainder = static_cast<int32_t>(r);
}

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
