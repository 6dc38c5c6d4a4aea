// In place of Android's C library; the level is given to the compiler.
#pragma once
