// The OpenGL functions that the plug-in uses, and the platform layer's choice of what is drawn
// into, to be defined with HALVENOR_BENCH_FUNCTIONS(HALVENOR_GL_DEFINE).
#pragma once

#include "tests/stand_ins/gl_definitions.h"

#define HALVENOR_BENCH_FUNCTIONS(X) HALVENOR_GL_FUNCTIONS(X) X(2, glBindFramebuffer, "en")
