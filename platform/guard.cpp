#include "platform/guard.h"

#include <atomic>

namespace halvenor {
namespace {

std::atomic<const GuardBacking*> current_backing{nullptr};

} // namespace

void SetGuardBacking(const GuardBacking* backing) {
  current_backing.store(backing);
}

RecordGuard::RecordGuard() : backing_(current_backing.load()) {
  if (backing_ == nullptr) return;
  entered_ = backing_->enter();
  record_ = backing_->record();
}

RecordGuard::~RecordGuard() {
  if (entered_) backing_->leave();
}

} // namespace halvenor
