// Does not compare the maximum lengths of property names and values. The C library sets these lengths, and
// this machine's C library is not the platform's.
#include <cutils/properties.h>

#undef PROPERTY_KEY_MAX
#undef PROPERTY_VALUE_MAX
#include "agreement.h"
#include "ours/cutils/properties.h"

FUNCTION(property_get);
FUNCTION(property_set);
