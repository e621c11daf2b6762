// Least-significant-byte-first radix sorter over 32-bit keys. The sorters
// never move keys: they order a list of indexes into the key array. All of
// them share one scratch list and one set of histograms, so only one sort may
// run at a time. The exports (InitRadixSort, ReleaseRadixSort, ResetRadixSort,
// RadixLongSorter, RadixFloatSorter) are declared in engine3d.h.
#pragma once
#include <stdint.h>

#include "engine3d.h"
#include "objects/polygon_record.h"

namespace e3d {

// Fills indexList with 0..count-1 ordered by ascending depthKey of records.
void SortPolygonRecords(int32_t count, const PolygonRecord* records, uint32_t* indexList);

// Entries the scratch list holds now (it only grows); for tests.
int32_t RadixScratchCapacity();

}  // namespace e3d
