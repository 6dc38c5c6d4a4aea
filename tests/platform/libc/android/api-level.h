// Replaces the header of Android's C library. The compiler's options define the API level.
#pragma once
