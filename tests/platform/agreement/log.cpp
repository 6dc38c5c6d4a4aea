// Compares our log priorities, and our log function that jni/ uses, with the platform's. Does not compare the
// functions that replace the logger: only tests call them, and Debian's header predates their current types.
#include <android/log.h>

#include "agreement.h"
#include "ours/android/log.h"

FUNCTION(__android_log_print);
CONSTANT(ANDROID_LOG_UNKNOWN);
CONSTANT(ANDROID_LOG_DEFAULT);
CONSTANT(ANDROID_LOG_VERBOSE);
CONSTANT(ANDROID_LOG_DEBUG);
CONSTANT(ANDROID_LOG_INFO);
CONSTANT(ANDROID_LOG_WARN);
CONSTANT(ANDROID_LOG_ERROR);
CONSTANT(ANDROID_LOG_FATAL);
CONSTANT(ANDROID_LOG_SILENT);
