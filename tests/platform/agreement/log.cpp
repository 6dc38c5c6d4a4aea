// Compares the log function that jni/ uses and the priorities. The functions that replace the logger are not
// compared: only tests call them, and Debian's header predates their current types.
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
