// e3d-render: draws a model file into a PNG image, or a turntable of images.
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <time.h>
#include <unistd.h>

#include <string>

#include "batch.h"
#include "model.h"
extern "C" {
#include "png_write.h"
}
#include "stage.h"

namespace {

const char kUsage[] =
    "usage: e3d-render MODEL -o IMAGE.png [options]\n"
    "       e3d-render --batch DIR -o FOLDER [-j N] [options]\n"
    "  -s, --size WxH        image size (800x600)\n"
    "  --yaw DEG             camera turn about the vertical axis (30)\n"
    "  --pitch DEG           camera height angle, positive from above (20)\n"
    "  --zoom F              camera distance as a multiple of the framing distance (1)\n"
    "  --fov DEG             field of view, across a 4:3 picture, else up and down (45)\n"
    "  --shade MODE          unlit, flat or gouraud (gouraud)\n"
    "  --painter             sort polygons far to near instead of the depth buffer\n"
    "  --wireframe           draw polygon edges only\n"
    "  --no-textures         ignore the model's textures\n"
    "  --one-sided           draw only the side each polygon faces\n"
    "  --z-up                the model's up axis is z, not y\n"
    "  --background RRGGBB   background colour (1c2430)\n"
    "  --turntable N         N images around the model: IMAGE-000.png ..., or a\n"
    "                        printf pattern such as frame%03d.png\n"
    "  --fps                 time the drawing and print frames per second\n"
    "  --thumbnail N         an N x N picture with a transparent background, as a\n"
    "                        file manager's thumbnailer wants (10 s at most)\n"
    "  --batch DIR           every model under DIR, into the folder -o names:\n"
    "                        DIR/a/b.ply -> OUT/a/b.ply.png\n"
    "  -j, --jobs N          batch processes at once (one a core)\n"
    "  --import-timeout S    seconds assimp may take over a file (60, and 1 a MB)\n"
    "  --strict              treat polygons the file declares but no reader read\n"
    "                        as an error: no picture\n"
    "  -q, --quiet           print errors only\n"
    "exit codes: 0 done, 1 usage, 2 unreadable model, 3 nothing to draw,\n"
    "            4 model too big, 5 out of memory, 6 image not written,\n"
    "            7 polygons the file declares were not read (the picture is\n"
    "            written without them, unless --strict); a batch: 0 all\n"
    "            drawn, 7 some lost polygons, 8 some failed\n";

struct Options {
  const char* model = nullptr;
  const char* output = nullptr;
  int width = 800, height = 600;
  float yaw = 30, pitch = 20, zoom = 1, fov = 45;
  uint32_t shade = kShadeGouraud;
  int painter = 0, wireframe = 0, quiet = 0, fps = 0, turntable = 0, strict = 0, thumbnail = 0;
  const char* batch = nullptr;  // --batch DIR: output is then a folder
  int jobs = 0;                 // -j: batch processes at once, 0 for one a core
  std::string modelPath;  // the model as a path, a file:// URI decoded
  uint32_t background = 0x1C2430;
  ModelOptions load;
};

int Usage(const char* message) {
  fprintf(stderr, "e3d-render: %s (e3d-render --help lists the options)\n", message);
  return kModelUsage;
}

bool ParseFloat(const char* s, float* out) {
  char* end;
  *out = strtof(s, &end);
  return *s != '\0' && *end == '\0' && isfinite(*out);  // no NaN, no infinity
}

// A path, or a file:// URI (file managers pass either): the path it names,
// percent escapes decoded. False for another host or a bad escape.
bool PathOf(const char* model, std::string* path) {
  if (strncmp(model, "file://", 7) != 0) {
    *path = model;
    return true;
  }
  const char* p = model + 7;
  if (strncmp(p, "localhost/", 10) == 0) p += 9;
  if (*p != '/') return false;
  path->clear();
  for (; *p != '\0'; p++) {
    if (*p != '%') {
      *path += *p;
      continue;
    }
    char hex[3] = {p[1], p[1] ? p[2] : '\0', '\0'};
    char* end;
    const long c = strtol(hex, &end, 16);
    if (end != hex + 2 || c == 0) return false;
    *path += char(c);
    p += 2;
  }
  return true;
}

// Returns 0 when the options are good, else the exit code.
int Parse(int argc, char** argv, Options* o) {
  for (int i = 1; i < argc; i++) {
    const char* a = argv[i];
    // The option's argument, or null when the command line ends.
    auto value = [&]() -> const char* { return i + 1 < argc ? argv[++i] : nullptr; };
    if (!strcmp(a, "-h") || !strcmp(a, "--help")) {
      fputs(kUsage, stdout);
      exit(0);
    } else if (!strcmp(a, "-o") || !strcmp(a, "--output")) {
      if ((o->output = value()) == nullptr) return Usage("-o needs a file name");
    } else if (!strcmp(a, "-s") || !strcmp(a, "--size")) {
      const char* s = value();
      if (s == nullptr || sscanf(s, "%dx%d", &o->width, &o->height) != 2 || o->width < 8 || o->height < 8 ||
          o->width > 8192 || o->height > 8192)
        return Usage("--size needs WxH, each 8 to 8192");
    } else if (!strcmp(a, "--yaw") || !strcmp(a, "--pitch") || !strcmp(a, "--zoom") || !strcmp(a, "--fov")) {
      float* target = a[2] == 'y' ? &o->yaw : a[2] == 'p' ? &o->pitch : a[2] == 'z' ? &o->zoom : &o->fov;
      const char* s = value();
      if (s == nullptr || !ParseFloat(s, target)) return Usage("a number is missing");
      if (o->pitch < -89 || o->pitch > 89) return Usage("--pitch must lie within -89 to 89");
      if (o->zoom <= 0.05f || o->zoom > 20) return Usage("--zoom must lie within 0.05 to 20");
      if (o->fov < 5 || o->fov > 150) return Usage("--fov must lie within 5 to 150");
    } else if (!strcmp(a, "--shade")) {
      const char* s = value();
      if (s == nullptr) return Usage("--shade needs unlit, flat or gouraud");
      if (!strcmp(s, "unlit")) o->shade = kShadeUnlit;
      else if (!strcmp(s, "flat")) o->shade = kShadeFlat;
      else if (!strcmp(s, "gouraud")) o->shade = kShadeGouraud;
      else return Usage("--shade needs unlit, flat or gouraud");
    } else if (!strcmp(a, "--background")) {
      const char* s = value();
      char* end;
      if (s == nullptr || (o->background = uint32_t(strtoul(s[0] == '#' ? s + 1 : s, &end, 16)), *end != '\0') ||
          o->background > 0xFFFFFF)
        return Usage("--background needs a colour RRGGBB");
    } else if (!strcmp(a, "--turntable")) {
      const char* s = value();
      if (s == nullptr || (o->turntable = atoi(s)) < 1 || o->turntable > 3600)
        return Usage("--turntable needs a count from 1 to 3600");
    } else if (!strcmp(a, "--painter")) {
      o->painter = 1;
    } else if (!strcmp(a, "--wireframe")) {
      o->wireframe = 1;
    } else if (!strcmp(a, "--no-textures")) {
      o->load.textures = false;
    } else if (!strcmp(a, "--z-up")) {
      o->load.zUp = true;
    } else if (!strcmp(a, "--one-sided")) {
      o->load.twoSided = false;
    } else if (!strcmp(a, "--thumbnail")) {
      const char* s = value();
      if (s == nullptr || (o->thumbnail = atoi(s)) < 16 || o->thumbnail > 2048)
        return Usage("--thumbnail needs a size from 16 to 2048");
      o->width = o->height = o->thumbnail;
      o->quiet = 1;
    } else if (!strcmp(a, "--batch")) {
      if ((o->batch = value()) == nullptr) return Usage("--batch needs a folder");
    } else if (!strcmp(a, "-j") || !strcmp(a, "--jobs")) {
      const char* s = value();
      if (s == nullptr || (o->jobs = atoi(s)) < 1 || o->jobs > 256) return Usage("-j needs a count from 1 to 256");
    } else if (!strcmp(a, "--import-timeout")) {
      const char* s = value();
      if (s == nullptr || (o->load.importSeconds = unsigned(atoi(s))) < 1 || o->load.importSeconds > 86400)
        return Usage("--import-timeout needs seconds from 1 to 86400");
    } else if (!strcmp(a, "--strict")) {
      o->strict = 1;
    } else if (!strcmp(a, "--fps")) {
      o->fps = 1;
    } else if (!strcmp(a, "-q") || !strcmp(a, "--quiet")) {
      o->quiet = 1;
    } else if (a[0] == '-' && a[1] != '\0') {
      return Usage((std::string("unknown option ") + a).c_str());
    } else if (o->model == nullptr) {
      o->model = a;
    } else {
      return Usage("give one model");
    }
  }
  if (o->batch != nullptr) {
    if (o->model != nullptr) return Usage("--batch takes a folder, not a model as well");
    if (o->output == nullptr) return Usage("no output folder given (-o FOLDER)");
    if (o->turntable > 0) return Usage("--batch draws one picture a model");
    return 0;
  }
  if (o->model == nullptr) return Usage("no model given");
  if (!PathOf(o->model, &o->modelPath)) return Usage("the model's file:// address is not a local path");
  o->model = o->modelPath.c_str();
  if (o->output == nullptr) return Usage("no image given (-o IMAGE.png)");
  return 0;
}

// IMAGE.png -> IMAGE-007.png, or the printf pattern filled in.
std::string FrameName(const char* output, int frame, int frames) {
  char buf[4096];
  if (frames <= 1) return output;
  if (strchr(output, '%') != nullptr) {
    snprintf(buf, sizeof buf, output, frame);
    return buf;
  }
  std::string name = output;
  const size_t dot = name.rfind('.');
  const size_t slash = name.rfind('/');
  const size_t at = dot == std::string::npos || (slash != std::string::npos && dot < slash) ? name.size() : dot;
  snprintf(buf, sizeof buf, "-%03d", frame);
  return name.insert(at, buf);
}

void Progress(int done, int total) {
  const int width = 40, filled = done * width / total;
  fprintf(stderr, "\r[%.*s%*s] %d/%d", filled, "########################################", width - filled, "", done,
          total);
  if (done == total) fputc('\n', stderr);
  fflush(stderr);
}

// A thumbnail: drawn over black and over white, a pixel is transparent
// where both show the background (the drawing wrote nothing there).
bool WriteThumbnail(Stage* stage, const char* path) {
  const size_t n = size_t(stage->width) * stage->height;
  DrawStage(stage, 0x000000);
  std::string first(reinterpret_cast<const char*>(stage->pixels), n * 2);
  DrawStage(stage, 0xFFFFFF);
  const uint16_t* black = reinterpret_cast<const uint16_t*>(first.data());
  std::string alpha(n, '\xFF');
  for (size_t i = 0; i < n; i++)
    if ((black[i] & 0x7FFF) == 0 && (stage->pixels[i] & 0x7FFF) == 0x7FFF) alpha[i] = 0;
  return WritePng555Alpha(path, black, stage->width, stage->height, stage->width,
                          reinterpret_cast<const unsigned char*>(alpha.data())) != 0;
}

double Now() {
  timespec t;
  clock_gettime(CLOCK_MONOTONIC, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// A pattern must take exactly one integer.
bool GoodPattern(const char* output) {
  const char* p = strchr(output, '%');
  if (p == nullptr) return true;
  p++;
  while (*p >= '0' && *p <= '9') p++;
  return *p == 'd' && strchr(p, '%') == nullptr;
}

// One model into its picture (or pictures); the exit code.
int Render(Options& o) {
  if (o.thumbnail > 0) {
    // File managers run thumbnailers unattended on any file: a short time
    // and a memory cap, whatever the file does.
    alarm(10);
#if !defined(__SANITIZE_ADDRESS__)  // the sanitizer reserves terabytes for its shadow memory
    const rlimit cap = {rlim_t(2) << 30, rlim_t(2) << 30};
    setrlimit(RLIMIT_AS, &cap);
#endif
    if (o.load.importSeconds == 0 || o.load.importSeconds > 8) o.load.importSeconds = 8;
  }
  InitEngine3D();
  Model model;
  std::string error;
  const double loadStart = Now();
  ReadingLine reading;
  if (!o.quiet) o.load.progress = ShowReading, o.load.progressUser = &reading;
  ModelStatus status = LoadModel(o.model, o.load, &model, &error);
  if (status != kModelOk) {
    fprintf(stderr, "e3d-render: %s\n", error.c_str());
    ReleaseEngine3D();
    return status;
  }
  for (const std::string& w : model.warnings) fprintf(stderr, "e3d-render: warning: %s\n", w.c_str());
  if (model.dropped > 0 && o.strict) {
    fprintf(stderr, "e3d-render: %s: polygons lost, no picture (--strict)\n", o.model);
    FreeModel(&model);
    ReleaseEngine3D();
    return kModelFacesDropped;
  }
  if (!o.quiet)
    printf("%s: %zu meshes, %lld triangles%s, read in %.2f s\n", o.model, model.meshes.size(), model.polygons,
           model.textured ? ", textured" : "", Now() - loadStart);
  Stage stage;
  if (!CreateStage(&stage, model.scene, o.width, o.height, !o.painter, kModelRadius, 1)) {
    fprintf(stderr, "e3d-render: out of memory for a %dx%d picture\n", o.width, o.height);
    FreeModel(&model);
    ReleaseEngine3D();
    return kModelNoMemory;
  }
  SetSceneDrawModes(model.scene, o.shade, o.wireframe, o.load.textures);
  stage.pitch = o.pitch;
  stage.zoom = o.zoom;
  stage.fov = o.fov;
  SetCameraFov(stage.camera, o.fov);
  const int frames = o.turntable > 0 ? o.turntable : 1;
  const bool bar = o.turntable > 1 && !o.quiet && isatty(2);
  double drawing = 0;
  int draws = 0;
  for (int f = 0; f < frames && status == kModelOk; f++) {
    stage.yaw = o.yaw + 360.0f * float(f) / float(frames);
    PlaceStageCamera(&stage);
    // Timing a single picture draws it until a second has passed.
    const int repeat = o.fps && frames == 1 ? 1000 : 1;
    const double start = Now();
    for (int r = 0; r < repeat; r++) {
      DrawStage(&stage, o.background);
      draws++;
      if (Now() - start > 1.0) break;
    }
    drawing += Now() - start;
    const std::string name = FrameName(o.output, f, frames);
    const bool written = o.thumbnail > 0 ? WriteThumbnail(&stage, name.c_str())
                                         : WritePng555(name.c_str(), stage.pixels, o.width, o.height, o.width);
    if (!written) {
      if (bar) fputc('\n', stderr);
      fprintf(stderr, "e3d-render: cannot write %s\n", name.c_str());
      status = kModelWriteFailed;
    }
    if (bar) Progress(f + 1, frames);
  }
  if (status == kModelOk && o.fps)
    printf("%d frames of %dx%d in %.3f s: %.1f frames per second\n", draws, o.width, o.height, drawing,
           drawing > 0 ? draws / drawing : 0.0);
  if (status == kModelOk && !o.quiet)
    printf("wrote %s%s\n", FrameName(o.output, 0, frames).c_str(), frames > 1 ? " ..." : "");
  if (status == kModelOk && model.dropped > 0) status = kModelFacesDropped;
  FreeStage(&stage);
  FreeModel(&model);
  ReleaseEngine3D();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  Options o;
  if (const int code = Parse(argc, argv, &o)) return code;
  if (!GoodPattern(o.output)) return Usage("an image pattern takes one %d");
  if (o.batch == nullptr) return Render(o);
  const int jobs = o.jobs > 0 ? o.jobs : int(sysconf(_SC_NPROCESSORS_ONLN));
  auto one = [](const char* input, const char* output, void* user) {
    Options file = *static_cast<const Options*>(user);
    file.modelPath = input;
    file.model = file.modelPath.c_str();
    file.output = output;
    file.quiet = 1;
    return Render(file);
  };
  return RunBatch(o.batch, o.output, jobs > 0 ? jobs : 1, o.quiet, one, &o);
}
