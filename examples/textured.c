/* A textured sphere: the host makes an 8888 image, the engine fills its
   mip levels, the sphere's material shows it. Writes textured.ppm. */
#include <string.h>

#include "engine3d.h"
#include "example.h"

enum { kWidth = 320, kHeight = 240, kSide = 64 };
static uint16_t pixels[kWidth * kHeight];
static uint32_t texels[kSide * kSide];

int main(void) {
  InitEngine3D();

  /* Level 0 is ours: stripes over a gradient, 0x00RRGGBB with alpha 0xFF. */
  for (int y = 0; y < kSide; y++)
    for (int x = 0; x < kSide; x++) {
      const uint32_t stripe = ((x / 8 + y / 8) & 1) ? 0xF0C040u : 0x2060C0u;
      texels[y * kSide + x] = 0xFF000000u | (stripe + (uint32_t)(y / 4) * 0x010101u);
    }
  MipChain chain;
  memset(&chain, 0, sizeof chain);
  chain.levelPixels[0] = texels;
  chain.levelWidths[0] = chain.levelHeights[0] = kSide;
  chain.levelPitches[0] = kSide * 4;
  CreateMMTexture8888(&chain); /* levels 1-3, which we free at the end */

  Scene* scene = CreateScene();
  Mesh* ball = SphereCreate(50, NULL, 16, 24, 0xFFFFFF);
  ActivateMesh(ball);
  SetMeshShadeMode(ball, 7);
  /* Stage 0 from the chain (option 1: 8888 texels, 4: bilinear), and a render
     mode with the texture stage on. */
  SetMaterialTextureChain(GetMeshDefaultMaterial(ball), 0, &chain, 1 | 4);
  SetMeshRenderMode(ball, 0x00F00000);
  SetMeshModelOrientation(ball, -20, 30, 0);
  AssignMeshToScene(scene, ball, 0);

  const Vector3 eye = {0, 0, -210}, origin = {0, 0, 0}, lamp = {-150, 150, -150};
  const float white[4] = {1, 1, 1, 1};
  Light* light = CreateDirectLight(&lamp, &origin, white, 0.9f, 0);
  SetLightStatus(light, 1, 0);
  AssignLightToScene(scene, light, 1);
  AssignCameraToScene(scene, CreateCamera(&eye, &origin, 0, 50, 10));

  Viewport* vp = CreateExampleViewport(pixels, kWidth, kHeight, 1);
  SetSceneViewport(scene, vp);

  for (int i = 0; i < kWidth * kHeight; i++) pixels[i] = 0x0C63;
  ClearViewportDepthBuffer(vp, 0xFFFFFFFFu);
  DrawScene(scene);
  const int ok = WritePpm("textured.ppm", pixels, kWidth, kHeight);

  DeleteWholeScene(scene);
  DeleteViewport(vp);
  for (int i = 1; i < 4; i++)
    if (chain.levelPixels[i] != NULL) FreeMemory(chain.levelPixels[i]);
  ReleaseEngine3D();
  return ok ? 0 : 1;
}
