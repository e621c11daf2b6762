// e3d-view: the engine's 5:5:5 picture in an SDL window, the demo scene or a
// model file, orbited with the mouse.
#include <SDL.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "model.h"
#include "stage.h"
extern "C" {
#include "png_write.h"
#include "showcase.h"
}

namespace {

const char kUsage[] =
    "usage: e3d-view [MODEL] [options]   (no model: the demo scene)\n"
    "  -s, --size WxH        window size (800x600)\n"
    "  --z-up                the model's up axis is z\n"
    "  --frames N            quit after N frames\n"
    "  --screenshot FILE     where the screenshot key (and the last of --frames) writes\n"
    "  --keys KEYS           presses these keys before the first frame\n"
    "  -q, --quiet           no reading progress on the terminal\n"
    "mouse: drag to orbit, wheel to zoom\n"
    "keys: 1 unlit, 2 flat, 3 Gouraud, D depth buffer or painter, W wireframe,\n"
    "      T textures, B blur, C tint, S or F12 screenshot, R reset view,\n"
    "      space turntable, Q or Esc quit\n";

const char* const kShadeNames[8] = {"", "unlit", "", "flat", "", "", "", "Gouraud"};

struct Viewer {
  Stage stage;
  Material* tint = nullptr;
  uint32_t shade = kShadeGouraud;
  int wireframe = 0, textures = 1, blur = 0, tinted = 0, spin = 0, shots = 0;
  const char* shotPath = nullptr;
  std::string name;
  // A big model's full tree and its simplified copy, which is drawn while
  // the camera moves once a full frame takes longer than kSlowFrame.
  Mesh* full = nullptr;
  Mesh* simple = nullptr;
  long long fullPolygons = 0, simplePolygons = 0;
  bool showingSimple = false;
  double fullSeconds = 0;  // the last full frame's drawing
};

constexpr double kSlowFrame = 0.050;  // seconds
constexpr double kRest = 0.3;         // seconds without a move before the full model returns

void ShowCopy(Viewer* v, bool simple) {
  if (v->simple == nullptr || simple == v->showingSimple) return;
  HideMesh(simple ? v->full : v->simple);
  ShowMesh(simple ? v->simple : v->full);
  v->showingSimple = simple;
}

void ApplyModes(Viewer* v) { SetSceneDrawModes(v->stage.scene, v->shade, v->wireframe, v->textures); }

// The tint lives outside the viewport, which frees its material when deleted.
void SetTint(Viewer* v, int on) {
  v->tinted = on && v->tint != nullptr;
  SetViewportMaterial(v->stage.viewport, v->tinted ? v->tint : nullptr);
}

// The picture as the window shows it, read back from the renderer.
void Screenshot(Viewer* v, SDL_Renderer* renderer) {
  const int w = v->stage.width, h = v->stage.height;
  std::string path = v->shotPath ? v->shotPath : "e3d-view-" + std::to_string(v->shots) + ".png";
  v->shots++;
  uint16_t* shot = static_cast<uint16_t*>(malloc(size_t(w) * h * 2));
  if (shot != nullptr && SDL_RenderReadPixels(renderer, nullptr, SDL_PIXELFORMAT_RGB555, shot, w * 2) == 0 &&
      WritePng555(path.c_str(), shot, w, h, w))
    printf("e3d-view: wrote %s\n", path.c_str());
  else
    fprintf(stderr, "e3d-view: screenshot %s failed: %s\n", path.c_str(), SDL_GetError());
  free(shot);
}

void Key(Viewer* v, SDL_Keycode key, SDL_Renderer* renderer, bool* quit) {
  Stage& s = v->stage;
  switch (key) {
    case SDLK_1:
      v->shade = kShadeUnlit;
      ApplyModes(v);
      break;
    case SDLK_2:
      v->shade = kShadeFlat;
      ApplyModes(v);
      break;
    case SDLK_3:
      v->shade = kShadeGouraud;
      ApplyModes(v);
      break;
    case SDLK_w:
      v->wireframe = !v->wireframe;
      ApplyModes(v);
      break;
    case SDLK_t:
      v->textures = !v->textures;
      ApplyModes(v);
      break;
    case SDLK_b:
      v->blur = !v->blur;
      break;
    case SDLK_c:
      SetTint(v, !v->tinted);
      break;
    case SDLK_d: {
      const int tinted = v->tinted;
      SetTint(v, 0);
      SetStageDepth(&s, !s.depth);
      SetTint(v, tinted);
      break;
    }
    case SDLK_r:
      s.yaw = 30, s.pitch = 20, s.zoom = 1;
      break;
    case SDLK_SPACE:
      v->spin = !v->spin;
      break;
    case SDLK_s:
    case SDLK_F12:
      Screenshot(v, renderer);
      break;
    case SDLK_q:
    case SDLK_ESCAPE:
      *quit = true;
      break;
    default:
      break;
  }
}

void Title(Viewer* v, SDL_Window* window, double fps) {
  char title[256];
  char copy[96] = "";
  if (v->simple != nullptr)
    snprintf(
        copy, sizeof copy,
        v->showingSimple ? "  [simplified copy: %lld of %lld triangles]" : "  [full model: %lld triangles]",
        v->showingSimple ? v->simplePolygons : v->fullPolygons, v->fullPolygons);
  snprintf(title, sizeof title, "e3d-view: %s  %.1f fps  %s%s, %s%s%s%s%s", v->name.c_str(), fps,
           kShadeNames[v->shade & 7], v->wireframe ? " wireframe" : "",
           v->stage.depth ? "depth buffer" : "painter", v->textures ? ", textures" : "",
           v->blur ? ", blur" : "", v->tinted ? ", tint" : "", copy);
  SDL_SetWindowTitle(window, title);
}

// The tint post effect: a warm blend over the whole picture.
Material* CreateTint(Scene* scene) {
  Mesh* any = SearchMeshByIndex(scene, 0);
  if (any == nullptr) return nullptr;
  Material* tint = CreateMaterial(GetMeshDefaultMaterial(any));
  if (tint == nullptr) return nullptr;
  // The copy keeps the mesh's textures; the tint is plain colour.
  for (int stage = 0; stage < 4; stage++) SetMaterialTexture(tint, stage, nullptr, 0);
  SetMaterialColor(tint, 0, 0, 0, 0);
  SetMaterialColor(tint, 1, 255, 170, 60);
  SetMaterialColor(tint, 2, 0, 0, 0);
  SetMaterialAlphaMode(tint, 2);
  SetMaterialAlphaLevel(tint, 72);
  return tint;
}

int Run(Viewer* v, int frames, const char* keys) {
  const int w = v->stage.width, h = v->stage.height;
  SDL_Window* window = SDL_CreateWindow("e3d-view", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, w, h, 0);
  SDL_Renderer* renderer = window ? SDL_CreateRenderer(window, -1, SDL_RENDERER_PRESENTVSYNC) : nullptr;
  if (window != nullptr && renderer == nullptr)
    renderer = SDL_CreateRenderer(window, -1, SDL_RENDERER_SOFTWARE);
  SDL_Texture* texture =
      renderer ? SDL_CreateTexture(renderer, SDL_PIXELFORMAT_RGB555, SDL_TEXTUREACCESS_STREAMING, w, h)
               : nullptr;
  if (texture == nullptr) {
    fprintf(stderr, "e3d-view: no window: %s\n", SDL_GetError());
    if (renderer) SDL_DestroyRenderer(renderer);
    if (window) SDL_DestroyWindow(window);
    return 1;
  }
  bool quit = false;
  for (const char* k = keys; *k != '\0'; k++) Key(v, SDL_Keycode(*k), renderer, &quit);
  int frame = 0, counted = 0;
  const double tick = 1.0 / double(SDL_GetPerformanceFrequency());
  Uint64 last = SDL_GetPerformanceCounter(), lastMove = 0;
  bool dirty = true;  // the picture no longer shows the state
  while (!quit) {
    SDL_Event e;
    bool moved = v->spin != 0;
    while (SDL_PollEvent(&e)) {
      if (e.type == SDL_QUIT)
        quit = true;
      else if (e.type == SDL_KEYDOWN)
        Key(v, e.key.keysym.sym, renderer, &quit), dirty = true;
      else if (e.type == SDL_WINDOWEVENT)
        dirty = true;
      if (e.type == SDL_MOUSEMOTION && (e.motion.state & SDL_BUTTON_LMASK)) {
        moved = true;
        v->stage.yaw -= float(e.motion.xrel) * 0.4f;
        v->stage.pitch += float(e.motion.yrel) * 0.4f;
        if (v->stage.pitch > 85) v->stage.pitch = 85;
        if (v->stage.pitch < -85) v->stage.pitch = -85;
      } else if (e.type == SDL_MOUSEWHEEL) {
        moved = true;
        v->stage.zoom *= e.wheel.y > 0 ? 0.9f : 1.0f / 0.9f;
        if (v->stage.zoom < 0.1f) v->stage.zoom = 0.1f;
        if (v->stage.zoom > 20) v->stage.zoom = 20;
      }
    }
    if (v->spin) v->stage.yaw += 1;
    const Uint64 now = SDL_GetPerformanceCounter();
    if (moved) lastMove = now, dirty = true;
    // While the camera moves a slow model gives way to its copy; at rest
    // the full model is drawn once and the picture kept.
    const bool simple = (moved || double(now - lastMove) * tick < kRest) && v->fullSeconds > kSlowFrame;
    if (v->simple != nullptr && simple != v->showingSimple) ShowCopy(v, simple), dirty = true;
    if (dirty) {
      PlaceStageCamera(&v->stage);
      const Uint64 start = SDL_GetPerformanceCounter();
      DrawStage(&v->stage, 0x1C2430);
      if (!v->showingSimple) v->fullSeconds = double(SDL_GetPerformanceCounter() - start) * tick;
      if (v->tinted) DrawViewportPostFX(v->stage.viewport);
      if (v->blur) FSBlur(v->stage.pixels, w, h);
      SDL_UpdateTexture(texture, nullptr, v->stage.pixels, w * 2);
      dirty = false;
    } else {
      SDL_Delay(5);
    }
    SDL_RenderClear(renderer);
    SDL_RenderCopy(renderer, texture, nullptr, nullptr);
    if (frames > 0 && ++frame >= frames) {
      if (v->shotPath != nullptr) Screenshot(v, renderer);
      quit = true;
    }
    SDL_RenderPresent(renderer);
    counted++;
    const double seconds = double(SDL_GetPerformanceCounter() - last) / double(SDL_GetPerformanceFrequency());
    if (seconds >= 0.5) {
      Title(v, window, counted / seconds);
      counted = 0;
      last = SDL_GetPerformanceCounter();
    }
  }
  SDL_DestroyTexture(texture);
  SDL_DestroyRenderer(renderer);
  SDL_DestroyWindow(window);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  Viewer v;
  const char* path = nullptr;
  int width = 800, height = 600, frames = 0;
  const char* keys = "";
  ModelOptions load;
  load.simplifyTo = 300000;
  ReadingLine reading;
  load.progress = ShowReading, load.progressUser = &reading;
  for (int i = 1; i < argc; i++) {
    const char* a = argv[i];
    const bool more = i + 1 < argc;
    if ((!strcmp(a, "-s") || !strcmp(a, "--size")) && more) {
      if (sscanf(argv[++i], "%dx%d", &width, &height) != 2 || width < 64 || height < 64 || width > 4096 ||
          height > 4096) {
        fprintf(stderr, "e3d-view: --size needs WxH, each 64 to 4096\n");
        return kModelUsage;
      }
    } else if (!strcmp(a, "--frames") && more) {
      frames = atoi(argv[++i]);
    } else if (!strcmp(a, "--screenshot") && more) {
      v.shotPath = argv[++i];
    } else if (!strcmp(a, "--keys") && more) {
      keys = argv[++i];
    } else if (!strcmp(a, "--z-up")) {
      load.zUp = true;
    } else if (!strcmp(a, "-q") || !strcmp(a, "--quiet")) {
      load.progress = nullptr;
    } else if (!strcmp(a, "-h") || !strcmp(a, "--help")) {
      fputs(kUsage, stdout);
      return 0;
    } else if (a[0] != '-' && path == nullptr) {
      path = a;
    } else {
      fputs(kUsage, stderr);
      return kModelUsage;
    }
  }
  InitEngine3D();
  Model model;
  Scene* scene = nullptr;
  float radius = 260;  // the demo scene's extent
  if (path != nullptr) {
    std::string error;
    const ModelStatus status = LoadModel(path, load, &model, &error);
    if (status != kModelOk) {
      fprintf(stderr, "e3d-view: %s\n", error.c_str());
      ReleaseEngine3D();
      return status;
    }
    for (const std::string& w : model.warnings) fprintf(stderr, "e3d-view: warning: %s\n", w.c_str());
    scene = model.scene;
    v.full = model.full, v.simple = model.simple;
    v.fullPolygons = model.polygons, v.simplePolygons = model.simplePolygons;
    radius = kModelRadius;
    const char* slash = strrchr(path, '/');
    v.name = slash ? slash + 1 : path;
  } else {
    scene = CreateShowcase();
    v.name = "demo scene";
  }
  int code = kModelNoMemory;
  if (scene != nullptr && CreateStage(&v.stage, scene, width, height, 1, radius, path != nullptr)) {
    if (path != nullptr) ApplyModes(&v);
    v.tint = CreateTint(scene);
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
      fprintf(stderr, "e3d-view: cannot start SDL: %s\n", SDL_GetError());
      code = 1;
    } else {
      code = Run(&v, frames, keys);
      SDL_Quit();
    }
    SetTint(&v, 0);
    if (v.tint != nullptr) DeleteMaterial(v.tint);
    FreeStage(&v.stage);
  }
  if (path != nullptr)
    FreeModel(&model);
  else if (scene != nullptr)
    DeleteWholeScene(scene);
  ReleaseEngine3D();
  return code;
}
