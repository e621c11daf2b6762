// Radix sorter: one histogram pass over the keys, then at most four
// distribution passes (byte 0 first), each moving the index list between the
// caller's block and the shared scratch list. A byte on which all keys agree
// costs no pass; a kept list that is already in order costs no pass at all.
#include "pipeline/radix.h"

#include <bit>

#include "engine/memory.h"

namespace {

uint32_t* radixScratch = nullptr;
int32_t radixCapacity = 0;
uint32_t radixHistograms[4][256];
uint32_t radixOffsets[256];
uint32_t radixNegativeCount = 0;

// How the buckets of the top byte are laid out. The low three bytes always
// use Unsigned.
enum class Layout {
  Unsigned,  // buckets ascending from 0
  Float,     // negatives first, walked downward; then the non-negatives
  Signed     // both halves start at the negative count (see Distribute)
};

// Where the starting order of the first pass comes from.
enum class Start {
  Kept,     // the caller's list as it stands; an ordered one is left alone
  Identity  // 0..count-1, written during the histogram pass
};

// Key readers: the bits of key i, and whether key b breaks the order after
// key a (for the early-out over a kept list).
struct UnsignedKeys {
  const uint32_t* keys;
  uint32_t Bits(uint32_t i) const { return keys[i]; }
  bool OutOfOrder(uint32_t a, uint32_t b) const { return keys[b] < keys[a]; }
};

struct SignedKeys {
  const int32_t* keys;
  uint32_t Bits(uint32_t i) const { return static_cast<uint32_t>(keys[i]); }
  bool OutOfOrder(uint32_t a, uint32_t b) const { return keys[b] < keys[a]; }
};

struct FloatKeys {
  const float* keys;
  uint32_t Bits(uint32_t i) const { return std::bit_cast<uint32_t>(keys[i]); }
  // An unordered pair (a NaN) counts as out of order.
  bool OutOfOrder(uint32_t a, uint32_t b) const { return !(keys[b] >= keys[a]); }
};

struct RecordKeys {
  const PolygonRecord* records;
  uint32_t Bits(uint32_t i) const { return std::bit_cast<uint32_t>(records[i].depthKey); }
};

// The list never shrinks.
void GrowScratch(int32_t count) {
  if (count <= radixCapacity) return;
  e3d::Release(radixScratch);
  radixScratch = e3d::Allocate<uint32_t>(static_cast<uint32_t>(count));
  // Without a scratch list nothing can be sorted: remember no capacity, so
  // the sorters leave their lists in starting order instead of writing
  // through null, and the next sort asks again.
  radixCapacity = radixScratch ? count : 0;
}

// Counts every byte of every key. With a kept start it also walks the list
// and returns true when no key is below its predecessor.
template <Start kStart, class Keys>
bool CountKeyBytes(const Keys& keys, uint32_t count, uint32_t* list) {
  for (auto& histogram : radixHistograms)
    for (uint32_t& counter : histogram) counter = 0;
  bool ordered = kStart == Start::Kept;
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t bits = keys.Bits(i);
    ++radixHistograms[0][bits & 0xFF];
    ++radixHistograms[1][(bits >> 8) & 0xFF];
    ++radixHistograms[2][(bits >> 16) & 0xFF];
    ++radixHistograms[3][bits >> 24];
    if constexpr (kStart == Start::Identity)
      list[i] = i;
    else if (ordered && i > 0 && keys.OutOfOrder(list[i - 1], list[i]))
      ordered = false;
  }
  return ordered;
}

// True when every key has the same byte at this position.
bool AllKeysAgree(const uint32_t* histogram, uint32_t count) {
  uint32_t b = 0;
  while (histogram[b] == 0) ++b;
  return histogram[b] == count;
}

template <Layout kLayout>
void ComputeOffsets(const uint32_t* h) {
  uint32_t* o = radixOffsets;
  if constexpr (kLayout == Layout::Unsigned) {
    o[0] = 0;
    for (int i = 0; i < 255; ++i) o[i + 1] = o[i] + h[i];
  } else {
    o[0] = radixNegativeCount;
    for (int i = 0; i < 127; ++i) o[i + 1] = o[i] + h[i];
    if constexpr (kLayout == Layout::Float) {
      // Negative buckets from 255 (most negative) down to 128, each offset
      // then moved to its bucket's end: keys are placed by decrementing.
      o[255] = 0;
      for (int i = 254; i >= 128; --i) o[i] = o[i + 1] + h[i + 1];
      for (int i = 128; i < 256; ++i) o[i] += h[i];
    } else {
      o[128] = radixNegativeCount;
      for (int i = 128; i < 255; ++i) o[i + 1] = o[i] + h[i];
    }
  }
}

