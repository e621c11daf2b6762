// The parts of a viewport that limit drawing: scissor rectangle, letter-box
// border, and the depth rows under the scissor.
#include <bit>

#include "engine/math.h"
#include "engine/memory.h"
#include "engine3d.h"
#include "viewport/viewport.h"

namespace e3d {
namespace {

// Sign tests on the bit pattern. -0.0 is neither positive nor negative; a
// NaN counts by its sign bit.
inline bool IsPositive(float x) { return __builtin_bit_cast(int32_t, x) > 0; }
inline bool IsNegative(float x) {
  uint32_t bits = __builtin_bit_cast(uint32_t, x);
  return (bits & 0x80000000u) != 0 && (bits & 0x7FFFFFFFu) != 0;
}

inline float NotNegative(float x) { return IsNegative(x) ? 0.0f : x; }

// Both letter-box setters end here: rows of each bar, and the offset of the
// first pixel below the top one.
void SetBorder(Viewport* vp, int32_t rows) {
  vp->borderHeight = rows;
  vp->borderOffset = static_cast<int32_t>(vp->pitchPixels * static_cast<uint32_t>(rows));
}

// Both bars must leave at least a row between them.
inline bool BorderFits(const Viewport* vp, int32_t rows) {
  return rows >= 0 && static_cast<float>(2.0 * rows) < vp->height;
}

}  // namespace
}  // namespace e3d

using namespace e3d;

// Refused whole when it reaches past the right or bottom edge; otherwise
// clamped into the viewport on the left and top. Order is not checked.
E3D_API void E3D_CALL SetViewportScissor(Viewport* vp, float left, float right, float top, float bottom) {
  if (IsPositive(bottom - vp->height) || IsPositive(right - vp->width)) return;
  // A NaN left or top counts as beyond the size: no bound may be a NaN,
  // or the clipper would let everything through on that side.
  left = NotNegative(left);
  if (!(left <= vp->width)) left = vp->width;
  top = NotNegative(top);
  if (!(top <= vp->height)) top = vp->height;
  vp->scissorLeft = left;
  vp->scissorRight = NotNegative(right);
  vp->scissorTop = top;
  vp->scissorBottom = NotNegative(bottom);
}

// The aspect then reports visible width over visible height.
E3D_API void E3D_CALL SetViewportBorderHeight(Viewport* vp, int32_t rows) {
  if (!BorderFits(vp, rows)) return;
  SetBorder(vp, rows);
  vp->aspect =
      static_cast<float>(static_cast<double>(vp->width) / (2.0 * rows - static_cast<double>(vp->height)));
}

// Stops in the debugger first, as it always has: hosts rely on the trap.
// Each processor's own breakpoint; WebAssembly has none, and goes on.
// A picture taller than the viewport is refused.
E3D_API void E3D_CALL SetViewportAspect(Viewport* vp, float aspect) {
#if defined(__x86_64__) || defined(__i386__)
  __asm__ volatile("int3");
#elif defined(__aarch64__)
  __asm__ volatile("brk #0xf000");
#endif
  int32_t rows = FloatToInt(
      (static_cast<double>(vp->height) - static_cast<double>(vp->width) / static_cast<double>(aspect)) * 0.5);
  if (!BorderFits(vp, rows)) return;
  SetBorder(vp, rows);
  vp->aspect = -aspect;
}

// Whole rows of the scissor's vertical band: the horizontal limits do not
// apply, and rows are width entries apart. No depth buffer is a host error.
E3D_API void E3D_CALL ClearViewportDepthBuffer(Viewport* vp, uint32_t value) {
  double width = vp->width;
  int32_t count = FloatToInt((static_cast<double>(vp->scissorBottom) - vp->scissorTop) * width);
  int32_t start = FloatToInt(static_cast<float>(FloatToInt(vp->scissorTop)) * width);
  if (count > 0) MemoryFill32(vp->depthBuffer + start, value, static_cast<uint32_t>(count) * 4);
}
