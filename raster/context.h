// The plug-in's OpenGL calls, drawn on the CPU.
//
// Calls only record into the bound target. What was recorded is drawn when a picture is finished
// or flushed, on several threads in bands of rows. The bytes that come out are the same whatever
// the number of threads, the height of the bands and the width of the machine's vectors.
#pragma once

#include "gl_calls/gl_table.h"

#include <GL/gl.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace halvenor::raster {

struct Surface;
struct State;

/// A picture that is drawn to. Move-only; one that is made begins transparent black. It belongs to
/// the context that it is used with, and may outlive or be outlived by it.
class Target {
public:
  Target();
  ~Target();
  Target(Target&& other) noexcept;
  Target& operator=(Target&& other) noexcept;

  /// Empty when a side is below 1 or above `kMaxSize` (pixels.h), or memory is missing.
  static Target Make(int width, int height);

  explicit operator bool() const { return surface_ != nullptr; }
  [[nodiscard]] int Width() const;  ///< 0 when empty
  [[nodiscard]] int Height() const; ///< 0 when empty

private:
  friend class Context;
  std::shared_ptr<Surface> surface_;
};

/// Where a finished picture goes.
struct Destination {
  enum class Order : std::uint8_t { Rgba, Bgra };

  /// The part of the target that is wanted, in pixels from its bottom left corner. What of it lies
  /// outside the target is not written.
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  std::uint8_t* topRow = nullptr; ///< the part's top left pixel; the caller's memory
  std::ptrdiff_t stride = 0;      ///< bytes from one row to the row below it; may be negative
  Order order = Order::Rgba;      ///< of the bytes in memory
  bool opaque = false;            ///< alpha is 255; else what the drawing left

  /// Called with rows `first` to `end` - 1 of the part, counted from its top, when they are
  /// complete. From any of the threads that draw, in any order. May be null.
  void (*rowsFinished)(void* refCon, int first, int end) = nullptr;
  void* refCon = nullptr;
};

/// A character of a bitmap font, as glBitmap has it: rows from the bottom up, each of whole bytes,
/// the leftmost pixel in the highest bit. Width or height 0: only the raster position moves.
struct Bitmap {
  int width = 0;
  int height = 0;
  float xOrigin = 0.0F; ///< pixels from the left column to the raster position
  float yOrigin = 0.0F; ///< pixels from the bottom row up to the raster position
  float xMove = 0.0F;
  float yMove = 0.0F;
  const std::uint8_t* rows = nullptr; ///< copied
};

/// One context's state and its threads. Used by one thread at a time, on which it is current for
/// the functions of the table.
class Context {
public:
  Context();
  /// Ends the threads. The context must be current nowhere else.
  ~Context();
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;

  /// The calling thread's context, null for none.
  static Context* Current();
  static void MakeCurrent(Context* context);

  /// The functions that act on the calling thread's context; without one they do nothing.
  static const gl_calls::Table& Functions();

  /// Draw on up to this many threads, the caller's among them. 0: as many as there are cores.
  /// Threads that cannot be made are done without.
  void SetThreads(int threads);

  /// Directs drawing to `target`; to an empty one or none: nowhere. A target that goes away while
  /// it is bound is drawn to by nobody.
  void Bind(const Target& target);
  void BindNothing();

  /// Makes the picture of `target` what the texture bound to GL_TEXTURE_2D shows, whatever is drawn
  /// later included, as long as either lives. Its trails die out: they lose light by each textured
  /// quad that is added. False, and nothing changed, for an empty target or without a bound
  /// texture.
  bool ShowInBoundTexture(const Target& target);

  /// Draws what was recorded and writes the picture to memory. Afterwards the picture is
  /// undefined, as after a swap, unless a texture shows it. False when memory is missing; then
  /// nothing is written.
  bool Finish(const Target& target, const Destination& destination);

  /// Forgets what was recorded for a picture that nobody will see; afterwards it is undefined. A
  /// target that a texture shows is drawn instead, when it is needed.
  void Drop(const Target& target);

  /// Makes display list `list`, which glGenLists has given, draw a character.
  void DefineBitmapList(GLuint list, const Bitmap& bitmap);

  /// For the table's functions and for tests.
  [[nodiscard]] State& GetState() const { return *state_; }

private:
  std::unique_ptr<State> state_;
};

} // namespace halvenor::raster
