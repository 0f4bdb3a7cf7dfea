#include "platform/x11/x11_shm_window.h"

#include "platform/agl_errors.h"
#include "platform/frame_reader.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>

#include <array>
#include <bit>
#include <cstddef>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <utility>

namespace halvenor::agl {
namespace {

/// An image in memory that this process and the X server share.
class SharedImage {
public:
  /// Null when the server cannot share the memory or wants pixels otherwise.
  static std::unique_ptr<SharedImage> Make(X11Connection& connection,
                                           const XWindowAttributes& window, Size size) {
    auto image = std::unique_ptr<SharedImage>(new SharedImage(connection, size));
    return image->Create(window) ? std::move(image) : nullptr;
  }

  ~SharedImage() {
    if (isAttached_) XShmDetach(connection_.Get(), &segment_);
    if (image_ != nullptr) {
      image_->data = nullptr;
      XDestroyImage(image_);
    }
    if (segment_.shmaddr != nullptr) shmdt(segment_.shmaddr);
  }
  SharedImage(const SharedImage&) = delete;
  SharedImage& operator=(const SharedImage&) = delete;

  [[nodiscard]] Size GetSize() const { return size_; }

  /// Whether the server has read all of the picture that was put last.
  [[nodiscard]] bool IsIdle() const { return LastKnownRequestProcessed(connection_.Get()) >= put_; }

  void Put(const Picture& picture, Window window, GC gc) {
    reader_.Read(picture, {reinterpret_cast<std::uint8_t*>(segment_.shmaddr),
                           image_->bytes_per_line, Pixels::Order::Xrgb});
    put_ = NextRequest(connection_.Get());
    XShmPutImage(connection_.Get(), window, gc, image_, 0, 0, 0, 0,
                 static_cast<unsigned>(size_.width), static_cast<unsigned>(size_.height), True);
    XFlush(connection_.Get());
  }

private:
  SharedImage(X11Connection& connection, Size size) : connection_(connection), size_(size) {}

  bool Create(const XWindowAttributes& window) {
    image_ = XShmCreateImage(connection_.Get(), window.visual, static_cast<unsigned>(window.depth),
                             ZPixmap, nullptr, &segment_, static_cast<unsigned>(size_.width),
                             static_cast<unsigned>(size_.height));
    if (image_ == nullptr || !HasOurLayout()) return false;
    const auto bytes =
        static_cast<std::size_t>(image_->bytes_per_line) * static_cast<std::size_t>(image_->height);
    segment_.shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (segment_.shmid < 0) return false;
    void* address = shmat(segment_.shmid, nullptr, 0);
    if (address != reinterpret_cast<void*>(-1)) { // NOLINT: how the call says failure
      segment_.shmaddr = static_cast<char*>(address);
      image_->data = segment_.shmaddr;
      connection_.Settle();
      isAttached_ = XShmAttach(connection_.Get(), &segment_) && connection_.Settle();
    }
    // The segment lives on until both sides have let go of it, and no longer.
    shmctl(segment_.shmid, IPC_RMID, nullptr);
    return isAttached_;
  }

  [[nodiscard]] bool HasOurLayout() const {
    constexpr int kOurOrder = std::endian::native == std::endian::little ? LSBFirst : MSBFirst;
    return image_->bits_per_pixel == 32 && image_->bytes_per_line == size_.width * 4 &&
           image_->byte_order == kOurOrder && image_->red_mask == 0xFF0000 &&
           image_->green_mask == 0xFF00 && image_->blue_mask == 0xFF;
  }

  X11Connection& connection_;
  Size size_;
  FrameReader reader_;
  XShmSegmentInfo segment_{};
  XImage* image_ = nullptr;
  bool isAttached_ = false;
  unsigned long put_ = 0;
};

/// Two images, so that the next picture can be read while the server still copies the last one.
class ShmWindow final : public Presenter {
public:
  ShmWindow(X11Connection& connection, Window window, const XWindowAttributes& attributes)
      : connection_(connection), window_(window), attributes_(attributes),
        gc_(XCreateGC(connection.Get(), window, 0, nullptr)) {}
  ~ShmWindow() override { XFreeGC(connection_.Get(), gc_); }

  void Present(const Picture& picture) override {
    if (picture.port.IsEmpty()) return;
    std::swap(images_[0], images_[1]);
    auto& image = images_[0];
    if (!image || image->GetSize() != picture.port) {
      image.reset();
      image = SharedImage::Make(connection_, attributes_, picture.port);
      if (!image && !std::exchange(loggedFailure_, true))
        Log("cannot share the memory of a picture with the X server");
    }
    if (!image) return;
    TakeEvents();
    if (!image->IsIdle()) {
      connection_.Settle();
      TakeEvents();
    }
    image->Put(picture, window_, gc_);
  }

private:
  /// Each finished copy sends one; reading them tells Xlib how far the server has come.
  void TakeEvents() {
    XEvent event;
    while (XEventsQueued(connection_.Get(), QueuedAfterReading) > 0)
      XNextEvent(connection_.Get(), &event);
  }

  X11Connection& connection_;
  Window window_;
  XWindowAttributes attributes_;
  GC gc_;
  std::array<std::unique_ptr<SharedImage>, 2> images_;
  bool loggedFailure_ = false;
};

} // namespace

bool CanShareMemory(X11Connection& connection) {
  XWindowAttributes attributes{};
  return XShmQueryExtension(connection.Get()) &&
         XGetWindowAttributes(connection.Get(), DefaultRootWindow(connection.Get()), &attributes) &&
         SharedImage::Make(connection, attributes, {1, 1}) != nullptr;
}

std::unique_ptr<Presenter> MakeX11ShmWindow(X11Connection& connection, unsigned long window) {
  XWindowAttributes attributes{};
  if (!XShmQueryExtension(connection.Get()) ||
      !XGetWindowAttributes(connection.Get(), window, &attributes) ||
      !SharedImage::Make(connection, attributes, {1, 1}))
    return nullptr;
  return std::make_unique<ShmWindow>(connection, window, attributes);
}

} // namespace halvenor::agl
