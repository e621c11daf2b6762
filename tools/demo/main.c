/* demo [directory]: draws the showcase scene and writes three PNG images:
   demo-depth.png through the depth buffer, demo-painter.png sorted far to
   near without one, demo-letterbox.png letter-boxed with a warm tint; then
   the texture gallery with its lines into demo-textures.png. */
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include "engine3d.h"
#include "gallery.h"
#include "png_write.h"

enum { kWidth = 640, kHeight = 480, kBorder = 60 };

static uint16_t pixels[kWidth * kHeight];

static void Fill(int firstRow, int rows, uint16_t colour) {
  for (int i = firstRow * kWidth; i < (firstRow + rows) * kWidth; i++) pixels[i] = colour;
}

static Viewport* NewViewport(int depth) {
  SurfaceDesc surface;
  memset(&surface, 0, sizeof surface);
  surface.pixels = pixels;
  surface.width = kWidth;
  surface.height = kHeight;
  surface.pitch = kWidth * sizeof pixels[0];
  Viewport* vp = CreateViewport(&surface, kWidth, kHeight, depth);
  if (vp != NULL) SetViewportType(vp, E3D_VIEWPORT_ENABLED | 1);
  return vp;
}

/* A light amber blend over the whole picture. */
static int Tint(Viewport* vp, Scene* scene) {
  Material* tint = CreateMaterial(GetMeshDefaultMaterial(SearchMeshByIndex(scene, 0)));
  if (tint == NULL) return 0;
  SetMaterialColor(tint, 0, 0, 0, 0);
  SetMaterialColor(tint, 1, 255, 170, 60);
  SetMaterialColor(tint, 2, 0, 0, 0);
  SetMaterialAlphaMode(tint, 2);
  SetMaterialAlphaLevel(tint, 56);
  SetViewportMaterial(vp, tint); /* DeleteViewport frees it */
  return 1;
}

/* Clears the picture (the letter-box bars black), draws, and applies the
   post effect if the viewport has one. */
static int Draw(Scene* scene, Viewport* vp, int depth) {
  const int border = GetViewportBorderHeight(vp);
  Fill(0, kHeight, 0);
  Fill(border, kHeight - 2 * border, 0x0846);
  if (depth) ClearViewportDepthBuffer(vp, 0xFFFFFFFFu);
  SetSceneViewport(scene, vp);
  DrawScene(scene);
  DrawViewportPostFX(vp);
  return 1;
}

static int Write(const char* dir, const char* name) {
  char path[4096];
  snprintf(path, sizeof path, "%s/%s", dir, name);
  if (!WritePng555(path, pixels, kWidth, kHeight, kWidth)) {
    fprintf(stderr, "demo: cannot write %s\n", path);
    return 0;
  }
  return 1;
}

static int Render(Scene* scene, Viewport* vp, int depth, const char* dir, const char* name) {
  return Draw(scene, vp, depth) && Write(dir, name);
}

/* The gallery through the depth buffer, with its lines drawn over it. */
static int RenderGallery(Viewport* vp, const char* dir) {
  Scene* gallery = CreateGallery();
  int ok = gallery != NULL && Draw(gallery, vp, 1);
  if (ok) {
    DrawGalleryLines(vp, kWidth, kHeight);
    ok = Write(dir, "demo-textures.png");
  }
  if (gallery != NULL) {
    SetSceneViewport(gallery, NULL);
    DeleteWholeScene(gallery);
  }
  FreeGallery();
  return ok;
}

int main(int argc, char** argv) {
  const char* dir = argc > 1 ? argv[1] : "out";
  if (mkdir(dir, 0777) != 0 && errno != EEXIST) {
    fprintf(stderr, "demo: cannot create %s: %s\n", dir, strerror(errno));
    return 1;
  }
  InitEngine3D();
  int ok = 0;
  Scene* scene = CreateShowcase();
  Viewport* depth = NewViewport(1);
  Viewport* painter = NewViewport(0);
  Viewport* letterbox = NewViewport(1);
  if (scene != NULL && depth != NULL && painter != NULL && letterbox != NULL) {
    SetViewportBorderHeight(letterbox, kBorder);
    ok = Tint(letterbox, scene) && Render(scene, depth, 1, dir, "demo-depth.png") &&
         Render(scene, painter, 0, dir, "demo-painter.png");
    /* A letter-boxed viewport scales by its visible aspect; a wider field of
       view keeps the full frame's width in the picture. */
    SetCameraFov(GetActivedSceneCamera(scene), 75);
    ok = ok && Render(scene, letterbox, 1, dir, "demo-letterbox.png") && RenderGallery(depth, dir);
  }
  if (scene != NULL) DeleteWholeScene(scene);
  if (depth != NULL) DeleteViewport(depth);
  if (painter != NULL) DeleteViewport(painter);
  if (letterbox != NULL) DeleteViewport(letterbox);
  ReleaseEngine3D();
  if (!ok) {
    fprintf(stderr, "demo: drawing failed\n");
    return 1;
  }
  printf("images written to %s/: demo-depth.png demo-painter.png demo-letterbox.png demo-textures.png\n", dir);
  return 0;
}
