// The one deleter for what C libraries hand out.
#pragma once

namespace halvenor {

/// For `std::unique_ptr<GstCaps, ReleasedBy<gst_caps_unref>>`: releases by calling `Release`, whose
/// result is dropped.
template <auto Release>
struct ReleasedBy {
  template <typename T>
  void operator()(T* object) const {
    Release(object);
  }
};

} // namespace halvenor
