#include "raster/programs/execution.h"

#include "raster/programs/operations.h"

#include <algorithm>
#include <utility>

namespace halvenor::raster {
namespace {

constexpr Vec4 kOrigin{0.0F, 0.0F, 0.0F, 1.0F};

using Batch = std::array<Vec4, kRowBatch>;
using BatchFunction = void (*)(std::size_t count, const std::array<Batch, 3>& operands,
                               Batch& results);

template <Opcode opcode>
void ComputeBatch(std::size_t count, const std::array<Batch, 3>& operands, Batch& results) {
  for (std::size_t i = 0; i < count; ++i)
    results[i] = Compute<opcode>(operands[0][i], operands[1][i], operands[2][i]);
}

template <std::size_t... opcodes>
constexpr std::array<BatchFunction, sizeof...(opcodes)>
BatchFunctions(std::index_sequence<opcodes...> /*all*/) {
  return {ComputeBatch<static_cast<Opcode>(opcodes)>...};
}

constexpr auto kBatchFunctions = BatchFunctions(std::make_index_sequence<kNumOpcodes>());

// Executes a program for up to kRowBatch vertices or fragments, instruction by instruction.
class Machine {
public:
  // Attributes that the program reads are the caller's to fill.
  Machine(const Program& program, const ProgramParameters& parameters, std::size_t count)
      : program_(program), parameters_(parameters), count_(count) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(program.numTemporaries); ++i)
      std::fill_n(temporaries_[i].begin(), count, Vec4{});
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      if ((program.outputsWritten >> i & 1U) != 0)
        std::fill_n(outputs[i].begin(), count,
                    program.target == ProgramTarget::Vertex ? kOrigin : Vec4{});
    }
  }

  void Run(const Sampler* sampler) {
    for (const Instruction& instruction : program_.instructions) {
      for (int i = 0; i < CountOperands(instruction.opcode); ++i) {
        const auto index = static_cast<std::size_t>(i);
        Fetch(instruction.operands[index], operands_[index]);
      }
      if (instruction.opcode == Opcode::Tex) {
        if (sampler != nullptr)
          sampler->Sample(std::span(operands_[0]).first(count_), std::span(results_).first(count_));
      } else {
        kBatchFunctions[static_cast<std::size_t>(instruction.opcode)](count_, operands_, results_);
      }
      Batch& target = instruction.target.file == RegisterFile::Output
                          ? outputs[instruction.target.index]
                          : temporaries_[instruction.target.index];
      for (std::size_t i = 0; i < count_; ++i)
        Store(instruction, results_[i], target[i]);
    }
  }

  std::array<Batch, kNumAttributes> attributes;
  std::array<Batch, kNumAttributes> outputs;

private:
  void Fetch(const Operand& operand, Batch& values) const {
    if (const Batch* each = Each(operand.source)) {
      for (std::size_t i = 0; i < count_; ++i)
        values[i] = Swizzled(operand, (*each)[i]);
    } else {
      std::fill_n(values.begin(), count_,
                  Swizzled(operand, UniformValue(program_, parameters_, operand.source)));
    }
  }

  [[nodiscard]] const Batch* Each(Register source) const {
    if (source.file == RegisterFile::Temporary) return &temporaries_[source.index];
    if (source.file == RegisterFile::Attribute) return &attributes[source.index];
    return nullptr;
  }

  const Program& program_;
  const ProgramParameters& parameters_;
  std::size_t count_;
  std::array<Batch, kMaxTemporaries> temporaries_;
  std::array<Batch, 3> operands_;
  Batch results_;
};

} // namespace

Attributes RunVertexProgram(const Program& program, const ProgramParameters& parameters,
                            const Attributes& vertex) {
  Machine machine(program, parameters, 1);
  for (std::size_t i = 0; i < vertex.size(); ++i)
    machine.attributes[i][0] = vertex[i];
  machine.Run(nullptr);
  Attributes result;
  for (std::size_t i = 0; i < result.size(); ++i)
    result[i] = (program.outputsWritten >> i & 1U) != 0 ? machine.outputs[i][0] : kOrigin;
  return result;
}

void RunFragmentRow(const Program& program, const ProgramParameters& parameters,
                    const Varyings& varyings, const Sampler& sampler, std::span<Vec4> colors) {
  for (std::size_t first = 0; first < colors.size(); first += kRowBatch) {
    const std::size_t count = std::min<std::size_t>(kRowBatch, colors.size() - first);
    Machine machine(program, parameters, count);
    for (std::size_t attribute = 0; attribute < kNumAttributes; ++attribute) {
      if (!program.Reads(static_cast<int>(attribute))) continue;
      const auto& [start, step] = varyings[attribute];
      for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t k = 0; k < 4; ++k)
          machine.attributes[attribute][i][k] = start[k] + step[k] * static_cast<float>(first + i);
      }
    }
    machine.Run(&sampler);
    for (std::size_t i = 0; i < count; ++i) {
      Vec4& color = colors[first + i];
      color = program.outputsWritten != 0 ? machine.outputs[kColor][i] : Vec4{};
      std::transform(color.begin(), color.end(), color.begin(), Clamp01);
    }
  }
}

} // namespace halvenor::raster
