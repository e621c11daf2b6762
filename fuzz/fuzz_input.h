// Turns a fuzzer's bytes into the values the targets need; past the end
// every read gives zero, so any input is a complete case.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace fuzz {

class Input {
 public:
  Input(const uint8_t* data, std::size_t size) : p_(data), n_(size) {}
  bool Empty() const { return n_ == 0; }

  uint8_t U8() {
    if (n_ == 0) return 0;
    --n_;
    return *p_++;
  }
  uint16_t U16() { return static_cast<uint16_t>(U8() | U8() << 8); }
  uint32_t U32() { return U16() | static_cast<uint32_t>(U16()) << 16; }
  bool Bool() { return U8() & 1; }
  // lo..hi inclusive.
  int32_t Range(int32_t lo, int32_t hi) {
    const uint32_t span = static_cast<uint32_t>(hi - lo) + 1;
    return lo + static_cast<int32_t>((span > 256 ? U16() : U8()) % span);
  }

  // Any float, leaning to the ones that break arithmetic.
  float Float() {
    static const float kSpecial[] = {
        std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::quiet_NaN(),
        std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
        0.0f, -0.0f, std::numeric_limits<float>::max(), -std::numeric_limits<float>::max(),
        std::numeric_limits<float>::min(), std::numeric_limits<float>::denorm_min(),
        1e10f, -1e10f, 2147483648.0f, 134217728.0f, 1e-30f, 0.5f, 1.0f, -1.0f, 10.0f, 1e6f};
    const uint8_t kind = U8();
    switch (kind % 4) {
      case 0: return kSpecial[U8() % (sizeof kSpecial / sizeof kSpecial[0])];
      case 1: {
        const uint32_t bits = U32();
        float f;
        std::memcpy(&f, &bits, sizeof f);
        return f;
      }
      default: return static_cast<int16_t>(U16()) / 16.0f;
    }
  }
  // A float inside lo..hi most of the time (corners on the grid, on the
  // bounds, anywhere between), else any float.
  float Within(float lo, float hi) {
    const uint8_t kind = U8();
    if (kind % 8 == 7) return Float();
    const float t = U16() / 65535.0f;
    const float at = lo + (hi - lo) * t;
    if (kind % 8 == 6 || !(at > -1e8f && at < 1e8f)) return at;
    return static_cast<float>(static_cast<int>(at * 16.0f)) / 16.0f;
  }

 private:
  const uint8_t* p_;
  std::size_t n_;
};

}  // namespace fuzz
