/* A 32-bit host built by Microsoft's compiler calls with the stack aligned
   only to 4 bytes. Every export the engine's draw touches is entered here
   through a stack 4 bytes off a 16-byte boundary: a function that assumed 16
   and kept SSE values on the stack would fault. The picture must equal the
   one drawn through an ordinary call. */
#include <stdio.h>
#include <string.h>

#include "engine3d.h"

enum { kWidth = 160, kHeight = 120 };
static uint16_t pixels[2][kWidth * kHeight];

/* Calls fn(arg) with the stack pointer 4 mod 16 at the call. */
void CallOffAlignment(void (*fn)(void*), void* arg);
__asm__(
    ".text\n"
    ".globl CallOffAlignment\n"
    "CallOffAlignment:\n"
    "  push %ebp\n"
    "  mov %esp, %ebp\n"
    "  and $-16, %esp\n"
    "  sub $8, %esp\n"
    "  pushl 12(%ebp)\n"
    "  call *8(%ebp)\n"
    "  leave\n"
    "  ret\n");

static void Draw(void* target) {
  uint16_t* out = (uint16_t*)target;
  InitEngine3D();
  Scene* scene = CreateScene();
  Mesh* sphere = SphereCreate(50, NULL, 12, 24, 0x40A0E0);
  ActivateMesh(sphere);
  SetMeshShadeMode(sphere, 7);
  AssignMeshToScene(scene, sphere, 0);
  const Vector3 sun = {-200, 250, -200}, origin = {0, 0, 0}, eye = {0, 40, -160};
  const float white[4] = {1, 1, 1, 1};
  Light* key = CreateDirectLight(&sun, &origin, white, 0.9f, 0);
  SetLightStatus(key, 1, 0);
  AssignLightToScene(scene, key, 1);
  AssignCameraToScene(scene, CreateCamera(&eye, &origin, 0, 50, 10));
  SurfaceDesc surface;
  memset(&surface, 0, sizeof surface);
  surface.pixels = out, surface.width = kWidth, surface.height = kHeight, surface.pitch = 2 * kWidth;
  Viewport* vp = CreateViewport(&surface, kWidth, kHeight, 1);
  SetViewportType(vp, E3D_VIEWPORT_ENABLED | 1);
  SetSceneViewport(scene, vp);
  ClearViewportDepthBuffer(vp, 0xFFFFFFFFu);
  DrawScene(scene);
  FSBlur(out, kWidth, kHeight);
  DeleteWholeScene(scene);
  DeleteViewport(vp);
  ReleaseEngine3D();
}

int main(void) {
  Draw(pixels[0]);
  CallOffAlignment(Draw, pixels[1]);
  int drawn = 0;
  for (int i = 0; i < kWidth * kHeight; i++) drawn += pixels[0][i] != 0;
  if (drawn < kWidth * kHeight / 10 || memcmp(pixels[0], pixels[1], sizeof pixels[0]) != 0) {
    fprintf(stderr, "the draw through a 4-byte aligned stack differs (%d pixels drawn)\n", drawn);
    return 1;
  }
  printf("same picture through a 4-byte aligned stack (%d pixels drawn)\n", drawn);
  return 0;
}
