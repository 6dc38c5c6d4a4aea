// Extends this machine's <sys/cdefs.h> by Android's macros that the platform's headers use.
#pragma once
#include_next <sys/cdefs.h>
#define __INTRODUCED_IN(level)
