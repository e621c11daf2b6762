// The engine frame's process-wide state and the walks over the intrusive
// lists that scenes keep of their objects.
#pragma once
#include <stdint.h>

#include "engine/memory.h"
#include "engine3d.h"

namespace e3d {

// The only process-wide registry: the chain of all scenes, appended at the
// tail by CreateScene. InitEngine3D forgets it.
extern int32_t engineInitialised;
extern uint32_t processorType;  // low 16 bits of the host's processor code, kept by InitEngine3D
extern Scene* firstScene;
extern Scene* lastScene;

// List walks. Next is the member pointer of the forward link, e.g.
// ListAt<&Camera::nextCamera>(scene->firstCamera, 2).

// The member index steps from the head: null past the end and for a negative
// index, which counts down without reaching 0 before the list ends.
template <auto Next, class T>
T* ListAt(T* head, int32_t index) {
  T* item = head;
  for (uint32_t left = static_cast<uint32_t>(index); left != 0; left--) {
    if (item == nullptr) return nullptr;
    item = item->*Next;
  }
  return item;
}

template <auto Next, class T>
int32_t ListIndexOf(const T* head, const T* item) {
  int32_t index = 0;
  for (const T* p = head; p != nullptr; p = p->*Next, index++)
    if (p == item) return index;
  return -1;
}

template <auto Next, class T>
int32_t ListLength(const T* head) {
  int32_t n = 0;
  for (const T* p = head; p != nullptr; p = p->*Next) n++;
  return n;
}

// First member for which match(member) holds, or null.
template <auto Next, class T, class Match>
T* ListFind(T* head, Match match) {
  for (T* p = head; p != nullptr; p = p->*Next)
    if (match(p)) return p;
  return nullptr;
}

// Appends at the tail: the order of a list is the order of assignment.
template <auto Prev, auto Next, class T>
void ListAppend(T*& head, T* item) {
  T* tail = head;
  if (tail != nullptr)
    while (tail->*Next != nullptr) tail = tail->*Next;
  item->*Prev = tail;
  item->*Next = nullptr;
  if (tail != nullptr)
    tail->*Next = item;
  else
    head = item;
}

// Name test of the ByName searches: the member's own name first; an empty
// member name never matches, and neither does a missing one.
inline bool NameMatches(const char* memberName, const char* name) {
  return memberName != nullptr && name != nullptr && StringCompare(memberName, name) == 0;
}

}  // namespace e3d
