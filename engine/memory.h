// Memory and string primitives. The library links no run-time support of its
// own choosing: fills, copies and names go through these, and every block comes
// from the host support library.
#pragma once
#include <stdint.h>

#include "engine3d.h"

// Keeps the compiler from turning a byte loop back into a call of the C
// library's memset, memcpy or strlen.
#if defined(__clang__)
#define E3D_OWN_LOOPS __attribute__((no_builtin))
#else
#define E3D_OWN_LOOPS __attribute__((optimize("no-tree-loop-distribute-patterns")))
#endif

namespace e3d {

void* MemoryFill(void* dst, uint8_t value, int32_t count);
void* MemoryFill16(void* dst, uint16_t value, uint32_t byteCount);
void* MemoryFill32(void* dst, uint32_t value, uint32_t byteCount);
void* MemoryCopy(void* dst, const void* src, uint32_t count);
int32_t MemoryCompare(const void* a, const void* b, uint32_t count);
int32_t MemoryCompareNoCase(const void* a, const void* b, uint32_t count);

char* StringCopy(char* dst, const char* src);  // returns the terminator written, or null
char* StringCopyN(char* dst, const char* src, int32_t n);
int32_t StringLength(const char* s);
char* StringAppend(char* dst, const char* src);
int32_t StringCompare(const char* a, const char* b);  // an empty a never equals
int32_t StringCompareNoCase(const char* a, const char* b);
char* IntToString(int32_t value, char* buffer);
char* UIntToString(uint32_t value, char* buffer);
void Swap32(uint32_t* a, uint32_t* b);

// A default object name: base, then "0" when number is below 10, then number
// (Camera00 ... Camera09, Camera10). Returns the terminator written.
char* WriteGeneratedName(char* name, const char* base, int32_t number);

// Typed allocation through the host: count elements of T, contents undefined.
template <class T>
inline T* Allocate(uint32_t count = 1) {
  return static_cast<T*>(AllocateMemory(static_cast<uint32_t>(sizeof(T)) * count));
}

// Frees a block (if any) and clears the pointer that held it.
template <class T>
inline void Release(T*& block) {
  if (block) FreeMemory(block);
  block = nullptr;
}

}  // namespace e3d
