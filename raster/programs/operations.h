// What the opcodes compute, and which components of their operands they look at.
#pragma once

#include "raster/programs/program.h"

#include <algorithm>
#include <cmath>

namespace halvenor::raster {

constexpr std::uint8_t kAllComponents = 15;

/// The result of any opcode but Tex. Scalar opcodes take component 0.
template <Opcode opcode>
Vec4 Compute(const Vec4& a, const Vec4& b, const Vec4& c) {
  const auto each = [](auto operation) {
    return Vec4{operation(0), operation(1), operation(2), operation(3)};
  };
  const auto all = [](float value) { return Vec4{value, value, value, value}; };
  using enum Opcode;
  if constexpr (opcode == Abs) return each([&](std::size_t i) { return std::fabs(a[i]); });
  if constexpr (opcode == Add) return each([&](std::size_t i) { return a[i] + b[i]; });
  if constexpr (opcode == Cmp)
    return each([&](std::size_t i) { return a[i] < 0.0F ? b[i] : c[i]; });
  if constexpr (opcode == Dp3) return all(a[0] * b[0] + a[1] * b[1] + a[2] * b[2]);
  if constexpr (opcode == Dp4) return all(a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3]);
  if constexpr (opcode == Dph) return all(a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + b[3]);
  if constexpr (opcode == Flr) return each([&](std::size_t i) { return std::floor(a[i]); });
  if constexpr (opcode == Frc) return each([&](std::size_t i) { return a[i] - std::floor(a[i]); });
  if constexpr (opcode == Lrp)
    return each([&](std::size_t i) { return a[i] * b[i] + (1.0F - a[i]) * c[i]; });
  if constexpr (opcode == Mad) return each([&](std::size_t i) { return a[i] * b[i] + c[i]; });
  if constexpr (opcode == Max)
    return each([&](std::size_t i) { return a[i] > b[i] ? a[i] : b[i]; });
  if constexpr (opcode == Min)
    return each([&](std::size_t i) { return a[i] < b[i] ? a[i] : b[i]; });
  if constexpr (opcode == Mov) return a;
  if constexpr (opcode == Mul) return each([&](std::size_t i) { return a[i] * b[i]; });
  if constexpr (opcode == Rcp) return all(1.0F / a[0]);
  if constexpr (opcode == Rsq) return all(1.0F / std::sqrt(std::fabs(a[0])));
  if constexpr (opcode == Sge)
    return each([&](std::size_t i) { return a[i] >= b[i] ? 1.0F : 0.0F; });
  if constexpr (opcode == Slt)
    return each([&](std::size_t i) { return a[i] < b[i] ? 1.0F : 0.0F; });
  if constexpr (opcode == Sub) return each([&](std::size_t i) { return a[i] - b[i]; });
  if constexpr (opcode == Xpd)
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0], 1.0F};
  return {};
}

/// How many operands the opcode takes.
int CountOperands(Opcode opcode);

/// Which components (bit i: component i of the swizzled operand) decide those of `instruction`'s
/// result that it writes. 0 for operands that it does not take.
std::uint8_t ComponentsRead(const Instruction& instruction, int operand);

/// NaN becomes 0.
inline float Clamp01(float value) {
  return value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}

inline float Component(const Operand& operand, const Vec4& source, int component) {
  const std::uint8_t from = operand.swizzle[static_cast<std::size_t>(component)];
  const float value = from < 4 ? source[from] : (from == Operand::kOne ? 1.0F : 0.0F);
  return (operand.negate >> component & 1U) != 0 ? -value : value;
}

inline Vec4 Swizzled(const Operand& operand, const Vec4& source) {
  return {Component(operand, source, 0), Component(operand, source, 1),
          Component(operand, source, 2), Component(operand, source, 3)};
}

/// Writes what the instruction's mask lets through.
inline void Store(const Instruction& instruction, const Vec4& value, Vec4& target) {
  for (std::size_t i = 0; i < 4; ++i) {
    if ((instruction.mask >> i & 1U) != 0)
      target[i] = instruction.saturate ? Clamp01(value[i]) : value[i];
  }
}

/// A register that is the same for every vertex or fragment: a constant or a parameter.
Vec4 UniformValue(const Program& program, const ProgramParameters& parameters, Register source);

/// `Compute` for an opcode that is known at run time only.
Vec4 ComputeAny(Opcode opcode, const Vec4& a, const Vec4& b, const Vec4& c);

} // namespace halvenor::raster
