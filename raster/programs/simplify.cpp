#include "raster/programs/simplify.h"

#include "raster/programs/operations.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace halvenor::raster {
namespace {

// The components of the register itself that an operand of the instruction reads.
std::uint8_t RegisterComponentsRead(const Instruction& instruction, int index) {
  const std::uint8_t read = ComponentsRead(instruction, index);
  const Operand& operand = instruction.operands[static_cast<std::size_t>(index)];
  unsigned components = 0;
  for (unsigned i = 0; i < 4; ++i) {
    if ((read >> i & 1U) != 0 && operand.swizzle[i] < 4) components |= 1U << operand.swizzle[i];
  }
  return static_cast<std::uint8_t>(components);
}

class ConstantFolding {
public:
  explicit ConstantFolding(Program& program) : program_(program) {
    known_.fill({0.0F, 0.0F, 0.0F, 0.0F}); // as temporaries begin
  }

  void Run() {
    for (Instruction& instruction : program_.instructions) {
      ReplaceOperands(instruction);
      const bool isFolded = Fold(instruction);
      if (instruction.target.file != RegisterFile::Temporary) continue;
      for (std::size_t i = 0; i < 4; ++i) {
        if ((instruction.mask >> i & 1U) == 0) continue;
        auto& known = known_[instruction.target.index][i];
        known.reset();
        if (isFolded) known = program_.constants[instruction.operands[0].source.index][i];
      }
    }
  }

private:
  void ReplaceOperands(Instruction& instruction) {
    for (int index = 0; index < CountOperands(instruction.opcode); ++index) {
      Operand& operand = instruction.operands[static_cast<std::size_t>(index)];
      if (operand.source.file != RegisterFile::Temporary) continue;
      const auto& known = known_[operand.source.index];
      const std::uint8_t read = RegisterComponentsRead(instruction, index);
      Vec4 value{};
      bool allKnown = true;
      for (std::size_t i = 0; i < 4; ++i) {
        value[i] = known[i].value_or(0.0F);
        if ((read >> i & 1U) != 0 && !known[i]) allKnown = false;
      }
      if (const auto constant = allKnown ? Constant(value) : std::nullopt)
        operand.source = *constant;
    }
  }

  bool Fold(Instruction& instruction) {
    if (instruction.opcode == Opcode::Tex) return false;
    std::array<Vec4, 3> values{};
    for (int i = 0; i < CountOperands(instruction.opcode); ++i) {
      const auto index = static_cast<std::size_t>(i);
      const Operand& operand = instruction.operands[index];
      if (operand.source.file != RegisterFile::Constant) return false;
      values[index] = Swizzled(operand, program_.constants[operand.source.index]);
    }
    Vec4 result{};
    Store(instruction, ComputeAny(instruction.opcode, values[0], values[1], values[2]), result);
    const auto constant = Constant(result);
    if (!constant) return false;
    instruction.opcode = Opcode::Mov;
    instruction.saturate = false;
    instruction.operands = {Operand{*constant}};
    return true;
  }

  // None when there are as many constants as can be numbered.
  std::optional<Register> Constant(const Vec4& value) {
    const std::size_t index = program_.constants.size();
    if (index > std::numeric_limits<std::uint8_t>::max()) return std::nullopt;
    program_.constants.push_back(value);
    return Register{RegisterFile::Constant, static_cast<std::uint8_t>(index)};
  }

  Program& program_;
  std::array<std::array<std::optional<float>, 4>, kMaxTemporaries> known_;
};

// Keeps of each instruction the components that an output depends on, if any.
void DropUnused(Program& program) {
  std::array<std::uint8_t, kMaxTemporaries> temporaries{};
  std::array<std::uint8_t, kNumAttributes> outputs{};
  outputs.fill(kAllComponents);
  std::vector<Instruction> kept;
  for (auto i = program.instructions.rbegin(); i != program.instructions.rend(); ++i) {
    Instruction instruction = *i;
    const Register target = instruction.target;
    std::uint8_t& needed =
        target.file == RegisterFile::Output ? outputs[target.index] : temporaries[target.index];
    instruction.mask &= needed;
    if (instruction.mask == 0) continue;
    needed = static_cast<std::uint8_t>(needed & ~instruction.mask);
    for (int k = 0; k < CountOperands(instruction.opcode); ++k) {
      const Register source = instruction.operands[static_cast<std::size_t>(k)].source;
      if (source.file == RegisterFile::Temporary)
        temporaries[source.index] |= RegisterComponentsRead(instruction, k);
    }
    kept.push_back(instruction);
  }
  std::reverse(kept.begin(), kept.end());
  program.instructions = std::move(kept);
}

void Summarize(Program& program) {
  program.attributesRead = 0;
  program.outputsWritten = 0;
  program.numTemporaries = 0;
  const auto note = [&program](Register used) {
    if (used.file == RegisterFile::Temporary)
      program.numTemporaries = std::max(program.numTemporaries, used.index + 1);
    if (used.file == RegisterFile::Attribute) program.attributesRead |= 1U << used.index;
    if (used.file == RegisterFile::Output) program.outputsWritten |= 1U << used.index;
  };
  for (const Instruction& instruction : program.instructions) {
    note(instruction.target);
    for (int i = 0; i < CountOperands(instruction.opcode); ++i)
      note(instruction.operands[static_cast<std::size_t>(i)].source);
  }
}

} // namespace

void Simplify(Program& program) {
  ConstantFolding(program).Run();
  DropUnused(program);
  Summarize(program);
}

} // namespace halvenor::raster
