// Lookup tables of the rasterizer: every per-pixel colour operation of the
// drawers is one or two reads here. Channels are 5 bits (0..31); the 32x32
// tables are indexed [a * 32 + b]. The exports that build and free them
// (InitRenderTables, ReleaseRenderTables) are declared in engine3d.h.
#pragma once
#include <stdint.h>

#include "engine3d.h"

namespace e3d {

// Allocated by InitRenderTables, freed by ReleaseRenderTables.
extern uint8_t* SaturateAddTable;     // min(a + b, 31)
extern uint8_t* SaturateSubTable;     // max(a - b, 0)
extern uint8_t* ModulateTable;        // m = (a * b) >> 5: white darkens by one step
extern uint16_t* ModulateGreenTable;  // m << 5
extern uint16_t* ModulateRedTable;    // m << 10
extern uint16_t* AlphaScaleTable;     // [level * 32 + c] = level * c, level 0..255

// Static: filled by InitRenderTables, never freed.
extern float ReciprocalTable[256];     // [n] = 1 / n; [0] = 0
extern int32_t LineWidthTable[32];     // slope correction of a line's intensity, 8.8
extern int32_t LineFalloffTable[64];   // Gaussian fall-off from a line's centre, 8.8

extern uint32_t tablesBuilt;      // InitRenderTables does nothing when 1; nothing sets it
extern uint32_t lineTablesReady;  // 1 once the line tables are filled

}  // namespace e3d
