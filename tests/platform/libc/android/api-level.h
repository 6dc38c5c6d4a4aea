// Replaces the header of Android's C library; the compiler's options set the level.
#pragma once
