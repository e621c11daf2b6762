// Sort areas of scenes and of meshes drawn alone.
#include "engine/memory.h"
#include "objects/polygon_record.h"
#include "pipeline/radix.h"

namespace e3d {

namespace {

uint64_t RecordsOffset(int32_t count) {
  const uint64_t a = alignof(PolygonRecord);
  return (4 * uint64_t(count) + a - 1) / a * a;
}

}  // namespace

#if defined(__i386__)
static_assert(sizeof(PolygonRecord) + 4 == 20, "a sort area is 20 bytes a polygon");
#endif

uint32_t* AllocateSortArea(int32_t count, PolygonRecord** records) {
  *records = nullptr;
  const uint64_t bytes = RecordsOffset(count) + uint64_t(count) * sizeof(PolygonRecord);
  void* area = bytes <= 0xFFFFFFFFu ? AllocateMemory(uint32_t(bytes)) : nullptr;
  if (area == nullptr) return nullptr;
  *records = reinterpret_cast<PolygonRecord*>(static_cast<char*>(area) + RecordsOffset(count));
  ResetRadixSort(count, static_cast<uint32_t*>(area));
  return static_cast<uint32_t*>(area);
}

}  // namespace e3d
