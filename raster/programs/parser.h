// The grammar of program texts, behind `ParseProgram`.
#pragma once

#include "raster/programs/program_text.h"
#include "raster/programs/scanner.h"

#include <functional>
#include <map>
#include <optional>

namespace halvenor::raster {

/// Reads one text. Every function leaves its failure with the scanner, which then gives no more
/// tokens; what such a function returns means nothing.
class Parser {
public:
  /// `position` is behind the header of a text for `target`.
  Parser(ProgramTarget target, std::string_view text, std::size_t position);

  std::variant<Program, ProgramError> Parse();

private:
  /// What a name stands for: one register, or several for an array of parameters.
  struct Variable {
    std::vector<Register> registers;
    bool isArray = false;
  };

  void Option();
  void Statement();
  void Attrib();
  void Param();
  void Temp();
  void Output();
  void Alias();
  void DeclareNext(const char* what, const std::function<Variable()>& variable);
  std::string_view NewName(const char* what);

  void ReadInstruction(const Token& name);
  void ReadTextureUnit();
  Register TargetRegister();
  Operand ReadOperand(bool scalar);
  Operand ExtendedSwizzle();
  Register SourceRegister();
  std::optional<Register> VariableRegister();
  std::uint8_t Mask();
  void Swizzle(Operand& operand, bool scalar);
  bool SkipSuffix(std::string_view name);
  int ComponentOf(char name) const;
  bool IsComponents(std::string_view text) const;

  Register AttributeBinding();
  Register OutputBinding();
  std::vector<Register> ParameterBinding(bool inArray);
  std::vector<Register> Indexed(RegisterFile file, const char* what, int limit, bool inArray);
  std::vector<Register> MatrixRows(bool inArray);
  Register Constant();
  Register MakeConstant(const Vec4& value);
  float SignedNumber();
  int BracketedIndex(const char* what, int limit);
  int TextureCoord();

  Scanner scanner_;
  std::string_view text_;
  Program program_;
  std::map<std::string_view, Variable> variables_;
  int numTemporaries_ = 0;
};

} // namespace halvenor::raster
