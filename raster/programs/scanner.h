// Cuts a program text into tokens.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace halvenor::raster {

struct Token {
  enum class Kind { End, Name, Integer, Number, Range, Symbol };
  Kind kind = Kind::End;
  std::string_view text; ///< as written; a view of the program text
  std::size_t position = 0;
  float value = 0.0F; ///< of an integer or a number
};

/// One token ahead. The first failure ends the text: from then on every token is `End`, so that
/// whoever reads tokens in a loop comes to an end without asking for the failure.
class Scanner {
public:
  /// Starts reading at `position`. The text outlives the scanner.
  Scanner(std::string_view text, std::size_t position);

  [[nodiscard]] const Token& Next() const { return next_; }
  [[nodiscard]] bool AtEnd() const { return next_.kind == Token::Kind::End; }
  Token Take();
  /// The text of the token behind the next one.
  [[nodiscard]] std::string_view Following() const;

  /// Takes the next token if it is this symbol or name.
  bool TakeIf(std::string_view text);
  /// The same; anything else is a failure.
  bool Expect(std::string_view text);
  /// A name, or a failure that says what was expected.
  std::string_view ExpectName(const char* what);
  /// An integer below `limit`, or a failure that says what was expected, and 0.
  int ExpectIndex(const char* what, int limit);

  struct Failure {
    std::size_t position;
    std::string message;
  };
  /// Always false. The first call counts.
  bool Fail(std::size_t position, std::string message);
  /// At the next token, which the message goes on to name.
  bool FailAtNext(const std::string& message);
  [[nodiscard]] const std::optional<Failure>& Failed() const { return failure_; }

private:
  void Advance();
  void SkipBlanks();
  Token Number(std::size_t start);

  std::string_view text_;
  std::size_t position_;
  Token next_;
  std::optional<Failure> failure_;
};

} // namespace halvenor::raster
