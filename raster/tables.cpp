// Builds and frees the rasterizer's lookup tables.
#include "raster/tables.h"

#include <cmath>

#include "engine/memory.h"

namespace e3d {

uint8_t* SaturateAddTable = nullptr;
uint8_t* SaturateSubTable = nullptr;
uint8_t* ModulateTable = nullptr;
uint16_t* ModulateGreenTable = nullptr;
uint16_t* ModulateRedTable = nullptr;
uint16_t* AlphaScaleTable = nullptr;

float ReciprocalTable[256];
int32_t LineWidthTable[32];
int32_t LineFalloffTable[64];

uint32_t tablesBuilt = 0;
uint32_t lineTablesReady = 0;

}  // namespace e3d

namespace {

using namespace e3d;

int32_t ClampChannel(int32_t v) { return v < 0 ? 0 : (v > 31 ? 31 : v); }

// Arguments of sqrt and exp are rounded to single precision first; the
// results are rounded to nearest, ties to even (the default mode).
void BuildLineTables() {
  const double halfRoot = 0.70710677f;
  for (int i = 0; i < 32; ++i) {
    const double x = (i + 0.5) / 32;
    const float arg = static_cast<float>(x * x + 1);
    LineWidthTable[i] = static_cast<int32_t>(std::nearbyint(std::sqrt(double(arg)) * halfRoot * 256));
  }
  for (int i = 0; i < 64; ++i) {
    const double x = (i + 0.5) / 32 * (4.0 / 3.0);
    const float arg = static_cast<float>(x * x);
    LineFalloffTable[i] = static_cast<int32_t>(std::nearbyint(256 / std::exp(double(arg))));
  }
  lineTablesReady = 1;
}

// Row a steps a running value by step per column, clamped to a channel.
void BuildSaturateTable(uint8_t* table, int32_t step) {
  for (int32_t a = 0; a < 32; ++a) {
    int32_t v = a;
    for (int32_t b = 0; b < 32; ++b, v += step) table[a * 32 + b] = static_cast<uint8_t>(ClampChannel(v));
  }
}

// One product for all three: scaled back by 32, not 31, so 31 * 31 gives 30.
void BuildModulateTables() {
  for (int32_t a = 0; a < 32; ++a) {
    int32_t product = 0;
    for (int32_t b = 0; b < 32; ++b, product += a) {
      const int32_t m = ClampChannel(product >> 5);
      ModulateTable[a * 32 + b] = static_cast<uint8_t>(m);
      ModulateGreenTable[a * 32 + b] = static_cast<uint16_t>(m << 5);
      ModulateRedTable[a * 32 + b] = static_cast<uint16_t>(m << 10);
    }
  }
}

}  // namespace

// tablesBuilt is never set, so every call rebuilds; a call without a release
// in between loses the previous blocks.
E3D_API void E3D_CALL InitRenderTables(void) {
  if (tablesBuilt == 1) return;
  BuildLineTables();
  SaturateAddTable = Allocate<uint8_t>(32 * 32);
  BuildSaturateTable(SaturateAddTable, 1);
  SaturateSubTable = Allocate<uint8_t>(32 * 32);
  BuildSaturateTable(SaturateSubTable, -1);
  for (int n = 1; n < 256; ++n) ReciprocalTable[n] = static_cast<float>(1.0 / n);
  ModulateTable = Allocate<uint8_t>(32 * 32);
  ModulateGreenTable = Allocate<uint16_t>(32 * 32);
  ModulateRedTable = Allocate<uint16_t>(32 * 32);
  BuildModulateTables();
  AlphaScaleTable = Allocate<uint16_t>(256 * 32);
  for (int32_t level = 0; level < 256; ++level)
    for (int32_t c = 0; c < 32; ++c) AlphaScaleTable[level * 32 + c] = static_cast<uint16_t>(level * c);
}

E3D_API void E3D_CALL ReleaseRenderTables(void) {
  Release(SaturateAddTable);
  Release(SaturateSubTable);
  Release(ModulateTable);
  Release(ModulateGreenTable);
  Release(ModulateRedTable);
  Release(AlphaScaleTable);
}
