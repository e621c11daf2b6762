/* The public header must stand on its own in a strict C99 unit. */
#include "engine3d.h"
int main(void) { return 0; }
