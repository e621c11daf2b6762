// Memory and string primitives: fills and copies seen through guard bytes,
// byte comparisons, names and decimal text.
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "engine/memory.h"

namespace {

using namespace e3d;

constexpr uint8_t kGuard = 0xCD;

// An 8-byte aligned arena of guard bytes; Holds is true when exactly
// [from, from + count) holds want(i) and the rest is still guard.
struct Arena {
  alignas(8) uint8_t bytes[64];
  Arena() { std::memset(bytes, kGuard, sizeof bytes); }
  template <class Want>
  bool Holds(int from, int count, Want want) const {
    for (int i = 0; i < 64; i++)
      if (bytes[i] != (i >= from && i < from + count ? want(i - from) : kGuard)) return false;
    return true;
  }
};

TEST(Memory, FillsAndCopiesWriteExactlyTheirBytesAtEveryAlignment) {
  alignas(8) uint8_t source[64];
  for (int i = 0; i < 64; i++) source[i] = static_cast<uint8_t>(i * 7 + 1);
  for (int offset = 0; offset < 16; offset++) {
    for (int count = -2; count <= 40; count++) {
      Arena fill, copy;
      EXPECT_EQ(MemoryFill(fill.bytes + offset, 0x5A, count), fill.bytes + offset);
      ASSERT_TRUE(fill.Holds(offset, count > 0 ? count : 0, [](int) { return 0x5A; }))
          << "fill at " << offset << " count " << count;
      if (count < 0) continue;
      const int from = offset / 2, to = offset % 8;  // every pair of phases
      EXPECT_EQ(MemoryCopy(copy.bytes + to, source + from, static_cast<uint32_t>(count)), copy.bytes + to);
      ASSERT_TRUE(copy.Holds(to, count, [&](int i) { return source[from + i]; }))
          << "copy " << from << " to " << to << " count " << count;
    }
  }
  // The wide fills write whole units only: the odd bytes stay.
  Arena arena;
  MemoryFill16(arena.bytes + 1, 0x1234, 7);
  EXPECT_TRUE(arena.Holds(1, 6, [](int i) { return i % 2 ? 0x12 : 0x34; }));
  Arena wide;
  MemoryFill32(wide.bytes + 2, 0xA1B2C3D4u, 11);
  const uint8_t le[4] = {0xD4, 0xC3, 0xB2, 0xA1};
  EXPECT_TRUE(wide.Holds(2, 8, [&](int i) { return le[i % 4]; }));
  // Null on either side: nothing happens.
  Arena untouched;
  EXPECT_EQ(MemoryFill(nullptr, 1, 8), nullptr);
  EXPECT_EQ(MemoryCopy(untouched.bytes, nullptr, 8), untouched.bytes);
  EXPECT_TRUE(untouched.Holds(0, 0, [](int) { return 0; }));
}

TEST(Strings, CompareRules) {
  const struct { const char* a; const char* b; int32_t want; } exact[] = {
      {"", "", 1},  // an empty name never matches, not even another empty one
      {"", "x", 1}, {nullptr, "x", 1}, {"Omni", "Omni", 0}, {"A", "a", 'A' - 'a'},
      {"ab", "abc", -'c'}, {"\x80", "", -128}, {"\x01", "\xFF", 2}};  // bytes sign-extended
  for (const auto& c : exact) EXPECT_EQ(StringCompare(c.a, c.b), c.want) << c.a << "|" << c.b;
  EXPECT_TRUE(StringCompareNoCase("Omni", "oMNI") == 0 && StringCompareNoCase("", "") == 1);
  EXPECT_EQ(StringCompareNoCase("[", "a"), '[' - 'A');
  EXPECT_TRUE(MemoryCompare("abc", "abd", 2) == 0 && MemoryCompare("\x80", "\x00", 1) == -128);
  // Folded a minus b as it stands: the sign disagrees with the folded order.
  EXPECT_EQ(MemoryCompareNoCase("B", "a", 1), 'B' - 'a');
}

TEST(Strings, CopyAppendAndDecimal) {
  char name[16];
  std::memset(name, kGuard, sizeof name);
  char* end = StringCopy(name, "Cube");
  EXPECT_TRUE(end == name + 4 && *end == 0);  // the terminator, ready for appending
  EXPECT_EQ(StringAppend(name, "07"), name);
  EXPECT_TRUE(StringLength(name) == 6 && std::strcmp(name, "Cube07") == 0);
  EXPECT_EQ(StringCopy(name, nullptr), nullptr);
  // At most n bytes: a truncated copy gets no terminator, a short one no padding.
  std::memset(name, kGuard, sizeof name);
  StringCopyN(name, "Sphere", 3);
  StringCopyN(name + 4, "ab", 8);
  EXPECT_EQ(std::memcmp(name, "Sph\xCD" "ab\0\xCD", 8), 0);

  char text[16];
  for (int32_t value : {0, -7, INT_MIN, INT_MAX}) {
    EXPECT_EQ(IntToString(value, text), text);
    EXPECT_STREQ(text, std::to_string(value).c_str());
  }
  UIntToString(4294967295u, text);
  EXPECT_STREQ(text, "4294967295");
}

}  // namespace
