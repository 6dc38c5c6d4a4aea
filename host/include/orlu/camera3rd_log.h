// Host stand-in for the maker's logging support (liborlu.camera3rd.log.so).
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Most debug lines are written only while this is below 4. The system property
// "persist.sys.camera3rd.loglevel" sets its initial value; the default is 3.
extern int gVAFCtrlLogLevel;

// Returns a pointer into `path`, after its last '/' if it has one; "" for null.
const char* get_filename(const char* path);

#ifdef __cplusplus
}
#endif
