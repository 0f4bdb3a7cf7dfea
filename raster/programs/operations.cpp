#include "raster/programs/operations.h"

#include <utility>

namespace halvenor::raster {
namespace {

// Components that an opcode reads of its operands whatever it writes; 0: those that it writes.
struct Reading {
  int operands;
  std::uint8_t first;
  std::uint8_t second;
};

constexpr std::uint8_t kX = 1;
constexpr std::uint8_t kXY = 3;
constexpr std::uint8_t kXYZ = 7;

constexpr Reading ReadingOf(Opcode opcode) {
  switch (opcode) {
  case Opcode::Abs:
  case Opcode::Flr:
  case Opcode::Frc:
  case Opcode::Mov:
    return {1, 0, 0};
  case Opcode::Rcp:
  case Opcode::Rsq:
    return {1, kX, 0};
  case Opcode::Tex:
    return {1, kXY, 0};
  case Opcode::Dp3:
  case Opcode::Xpd:
    return {2, kXYZ, kXYZ};
  case Opcode::Dp4:
    return {2, kAllComponents, kAllComponents};
  case Opcode::Dph:
    return {2, kXYZ, kAllComponents};
  case Opcode::Cmp:
  case Opcode::Lrp:
  case Opcode::Mad:
    return {3, 0, 0};
  case Opcode::Add:
  case Opcode::Max:
  case Opcode::Min:
  case Opcode::Mul:
  case Opcode::Sge:
  case Opcode::Slt:
  case Opcode::Sub:
    return {2, 0, 0};
  }
  return {0, 0, 0};
}

using Function = Vec4 (*)(const Vec4&, const Vec4&, const Vec4&);

template <std::size_t... opcodes>
constexpr std::array<Function, sizeof...(opcodes)>
Functions(std::index_sequence<opcodes...> /*all*/) {
  return {Compute<static_cast<Opcode>(opcodes)>...};
}

constexpr auto kFunctions = Functions(std::make_index_sequence<kNumOpcodes>());

} // namespace

int CountOperands(Opcode opcode) {
  return ReadingOf(opcode).operands;
}

std::uint8_t ComponentsRead(const Instruction& instruction, int operand) {
  const Reading reading = ReadingOf(instruction.opcode);
  if (operand >= reading.operands) return 0;
  const std::uint8_t fixed = operand == 0 ? reading.first : reading.second;
  return fixed != 0 ? fixed : instruction.mask;
}

Vec4 UniformValue(const Program& program, const ProgramParameters& parameters, Register source) {
  const std::size_t index = source.index;
  if (source.file == RegisterFile::Constant) return program.constants[index];
  if (source.file == RegisterFile::Local && parameters.local != nullptr)
    return parameters.local[index];
  if (source.file != RegisterFile::ModelViewProjection) return Vec4{};
  if (parameters.modelViewProjection != nullptr) return parameters.modelViewProjection[index];
  Vec4 row{};
  row[index] = 1.0F;
  return row;
}

Vec4 ComputeAny(Opcode opcode, const Vec4& a, const Vec4& b, const Vec4& c) {
  return kFunctions[static_cast<std::size_t>(opcode)](a, b, c);
}

} // namespace halvenor::raster
