/* A lit cube turning in a scene drawn with DrawScene through the depth
   buffer. Writes the last frame to cube.ppm and prints the frame rate. */
#include <stdio.h>
#include <time.h>

#include "engine3d.h"
#include "example.h"

enum { kWidth = 320, kHeight = 240, kFrames = 90 };
static uint16_t pixels[kWidth * kHeight];

int main(void) {
  InitEngine3D();
  Scene* scene = CreateScene();

  /* A generated cube is ready to draw once activated; Gouraud shading. */
  Mesh* cube = CubeCreate(60, NULL, 0x3080E0);
  ActivateMesh(cube);
  SetMeshShadeMode(cube, 7);
  SetMaterialColor(GetMeshDefaultMaterial(cube), 0, 20, 20, 30); /* ambient */
  AssignMeshToScene(scene, cube, 0);

  /* A warm key light from the upper left and a cool omni on the right. */
  const Vector3 sun = {-200, 250, -200}, origin = {0, 0, 0}, side = {150, -40, -120};
  const float warm[4] = {1.0f, 0.9f, 0.75f, 1}, cool[4] = {0.5f, 0.6f, 1.0f, 1};
  Light* key = CreateDirectLight(&sun, &origin, warm, 0.9f, 0);
  Light* fill = CreateOmniLight(&side, cool, 0.4f, 0, 0, 0);
  SetLightStatus(key, 1, 0);
  SetLightStatus(fill, 1, 0);
  AssignLightToScene(scene, key, 1);
  AssignLightToScene(scene, fill, 1);

  const Vector3 eye = {0, 60, -180};
  Camera* camera = CreateCamera(&eye, &origin, 0, 50, 10);
  AssignCameraToScene(scene, camera);

  Viewport* vp = CreateExampleViewport(pixels, kWidth, kHeight, 1);
  SetSceneViewport(scene, vp);

  const clock_t start = clock();
  for (int frame = 0; frame < kFrames; frame++) {
    SetMeshModelOrientation(cube, 20, frame * 2.0f, 0);
    for (int i = 0; i < kWidth * kHeight; i++) pixels[i] = 0x0C63;
    ClearViewportDepthBuffer(vp, 0xFFFFFFFFu);
    DrawScene(scene);
  }
  const double seconds = (double)(clock() - start) / CLOCKS_PER_SEC;
  printf("%d frames, %.0f frames per second\n", kFrames, seconds > 0 ? kFrames / seconds : 0.0);
  const int ok = WritePpm("cube.ppm", pixels, kWidth, kHeight);

  DeleteWholeScene(scene); /* the cube, the lights and the camera */
  DeleteViewport(vp);
  ReleaseEngine3D();
  return ok ? 0 : 1;
}
