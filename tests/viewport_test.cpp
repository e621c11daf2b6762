// Viewports: creation over a host surface, scissor, letter-box border and
// aspect (with its breakpoint), and clearing the depth buffer.
#if defined(_WIN32)
#include <windows.h>
#else
#include <signal.h>
#include <ucontext.h>
#endif

#include <cmath>
#include <cstring>

#include "engine3d.h"
#include "support/test_host.h"
#include "viewport/viewport.h"

namespace {

uint16_t pixels[4];

// A surface record with only the words a viewport reads.
SurfaceDesc Surface(uint32_t width, uint32_t height, uint32_t pitch) {
  SurfaceDesc d;
  std::memset(&d, 0xCD, sizeof d);
  d.pixels = pixels, d.width = width, d.height = height, d.pitch = pitch;
  return d;
}

class ViewportTest : public testhost::LeakCheckedTest {
 protected:
  SurfaceDesc surface = Surface(640, 480, 1280);
  Viewport* vp = nullptr;
  void SetUp() override {
    LeakCheckedTest::SetUp();
    vp = CreateViewport(&surface, 640, 480, 0);
    ASSERT_NE(vp, nullptr);
    vp->pitchPixels = 700;
  }
  void TearDown() override {
    DeleteViewport(vp);
    LeakCheckedTest::TearDown();
  }
  // Bit for bit, so that -0.0 and 0.0 differ.
  void ExpectScissor(float l, float r, float t, float b) {
    float want[4] = {l, r, t, b}, have[4];
    GetViewportScissor(vp, have);
    EXPECT_EQ(std::memcmp(want, have, sizeof want), 0)
        << have[0] << " " << have[1] << " " << have[2] << " " << have[3];
  }
};

TEST_F(ViewportTest, CreateWithAndWithoutDepthBuffer) {
  // The depth buffer follows the surface's size, the pitch is halved.
  SurfaceDesc small = Surface(320, 200, 1283);
  size_t bytes = testhost::LiveBytes();
  Viewport* d = CreateViewport(&small, 640, 480, 1);
  ASSERT_NE(d, nullptr);
  EXPECT_EQ(testhost::LiveBytes() - bytes, sizeof(Viewport) + 320 * 200 * 4);
  EXPECT_TRUE(d->flags == 8u && d->pitchPixels == 641u && d->centerX == 320.0f && d->centerY == 240.0f);
  DeleteViewport(d);
  d = CreateViewport(&small, 640, 400, 2);  // only exactly 1 asks for a depth buffer
  EXPECT_TRUE(d->flags == 0 && d->depthBuffer == nullptr);
  EXPECT_FLOAT_EQ(GetViewportAspect(d), 4.0f * 400 / (3.0f * 640));
  DeleteViewport(d);
}

TEST_F(ViewportTest, ScissorRefusesAndClamps) {
  SetViewportScissor(vp, -5, 700, 0, 100);  // right beyond the width: refused whole
  ExpectScissor(0, 640, 0, 480);
  SetViewportScissor(vp, -5, 600, -1, 100);
  ExpectScissor(0, 600, 0, 100);
  // Sign tests on the bits: -0.0 is kept, the smallest negative and a NaN
  // with its sign bit set are not.
  SetViewportScissor(vp, -0.0f, -NAN, -1e-45f, 480);
  ExpectScissor(-0.0f, 0, 0, 480);
}

// Counts the breakpoints SetViewportAspect raises and steps over them, as a
// debugger the host runs under would.
volatile int traps = 0;
#if defined(__wasm__)
constexpr bool kTraps = false;
#else
constexpr bool kTraps = true;
#endif
#if defined(_WIN32)
LONG WINAPI CountTrap(EXCEPTION_POINTERS* e) {
  if (e->ExceptionRecord->ExceptionCode != EXCEPTION_BREAKPOINT) return EXCEPTION_CONTINUE_SEARCH;
  traps = traps + 1;
#if defined(_WIN64)
  if (e->ContextRecord->Rip == reinterpret_cast<DWORD64>(e->ExceptionRecord->ExceptionAddress))
    ++e->ContextRecord->Rip;
#else
  if (e->ContextRecord->Eip == reinterpret_cast<DWORD>(e->ExceptionRecord->ExceptionAddress))
    ++e->ContextRecord->Eip;
#endif
  return EXCEPTION_CONTINUE_EXECUTION;
}
struct TrapCounter {
  void* handler = AddVectoredExceptionHandler(1, CountTrap);
  ~TrapCounter() { RemoveVectoredExceptionHandler(handler); }
};
#else
// x86 reports the trap past its instruction; ARM at it, so the handler steps on.
void CountTrap(int, siginfo_t*, void* context) {
  traps = traps + 1;
#if defined(__aarch64__)
  static_cast<ucontext_t*>(context)->uc_mcontext.pc += 4;
#else
  (void)context;
#endif
}
struct TrapCounter {
  struct sigaction old {};
  TrapCounter() {
    struct sigaction on {};
    on.sa_sigaction = CountTrap;
    on.sa_flags = SA_SIGINFO;
    sigemptyset(&on.sa_mask);
    sigaction(SIGTRAP, &on, &old);
  }
  ~TrapCounter() { sigaction(SIGTRAP, &old, nullptr); }
};
#endif

TEST_F(ViewportTest, AspectTrapsThenLetterBoxes) {
  // Every aspect traps first (WebAssembly has no breakpoint); one taller
  // than the viewport is then ignored.
  {
    TrapCounter counter;
    traps = 0;
    const int trap = kTraps ? 1 : 0;
    SetViewportAspect(vp, 1.0f);
    EXPECT_TRUE(traps == trap && GetViewportBorderHeight(vp) == 0 && GetViewportAspect(vp) == 1.0f);
    SetViewportAspect(vp, 16.0f / 9.0f);
    EXPECT_TRUE(traps == 2 * trap && GetViewportBorderHeight(vp) == 60 && vp->borderOffset == 60 * 700);
  }

  SetViewportBorderHeight(vp, 240);  // both bars would cover everything
  EXPECT_EQ(GetViewportBorderHeight(vp), 60);
  SetViewportBorderHeight(vp, 239);
  EXPECT_TRUE(vp->borderOffset == 239 * 700 && GetViewportAspect(vp) == 320.0f);
  // Drawing stays inside the scissor and out of the bars.
  SetViewportBorderHeight(vp, 100);
  SetViewportScissor(vp, 10, 600, 50, 460);
  e3d::ViewportClip c = e3d::ViewportClipBounds(vp);
  EXPECT_TRUE(c.top == 100.0f && c.lastRow == 379.0f);
}

TEST_F(ViewportTest, ClearDepthCoversWholeRowsOfTheScissorBand) {
  SurfaceDesc s = Surface(16, 12, 32);
  Viewport* d = CreateViewport(&s, 16, 12, 1);
  ASSERT_NE(d, nullptr);
  // Entries [from, to) hold value and no others do.
  auto expectBand = [d](uint32_t value, int from, int to) {
    int n = 0;
    for (int i = 0; i < 16 * 12; i++) n += (d->depthBuffer[i] == value) == (i >= from && i < to);
    EXPECT_EQ(n, 192) << from << ".." << to;
  };
  SetViewportScissor(d, 2, 10, 3, 7);  // the horizontal limits do not apply
  ClearViewportDepthBuffer(d, 0xABCDEF01u);
  expectBand(0xABCDEF01u, 3 * 16, 7 * 16);
  SetViewportScissor(d, 0, 16, 2.5f, 7);  // start row 2 (ties to even), 4.5 rows
  ClearViewportDepthBuffer(d, 5);
  expectBand(5, 32, 32 + 72);
  SetViewportScissor(d, 0, 16, 9, 9);
  ClearViewportDepthBuffer(d, 6);
  expectBand(6, 0, 0);
  DeleteViewport(d);
}

}  // namespace
