// Engine start-up and shut-down, and the process-wide state they reset.
#include "engine/registry.h"

#include "engine3d.h"

namespace e3d {

int32_t engineInitialised = 0;
uint32_t processorType = 0;
Scene* firstScene = nullptr;
Scene* lastScene = nullptr;

}  // namespace e3d

using namespace e3d;

E3D_API void E3D_CALL InitEngine3D(void) {
  processorType = ProcessorGetType() & 0xFFFF;
  UpdateDrawScanline(processorType);
  InitRadixSort();
  InitRenderTables();
  engineInitialised = 1;
  firstScene = nullptr;
  lastScene = nullptr;
}

E3D_API void E3D_CALL ReleaseEngine3D(void) {
  if (engineInitialised == 0) return;
  ReleaseRadixSort();
  ReleaseRenderTables();
  firstScene = nullptr;
  lastScene = nullptr;
  engineInitialised = 0;
}
