// Vector kernel: products and sums in double, one rounding per stored value.
#include "engine/fp.h"
#include "engine/math.h"

namespace e3d {

namespace {

double LengthSquared(const Vector3* v) {
  return static_cast<double>(v->x) * v->x + static_cast<double>(v->y) * v->y +
         static_cast<double>(v->z) * v->z;
}

}  // namespace

float VectorLength(const Vector3* v) { return static_cast<float>(fp::Sqrt(LengthSquared(v))); }

float VectorInvLength(const Vector3* v) {
  return static_cast<float>(1.0 / fp::Sqrt(LengthSquared(v)));
}

// No guard: the zero vector gets 0 * infinity, not a number, in every component.
void VectorNormalize(Vector3* v) {
  double inv = 1.0 / fp::Sqrt(LengthSquared(v));
  v->x = static_cast<float>(v->x * inv);
  v->y = static_cast<float>(v->y * inv);
  v->z = static_cast<float>(v->z * inv);
}

void VectorCross(const Vector3* a, const Vector3* b, Vector3* out) {
  out->x = static_cast<float>(static_cast<double>(a->y) * b->z - static_cast<double>(a->z) * b->y);
  out->y = static_cast<float>(static_cast<double>(a->z) * b->x - static_cast<double>(a->x) * b->z);
  out->z = static_cast<float>(static_cast<double>(a->x) * b->y - static_cast<double>(a->y) * b->x);
}

float VectorDot(const Vector3* a, const Vector3* b) {
  return static_cast<float>(static_cast<double>(a->x) * b->x + static_cast<double>(a->y) * b->y +
                            static_cast<double>(a->z) * b->z);
}

// Signed differences, no absolute values; a NaN difference fails the test.
int32_t VectorExceeds(const Vector3* a, const Vector3* b) {
  double e = Epsilon;
  return static_cast<double>(b->x) - a->x >= e && static_cast<double>(b->y) - a->y >= e &&
                 static_cast<double>(b->z) - a->z >= e
             ? 1
             : 0;
}

}  // namespace e3d
