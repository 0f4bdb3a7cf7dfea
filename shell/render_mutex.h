// The one lock of the plug-in, and the scopes that are its rules.
#pragma once

#include "platform/thread_annotations.h"

#include <atomic>
#include <pthread.h>
#include <thread>

namespace halvenor {

/// Held by the render thread for each frame and by the host's thread while it handles a message.
/// Plain and not recursive; it knows its holder, so that a message from inside a host call can see
/// that its own thread holds it. Whoever releases it lets go of the GL context first.
class HALVENOR_CAPABILITY("mutex") RenderMutex {
public:
  /// Initializes it with default attributes, once, before any other thread knows of it. False on
  /// failure; it can be used all the same.
  bool Create();

  void Lock() HALVENOR_ACQUIRE();
  void Unlock() HALVENOR_RELEASE();

  /// As `Lock`, but lets a waiting host go first: a thread that draws back to back would otherwise
  /// keep it out.
  void LockForFrame() HALVENOR_ACQUIRE();

  [[nodiscard]] bool HeldByThisThread() const {
    return holder_.load(std::memory_order_relaxed) == std::this_thread::get_id();
  }

private:
  pthread_mutex_t native_ = PTHREAD_MUTEX_INITIALIZER;
  std::atomic<std::thread::id> holder_{};
  std::atomic<int> waitingHosts_ = 0;
};

extern RenderMutex mutex;

/// One message: takes the lock unless this thread holds it already (a message sent from inside a
/// host call); then the outer scope keeps it.
class HALVENOR_SCOPED_CAPABILITY MessageScope {
public:
  MessageScope() HALVENOR_ACQUIRE(mutex);
  ~MessageScope() HALVENOR_RELEASE();
  MessageScope(const MessageScope&) = delete;
  MessageScope& operator=(const MessageScope&) = delete;

private:
  bool taken_;
};

/// One frame.
class HALVENOR_SCOPED_CAPABILITY FrameScope {
public:
  FrameScope() HALVENOR_ACQUIRE(mutex) { mutex.LockForFrame(); }
  ~FrameScope() HALVENOR_RELEASE() { mutex.Unlock(); }
  FrameScope(const FrameScope&) = delete;
  FrameScope& operator=(const FrameScope&) = delete;
};

/// The reverse: releases the lock, however deeply messages are nested, and takes it again at its
/// end.
class HALVENOR_SCOPED_CAPABILITY UnlockedScope {
public:
  UnlockedScope() HALVENOR_RELEASE(mutex) { mutex.Unlock(); }
  ~UnlockedScope() HALVENOR_RELEASE() { mutex.Lock(); }
  UnlockedScope(const UnlockedScope&) = delete;
  UnlockedScope& operator=(const UnlockedScope&) = delete;
};

} // namespace halvenor
