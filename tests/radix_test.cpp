#include "pipeline/radix.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <random>
#include <vector>

#include "engine3d.h"
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
  static List Floats(const std::vector<float>& keys, List list) {
    RadixFloatSorter(static_cast<int32_t>(keys.size()), keys.data(), list.data());
    return list;
  }
  static List Longs(const std::vector<int32_t>& keys, List list, int32_t signedKeys) {
    RadixLongSorter(static_cast<int32_t>(keys.size()), keys.data(), list.data(), signedKeys);
    return list;
  }
  static List Records(const std::vector<float>& keys) {
    std::vector<PolygonRecord> records(keys.size());
    for (size_t i = 0; i < keys.size(); ++i) records[i] = {keys[i], nullptr, nullptr, 0};
    List list(keys.size(), 0xDEADBEEF);
    e3d::SortPolygonRecords(static_cast<int32_t>(keys.size()), records.data(), list.data());
    return list;
  }
};

TEST_F(Radix, OrderOfFloatAndIntegerKeys) {
  // -0.0 sorts among the negatives, last of them; +0.0 before every positive.
  const float tiny = __builtin_bit_cast(float, 1u);
  const std::vector<float> keys = {1e30f, 0.0f, -tiny, tiny, -0.0f, -1e30f, 1.0f, -1.0f};
  EXPECT_EQ(Records(keys), (List{5, 7, 2, 4, 1, 3, 6, 0}));
  // Signed keys order when non-negative or sharing the top byte.
  EXPECT_EQ(Longs({0x7F000000, 7, 0x01000000, 0, 3}, Identity(5), 1), (List{3, 4, 1, 2, 0}));
  EXPECT_EQ(Longs({-5, -1, -300, -2, -70000}, Identity(5), 1), (List{4, 2, 0, 3, 1}));
  // One pass (odd) ends in the scratch block and is copied back; two end in place.
  EXPECT_EQ(Longs({0x300, 0x100, 0x200}, Identity(3), 0), (List{1, 2, 0}));
  // Other negative keys are placed past the negative count; nothing may land
  // outside either list, whichever pass the top byte takes. Exact-sized lists
  // let ASan see any overrun.
  for (const std::vector<uint32_t>& bits :
       {std::vector<uint32_t>{0xF0000000, 0xE0000000, 0xD0000000, 0xC0000000},
        {0xF0000001, 0xE0000002, 0xD0000000, 0x80000003},
        {0xEFFFFFFF, 0x20000000, 0xCFFFFFFD, 0x40000002, 0xFFFFFFF9}}) {
    const int32_t n = static_cast<int32_t>(bits.size());
    auto* list = new uint32_t[n];
    for (int32_t i = 0; i < n; ++i) list[i] = static_cast<uint32_t>(i);
    RadixLongSorter(n, bits.data(), list, 1);
    delete[] list;
  }
}

TEST_F(Radix, EqualKeysKeepStartingOrderExceptFloatNegatives) {
  const List start = {4, 3, 2, 1, 0};
  EXPECT_EQ(Longs({7, 3, 7, 3, 7}, start, 1), (List{3, 1, 4, 2, 0}));
  EXPECT_EQ(Floats({7.0f, 3.0f, 7.0f, 3.0f, 7.0f}, start), (List{3, 1, 4, 2, 0}));
  // Negative floats are placed by counting down in the top-byte pass, which
  // reverses equal negative keys.
  EXPECT_EQ(Records({-1.0f, -2.0f, -1.0f, 5.0f, -2.0f}), (List{4, 1, 2, 0, 3}));
  // Unless every key agrees on the top byte: that pass is skipped.
  EXPECT_EQ(Records({-4.0f, -4.0f, -4.0f}), (List{0, 1, 2}));
}

