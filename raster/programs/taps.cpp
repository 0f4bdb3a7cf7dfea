#include "raster/programs/taps.h"

#include "raster/programs/operations.h"

#include <algorithm>
#include <limits>

namespace halvenor::raster {
namespace {

// Decimal weights that add up to one do so in floats to this much.
constexpr float kRounding = 1e-6F;

// All values that a number can have.
struct Range {
  float low = 0.0F;
  float high = 0.0F;

  [[nodiscard]] bool Is(float value) const { return low == value && high == value; }
  [[nodiscard]] bool IsPoint() const { return low == high; }
};
constexpr Range kUnknown{-std::numeric_limits<float>::infinity(),
                         std::numeric_limits<float>::infinity()};
constexpr Range kUnit{0.0F, 1.0F};

Range Point(float value) {
  return {value, value};
}

Range operator+(const Range& a, const Range& b) {
  return {a.low + b.low, a.high + b.high};
}

Range operator*(const Range& a, const Range& b) {
  if (a.Is(0.0F) || b.Is(0.0F)) return {};
  // An end at 0 times one at infinity is 0: infinity only stands for "any number".
  const auto product = [](float x, float y) { return x == 0.0F || y == 0.0F ? 0.0F : x * y; };
  const auto [low, high] = std::minmax({product(a.low, b.low), product(a.low, b.high),
                                        product(a.high, b.low), product(a.high, b.high)});
  return {low, high};
}

bool AreSame(const std::array<Range, kMaxTaps>& a, const std::array<Range, kMaxTaps>& b) {
  return std::equal(a.begin(), a.end(), b.begin(),
                    [](const Range& x, const Range& y) { return x.IsPoint() && y.Is(x.low); });
}

// One component of a register as a polynomial of a weighted sum of sources: in a fragment program
// the lookups at the texture coordinates, in a vertex program the coordinates of set 0. Whatever is
// nothing of the kind is opaque.
struct Value {
  bool isOpaque = false;
  int channel = 0;                       ///< which component of the sources the sum takes
  std::array<Range, kMaxTaps> weights{}; ///< all 0: a constant
  std::array<Range, kMaxDegree + 1> coefficients{};

  static Value Opaque() {
    Value value;
    value.isOpaque = true;
    return value;
  }
  static Value Constant(const Range& range) {
    Value value;
    value.coefficients[0] = range;
    return value;
  }
  static Value Source(std::size_t index, int channel) {
    Value value;
    value.channel = channel;
    value.weights[index] = Point(1.0F);
    value.coefficients[1] = Point(1.0F);
    return value;
  }

