// The shared library is the core archive linked whole; its only symbols of
// its own are none. This unit keeps the target non-empty.
#include "entry/exports.h"
