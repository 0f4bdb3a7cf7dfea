#include "raster/programs/scanner.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace halvenor::raster {
namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kNameStart = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_$";
constexpr std::string_view kBlanks = " \t\r\n\v\f";
constexpr std::string_view kSymbols = ";,.[]{}=+-";

bool Contains(std::string_view set, char character) {
  return set.find(character) != std::string_view::npos;
}

bool IsNamePart(char character) {
  return Contains(kNameStart, character) || Contains(kDigits, character);
}

} // namespace

Scanner::Scanner(std::string_view text, std::size_t position) : text_(text), position_(position) {
  Advance();
}

Token Scanner::Take() {
  const Token taken = next_;
  Advance();
  return taken;
}

std::string_view Scanner::Following() const {
  Scanner ahead = *this;
  ahead.Advance();
  return ahead.Next().text;
}

bool Scanner::TakeIf(std::string_view text) {
  if (AtEnd() || next_.text != text) return false;
  Advance();
  return true;
}

bool Scanner::Expect(std::string_view text) {
  return TakeIf(text) || FailAtNext("expected \"" + std::string(text) + '"');
}

std::string_view Scanner::ExpectName(const char* what) {
  if (next_.kind == Token::Kind::Name) return Take().text;
  FailAtNext(std::string("expected ") + what);
  return {};
}

int Scanner::ExpectIndex(const char* what, int limit) {
  if (next_.kind == Token::Kind::Integer && next_.value < static_cast<float>(limit))
    return static_cast<int>(Take().value);
  FailAtNext(std::string("expected ") + what + " below " + std::to_string(limit));
  return 0;
}

bool Scanner::Fail(std::size_t position, std::string message) {
  if (!failure_) failure_ = Failure{position, std::move(message)};
  next_ = Token{Token::Kind::End, {}, text_.size()};
  return false;
}

bool Scanner::FailAtNext(const std::string& message) {
  // A hostile name may fill the whole text.
  constexpr std::size_t kLongestQuote = 40;
  return AtEnd() ? Fail(next_.position, message + " before the end of the text")
                 : Fail(next_.position, message + " instead of \"" +
                                            std::string(next_.text.substr(0, kLongestQuote)) + '"');
}

void Scanner::SkipBlanks() {
  while (position_ < text_.size()) {
    if (Contains(kBlanks, text_[position_])) {
      ++position_;
    } else if (text_[position_] == '#') {
      position_ = std::min(text_.find_first_of("\r\n", position_), text_.size());
    } else {
      return;
    }
  }
}

void Scanner::Advance() {
  if (failure_) return;
  SkipBlanks();
  next_ = Token{Token::Kind::End, {}, position_};
  if (position_ == text_.size()) return;
  const char first = text_[position_];
  const std::string_view two = text_.substr(position_, 2);
  if (Contains(kNameStart, first)) {
    const std::string_view rest = text_.substr(position_);
    const auto* end = std::find_if_not(rest.begin(), rest.end(), IsNamePart);
    next_ = {Token::Kind::Name, rest.substr(0, static_cast<std::size_t>(end - rest.begin())),
             position_};
  } else if (Contains(kDigits, first) ||
             (first == '.' && two.size() == 2 && Contains(kDigits, two[1]))) {
    next_ = Number(position_);
  } else if (two == "..") {
    next_ = {Token::Kind::Range, two, position_};
  } else if (Contains(kSymbols, first)) {
    next_ = {Token::Kind::Symbol, two.substr(0, 1), position_};
  } else {
    Fail(position_, "a character that no program text has");
    return;
  }
  position_ += next_.text.size();
}

Token Scanner::Number(std::size_t start) {
  const std::string_view rest = text_.substr(start);
  double value = 0.0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
  auto length = static_cast<std::size_t>(end - rest.data());
  // The first number of a range, "0..3".
  if (rest.substr(length - 1, 2) == "..") --length;
  if (error != std::errc{} || value > std::numeric_limits<float>::max()) {
    Fail(start, "a number that is too large or too small");
    return next_;
  }
  const std::string_view text = rest.substr(0, length);
  const bool isInteger = text.find_first_not_of(kDigits) == std::string_view::npos;
  return {isInteger ? Token::Kind::Integer : Token::Kind::Number, text, start,
          static_cast<float>(value)};
}

} // namespace halvenor::raster