TEST_F(Radix, OrderedListIsLeftAlone) {
  // A pass would reverse the two equal negative keys: the list shows none ran.
  const List kept = {2, 0, 1, 3};
  EXPECT_EQ(Floats({-1.0f, -1.0f, -4.0f, 8.0f}, kept), kept);
  // A NaN never compares in order: the list is sorted by bit pattern.
  EXPECT_EQ(Floats({1.0f, __builtin_bit_cast(float, 0x7FC00000u), 2.0f}, Identity(3)), (List{0, 2, 1}));
  List untouched = {9, 9};
  RadixFloatSorter(0, nullptr, untouched.data());
  EXPECT_EQ(untouched, (List{9, 9}));
}

TEST_F(Radix, ScratchGrowsOnlyAndReleases) {
  const std::size_t live = testhost::LiveBlocks();
  List list = {7, 7, 7};
  EXPECT_TRUE(ResetRadixSort(-5, list.data()) == 0 && list == (List{7, 7, 7}));
  Identity(100);
  const std::size_t before = testhost::Allocations();
  EXPECT_EQ(Longs({3, 1, 2}, Identity(3), 0), (List{1, 2, 0}));  // reused, not shrunk
  EXPECT_TRUE(testhost::Allocations() == before && e3d::RadixScratchCapacity() == 100);
  Identity(150);
  EXPECT_TRUE(e3d::RadixScratchCapacity() == 150 && testhost::LiveBlocks() == live + 1);
  EXPECT_EQ(InitRadixSort(), 1);  // frees the list it finds
  Identity(2);
  ReleaseRadixSort();
  ReleaseRadixSort();  // harmless when there is none
  EXPECT_EQ(testhost::LiveBlocks(), live);
}

TEST_F(Radix, MatchesStableSort) {
  std::mt19937 rng(1234);
  for (int round = 0; round < 40; ++round) {
    const uint32_t n = 1 + rng() % 700;
    // Narrow ranges give many equal keys and bytes on which all agree.
    const uint32_t range = round % 3 == 0 ? 8 : (round % 3 == 1 ? 70000 : 0xFFFFFFFF);
    std::vector<uint32_t> bits(n);
    std::vector<int32_t> ints(n);
    std::vector<float> floats(n);
    for (uint32_t i = 0; i < n; ++i) {
      bits[i] = rng() % range;
      ints[i] = static_cast<int32_t>(bits[i] >> 1);
      floats[i] = __builtin_bit_cast(float, bits[i] % 0x7F800000u);
    }
    List start(n);
    for (uint32_t i = 0; i < n; ++i) start[i] = i;
    std::shuffle(start.begin(), start.end(), rng);
    auto expect = [&](const auto& keys, List from) {
      std::stable_sort(from.begin(), from.end(), [&](uint32_t a, uint32_t b) { return keys[a] < keys[b]; });
      return from;
    };
    EXPECT_EQ(Longs(std::vector<int32_t>(bits.begin(), bits.end()), start, 0), expect(bits, start))
        << "unsigned, round " << round;
    EXPECT_EQ(Longs(ints, start, 1), expect(ints, start)) << "signed, round " << round;
    EXPECT_EQ(Floats(floats, start), expect(floats, start)) << "float, round " << round;
    EXPECT_EQ(Records(floats), expect(floats, Identity(n))) << "records, round " << round;

    // Mixed signs (one of each, so the top-byte pass runs): ascending by value.
    for (float& f : floats) f = __builtin_bit_cast(float, static_cast<uint32_t>(rng()) & 0xFF7FFFFFu);
    floats[0] = 1.0f;
    floats[n - 1] = -1.0f;
    const auto sorted = [&](const List& list) {
      return std::is_sorted(list.begin(), list.end(),
                            [&](uint32_t a, uint32_t b) { return floats[a] < floats[b]; });
    };
    EXPECT_TRUE(sorted(Records(floats))) << "mixed, round " << round;
    EXPECT_TRUE(sorted(Floats(floats, start))) << "mixed, round " << round;
  }
}

}  // namespace
