// Marks what libhalvenor-platform.so offers; everything else in it stays hidden.
#pragma once

#define HALVENOR_PLATFORM __attribute__((visibility("default")))