  [[nodiscard]] int Degree() const {
    int degree = kMaxDegree;
    while (degree > 0 && coefficients[static_cast<std::size_t>(degree)].Is(0.0F))
      --degree;
    return degree;
  }
  [[nodiscard]] bool HasSumOf(const Value& other) const {
    return channel == other.channel && AreSame(weights, other.weights);
  }
};

Value Scaled(Value value, const Range& factor) {
  for (Range& coefficient : value.coefficients)
    coefficient = coefficient * factor;
  return value;
}

// The constant plus the linear part as a sum of its own.
Value Flattened(Value value) {
  for (Range& weight : value.weights)
    weight = weight * value.coefficients[1];
  value.coefficients[1] = Point(1.0F);
  return value;
}

Value Add(const Value& a, const Value& b) {
  if (a.isOpaque || b.isOpaque) return Value::Opaque();
  if (a.Degree() == 0 && b.Degree() != 0) return Add(b, a);
  Value sum = a;
  if (b.Degree() == 0 || a.HasSumOf(b)) {
    for (std::size_t i = 0; i < sum.coefficients.size(); ++i)
      sum.coefficients[i] = a.coefficients[i] + b.coefficients[i];
    return sum;
  }
  if (a.Degree() > 1 || b.Degree() > 1 || a.channel != b.channel) return Value::Opaque();
  sum = Flattened(a);
  const Value other = Flattened(b);
  for (std::size_t i = 0; i < sum.weights.size(); ++i)
    sum.weights[i] = sum.weights[i] + other.weights[i];
  sum.coefficients[0] = a.coefficients[0] + b.coefficients[0];
  return sum;
}

Value Multiply(const Value& a, const Value& b) {
  if (a.isOpaque || b.isOpaque) return Value::Opaque();
  if (a.Degree() == 0) return Scaled(b, a.coefficients[0]);
  if (b.Degree() == 0) return Scaled(a, b.coefficients[0]);
  if (!a.HasSumOf(b) || a.Degree() + b.Degree() > kMaxDegree) return Value::Opaque();
  Value product = a;
  product.coefficients = {};
  for (std::size_t i = 0; i < a.coefficients.size(); ++i) {
    for (std::size_t k = 0; i + k < product.coefficients.size(); ++k) {
      product.coefficients[i + k] =
          product.coefficients[i + k] + a.coefficients[i] * b.coefficients[k];
    }
  }
  return product;
}

Value Negated(const Value& value) {
  return Scaled(value, Point(-1.0F));
}

// Divides the weights by their sum and brings the sum into the coefficients. False when a weight
// may be negative or is not known, or when the result may leave 0..1 on its way.
bool Normalize(Value& value) {
  if (value.isOpaque) return false;
  if (value.Degree() > 0) {
    float total = 0.0F;
    for (const Range& weight : value.weights) {
      if (!weight.IsPoint() || weight.low < 0.0F) return false;
      total += weight.low;
    }
    if (!(total > 0.0F) || total > std::numeric_limits<float>::max()) return false;
    if (std::fabs(total - 1.0F) > kRounding) {
      for (Range& weight : value.weights)
        weight = Point(weight.low / total);
      Range power = Point(1.0F);
      for (Range& coefficient : value.coefficients) {
        coefficient = coefficient * power;
        power = power * Point(total);
      }
    }
  }
  float highest = 0.0F;
  for (const Range& coefficient : value.coefficients) {
    if (coefficient.low < 0.0F) return false;
    highest += coefficient.high;
  }
  return highest <= 1.0F + kRounding; // not so for NaN
}

Value Saturated(const Value& value) {
  Value inRange = value;
  return Normalize(inRange) ? value : Value::Opaque();
}

using Component4 = std::array<Value, 4>;

// Executes a program with polynomials in place of numbers.
class Analysis {
public:
  // Without input: for whatever colors and parameters.
  Analysis(const Program& program, const ProgramParameters* parameters, const Vec4* color)
      : program_(program), parameters_(parameters), color_(color) {
    for (const Instruction& instruction : program.instructions)
      Run(instruction);
  }

  [[nodiscard]] const Component4& Output(std::size_t attribute) const {
    return outputs_[attribute];
  }

private:
  void Run(const Instruction& instruction) {
    Component4& target = instruction.target.file == RegisterFile::Output
                             ? outputs_[instruction.target.index]
                             : temporaries_[instruction.target.index];
    const Component4 before = target;
    Component4 results;
    for (std::size_t i = 0; i < 4; ++i) {
      if ((instruction.mask >> i & 1U) == 0) {
        results[i] = before[i];
      } else {
        results[i] = Result(instruction, i);
        if (instruction.saturate) results[i] = Saturated(results[i]);
      }
    }
    target = results;
  }

  [[nodiscard]] Value Result(const Instruction& instruction, std::size_t i) const {
    const auto operand = [&](std::size_t index) { return Read(instruction.operands[index], i); };
    switch (instruction.opcode) {
    case Opcode::Mov:
      return operand(0);
    case Opcode::Add:
      return Add(operand(0), operand(1));
    case Opcode::Sub:
      return Add(operand(0), Negated(operand(1)));
    case Opcode::Mul:
      return Multiply(operand(0), operand(1));
    case Opcode::Mad:
      return Add(Multiply(operand(0), operand(1)), operand(2));
    case Opcode::Lrp: {
      const Value rest = Add(Value::Constant(Point(1.0F)), Negated(operand(0)));
      return Add(Multiply(operand(0), operand(1)), Multiply(rest, operand(2)));
    }
    case Opcode::Tex:
      return Lookup(instruction.operands[0], i);
    default:
      return Value::Opaque();
    }
  }

  // A lookup at a coordinate set as the fragment has it; coordinates that were computed are opaque.
  [[nodiscard]] static Value Lookup(const Operand& at, std::size_t channel) {
    const bool isPlain = at.source.file == RegisterFile::Attribute &&
                         at.source.index >= kTexCoord0 && at.swizzle[0] == 0 &&
                         at.swizzle[1] == 1 && (at.negate & 3U) == 0;
    return isPlain
               ? Value::Source(at.source.index - std::size_t{kTexCoord0}, static_cast<int>(channel))
               : Value::Opaque();
  }

