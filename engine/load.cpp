// Load-time set-up: the floating-point unit and the angle factors.
#include "engine/fp.h"
#include "engine/math.h"

namespace e3d {

// Initialised statically as well, so that no other load-time code can see
// them unset whatever order the initialisers run in.
float Pi = static_cast<float>(fp::kPi);
float DegToRad = static_cast<float>(fp::kPi / 180.0);
float RadToDeg = static_cast<float>(180.0 / fp::kPi);

namespace {

#if defined(__x86_64__) || defined(__i386__)
// The x87 unit's power-on control word: 64-bit precision, round to nearest,
// every exception masked. The library computes in SSE, but conversions a
// host makes on the unit must see nearest rounding, as the library's do.
// Other processors have no such unit.
constexpr uint16_t kDefaultControlWord = 0x037F;
#endif

__attribute__((constructor)) void LoadLibrary() {
#if defined(__x86_64__) || defined(__i386__)
  uint16_t word = kDefaultControlWord;
  __asm__ volatile("fninit\n\tfldcw %0" : : "m"(word));
#endif
  Pi = static_cast<float>(fp::kPi);
  RadToDeg = static_cast<float>(180.0 / fp::kPi);
  DegToRad = static_cast<float>(fp::kPi / 180.0);
}

}  // namespace

}  // namespace e3d
