// Adds the Android macros that the platform's headers use to this machine's <sys/cdefs.h>.
#pragma once
#include_next <sys/cdefs.h>
#define __INTRODUCED_IN(level)
