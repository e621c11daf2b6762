// The one matrix builder hosts call directly.
#include "engine/math.h"

using namespace e3d;

E3D_API void E3D_CALL CreateLookAtMatrix(const Vector3* eye, const Vector3* target, Matrix34* out) {
  // The third row points from the target back to the eye.
  Vector3 d = {eye->x - target->x, eye->y - target->y, eye->z - target->z};
  VectorNormalize(&d);
  if (d.y == 1.0f || d.y == -1.0f) {
    // Straight up or down: no horizontal direction to build the rows from.
    MatrixRotationX(out, d.y >= 0.0f ? 90.0f : -90.0f);
  } else {
    float s = Sqrt(static_cast<float>(1.0 - static_cast<double>(d.y) * d.y));
    double i = 1.0 / s;
    out->m[0] = static_cast<float>(d.z * i);
    out->m[1] = 0.0f;
    out->m[2] = static_cast<float>(-d.x * i);
    out->m[4] = static_cast<float>(-(static_cast<double>(d.x) * d.y * i));
    out->m[5] = s;
    out->m[6] = static_cast<float>(-(static_cast<double>(d.z) * d.y * i));
    out->m[8] = d.x;
    out->m[9] = d.y;
    out->m[10] = d.z;
  }
  out->m[3] = eye->x;
  out->m[7] = eye->y;
  out->m[11] = eye->z;
}
