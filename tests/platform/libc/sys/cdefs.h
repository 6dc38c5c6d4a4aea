// Adds to this machine's <sys/cdefs.h> what Android's has and the platform's headers use.
#pragma once
#include_next <sys/cdefs.h>
#define __INTRODUCED_IN(level)