// One distribution pass over byte position `byte`, from src into dst.
template <Layout kLayout, class Keys>
void Distribute(const Keys& keys, uint32_t byte, const uint32_t* src, uint32_t* dst,
                uint32_t count) {
  ComputeOffsets<kLayout>(radixHistograms[byte]);
  const uint32_t shift = byte * 8;
  for (uint32_t n = 0; n < count; ++n) {
    const uint32_t index = src[n];
    const uint32_t b = (keys.Bits(index) >> shift) & 0xFF;
    if constexpr (kLayout == Layout::Float) {
      if (b >= 128) {
        dst[--radixOffsets[b]] = index;  // reverses the negatives' order so far
        continue;
      }
    }
    const uint32_t at = radixOffsets[b]++;
    // Signed: negatives start at the negative count like the non-negatives,
    // so they can run up to twice it. Only the first count places make up
    // the result; the rest are dropped rather than written past the list.
    if constexpr (kLayout == Layout::Signed)
      if (at >= count) continue;
    dst[at] = index;
  }
}

template <Layout kTop, Start kStart, class Keys>
void RadixSort(const Keys& keys, int32_t count, uint32_t* list) {
  GrowScratch(count);
  if (count < 1) return;
  const uint32_t n = static_cast<uint32_t>(count);
  if (CountKeyBytes<kStart>(keys, n, list) || !radixScratch) return;
  if constexpr (kTop != Layout::Unsigned) {
    radixNegativeCount = 0;
    for (int i = 128; i < 256; ++i) radixNegativeCount += radixHistograms[3][i];
  }
  uint32_t* src = list;
  uint32_t* dst = radixScratch;
  uint32_t passes = 0;
  for (uint32_t byte = 0; byte < 4; ++byte) {
    if (AllKeysAgree(radixHistograms[byte], n)) continue;
    if (byte < 3)
      Distribute<Layout::Unsigned>(keys, byte, src, dst, n);
    else
      Distribute<kTop>(keys, byte, src, dst, n);
    uint32_t* t = src;
    src = dst;
    dst = t;
    ++passes;
  }
  // After an odd number of passes the order lies in the scratch block.
  if (passes & 1)
    for (uint32_t i = 0; i < n; ++i) list[i] = src[i];
}

}  // namespace

namespace e3d {

void SortPolygonRecords(int32_t count, const PolygonRecord* records, uint32_t* indexList) {
  RadixSort<Layout::Float, Start::Identity>(RecordKeys{records}, count, indexList);
}

int32_t RadixScratchCapacity() { return radixCapacity; }

}  // namespace e3d

E3D_API int32_t E3D_CALL InitRadixSort(void) {
  int32_t result = 0;
  if (radixScratch) result = FreeMemory(radixScratch);
  radixScratch = nullptr;
  radixCapacity = 0;
  return result;
}

E3D_API void E3D_CALL ReleaseRadixSort(void) {
  e3d::Release(radixScratch);
  radixCapacity = 0;
}

E3D_API int32_t E3D_CALL ResetRadixSort(int32_t count, uint32_t* indexList) {
  GrowScratch(count);
  if (count < 1) return 0;
  for (int32_t i = 0; i < count; ++i) indexList[i] = static_cast<uint32_t>(i);
  return count;
}

E3D_API void E3D_CALL RadixLongSorter(int32_t count, const void* keys, uint32_t* indexList,
                                      int32_t signedKeys) {
  if (signedKeys)
    RadixSort<Layout::Signed, Start::Kept>(SignedKeys{static_cast<const int32_t*>(keys)}, count,
                                           indexList);
  else
    RadixSort<Layout::Unsigned, Start::Kept>(UnsignedKeys{static_cast<const uint32_t*>(keys)},
                                             count, indexList);
}

E3D_API void E3D_CALL RadixFloatSorter(int32_t count, const float* keys, uint32_t* indexList) {
  RadixSort<Layout::Float, Start::Kept>(FloatKeys{keys}, count, indexList);
}
