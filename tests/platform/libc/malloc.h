// Replaces this machine's <malloc.h>. Like Android's, it has no mallinfo2() and no M_PERTURB.
#pragma once
#include <stddef.h>
struct mallinfo {
  size_t arena, ordblks, smblks, hblks, hblkhd, usmblks, fsmblks, uordblks, fordblks, keepcost;
};
extern "C" struct mallinfo mallinfo(void);
extern "C" int mallopt(int option, int value);
