#include "platform/wayland/wayland_shm_surface.h"

#include "platform/agl_errors.h"
#include "platform/frame_reader.h"

#include <wayland-client.h>

#include <cstddef>
#include <cstring>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace halvenor::agl {
namespace {

constexpr std::size_t kMostBuffers = 4;

template <typename T, void (*Destroy)(T*)>
struct Deleter {
  void operator()(T* object) const { Destroy(object); }
};
template <typename T, void (*Destroy)(T*)>
using Owned = std::unique_ptr<T, Deleter<T, Destroy>>;

void DestroyWrapper(wl_display* wrapper) {
  wl_proxy_wrapper_destroy(wrapper);
}

using Queue = Owned<wl_event_queue, wl_event_queue_destroy>;
using DisplayWrapper = Owned<wl_display, DestroyWrapper>;
using Registry = Owned<wl_registry, wl_registry_destroy>;
using Shm = Owned<wl_shm, wl_shm_destroy>;

/// A picture in memory that this process and the compositor share.
class SharedBuffer {
public:
  static std::unique_ptr<SharedBuffer> Make(wl_shm* shm, Size size) {
    auto buffer = std::unique_ptr<SharedBuffer>(new SharedBuffer(size));
    return buffer->Create(shm) ? std::move(buffer) : nullptr;
  }

  ~SharedBuffer() {
    if (buffer_ != nullptr) wl_buffer_destroy(buffer_);
    if (memory_ != MAP_FAILED) munmap(memory_, bytes_);
  }
  SharedBuffer(const SharedBuffer&) = delete;
  SharedBuffer& operator=(const SharedBuffer&) = delete;

  [[nodiscard]] Size GetSize() const { return size_; }
  [[nodiscard]] bool IsHeld() const { return isHeld_; }

  void Put(const Picture& picture, wl_surface* surface) {
    reader_.Read(picture, {static_cast<std::uint8_t*>(memory_), std::ptrdiff_t{size_.width} * 4,
                           Pixels::Order::Xrgb});
    isHeld_ = true;
    SetSurfaceScale(surface, picture.surfaceScale);
    wl_surface_attach(surface, buffer_, 0, 0);
    wl_surface_damage(surface, 0, 0, INT32_MAX, INT32_MAX);
    wl_surface_commit(surface);
  }

private:
  explicit SharedBuffer(Size size)
      : size_(size),
        bytes_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4) {}

  bool Create(wl_shm* shm) {
    // A pool's size is a signed 32-bit number.
    if (bytes_ > INT32_MAX) return false;
    const int file = memfd_create("halvenor-picture", MFD_CLOEXEC);
    if (file < 0) return false;
    if (ftruncate(file, static_cast<off_t>(bytes_)) == 0)
      memory_ = mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory_ != MAP_FAILED) {
      wl_shm_pool* pool = wl_shm_create_pool(shm, file, static_cast<std::int32_t>(bytes_));
      buffer_ = wl_shm_pool_create_buffer(pool, 0, size_.width, size_.height, size_.width * 4,
                                          WL_SHM_FORMAT_XRGB8888);
      wl_shm_pool_destroy(pool);
      static constexpr wl_buffer_listener kListener = {
          [](void* self, wl_buffer*) { static_cast<SharedBuffer*>(self)->isHeld_ = false; }};
      wl_buffer_add_listener(buffer_, &kListener, this);
    }
    close(file);
    return buffer_ != nullptr;
  }

  Size size_;
  std::size_t bytes_;
  FrameReader reader_;
  void* memory_ = MAP_FAILED;
  wl_buffer* buffer_ = nullptr;
  bool isHeld_ = false; ///< the compositor may still read it
};

class ShmSurface final : public Presenter {
public:
  ShmSurface(wl_display* display, wl_surface* surface) : display_(display), surface_(surface) {}

  /// Finds the compositor's shared memory. Its events, like those of the buffers, come to a queue
  /// of this object's own, which the host's event loop leaves alone.
  bool Open() {
    queue_.reset(wl_display_create_queue(display_));
    wrapper_.reset(static_cast<wl_display*>(wl_proxy_create_wrapper(display_)));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper_.get()), queue_.get());
    registry_.reset(wl_display_get_registry(wrapper_.get()));
    static constexpr wl_registry_listener kListener = {
        [](void* self, wl_registry* registry, std::uint32_t name, const char* interface,
           std::uint32_t /*version*/) {
          if (std::strcmp(interface, wl_shm_interface.name) == 0)
            static_cast<ShmSurface*>(self)->shm_.reset(
                static_cast<wl_shm*>(wl_registry_bind(registry, name, &wl_shm_interface, 1)));
        },
        [](void* /*self*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}};
    wl_registry_add_listener(registry_.get(), &kListener, this);
    return wl_display_roundtrip_queue(display_, queue_.get()) >= 0 && shm_ != nullptr;
  }

  void Present(const Picture& picture) override {
    if (picture.port.IsEmpty()) return;
    SharedBuffer* buffer = FreeBuffer(picture.port);
    if (buffer == nullptr) return;
    buffer->Put(picture, surface_);
    wl_display_flush(display_);
  }

private:
  /// Null when the compositor holds them all.
  SharedBuffer* FreeBuffer(Size size) {
    wl_display_dispatch_queue_pending(display_, queue_.get());
    if (SharedBuffer* buffer = TryBuffers(size)) return buffer;
    ReadEvents();
    return TryBuffers(size);
  }

  SharedBuffer* TryBuffers(Size size) {
    std::erase_if(buffers_, [&](const auto& buffer) {
      return !buffer->IsHeld() && buffer->GetSize() != size;
    });
    for (const auto& buffer : buffers_)
      if (!buffer->IsHeld()) return buffer.get();
    if (buffers_.size() == kMostBuffers) return nullptr;
    auto made = SharedBuffer::Make(shm_.get(), size);
    if (!made) {
      if (!std::exchange(loggedFailure_, true))
        Log("cannot share the memory of a picture with the compositor");
      return nullptr;
    }
    return buffers_.emplace_back(std::move(made)).get();
  }

  /// Takes what the compositor has sent already, for a host whose own loop has not yet read it.
  void ReadEvents() {
    if (wl_display_prepare_read_queue(display_, queue_.get()) != 0) {
      wl_display_dispatch_queue_pending(display_, queue_.get());
      return;
    }
    pollfd waiting{wl_display_get_fd(display_), POLLIN, 0};
    if (poll(&waiting, 1, 0) > 0)
      wl_display_read_events(display_);
    else
      wl_display_cancel_read(display_);
    wl_display_dispatch_queue_pending(display_, queue_.get());
  }

  wl_display* display_;
  wl_surface* surface_;
  // Destroyed from the last to the first: the queue may go only when nothing is on it.
  Queue queue_;
  DisplayWrapper wrapper_;
  Registry registry_;
  Shm shm_;
  std::vector<std::unique_ptr<SharedBuffer>> buffers_;
  bool loggedFailure_ = false;
};

} // namespace

void SetSurfaceScale(wl_surface* surface, int scale) {
  const auto version = wl_proxy_get_version(reinterpret_cast<wl_proxy*>(surface));
  if (scale > 0 && version >= WL_SURFACE_SET_BUFFER_SCALE_SINCE_VERSION)
    wl_surface_set_buffer_scale(surface, scale);
}

std::unique_ptr<Presenter> MakeWaylandShmSurface(wl_display* display, wl_surface* surface) {
  auto presenter = std::make_unique<ShmSurface>(display, surface);
  if (presenter->Open()) return presenter;
  return nullptr;
}

} // namespace halvenor::agl
