#include <cutils/native_handle.h>

#include "agreement.h"
#include "ours/cutils/native_handle.h"

RECORD(native_handle_t);
FIELD(native_handle_t, version);
FIELD(native_handle_t, numFds);
FIELD(native_handle_t, numInts);
FIELD(native_handle_t, data);
FUNCTION(native_handle_create);
FUNCTION(native_handle_delete);
FUNCTION(native_handle_close);
