#include "raster/programs/parser.h"

#include "raster/programs/operations.h"

#include <algorithm>
#include <utility>

namespace halvenor::raster {
namespace {

struct Syntax {
  std::string_view name;
  Opcode opcode;
  bool scalar = false; ///< operands name one component
  bool fragmentOnly = false;
};

constexpr std::string_view kSaturate = "_SAT";
constexpr std::string_view kExtendedSwizzle = "SWZ";

constexpr Syntax kInstructions[] = {
    {"ABS", Opcode::Abs},
    {"ADD", Opcode::Add},
    {"CMP", Opcode::Cmp, false, true},
    {"DP3", Opcode::Dp3},
    {"DP4", Opcode::Dp4},
    {"DPH", Opcode::Dph},
    {"FLR", Opcode::Flr},
    {"FRC", Opcode::Frc},
    {"LRP", Opcode::Lrp, false, true},
    {"MAD", Opcode::Mad},
    {"MAX", Opcode::Max},
    {"MIN", Opcode::Min},
    {"MOV", Opcode::Mov},
    {"MUL", Opcode::Mul},
    {"RCP", Opcode::Rcp, true},
    {"RSQ", Opcode::Rsq, true},
    {"SGE", Opcode::Sge},
    {"SLT", Opcode::Slt},
    {"SUB", Opcode::Sub},
    {kExtendedSwizzle, Opcode::Mov},
    {"TEX", Opcode::Tex, false, true},
    {"XPD", Opcode::Xpd},
};

constexpr std::string_view kReserved[] = {"ALIAS", "ATTRIB",  "END",      "OPTION", "OUTPUT",
                                          "PARAM", "TEMP",    "fragment", "result", "program",
                                          "state", "texture", "vertex"};

// Generic attributes that are other names of the ones that we have.
constexpr struct {
  int generic;
  std::uint8_t attribute;
} kGenericAttributes[] = {{0, kPosition},       {3, kColor},          {8, kTexCoord0},
                          {9, kTexCoord0 + 1},  {10, kTexCoord0 + 2}, {11, kTexCoord0 + 3},
                          {12, kTexCoord0 + 4}, {13, kTexCoord0 + 5}, {14, kTexCoord0 + 6},
                          {15, kTexCoord0 + 7}};
constexpr int kNumGenericAttributes = 16;
constexpr int kTextureUnits = 1;
constexpr int kMatrixRows = 4;

const Syntax* FindSyntax(std::string_view name) {
  const auto* found = std::find_if(std::begin(kInstructions), std::end(kInstructions),
                                   [name](const Syntax& syntax) { return syntax.name == name; });
  return found != std::end(kInstructions) ? found : nullptr;
}

bool IsReserved(std::string_view name) {
  return FindSyntax(name) != nullptr ||
         std::find(std::begin(kReserved), std::end(kReserved), name) != std::end(kReserved);
}

// GL's message tells the place in a person's terms, too.
std::string LineOf(std::string_view text, std::size_t position) {
  const auto line =
      std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n');
  return "line " + std::to_string(line + 1) + ": ";
}

} // namespace

Parser::Parser(ProgramTarget target, std::string_view text, std::size_t position)
    : scanner_(text, position), text_(text) {
  program_.target = target;
}

std::variant<Program, ProgramError> Parser::Parse() {
  while (scanner_.TakeIf("OPTION"))
    Option();
  while (!scanner_.AtEnd() && scanner_.Next().text != "END")
    Statement();
  if (scanner_.Expect("END") && !scanner_.AtEnd()) scanner_.FailAtNext("expected the end");
  if (const auto& failure = scanner_.Failed())
    return ProgramError{static_cast<int>(failure->position),
                        LineOf(text_, failure->position) + failure->message};
  return std::move(program_);
}

void Parser::Option() {
  const bool isFragment = program_.target == ProgramTarget::Fragment;
  const Token next = scanner_.Next();
  const std::string_view name = scanner_.ExpectName("an option");
  if (name == "ARB_position_invariant" && !isFragment) {
    program_.positionInvariant = true;
  } else if (!isFragment ||
             (name != "ARB_precision_hint_fastest" && name != "ARB_precision_hint_nicest")) {
    scanner_.Fail(next.position, "an option that is not supported");
  }
  scanner_.Expect(";");
}

void Parser::Statement() {
  static constexpr struct {
    std::string_view name;
    void (Parser::*read)();
  } kDeclarations[] = {{"ATTRIB", &Parser::Attrib},
                       {"PARAM", &Parser::Param},
                       {"TEMP", &Parser::Temp},
                       {"OUTPUT", &Parser::Output},
                       {"ALIAS", &Parser::Alias}};
  const Token first = scanner_.Next();
  scanner_.ExpectName("a statement");
  const auto* declaration =
      std::find_if(std::begin(kDeclarations), std::end(kDeclarations),
                   [&first](const auto& known) { return known.name == first.text; });
  if (declaration != std::end(kDeclarations)) {
    (this->*declaration->read)();
  } else {
    ReadInstruction(first);
  }
  scanner_.Expect(";");
}

// --- declarations

std::string_view Parser::NewName(const char* what) {
  const Token next = scanner_.Next();
  const std::string_view name = scanner_.ExpectName(what);
  if (IsReserved(name)) scanner_.Fail(next.position, "a word of the language is no name");
  if (variables_.count(name) != 0) scanner_.Fail(next.position, "the name is declared already");
  return name;
}

void Parser::DeclareNext(const char* what, const std::function<Variable()>& variable) {
  const std::string_view name = NewName(what);
  Variable made = variable();
  if (!scanner_.Failed()) variables_.emplace(name, std::move(made));
}

void Parser::Attrib() {
  DeclareNext("the name of an attribute", [this] {
    scanner_.Expect("=");
    return Variable{{AttributeBinding()}};
  });
}

void Parser::Output() {
  DeclareNext("the name of an output", [this] {
    scanner_.Expect("=");
    return Variable{{OutputBinding()}};
  });
}

void Parser::Temp() {
  do {
    DeclareNext("the name of a temporary", [this] {
      if (numTemporaries_ == kMaxTemporaries) scanner_.FailAtNext("too many temporaries");
      return Variable{
          {Register{RegisterFile::Temporary, static_cast<std::uint8_t>(numTemporaries_++)}}};
    });
  } while (scanner_.TakeIf(","));
}

void Parser::Alias() {
  DeclareNext("a new name", [this] {
    scanner_.Expect("=");
    const Token next = scanner_.Next();
    const auto known = variables_.find(scanner_.ExpectName("a name"));
    if (known != variables_.end()) return known->second;
    scanner_.Fail(next.position, "the name is not declared");
    return Variable{};
  });
}

void Parser::Param() {
  DeclareNext("the name of a parameter", [this] {
    Variable variable;
    int size = 0;
    if (scanner_.TakeIf("[")) {
      variable.isArray = true;
      if (scanner_.Next().kind == Token::Kind::Integer)
        size = scanner_.ExpectIndex("a size", kMaxConstants + 1);
      scanner_.Expect("]");
    }
    scanner_.Expect("=");
    if (!variable.isArray) {
      variable.registers = ParameterBinding(false);
      return variable;
    }
    scanner_.Expect("{");
    do {
      for (const Register& bound : ParameterBinding(true))
        variable.registers.push_back(bound);
      if (variable.registers.size() > kMaxConstants) scanner_.FailAtNext("too many parameters");
    } while (scanner_.TakeIf(","));
    scanner_.Expect("}");
    if (size != 0 && variable.registers.size() != static_cast<std::size_t>(size))
      scanner_.FailAtNext("the array has another size");
    return variable;
  });
}

// --- instructions

void Parser::ReadInstruction(const Token& name) {
  const bool isFragment = program_.target == ProgramTarget::Fragment;
  Instruction instruction;
  std::string_view base = name.text;
  if (isFragment && base.size() > kSaturate.size() &&
      base.substr(base.size() - kSaturate.size()) == kSaturate) {
    base.remove_suffix(kSaturate.size());
    instruction.saturate = true;
  }
  const Syntax* syntax = FindSyntax(base);
  if (scanner_.Failed()) return;
  if (syntax == nullptr || (syntax->fragmentOnly && !isFragment)) {
    scanner_.Fail(name.position, "an instruction that is not supported");
    return;
  }
  instruction.opcode = syntax->opcode;
  instruction.target = TargetRegister();
  instruction.mask = Mask();
  for (int i = 0; i < CountOperands(syntax->opcode); ++i) {
    scanner_.Expect(",");
    instruction.operands[static_cast<std::size_t>(i)] =
        syntax->name == kExtendedSwizzle ? ExtendedSwizzle() : ReadOperand(syntax->scalar);
  }
  if (syntax->opcode == Opcode::Tex) ReadTextureUnit();
  if (program_.instructions.size() == kMaxInstructions)
    scanner_.Fail(name.position, "too many instructions");
  program_.instructions.push_back(instruction);
}

void Parser::ReadTextureUnit() {
  scanner_.Expect(",");
  scanner_.Expect("texture");
  if (scanner_.Next().text == "[") BracketedIndex("a texture unit", kTextureUnits);
  scanner_.Expect(",");
  // The scanner sees a number and a name.
  scanner_.Expect("2");
  scanner_.Expect("D");
}

Register Parser::TargetRegister() {
  const std::size_t position = scanner_.Next().position;
  Register target;
  if (scanner_.Next().text == "result") {
    target = OutputBinding();
  } else if (const auto variable = VariableRegister()) {
    target = *variable;
  }
  if (target.file != RegisterFile::Temporary && target.file != RegisterFile::Output)
    scanner_.Fail(position, "only temporaries and outputs can be written");
  if (target.file == RegisterFile::Output) program_.outputsWritten |= 1U << target.index;
  return target;
}

std::optional<Register> Parser::VariableRegister() {
  const Token next = scanner_.Next();
  const auto known = variables_.find(scanner_.ExpectName("a register"));
  if (known == variables_.end()) {
    scanner_.Fail(next.position, "the name is not declared");
    return std::nullopt;
  }
  const Variable& variable = known->second;
  if (!variable.isArray) return variable.registers.front();
  const int index = BracketedIndex("an index", static_cast<int>(variable.registers.size()));
  return variable.registers[static_cast<std::size_t>(index)];
}

Register Parser::SourceRegister() {
  const Token next = scanner_.Next();
  const bool isAttribute =
      next.text == (program_.target == ProgramTarget::Vertex ? "vertex" : "fragment");
  Register source;
  if (isAttribute) {
    source = AttributeBinding();
  } else if (next.text == "program" || next.text == "state" || next.text == "{" ||
             next.kind != Token::Kind::Name) {
    source = ParameterBinding(false).front();
  } else if (const auto variable = VariableRegister()) {
    source = *variable;
  }
  if (source.file == RegisterFile::Output) scanner_.Fail(next.position, "an output cannot be read");
  if (source.file == RegisterFile::Attribute) program_.attributesRead |= 1U << source.index;
  return source;
}

Operand Parser::ReadOperand(bool scalar) {
  Operand operand;
  if (scanner_.TakeIf("-")) {
    operand.negate = kAllComponents;
  } else {
    scanner_.TakeIf("+");
  }
  operand.source = SourceRegister();
  Swizzle(operand, scalar);
  return operand;
}

// SWZ: four times 0, 1 or a component, each with a sign.
Operand Parser::ExtendedSwizzle() {
  Operand operand;
  operand.source = SourceRegister();
  for (std::size_t i = 0; i < operand.swizzle.size(); ++i) {
    scanner_.Expect(",");
    if (scanner_.TakeIf("-")) {
      operand.negate = static_cast<std::uint8_t>(operand.negate | 1U << i);
    } else {
      scanner_.TakeIf("+");
    }
    const Token next = scanner_.Take();
    if (next.text == "0") {
      operand.swizzle[i] = Operand::kZero;
    } else if (next.text == "1") {
      operand.swizzle[i] = Operand::kOne;
    } else if (next.text.size() == 1 && IsComponents(next.text)) {
      operand.swizzle[i] = static_cast<std::uint8_t>(ComponentOf(next.text.front()));
    } else {
      scanner_.Fail(next.position, "expected 0, 1 or a component");
    }
  }
  return operand;
}

int Parser::ComponentOf(char name) const {
  std::size_t found = std::string_view("xyzw").find(name);
  if (found == std::string_view::npos && program_.target == ProgramTarget::Fragment)
    found = std::string_view("rgba").find(name);
  return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

bool Parser::IsComponents(std::string_view text) const {
  const bool isXyzw = text.find_first_of("xyzw") != std::string_view::npos;
  const bool isRgba = text.find_first_of("rgba") != std::string_view::npos;
  return isXyzw != isRgba &&
         std::all_of(text.begin(), text.end(), [this](char c) { return ComponentOf(c) >= 0; });
}

std::uint8_t Parser::Mask() {
  if (!scanner_.TakeIf(".")) return kAllComponents;
  const Token next = scanner_.Take();
  int mask = 0;
  // Components come in their order, each at most once.
  if (IsComponents(next.text)) {
    for (const char name : next.text) {
      const int bit = 1 << ComponentOf(name);
      if (bit <= mask) scanner_.Fail(next.position, "the components are out of order");
      mask |= bit;
    }
  } else {
    scanner_.Fail(next.position, "expected components");
  }
  return static_cast<std::uint8_t>(mask);
}

void Parser::Swizzle(Operand& operand, bool scalar) {
  std::string_view text;
  const Token next = scanner_.Next();
  if (scanner_.TakeIf(".")) text = scanner_.Take().text;
  const bool fits = text.size() == 1 || (!scalar && (text.size() == 4 || next.text != "."));
  if (!fits || (!text.empty() && !IsComponents(text))) {
    scanner_.Fail(next.position, scalar ? "expected one component" : "expected components");
    return;
  }
  if (text.empty()) return;
  for (std::size_t i = 0; i < operand.swizzle.size(); ++i) {
    operand.swizzle[i] =
        static_cast<std::uint8_t>(ComponentOf(text.size() == 1 ? text.front() : text[i]));
  }
}

// --- bindings

int Parser::BracketedIndex(const char* what, int limit) {
  scanner_.Expect("[");
  const int index = scanner_.ExpectIndex(what, limit);
  scanner_.Expect("]");
  return index;
}

int Parser::TextureCoord() {
  const bool hasIndex = scanner_.Next().text == "[";
  return kTexCoord0 +
         (hasIndex ? BracketedIndex("a texture coordinate set", kMaxTextureCoords) : 0);
}

Register Parser::AttributeBinding() {
  const bool isVertex = program_.target == ProgramTarget::Vertex;
  scanner_.Expect(isVertex ? "vertex" : "fragment");
  scanner_.Expect(".");
  const Token next = scanner_.Next();
  const std::string_view name = scanner_.ExpectName("an attribute");
  int attribute = kPosition;
  if (name == "color") {
    attribute = kColor;
    SkipSuffix("primary");
  } else if (name == "texcoord") {
    attribute = TextureCoord();
  } else if (name == "attrib" && isVertex) {
    const int generic = BracketedIndex("a generic attribute", kNumGenericAttributes);
    const auto* known =
        std::find_if(std::begin(kGenericAttributes), std::end(kGenericAttributes),
                     [generic](const auto& pair) { return pair.generic == generic; });
    if (known == std::end(kGenericAttributes)) {
      scanner_.Fail(next.position, "an attribute that is not supported");
    } else {
      attribute = known->attribute;
    }
  } else if (name != "position") {
    scanner_.Fail(next.position, "an attribute that is not supported");
  }
  return {RegisterFile::Attribute, static_cast<std::uint8_t>(attribute)};
}

Register Parser::OutputBinding() {
  const bool isVertex = program_.target == ProgramTarget::Vertex;
  scanner_.Expect("result");
  scanner_.Expect(".");
  const Token next = scanner_.Next();
  const std::string_view name = scanner_.ExpectName("an output");
  int output = kPosition;
  if (name == "color") {
    output = kColor;
    if (isVertex) {
      SkipSuffix("front");
      SkipSuffix("primary");
    }
  } else if (name == "texcoord" && isVertex) {
    output = TextureCoord();
  } else if (name != "position" || !isVertex || program_.positionInvariant) {
    scanner_.Fail(next.position, "an output that is not supported");
  }
  return {RegisterFile::Output, static_cast<std::uint8_t>(output)};
}

std::vector<Register> Parser::ParameterBinding(bool inArray) {
  const Token next = scanner_.Next();
  if (next.kind != Token::Kind::Name) return {Constant()};
  scanner_.Take();
  scanner_.Expect(".");
  const std::string_view name = scanner_.ExpectName("a parameter");
  if (next.text == "program" && name == "local")
    return Indexed(RegisterFile::Local, "a local parameter", kMaxLocalParameters, inArray);
  if (next.text == "program" && name == "env") {
    // No call sets them, so they are constants.
    auto registers =
        Indexed(RegisterFile::Local, "an environment parameter", kMaxLocalParameters, inArray);
    const Register zero = MakeConstant(Vec4{});
    std::fill(registers.begin(), registers.end(), zero);
    return registers;
  }
  if (next.text == "state" && name == "matrix") return MatrixRows(inArray);
  scanner_.Fail(next.position, "a parameter that is not supported");
  return {Register{}};
}

// [index], or [first..last] in an array.
std::vector<Register> Parser::Indexed(RegisterFile file, const char* what, int limit,
                                      bool inArray) {
  scanner_.Expect("[");
  const int first = scanner_.ExpectIndex(what, limit);
  int last = first;
  if (inArray && scanner_.Next().kind == Token::Kind::Range) {
    scanner_.Take();
    const std::size_t position = scanner_.Next().position;
    last = scanner_.ExpectIndex(what, limit);
    if (last < first) scanner_.Fail(position, "the range ends before it begins");
  }
  scanner_.Expect("]");
  std::vector<Register> registers;
  for (int i = first; i <= last; ++i)
    registers.push_back({file, static_cast<std::uint8_t>(i)});
  if (registers.empty()) registers.emplace_back();
  return registers;
}

std::vector<Register> Parser::MatrixRows(bool inArray) {
  scanner_.Expect(".");
  scanner_.Expect("mvp");
  if (SkipSuffix("row"))
    return Indexed(RegisterFile::ModelViewProjection, "a matrix row", kMatrixRows, inArray);
  if (!inArray) scanner_.FailAtNext("expected a row of the matrix");
  std::vector<Register> rows;
  for (std::uint8_t i = 0; i < kMatrixRows; ++i)
    rows.push_back({RegisterFile::ModelViewProjection, i});
  return rows;
}

Register Parser::Constant() {
  Vec4 value{0.0F, 0.0F, 0.0F, 1.0F};
  if (scanner_.TakeIf("{")) {
    std::size_t count = 0;
    do {
      if (count == value.size()) {
        scanner_.FailAtNext("too many components");
        return {};
      }
      value[count++] = SignedNumber();
    } while (scanner_.TakeIf(","));
    scanner_.Expect("}");
  } else {
    value.fill(SignedNumber());
  }
  return MakeConstant(value);
}

Register Parser::MakeConstant(const Vec4& value) {
  const auto known = std::find(program_.constants.begin(), program_.constants.end(), value);
  const auto index = static_cast<std::size_t>(known - program_.constants.begin());
  if (known == program_.constants.end()) {
    if (index == kMaxConstants) scanner_.FailAtNext("too many constants");
    program_.constants.push_back(value);
  }
  return {RegisterFile::Constant, static_cast<std::uint8_t>(index)};
}

float Parser::SignedNumber() {
  const bool isNegative = scanner_.TakeIf("-");
  if (!isNegative) scanner_.TakeIf("+");
  const Token next = scanner_.Next();
  if (next.kind != Token::Kind::Integer && next.kind != Token::Kind::Number) {
    scanner_.FailAtNext("expected a number");
    return 0.0F;
  }
  scanner_.Take();
  return isNegative ? -next.value : next.value;
}

bool Parser::SkipSuffix(std::string_view name) {
  if (scanner_.Next().text != "." || scanner_.Following() != name) return false;
  scanner_.Take();
  scanner_.Take();
  return true;
}

} // namespace halvenor::raster
