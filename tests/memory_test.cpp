// Memory and string primitives: fills and copies seen through guard bytes,
// byte comparisons, names and decimal text.
#include <cstdint>
#include <cstring>

#include <gtest/gtest.h>

#include "engine/memory.h"

namespace {

using namespace e3d;

constexpr uint8_t kGuard = 0xCD;

// An 8-byte aligned arena of guard bytes.
struct Arena {
  alignas(8) uint8_t bytes[64];
  Arena() { std::memset(bytes, kGuard, sizeof bytes); }
  // True when exactly [from, from + count) holds want(i) and the rest is guard.
  template <class Want>
  bool Holds(int from, int count, Want want) const {
    for (int i = 0; i < 64; i++) {
      bool inside = i >= from && i < from + count;
      if (bytes[i] != (inside ? want(i - from) : kGuard)) return false;
    }
    return true;
  }
};

TEST(Memory, FillWritesExactlyItsBytesAtEveryAlignment) {
  for (int offset = 0; offset < 16; offset++) {
    for (int count = -2; count <= 40; count++) {
      Arena arena;
      void* dst = arena.bytes + offset;
      EXPECT_EQ(MemoryFill(dst, 0x5A, count), dst);
      int written = count > 0 ? count : 0;
      EXPECT_TRUE(arena.Holds(offset, written, [](int) { return 0x5A; }))
          << "offset " << offset << " count " << count;
    }
  }
  // 13 bytes from 3 past a boundary: 5 aligning bytes, one block, no tail.
  Arena arena;
  MemoryFill(arena.bytes + 3, 0xFF, 13);
  EXPECT_TRUE(arena.Holds(3, 13, [](int) { return 0xFF; }));
  EXPECT_EQ(MemoryFill(nullptr, 1, 8), nullptr);
}

TEST(Memory, WideFillsLeaveTheOddBytes) {
  Arena arena;
  EXPECT_EQ(MemoryFill16(arena.bytes + 1, 0x1234, 7), arena.bytes + 1);
  EXPECT_TRUE(arena.Holds(1, 6, [](int i) { return i % 2 ? 0x12 : 0x34; }));
  Arena wide;
  EXPECT_EQ(MemoryFill32(wide.bytes + 2, 0xA1B2C3D4u, 11), wide.bytes + 2);
  const uint8_t le[4] = {0xD4, 0xC3, 0xB2, 0xA1};
  EXPECT_TRUE(wide.Holds(2, 8, [&](int i) { return le[i % 4]; }));
  EXPECT_EQ(MemoryFill16(nullptr, 1, 8), nullptr);
  EXPECT_EQ(MemoryFill32(nullptr, 1, 8), nullptr);
}

TEST(Memory, CopyAtEveryAlignment) {
  alignas(8) uint8_t source[64];
  for (int i = 0; i < 64; i++) source[i] = static_cast<uint8_t>(i * 7 + 1);
  for (int dstOffset = 0; dstOffset < 8; dstOffset++) {
    for (int srcOffset = 0; srcOffset < 8; srcOffset++) {
      for (int count = 0; count <= 40; count++) {
        Arena arena;
        void* dst = arena.bytes + dstOffset;
        EXPECT_EQ(MemoryCopy(dst, source + srcOffset, static_cast<uint32_t>(count)), dst);
        ASSERT_TRUE(arena.Holds(dstOffset, count, [&](int i) { return source[srcOffset + i]; }))
            << dstOffset << " " << srcOffset << " " << count;
      }
    }
  }
  Arena arena;
  EXPECT_EQ(MemoryCopy(arena.bytes, nullptr, 8), arena.bytes);
  EXPECT_EQ(MemoryCopy(nullptr, source, 8), nullptr);
  EXPECT_TRUE(arena.Holds(0, 0, [](int) { return 0; }));

  uint32_t a = 1, b = 2;
  Swap32(&a, &b);
  EXPECT_EQ(a, 2u);
  EXPECT_EQ(b, 1u);
}

struct Comparison {
  const char* a;
  const char* b;
  int32_t want;
};

TEST(Strings, CompareRules) {
  const Comparison exact[] = {
      {"", "", 1},  // an empty name never matches, not even another empty one
      {"", "x", 1}, {nullptr, "x", 1}, {"x", nullptr, 1}, {"Omni", "Omni", 0},
      {"A", "a", 'A' - 'a'}, {"ab", "abc", -'c'}, {"abc", "ab", 'c'},
      {"\x80", "", -128},  // 8-bit difference, sign-extended
      {"\x01", "\xFF", 2}};
  for (const Comparison& c : exact) EXPECT_EQ(StringCompare(c.a, c.b), c.want) << c.a << "|" << c.b;
  const Comparison folded[] = {{"Omni", "oMNI", 0}, {"", "", 1}, {"b", "A", 1}, {"[", "a", '[' - 'A'}};
  for (const Comparison& c : folded) EXPECT_EQ(StringCompareNoCase(c.a, c.b), c.want) << c.a;

  EXPECT_EQ(MemoryCompare("abc", "abd", 2), 0);
  EXPECT_EQ(MemoryCompare("abc", "xyz", 0), 0);
  EXPECT_EQ(MemoryCompare("\x80", "\x00", 1), -128);
  EXPECT_EQ(MemoryCompare("\x01", "\xFF", 1), 2);
  EXPECT_EQ(MemoryCompareNoCase("Hello", "hELLO", 5), 0);
  // Folded a minus b as it stands: the sign disagrees with the folded order.
  EXPECT_EQ(MemoryCompareNoCase("B", "a", 1), 'B' - 'a');
}

TEST(Strings, CopyLengthAndAppend) {
  char name[16];
  std::memset(name, kGuard, sizeof name);
  char* end = StringCopy(name, "Cube");
  EXPECT_EQ(end, name + 4);  // the terminator, ready for appending
  EXPECT_EQ(*end, 0);
  StringAppend(name, "0");
  EXPECT_EQ(StringAppend(name, "7"), name);
  EXPECT_STREQ(name, "Cube07");
  EXPECT_EQ(StringLength(name), 6);
  EXPECT_EQ(StringLength(nullptr), 0);
  EXPECT_EQ(StringCopy(name, nullptr), nullptr);
  EXPECT_EQ(StringCopy(nullptr, "x"), nullptr);
  EXPECT_STREQ(name, "Cube07");

  // At most n bytes: a truncated copy gets no terminator, a short one no padding.
  std::memset(name, kGuard, sizeof name);
  StringCopyN(name, "Sphere", 3);
  StringCopyN(name + 4, "ab", 8);
  StringCopyN(name + 8, "ab", 0);
  EXPECT_EQ(std::memcmp(name, "Sph\xCD" "ab\0\xCD" "\xCD", 9), 0);
}

TEST(Strings, Decimal) {
  const struct {
    int32_t value;
    const char* text;
  } cases[] = {{0, "0"}, {-7, "-7"}, {INT32_MIN, "-2147483648"}, {INT32_MAX, "2147483647"}, {1000000, "1000000"}};
  char text[16];
  for (const auto& c : cases) {
    EXPECT_EQ(IntToString(c.value, text), text);
    EXPECT_STREQ(text, c.text);
  }
  EXPECT_EQ(IntToString(5, nullptr), nullptr);
  EXPECT_EQ(UIntToString(4294967295u, text), text);
  EXPECT_STREQ(text, "4294967295");
  EXPECT_EQ(UIntToString(1, nullptr), nullptr);
}

}  // namespace
