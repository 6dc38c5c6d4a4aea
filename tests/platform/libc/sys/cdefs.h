// This machine's <sys/cdefs.h> plus an Android macro that the platform's headers use.
#pragma once
#include_next <sys/cdefs.h>
#define __INTRODUCED_IN(level)
