#include <algorithm>
#include <bit>
#include <cstdint>
#include <random>
#include <vector>

#include "engine3d.h"
#include "pipeline/radix.h"
#include "support/test_host.h"

namespace {

using List = std::vector<uint32_t>;

class Radix : public testhost::LeakCheckedTest {
 protected:
  // The scratch list is process-wide: start and end every test without one.
  void SetUp() override {
    ReleaseRadixSort();
    LeakCheckedTest::SetUp();
  }
  void TearDown() override {
    ReleaseRadixSort();
    LeakCheckedTest::TearDown();
  }

  static List Identity(uint32_t n) {
    List list(n);
    EXPECT_EQ(ResetRadixSort(static_cast<int32_t>(n), list.data()), static_cast<int32_t>(n));
    return list;
  }
  static List SortFloats(const std::vector<float>& keys, List list) {
    RadixFloatSorter(static_cast<int32_t>(keys.size()), keys.data(), list.data());
    return list;
  }
  static List SortLongs(const std::vector<int32_t>& keys, List list, int32_t signedKeys) {
    RadixLongSorter(static_cast<int32_t>(keys.size()), keys.data(), list.data(), signedKeys);
    return list;
  }
  static List SortRecords(const std::vector<float>& keys) {
    std::vector<PolygonRecord> records(keys.size());
    for (size_t i = 0; i < keys.size(); ++i) records[i] = {keys[i], nullptr, nullptr, 0};
    List list(keys.size(), 0xDEADBEEF);
    e3d::SortPolygonRecords(static_cast<int32_t>(keys.size()), records.data(), list.data());
    return list;
  }
};

TEST_F(Radix, FloatKeysAscendNumerically) {
  EXPECT_EQ(SortFloats({3.0f, -1.0f, -2.5f, 0.0f}, Identity(4)), (List{2, 1, 3, 0}));
  EXPECT_EQ(SortRecords({3.0f, -1.0f, -2.5f, 0.0f}), (List{2, 1, 3, 0}));

  // Both zeros, a denormal on each side, extremes: -0.0 sorts among the
  // negatives, last of them; +0.0 before every positive.
  const float tiny = std::bit_cast<float>(1u);
  const std::vector<float> keys = {1e30f, 0.0f, -tiny, tiny, -0.0f, -1e30f, 1.0f, -1.0f};
  EXPECT_EQ(SortFloats(keys, Identity(8)), (List{5, 7, 2, 4, 1, 3, 6, 0}));
  EXPECT_EQ(SortRecords(keys), (List{5, 7, 2, 4, 1, 3, 6, 0}));
}

TEST_F(Radix, EqualKeysKeepStartingOrderExceptFloatNegatives) {
  // Non-negative equal keys keep the order of the starting list.
  const std::vector<int32_t> ints = {7, 3, 7, 3, 7};
  const List start = {4, 3, 2, 1, 0};
  EXPECT_EQ(SortLongs(ints, start, 0), (List{3, 1, 4, 2, 0}));
  EXPECT_EQ(SortLongs(ints, start, 1), (List{3, 1, 4, 2, 0}));
  EXPECT_EQ(SortFloats({7.0f, 3.0f, 7.0f, 3.0f, 7.0f}, start), (List{3, 1, 4, 2, 0}));
  EXPECT_EQ(SortRecords({2.0f, 1.0f, 2.0f, 1.0f}), (List{1, 3, 0, 2}));

  // Negative floats are placed by counting down in the top-byte pass, which
  // reverses equal negative keys.
  EXPECT_EQ(SortFloats({2.0f, -1.0f, -1.0f, -1.0f}, Identity(4)), (List{3, 2, 1, 0}));
  EXPECT_EQ(SortRecords({-1.0f, 2.0f, -1.0f, -1.0f}), (List{3, 2, 0, 1}));
  EXPECT_EQ(SortRecords({-1.0f, -2.0f, -1.0f, 5.0f, -2.0f}), (List{4, 1, 2, 0, 3}));
}

TEST_F(Radix, OrderedListIsLeftAlone) {
  // A pass would reverse the two equal negative keys: the list shows none ran.
  const List kept = {2, 0, 1, 3};
  EXPECT_EQ(SortFloats({-1.0f, -1.0f, -4.0f, 8.0f}, kept), kept);
  // -0.0 equals +0.0, so the pair counts as ordered although the bit
  // patterns would put -0.0 first.
  EXPECT_EQ(SortFloats({0.0f, -0.0f}, Identity(2)), (List{0, 1}));
  // A NaN never compares in order: the list is sorted by bit pattern.
  EXPECT_EQ(SortFloats({1.0f, std::bit_cast<float>(0x7FC00000u), 2.0f}, Identity(3)),
            (List{0, 2, 1}));
  // Integers compare signed or unsigned as asked.
  EXPECT_EQ(SortLongs({-1, 5}, Identity(2), 1), (List{0, 1}));
  EXPECT_EQ(SortLongs({-1, 5}, Identity(2), 0), (List{1, 0}));

  // Count 0 touches nothing.
  List untouched = {9, 9};
  RadixFloatSorter(0, nullptr, untouched.data());
  RadixLongSorter(0, nullptr, untouched.data(), 1);
  EXPECT_EQ(untouched, (List{9, 9}));
}

TEST_F(Radix, BytesOnWhichAllKeysAgreeCostNoPass) {
  // The polygon sorter always sorts; with all keys equal every pass is
  // skipped, so even negative keys keep their order.
  EXPECT_EQ(SortRecords({4.0f, 4.0f, 4.0f}), (List{0, 1, 2}));
  EXPECT_EQ(SortRecords({-4.0f, -4.0f, -4.0f}), (List{0, 1, 2}));
  // Negative floats sharing their top byte skip the pass that would flip
  // them, so the lower bytes leave them in ascending bit order: -1.0 before
  // -1.5.
  EXPECT_EQ(SortRecords({-1.5f, -1.0f}), (List{1, 0}));
  // One pass (odd) leaves the order in the scratch block and copies it back;
  // two passes (even) end in the caller's list. Both must come out whole.
  EXPECT_EQ(SortLongs({0x300, 0x100, 0x200}, Identity(3), 0), (List{1, 2, 0}));
  EXPECT_EQ(SortLongs({0x301, 0x100, 0x202}, Identity(3), 0), (List{1, 2, 0}));
}

TEST_F(Radix, ResetFillsIdentityAndGrowsScratch) {
  const std::size_t live = testhost::LiveBlocks();
  List list = {7, 7, 7};
  EXPECT_EQ(ResetRadixSort(0, list.data()), 0);
  EXPECT_EQ(ResetRadixSort(-5, list.data()), 0);
  EXPECT_EQ(list, (List{7, 7, 7}));
  EXPECT_EQ(e3d::RadixScratchCapacity(), 0);

  List big = Identity(100);
  EXPECT_EQ(big[0], 0u);
  EXPECT_EQ(big[99], 99u);
  EXPECT_EQ(e3d::RadixScratchCapacity(), 100);

  // Smaller sorts reuse the list without allocating; it never shrinks.
  const std::size_t before = testhost::Allocations();
  EXPECT_EQ(SortLongs({3, 1, 2}, Identity(3), 0), (List{1, 2, 0}));
  EXPECT_EQ(e3d::RadixScratchCapacity(), 100);
  EXPECT_EQ(testhost::Allocations(), before);

  // A larger sort replaces it with one larger block.
  std::vector<float> keys(150);
  for (size_t i = 0; i < keys.size(); ++i) keys[i] = static_cast<float>(150 - i);
  List order = SortFloats(keys, Identity(150));
  EXPECT_EQ(order[0], 149u);
  EXPECT_EQ(e3d::RadixScratchCapacity(), 150);
  EXPECT_EQ(testhost::LiveBlocks(), live + 1);
}

TEST_F(Radix, InitAndReleaseLeaveNoBlock) {
  const std::size_t live = testhost::LiveBlocks();
  EXPECT_EQ(InitRadixSort(), 0);  // nothing to free
  for (int cycle = 0; cycle < 3; ++cycle) {
    EXPECT_EQ(SortLongs({2, 1}, Identity(2), 0), (List{1, 0}));
    EXPECT_EQ(testhost::LiveBlocks(), live + 1);
    if (cycle == 1) {
      EXPECT_EQ(InitRadixSort(), 1);  // frees the list it finds
    } else {
      ReleaseRadixSort();
      ReleaseRadixSort();  // harmless when there is none
    }
    EXPECT_EQ(testhost::LiveBlocks(), live);
    EXPECT_EQ(e3d::RadixScratchCapacity(), 0);
  }
}

TEST_F(Radix, SignedKeysOrderWhenNonNegativeOrSharingTopByte) {
  EXPECT_EQ(SortLongs({0x7F000000, 7, 0x01000000, 0, 3}, Identity(5), 1), (List{3, 4, 1, 2, 0}));
  EXPECT_EQ(SortLongs({-5, -1, -300, -2, -70000}, Identity(5), 1), (List{4, 2, 0, 3, 1}));
}

TEST_F(Radix, SignedLayoutWithNegativesStaysInsideMemory) {
  // Negative keys with differing top bytes are placed past the negative
  // count; nothing may land outside either list. The top-byte pass runs
  // first (into the scratch list), second (into the caller's list) or after
  // positives are mixed in. Exact-sized lists let ASan see any overrun.
  const std::vector<std::vector<uint32_t>> sets = {
      {0xF0000000, 0xE0000000, 0xD0000000, 0xC0000000},
      {0xF0000001, 0xE0000002, 0xD0000000, 0x80000003},
      {0xEFFFFFFF, 0x20000000, 0xCFFFFFFD, 0x40000002, 0xFFFFFFF9},
  };
  for (const auto& keys : sets) {
    const uint32_t n = static_cast<uint32_t>(keys.size());
    auto* list = new uint32_t[n];
    for (uint32_t i = 0; i < n; ++i) list[i] = i;
    RadixLongSorter(static_cast<int32_t>(n), keys.data(), list, 1);
    delete[] list;
  }
}

TEST_F(Radix, MatchesStableSortOnNonNegativeKeys) {
  std::mt19937 rng(1234);
  for (int round = 0; round < 40; ++round) {
    const uint32_t n = 1 + rng() % 700;
    // Narrow ranges give many equal keys and bytes on which all agree.
    const uint32_t range = round % 3 == 0 ? 8 : (round % 3 == 1 ? 70000 : 0xFFFFFFFF);
    std::vector<uint32_t> bits(n);
    for (auto& b : bits) b = rng() % range;
    List start(n);
    for (uint32_t i = 0; i < n; ++i) start[i] = i;
    std::shuffle(start.begin(), start.end(), rng);

    auto expect = [&](auto keyOf) {
      List want = start;
      std::stable_sort(want.begin(), want.end(), [&](uint32_t a, uint32_t b) { return keyOf(a) < keyOf(b); });
      return want;
    };

    List got = start;
    RadixLongSorter(static_cast<int32_t>(n), bits.data(), got.data(), 0);
    EXPECT_EQ(got, expect([&](uint32_t i) { return bits[i]; })) << "unsigned, round " << round;

    std::vector<int32_t> ints(n);
    for (uint32_t i = 0; i < n; ++i) ints[i] = static_cast<int32_t>(bits[i] >> 1);
    got = start;
    RadixLongSorter(static_cast<int32_t>(n), ints.data(), got.data(), 1);
    EXPECT_EQ(got, expect([&](uint32_t i) { return ints[i]; })) << "signed, round " << round;

    std::vector<float> floats(n);
    for (uint32_t i = 0; i < n; ++i) floats[i] = std::bit_cast<float>(bits[i] % 0x7F800000u);
    got = start;
    RadixFloatSorter(static_cast<int32_t>(n), floats.data(), got.data());
    List want = expect([&](uint32_t i) { return floats[i]; });
    EXPECT_EQ(got, want) << "float, round " << round;
    // Sorting the kept result again changes nothing.
    RadixFloatSorter(static_cast<int32_t>(n), floats.data(), got.data());
    EXPECT_EQ(got, want);

    for (uint32_t i = 0; i < n; ++i) start[i] = i;  // the polygon sorter starts from 0..n-1
    EXPECT_EQ(SortRecords(floats), expect([&](uint32_t i) { return floats[i]; }))
        << "records, round " << round;

    // Mixed signs (one of each, so the top-byte pass runs): ascending by
    // value, equal negatives aside.
    for (uint32_t i = 0; i < n; ++i) floats[i] = std::bit_cast<float>(static_cast<uint32_t>(rng()) & 0xFF7FFFFFu);
    floats[0] = 1.0f;
    floats[n - 1] = -1.0f;
    const auto byValue = [&](uint32_t a, uint32_t b) { return floats[a] < floats[b]; };
    EXPECT_TRUE(std::ranges::is_sorted(SortRecords(floats), byValue)) << "mixed, round " << round;
    EXPECT_TRUE(std::ranges::is_sorted(SortFloats(floats, start), byValue)) << "mixed, round " << round;
  }
}

}  // namespace
