// Float to integer conversions. They behave as the x87 integer stores do in
// round-to-nearest: a 64-bit store keeps its low half (wrapping), a 32-bit
// store gives the "integer indefinite" 0x80000000 for anything out of range
// or not a number. Written out in doubles so every build agrees.
#include "engine/fp.h"
#include "engine/math.h"

namespace e3d {

namespace {

constexpr int32_t kIndefinite32 = INT32_MIN;

int32_t StoreInt32(double integral) {
  if (integral >= -fp::kTwo31 && integral < fp::kTwo31) return static_cast<int32_t>(integral);
  return kIndefinite32;
}

}  // namespace

int32_t FloatToIntWide(double x) {
  // A 64-bit store of a value beyond its range (or of a NaN) writes
  // 0x8000000000000000, whose low half is 0.
  if (!(x >= -fp::kTwo63 && x < fp::kTwo63)) return 0;
  return fp::Low32(fp::RoundEven(x));
}

int32_t FloatToInt32(double x) { return StoreInt32(fp::RoundEven(x)); }

int32_t FloatRoundAwayFromZero(float x) {
  double v = x;
  return StoreInt32(fp::SignBit(x) ? fp::Floor(v) : -fp::Floor(-v));
}

int32_t FloatFloor(float x) { return StoreInt32(fp::Floor(x)); }

}  // namespace e3d
