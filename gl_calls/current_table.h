// Which table the calls of the plug-in's GL code go to: each thread has its own, as each thread has
// its own current context.
#pragma once

#include "gl_calls/gl_table.h"
#include "platform/export.h"

namespace halvenor::gl_calls {

/// The table of the calling thread; never null. It is read once a call: the initial-exec model
/// makes that one load without a function call, also from the module.
extern HALVENOR_PLATFORM
    __attribute__((tls_model("initial-exec"))) constinit thread_local const Table* current;

/// What calls go to on threads where nothing is current. At the start it does nothing and its
/// results are 0, false and null. Tests may assign another before other threads exist.
HALVENOR_PLATFORM extern Table without_context;

/// Sends the calling thread's calls to `table`, which must outlive them, or to `without_context`
/// when it is null. For those who make contexts current.
HALVENOR_PLATFORM void Use(const Table* table);

/// From now on `Use` sends calls to what `intercept` gives for the table it was told (never null);
/// null ends that. It runs on the thread of the calls. Only while no context is current anywhere.
using Interceptor = const Table* (*)(const Table* table);
HALVENOR_PLATFORM void SetInterceptor(Interceptor intercept);

} // namespace halvenor::gl_calls
