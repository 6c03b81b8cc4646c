// Marks the symbols the shared library shows to a host; everything else is hidden.
#pragma once

#define CT600_EXPORT __attribute__((visibility("default")))
