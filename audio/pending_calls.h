// What a listener is to be told: gathered first, told last.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <utility>

namespace halvenor {

/// The calls of a listener that come up while the owner looks around, made when it has finished. So
/// the listener may do anything to the owner from within, destroy it too, and the owner needs no
/// check after each call. Destroying or clearing this drops what is still to be told.
///
/// `Deliver` is the last thing that an owner does: afterwards the owner may be gone. One thread.
template <typename Listener, typename Topic = int>
class PendingCalls {
public:
  using Call = std::function<void(Listener&)>;

  /// `listener` must outlive this.
  explicit PendingCalls(Listener& listener) : listener_(listener) {}
  ~PendingCalls() { Clear(); }
  PendingCalls(const PendingCalls&) = delete;
  PendingCalls& operator=(const PendingCalls&) = delete;

  void Add(Call call, Topic topic = {}) { queue_->push_back({topic, std::move(call)}); }
  /// Drops what was gathered about that.
  void Forget(Topic topic) {
    std::erase_if(*queue_, [topic](const Entry& entry) { return entry.topic == topic; });
  }
  void Clear() { queue_->clear(); }

  /// Makes the calls in their order, those that are added meanwhile too.
  void Deliver() {
    const std::shared_ptr<std::deque<Entry>> queue = queue_;
    Listener& listener = listener_;
    while (!queue->empty()) {
      const Call call = std::move(queue->front().call);
      queue->pop_front();
      call(listener);
    }
  }

private:
  struct Entry {
    Topic topic;
    Call call;
  };

  Listener& listener_;
  std::shared_ptr<std::deque<Entry>> queue_ = std::make_shared<std::deque<Entry>>();
};

} // namespace halvenor
