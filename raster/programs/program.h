// A program of GL_ARB_vertex_program or GL_ARB_fragment_program as a value: a list of instructions
// over registers of four floats. Made by `ParseProgram` (program_text.h), already simplified.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace halvenor::raster {

using Vec4 = std::array<float, 4>;

/// The least that the two extensions demand of an implementation, which is what we offer. Texture
/// lookups read unit 0, target 2D. No call of ours sets an environment parameter: they are 0.
constexpr int kMaxLocalParameters = 96;
constexpr int kMaxTextureCoords = 8;
constexpr int kMaxInstructions = 128;
constexpr int kMaxTemporaries = 32;
constexpr int kMaxConstants = 128;

enum class ProgramTarget : std::uint8_t { Vertex, Fragment };

/// What a program reads of a vertex or a fragment, and what it writes: one numbering for both.
/// Texture coordinate set n is `kTexCoord0 + n`.
enum Attribute : std::uint8_t {
  kPosition,
  kColor,
  kTexCoord0,
  kNumAttributes = kTexCoord0 + kMaxTextureCoords
};
using Attributes = std::array<Vec4, kNumAttributes>;

/// SWZ is a Mov: every operand can pick 0 and 1.
enum class Opcode : std::uint8_t {
  Abs,
  Add,
  Cmp,
  Dp3,
  Dp4,
  Dph,
  Flr,
  Frc,
  Lrp,
  Mad,
  Max,
  Min,
  Mov,
  Mul,
  Rcp,
  Rsq,
  Sge,
  Slt,
  Sub,
  Tex,
  Xpd,
};
constexpr std::size_t kNumOpcodes = static_cast<std::size_t>(Opcode::Xpd) + 1;

enum class RegisterFile : std::uint8_t {
  Temporary, ///< 0 before the first write
  Attribute,
  Constant,
  Local,               ///< program.local[index]
  ModelViewProjection, ///< row `index` of the matrix
  Output,              ///< written only
};

struct Register {
  RegisterFile file = RegisterFile::Temporary;
  std::uint8_t index = 0;
  bool operator==(const Register&) const = default;
};

/// Component i of the operand is component `swizzle[i]` of the register, or 0 or 1, negated where
/// bit i of `negate` is set.
struct Operand {
  static constexpr std::uint8_t kZero = 4;
  static constexpr std::uint8_t kOne = 5;
  Register source;
  std::array<std::uint8_t, 4> swizzle{0, 1, 2, 3};
  std::uint8_t negate = 0;
};

struct Instruction {
  Opcode opcode = Opcode::Mov;
  bool saturate = false;  ///< clamp to 0..1 before the write
  std::uint8_t mask = 15; ///< bit i: component i is written
  Register target;
  std::array<Operand, 3> operands; ///< as many as the opcode takes
};

struct Program {
  ProgramTarget target = ProgramTarget::Fragment;
  /// A vertex program with OPTION ARB_position_invariant: the position is the fixed function's.
  bool positionInvariant = false;
  std::vector<Instruction> instructions;
  std::vector<Vec4> constants;
  int numTemporaries = 0;
  std::uint32_t attributesRead = 0; ///< bit n: `Attribute` n
  std::uint32_t outputsWritten = 0; ///< bit n: some component of `Attribute` n
  /// Of a vertex program: it writes no texture coordinates but those of set 0 with constants and
  /// parameters added. Of a fragment program: it is a sum and a polynomial as described in taps.h,
  /// whatever the colors, textures and parameters.
  bool isTapsForm = false;

  [[nodiscard]] bool Reads(int attribute) const { return (attributesRead >> attribute & 1U) != 0; }
};

/// What an execution reads beside attributes. The arrays outlive the call.
struct ProgramParameters {
  const Vec4* local = nullptr;               ///< `kMaxLocalParameters` of them; null: all 0
  const Vec4* modelViewProjection = nullptr; ///< 4 rows; null: identity
};

} // namespace halvenor::raster
