#include "renderer/random_source.h"

#include <cstdlib>

namespace halvenor {
namespace {

constexpr double kLargest = 2147483647.0;
constexpr float kUnitScale = 4.656612873077393e-10F; // 2^-31

// As the library starts when nobody seeds it: seed 1, and this much state.
constexpr unsigned kSeed = 1;
constexpr std::size_t kStateSize = 128;

struct Generator {
  Generator() { initstate_r(kSeed, state, sizeof state, &data); }
  char state[kStateSize];
  random_data data{};
};

} // namespace

std::int32_t RandomSource::Next() {
  static Generator generator;
  std::int32_t number = 0;
  random_r(&generator.data, &number);
  return number;
}

float RandomSource::Unit() {
  return static_cast<float>(Next()) * kUnitScale;
}

bool RandomSource::Chance(double probability) {
  return Next() < probability * kLargest;
}

} // namespace halvenor
