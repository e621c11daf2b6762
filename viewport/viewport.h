// The viewport record: a host pixel surface with its screen size, scissor
// rectangle, letter-box border, depth buffer, camera and post-effect material.
#pragma once
#include <stdint.h>

#include "engine3d.h"

// Completes the header's opaque handle; fields in the interface's order.
struct Viewport {
  uint32_t flags;            // type in bits 0-1, kViewportDepth, kViewportEnabled
  float width;
  float height;
  float centerX;             // projection centre
  float centerY;
  float scissorLeft;         // scissor rectangle, in this order
  float scissorRight;
  float scissorTop;
  float scissorBottom;
  float projectionSign;      // -1: screen y grows downward
  float aspect;              // vertical aspect factor, stored negated
  int32_t borderOffset;      // borderHeight rows of pixels
  int32_t borderHeight;      // rows of each letter-box bar
  int32_t depthScale;
  uint16_t* pixels;          // the host's surface
  uint32_t* depthBuffer;     // owned; rows are width entries apart
  Material* material;        // post-effect material
  int32_t reserved;
  uint32_t pitchPixels;      // surface pitch in pixels
  Camera* camera;
  int32_t spare;
};
#if defined(__i386__)
static_assert(sizeof(Viewport) == 84, "Viewport is 21 words on i386");
static_assert(__builtin_offsetof(Viewport, scissorLeft) == 4 * 5);
static_assert(__builtin_offsetof(Viewport, aspect) == 4 * 10);
static_assert(__builtin_offsetof(Viewport, borderHeight) == 4 * 12);
static_assert(__builtin_offsetof(Viewport, pixels) == 4 * 14);
static_assert(__builtin_offsetof(Viewport, depthBuffer) == 4 * 15);
static_assert(__builtin_offsetof(Viewport, pitchPixels) == 4 * 18);
static_assert(__builtin_offsetof(Viewport, camera) == 4 * 19);
#endif

namespace e3d {

inline constexpr uint32_t kViewportTypeMask = 0x3;
inline constexpr uint32_t kViewportDepth = E3D_VIEWPORT_DEPTH;
inline constexpr uint32_t kViewportEnabled = E3D_VIEWPORT_ENABLED;
inline constexpr int32_t kViewportDepthScale = 32768;

inline bool ViewportHasDepth(const Viewport* vp) { return (vp->flags & kViewportDepth) != 0; }
inline bool ViewportIsEnabled(const Viewport* vp) { return (vp->flags & kViewportEnabled) != 0; }

// Where a draw may put pixels: the scissor rectangle less the letter-box
// bars, which are never drawn into. lastColumn and lastRow are the right and
// bottom bounds less one.
struct ViewportClip {
  float left, right, top, bottom;
  float lastColumn, lastRow;
};

inline ViewportClip ViewportClipBounds(const Viewport* vp) {
  float border = static_cast<float>(vp->borderHeight);
  float belowBorder = vp->height - border;
  ViewportClip c;
  c.left = vp->scissorLeft;
  c.right = vp->scissorRight;
  c.top = vp->scissorTop > border ? vp->scissorTop : border;
  c.bottom = vp->scissorBottom < belowBorder ? vp->scissorBottom : belowBorder;
  // The scissor's order is not checked: a rectangle turned inside out (or
  // pushed out by the bars) holds nothing, and every point lies outside it.
  if (!(c.right >= c.left)) c.right = c.left;
  if (!(c.bottom >= c.top)) c.bottom = c.top;
  c.lastColumn = c.right - 1.0f;
  c.lastRow = c.bottom - 1.0f;
  return c;
}

}  // namespace e3d
