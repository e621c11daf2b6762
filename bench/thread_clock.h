// Processor time of the calling thread: other processes sharing the machine
// do not count, so ratios measured side by side stay meaningful under load.
#pragma once
#include <time.h>

inline double ThreadSeconds() {
  timespec t;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}
