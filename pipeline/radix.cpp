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
  uint32_t Bits(uint32_t i) const { return __builtin_bit_cast(uint32_t, keys[i]); }
  // An unordered pair (a NaN) counts as out of order.
  bool OutOfOrder(uint32_t a, uint32_t b) const { return !(keys[b] >= keys[a]); }
};

struct RecordKeys {
  const PolygonRecord* records;
  uint32_t Bits(uint32_t i) const { return __builtin_bit_cast(uint32_t, records[i].depthKey); }
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

// Counts every byte of every key. With a kept start it first walks the list
// and returns true, counting nothing, when no key is below its predecessor:
// a list kept in order costs one walk and no counting.
template <Start kStart, class Keys>
bool CountKeyBytes(const Keys& keys, uint32_t count, uint32_t* list) {
  if constexpr (kStart == Start::Kept) {
    uint32_t i = 1;
    while (i < count && !keys.OutOfOrder(list[i - 1], list[i])) ++i;
    if (i >= count) return true;
  }
  for (auto& histogram : radixHistograms)
    for (uint32_t& counter : histogram) counter = 0;
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t bits = keys.Bits(i);
    ++radixHistograms[0][bits & 0xFF];
    ++radixHistograms[1][(bits >> 8) & 0xFF];
    ++radixHistograms[2][(bits >> 16) & 0xFF];
    ++radixHistograms[3][bits >> 24];
    if constexpr (kStart == Start::Identity) list[i] = i;
  }
  return false;
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

// How a pass reads and writes the list. While indexes fit in 24 bits, a pass
// that has a successor stores, beside each index, the key byte that the
// successor sorts on: the successor then finds its bucket without reading
// the key again, and the one key read that remains per pass no longer lies
// on the path to the store.
enum class Words {
  Plain,     // plain indexes in and out
  PackOut,   // plain in; index and next byte out
  Packed,    // index and byte in; index and next byte out
  UnpackOut  // index and byte in; plain indexes out
};
inline constexpr uint32_t kPackedIndexMask = 0xFFFFFF;
inline constexpr uint32_t kPackedMaxCount = kPackedIndexMask + 1;

// One distribution pass over byte position `byte`, from src into dst;
// `next` is the byte position of the following pass, for packed words.
template <Layout kLayout, Words kWords, class Keys>
void Distribute(const Keys& keys, uint32_t byte, uint32_t next, const uint32_t* src, uint32_t* dst,
                uint32_t count) {
  constexpr bool kPackedIn = kWords == Words::Packed || kWords == Words::UnpackOut;
  constexpr bool kPackedOut = kWords == Words::PackOut || kWords == Words::Packed;
  ComputeOffsets<kLayout>(radixHistograms[byte]);
  const uint32_t shift = byte * 8, nextShift = next * 8;
  for (uint32_t n = 0; n < count; ++n) {
    const uint32_t word = src[n];
    uint32_t index, b, out;
    if constexpr (kPackedIn) {
      index = word & kPackedIndexMask;
      b = word >> 24;
      out = kPackedOut ? index | ((keys.Bits(index) >> nextShift) & 0xFF) << 24 : index;
    } else {
      index = word;
      const uint32_t bits = keys.Bits(index);
      b = (bits >> shift) & 0xFF;
      out = kPackedOut ? index | ((bits >> nextShift) & 0xFF) << 24 : index;
    }
    if constexpr (kLayout == Layout::Float) {
      if (b >= 128) {
        dst[--radixOffsets[b]] = out;  // reverses the negatives' order so far
        continue;
      }
    }
    const uint32_t at = radixOffsets[b]++;
    // Signed: negatives start at the negative count like the non-negatives,
    // so they can run up to twice it. Only the first count places make up
    // the result; the rest are dropped rather than written past the list.
    if constexpr (kLayout == Layout::Signed)
      if (at >= count) continue;
    dst[at] = out;
  }
}

template <Layout kLayout, class Keys>
void DistributeWords(Words words, const Keys& keys, uint32_t byte, uint32_t next, const uint32_t* src,
                     uint32_t* dst, uint32_t count) {
  switch (words) {
    case Words::Plain:
      return Distribute<kLayout, Words::Plain>(keys, byte, next, src, dst, count);
    case Words::PackOut:
      return Distribute<kLayout, Words::PackOut>(keys, byte, next, src, dst, count);
    case Words::Packed:
      return Distribute<kLayout, Words::Packed>(keys, byte, next, src, dst, count);
    case Words::UnpackOut:
      return Distribute<kLayout, Words::UnpackOut>(keys, byte, next, src, dst, count);
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
  uint32_t bytes[4], passes = 0;
  for (uint32_t byte = 0; byte < 4; ++byte)
    if (!AllKeysAgree(radixHistograms[byte], n)) bytes[passes++] = byte;
  // The signed layout can leave places of its last pass unwritten: they keep
  // whatever the block held, never a packed word.
  const bool pack = kTop != Layout::Signed && n <= kPackedMaxCount;
  uint32_t* src = list;
  uint32_t* dst = radixScratch;
  for (uint32_t pass = 0; pass < passes; ++pass) {
    const bool packedIn = pack && pass > 0, packedOut = pack && pass + 1 < passes;
    const Words words = packedIn ? (packedOut ? Words::Packed : Words::UnpackOut)
                                 : (packedOut ? Words::PackOut : Words::Plain);
    const uint32_t byte = bytes[pass], next = packedOut ? bytes[pass + 1] : 0;
    if (byte < 3)
      DistributeWords<Layout::Unsigned>(words, keys, byte, next, src, dst, n);
    else
      DistributeWords<kTop>(words, keys, byte, next, src, dst, n);
    uint32_t* t = src;
    src = dst;
    dst = t;
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
    RadixSort<Layout::Signed, Start::Kept>(SignedKeys{static_cast<const int32_t*>(keys)}, count, indexList);
  else
    RadixSort<Layout::Unsigned, Start::Kept>(UnsignedKeys{static_cast<const uint32_t*>(keys)}, count,
                                             indexList);
}

E3D_API void E3D_CALL RadixFloatSorter(int32_t count, const float* keys, uint32_t* indexList) {
  RadixSort<Layout::Float, Start::Kept>(FloatKeys{keys}, count, indexList);
}
