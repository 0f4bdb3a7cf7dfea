#include "shell/render_mutex.h"

#include "platform/agl.h"

#include <sched.h>

namespace halvenor {

RenderMutex mutex;

bool RenderMutex::Create() {
  pthread_mutex_destroy(&native_);
  if (pthread_mutex_init(&native_, nullptr) == 0) return true;
  native_ = PTHREAD_MUTEX_INITIALIZER;
  return false;
}

// The analysis does not see that the native mutex is this capability.
void RenderMutex::Lock() HALVENOR_NO_ANALYSIS {
  ++waitingHosts_;
  pthread_mutex_lock(&native_);
  --waitingHosts_;
  holder_ = std::this_thread::get_id();
}

void RenderMutex::LockForFrame() HALVENOR_NO_ANALYSIS {
  while (waitingHosts_ > 0)
    sched_yield();
  pthread_mutex_lock(&native_);
  holder_ = std::this_thread::get_id();
}

void RenderMutex::Unlock() HALVENOR_NO_ANALYSIS {
  // A context is current on one thread at a time: the next holder may be another one.
  aglSetCurrentContext(nullptr);
  holder_ = std::thread::id{};
  pthread_mutex_unlock(&native_);
}

MessageScope::MessageScope() HALVENOR_NO_ANALYSIS : taken_(!mutex.HeldByThisThread()) {
  if (taken_) mutex.Lock();
}

MessageScope::~MessageScope() HALVENOR_NO_ANALYSIS {
  if (taken_) {
    mutex.Unlock();
  } else {
    aglSetCurrentContext(nullptr); // the host goes on from here with whatever was current before
  }
}

} // namespace halvenor
