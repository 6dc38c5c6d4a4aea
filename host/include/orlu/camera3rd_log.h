// Host stand-in for the maker's logging support (liborlu.camera3rd.log.so).
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Debug lines are written only below 4. Initially the property "persist.sys.camera3rd.loglevel", else 3.
extern int gVAFCtrlLogLevel;

// Returns the part of `path` after its last '/', in the same memory; "" for null.
const char* get_filename(const char* path);

#ifdef __cplusplus
}
#endif
