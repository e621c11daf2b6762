// placeholder until the engine frame lands
#include "engine3d.h"
namespace { void* block; }
E3D_API void E3D_CALL InitEngine3D(void) { ProcessorGetType(); block = AllocateMemory(4); }
E3D_API void E3D_CALL ReleaseEngine3D(void) { FreeMemory(block); }
