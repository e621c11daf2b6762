// Any bytes as a model file, in any of the formats the host tools read: the
// importer answers with a status and a message, or with a scene that can be
// freed; it never crashes and leaves nothing behind.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "fuzz_host.h"
#include "model.h"
#include "own_readers.h"

#include <assimp/scene.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const char* const kFormats[] = {"obj", "ply", "stl", "off", "3ds", "dae", "gltf", "glb"};
  if (size == 0) return 0;
  const char* format = kFormats[data[0] % (sizeof kFormats / sizeof kFormats[0])];
  // Our own readers straight from memory: a scene or a message, at once.
  if (std::string(format) == "obj" || std::string(format) == "ply" || std::string(format) == "stl") {
    std::string error;
    const std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    const OwnScene scene = ReadOwnModelBytes(bytes, format, "/nonexistent/", &error);
    FUZZ_CHECK((scene != nullptr) != !error.empty());
  }
  fuzz::StartEngine();
  const size_t liveAtStart = fuzz::LiveBlocks();
  char path[64];
  std::snprintf(path, sizeof path, "/tmp/e3d-fuzz-%d.%s", static_cast<int>(getpid()), format);
  FILE* file = std::fopen(path, "wb");
  FUZZ_CHECK(file != nullptr);
  std::fwrite(data + 1, 1, size - 1, file);
  std::fclose(file);
  {
    Model model;
    std::string error;
    ModelOptions options;
    options.textures = false;  // a texture name would reach other files
    options.importSeconds = 5;  // below the fuzzer's own limit for one input
    const ModelStatus status = LoadModel(path, options, &model, &error);
    if (status == kModelOk) {
      FUZZ_CHECK(model.scene != nullptr && !model.meshes.empty());
      FreeModel(&model);
    } else {
      FUZZ_CHECK(!error.empty() && model.scene == nullptr);
    }
  }
  std::remove(path);
  FUZZ_CHECK(fuzz::LiveBlocks() == liveAtStart);
  return 0;
}
