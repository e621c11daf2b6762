// Byte strings and byte comparisons. Names are compared byte by byte,
// case-sensitively; the differences returned are 8-bit, sign-extended.
#include "engine/memory.h"

namespace e3d {

namespace {

uint8_t Upper(uint8_t c) { return c >= 'a' && c <= 'z' ? static_cast<uint8_t>(c - 32) : c; }

int32_t Difference(uint8_t a, uint8_t b) { return static_cast<int8_t>(static_cast<uint8_t>(a - b)); }

// An empty first string never equals anything: an unnamed object cannot be
// found by name.
template <bool Fold>
int32_t CompareStrings(const char* a, const char* b) {
  if (a == nullptr || b == nullptr || a[0] == 0) return 1;
  for (;; a++, b++) {
    uint8_t x = static_cast<uint8_t>(*a), y = static_cast<uint8_t>(*b);
    if (Fold) {
      x = Upper(x);
      y = Upper(y);
    }
    if (x != y) return Difference(x, y);
    if (x == 0) return 0;
  }
}

// Digits of value after out, least significant first into scratch, then
// reversed; returns out.
char* WriteDecimal(uint32_t value, char* out) {
  char scratch[10];
  int n = 0;
  do {
    scratch[n++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  char* p = out;
  while (n > 0) *p++ = scratch[--n];
  *p = 0;
  return out;
}

}  // namespace

int32_t MemoryCompare(const void* a, const void* b, uint32_t count) {
  const uint8_t* x = static_cast<const uint8_t*>(a);
  const uint8_t* y = static_cast<const uint8_t*>(b);
  for (uint32_t i = 0; i < count; i++)
    if (x[i] != y[i]) return Difference(x[i], y[i]);
  return 0;
}

// Tested folded on both sides, but the difference is taken against b's
// byte as it stands.
int32_t MemoryCompareNoCase(const void* a, const void* b, uint32_t count) {
  const uint8_t* x = static_cast<const uint8_t*>(a);
  const uint8_t* y = static_cast<const uint8_t*>(b);
  for (uint32_t i = 0; i < count; i++)
    if (Upper(x[i]) != Upper(y[i])) return Difference(Upper(x[i]), y[i]);
  return 0;
}

E3D_OWN_LOOPS char* StringCopy(char* dst, const char* src) {
  if (dst == nullptr || src == nullptr) return nullptr;
  while ((*dst = *src) != 0) {
    dst++;
    src++;
  }
  return dst;
}

// At most n bytes; a truncated copy is left without a terminator.
E3D_OWN_LOOPS char* StringCopyN(char* dst, const char* src, int32_t n) {
  if (dst == nullptr || src == nullptr) return dst;
  for (int32_t i = 0; i < n; i++)
    if ((dst[i] = src[i]) == 0) break;
  return dst;
}

E3D_OWN_LOOPS int32_t StringLength(const char* s) {
  if (s == nullptr) return 0;
  int32_t n = 0;
  while (s[n] != 0) n++;
  return n;
}

char* StringAppend(char* dst, const char* src) {
  if (dst != nullptr && src != nullptr) StringCopy(dst + StringLength(dst), src);
  return dst;
}

int32_t StringCompare(const char* a, const char* b) { return CompareStrings<false>(a, b); }

int32_t StringCompareNoCase(const char* a, const char* b) { return CompareStrings<true>(a, b); }

// The most negative value is negated in 32 bits and printed unsigned.
char* IntToString(int32_t value, char* buffer) {
  if (buffer == nullptr) return nullptr;
  if (value >= 0) return WriteDecimal(static_cast<uint32_t>(value), buffer);
  buffer[0] = '-';
  WriteDecimal(0u - static_cast<uint32_t>(value), buffer + 1);
  return buffer;
}

char* UIntToString(uint32_t value, char* buffer) {
  if (buffer == nullptr) return nullptr;
  return WriteDecimal(value, buffer);
}

char* WriteGeneratedName(char* name, const char* base, int32_t number) {
  char* end = StringCopy(name, base);
  if (number < 10) end = StringCopy(end, "0");
  IntToString(number, end);
  return end + StringLength(end);
}

}  // namespace e3d
