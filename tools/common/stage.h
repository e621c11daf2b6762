// A stage for a scene: an orbiting camera, a key and a fill light that move
// with it, and a viewport over a pixel buffer the stage owns.
#ifndef E3D_TOOLS_STAGE_H
#define E3D_TOOLS_STAGE_H

#include <stdint.h>

#include "engine3d.h"

enum { kShadeUnlit = 1, kShadeFlat = 3, kShadeGouraud = 7 };

struct Stage {
  Scene* scene;
  Camera* camera;  // the scene's active one, or the stage's own (ownCamera)
  int ownCamera;
  Light* key;   // null when the scene brought its own lights
  Light* fill;
  Viewport* viewport;
  uint16_t* pixels;
  int width, height;
  int depth;       // 1: depth-buffer path, 0: painter path
  float radius;    // of the sphere the camera frames, around the origin
  float yaw, pitch;  // degrees; yaw 0 looks along +z, pitch > 0 from above
  float zoom;      // distance as a multiple of the framing distance
  float fov;       // vertical, degrees
};

// Sets the stage up around scene: it moves the scene's active camera, or
// adds one when there is none; the two lights are added only when withLights
// is set. 0 when out of memory (the stage is then freed).
int CreateStage(Stage* stage, Scene* scene, int width, int height, int depth, float radius, int withLights);
// Takes what the stage added out of the scene and frees it, and the viewport.
void FreeStage(Stage* stage);
// Switches between the depth-buffer and the painter path; 0 when out of memory.
int SetStageDepth(Stage* stage, int depth);
// Puts camera and lights where yaw, pitch and zoom say.
void PlaceStageCamera(Stage* stage);
// Fills the picture with background (0x00RRGGBB), clears the depth buffer, draws the scene.
void DrawStage(Stage* stage, uint32_t background);

// Sets shade mode, wireframe and textures on every mesh of the scene.
void SetSceneDrawModes(Scene* scene, uint32_t shade, int wireframe, int textures);
// 0x00RRGGBB to a 5:5:5 pixel.
uint16_t PixelFromRgb(uint32_t rgb);

#endif