  [[nodiscard]] Value Read(const Operand& operand, std::size_t i) const {
    const std::uint8_t from = operand.swizzle[i];
    const Value value = from < 4 ? ReadRegister(operand.source, from)
                                 : Value::Constant(Point(from == Operand::kOne ? 1.0F : 0.0F));
    return (operand.negate >> i & 1U) != 0 ? Negated(value) : value;
  }

  [[nodiscard]] Value ReadRegister(Register source, std::size_t i) const {
    switch (source.file) {
    case RegisterFile::Temporary:
      return temporaries_[source.index][i];
    case RegisterFile::Attribute:
      if (program_.target == ProgramTarget::Vertex)
        return source.index == kTexCoord0 ? Value::Source(0, static_cast<int>(i)) : Value::Opaque();
      if (source.index != kColor) return Value::Opaque();
      return Value::Constant(color_ != nullptr ? Point((*color_)[i]) : kUnit);
    default:
      if (parameters_ == nullptr && source.file != RegisterFile::Constant)
        return Value::Constant(kUnknown);
      return Value::Constant(Point(UniformValue(
          program_, parameters_ != nullptr ? *parameters_ : ProgramParameters{}, source)[i]));
    }
  }

  const Program& program_;
  const ProgramParameters* parameters_;
  const Vec4* color_;
  std::array<Component4, kMaxTemporaries> temporaries_;
  std::array<Component4, kNumAttributes> outputs_;
};

// Coordinate set 0 plus something, in both of its components that a lookup takes.
bool IsTranslation(const Component4& coordinates) {
  for (std::size_t i = 0; i < 2; ++i) {
    const Value& value = coordinates[i];
    if (value.isOpaque || value.Degree() != 1 || value.channel != static_cast<int>(i)) return false;
    if (!value.weights[0].Is(1.0F) || !value.coefficients[1].Is(1.0F)) return false;
  }
  return true;
}

// The four channels of a fragment's color, normalized. None when they are no taps.
std::optional<Component4> Channels(const Analysis& analysis) {
  Component4 channels = analysis.Output(kColor);
  const Value* sum = nullptr;
  for (std::size_t i = 0; i < channels.size(); ++i) {
    if (!Normalize(channels[i])) return std::nullopt;
    if (channels[i].Degree() == 0) continue;
    if (channels[i].channel != static_cast<int>(i)) return std::nullopt;
    if (sum != nullptr && !AreSame(sum->weights, channels[i].weights)) return std::nullopt;
    sum = &channels[i];
  }
  return channels;
}

} // namespace

bool HasTapsForm(const Program& program) {
  const Analysis analysis(program, nullptr, nullptr);
  if (program.target == ProgramTarget::Fragment) return Channels(analysis).has_value();
  for (std::size_t set = kTexCoord0; set < kNumAttributes; ++set) {
    const bool isWritten = (program.outputsWritten >> set & 1U) != 0;
    if (isWritten && !IsTranslation(analysis.Output(set))) return false;
  }
  return true;
}

std::optional<Taps> FindTaps(const Program* vertex, const Program& fragment,
                             const TapsInput& input) {
  if (!fragment.isTapsForm || (vertex != nullptr && !vertex->isTapsForm)) return std::nullopt;
  const std::uint32_t handedOn = vertex != nullptr ? vertex->outputsWritten : 1U << kTexCoord0;
  const std::uint32_t sets = fragment.attributesRead & ~(1U << kColor);
  if ((sets & ~handedOn) != 0) return std::nullopt;

  const auto channels = Channels(Analysis(fragment, &input.fragmentParameters, &input.color));
  if (!channels) return std::nullopt;
  std::optional<Analysis> coordinates;
  if (vertex != nullptr) coordinates.emplace(*vertex, &input.vertexParameters, nullptr);

  Taps taps;
  for (std::size_t c = 0; c < channels->size(); ++c) {
    const Value& channel = (*channels)[c];
    for (std::size_t i = 0; i < channel.coefficients.size(); ++i)
      taps.polynomial[c][i] = channel.coefficients[i].low;
    if (channel.Degree() == 0 || taps.count != 0) continue;
    for (std::size_t set = 0; set < channel.weights.size(); ++set) {
      if (channel.weights[set].Is(0.0F)) continue;
      Tap& tap = taps.taps[static_cast<std::size_t>(taps.count++)];
      tap.weight = channel.weights[set].low;
      if (!coordinates) continue;
      const Component4& at = coordinates->Output(kTexCoord0 + set);
      tap.s = at[0].coefficients[0].low;
      tap.t = at[1].coefficients[0].low;
    }
  }
  return taps;
}

} // namespace halvenor::raster
