// Any bytes as program texts. What is accepted is run, and drawn as taps where it has that form.
#include "raster/programs/execution.h"
#include "raster/programs/program_text.h"
#include "raster/programs/taps.h"

#include <cstdlib>
#include <string_view>

using namespace halvenor::raster;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

class White : public Sampler {
public:
  void Sample(std::span<const Vec4> at, std::span<Vec4> colors) const override {
    Require(at.size() == colors.size());
    for (Vec4& color : colors)
      color.fill(1.0F);
  }
};

void Execute(const Program& program) {
  if (program.target == ProgramTarget::Vertex) {
    RunVertexProgram(program, {}, {});
    return;
  }
  std::array<Vec4, kRowBatch + 1> colors;
  RunFragmentRow(program, {}, {}, White(), colors);
  for (const Vec4& color : colors) {
    for (const float channel : color)
      Require(channel >= 0.0F && channel <= 1.0F);
  }
  const auto taps = FindTaps(nullptr, program, {});
  Require(!taps || (program.isTapsForm && taps->count <= kMaxTaps));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const ProgramTarget target : {ProgramTarget::Vertex, ProgramTarget::Fragment}) {
    const auto parsed = ParseProgram(target, text);
    if (const auto* error = std::get_if<ProgramError>(&parsed)) {
      Require(error->position >= 0 && static_cast<std::size_t>(error->position) <= size);
      Require(!error->message.empty());
    } else {
      Execute(std::get<Program>(parsed));
    }
  }
  return 0;
}
