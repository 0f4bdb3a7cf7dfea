// Numbers in texts that are drawn: "59.9" wherever a person lives.
#pragma once

#include <locale.h>

namespace halvenor {

/// While it lives, this thread prints numbers with a point. A host may have set the locale of the
/// process to one that prints a comma.
class CNumbers {
public:
  CNumbers() : before(uselocale(Plain())) {}
  ~CNumbers() { uselocale(before); }
  CNumbers(const CNumbers&) = delete;
  CNumbers& operator=(const CNumbers&) = delete;

private:
  static locale_t Plain() {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
  }

  locale_t before;
};

} // namespace halvenor
