#include "platform/gl_choice.h"

#include <atomic>
#include <charconv>
#include <cstdlib>

namespace halvenor {
namespace {

std::atomic<GlChoice> chosen = GlChoice::Automatic;

struct Name {
  std::string_view name;
  GlChoice choice;
};
constexpr Name kNames[] = {
    {"auto", GlChoice::Automatic}, {"cpu", GlChoice::Cpu}, {"driver", GlChoice::Driver}};

constexpr int kMostThreads = 256;

std::string_view Variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

} // namespace

std::optional<GlChoice> GlChoiceFrom(std::string_view name) {
  for (const Name& entry : kNames)
    if (entry.name == name) return entry.choice;
  return std::nullopt;
}

void ChooseGl(GlChoice choice) {
  chosen = choice;
}

GlChoice ChosenGl() {
  const GlChoice choice = chosen;
  if (choice != GlChoice::Automatic) return choice;
  return GlChoiceFrom(Variable("HALVENOR_GL")).value_or(GlChoice::Automatic);
}

int CpuThreads() {
  const std::string_view text = Variable("HALVENOR_THREADS");
  int threads = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), threads);
  const bool isValid = error == std::errc() && end == text.data() + text.size() && threads >= 0 &&
                       threads <= kMostThreads;
  return isValid ? threads : 0;
}

} // namespace halvenor
