#include "tests/stand_ins/recording.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>

namespace halvenor::stand_ins {
namespace {

using Hook = std::function<void()>;

// What is set for one function.
struct Entry {
  Relaxed<std::uint64_t> calls{0};
  Relaxed<unsigned> error{0};
  Relaxed<std::uint64_t> first_failing{0}; // in terms of `calls`, counted from 1
  Relaxed<std::uint64_t> failing{0};
  std::atomic<const Hook*> hook{nullptr};
};
std::array<Entry, static_cast<std::size_t>(Function::kCount)> entries;

Relaxed<bool> silent{false};

struct Log {
  std::mutex mutex;
  std::vector<Call> calls;
  std::vector<std::string> misuses;
  std::vector<std::unique_ptr<const Hook>> hooks; // all until Reset: one may still be running
};

// Never destroyed: threads may still draw while the program ends.
Log& TheLog() {
  static Log& log = *new Log;
  return log;
}

#define HALVENOR_GL_NAME(name, kinds) #name ", "
#define HALVENOR_TEXT(...) #__VA_ARGS__
#define HALVENOR_TEXT_OF(list) HALVENOR_TEXT(list)
const std::vector<std::string_view>& function_names = *new std::vector(SplitList(
    HALVENOR_GL_FUNCTIONS(HALVENOR_GL_NAME) HALVENOR_TEXT_OF(HALVENOR_PLATFORM_FUNCTIONS)));

Entry& EntryOf(Function function) {
  return entries.at(static_cast<std::size_t>(function));
}

Entry& EntryOf(std::string_view name) {
  for (std::size_t i = 0; i < function_names.size(); ++i)
    if (function_names[i] == name) return entries.at(i);
  std::fprintf(stderr, "no stand-in has a function %s\n", std::string(name).c_str());
  std::abort();
}

} // namespace

std::vector<std::string_view> SplitList(std::string_view list, std::string_view separator) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at < list.size();) {
    const std::size_t end = std::min(list.find(separator, at), list.size());
    parts.push_back(list.substr(at, end - at));
    at = end + separator.size();
  }
  return parts;
}

std::string_view NameOf(Function function) {
  return function_names.at(static_cast<std::size_t>(function));
}

unsigned Enter(Function function) {
  Entry& entry = EntryOf(function);
  if (const Hook* hook = entry.hook.load(std::memory_order_acquire)) (*hook)();
  const std::uint64_t call = entry.calls.Add(1) + 1;
  const std::uint64_t first = entry.first_failing;
  const bool fails = call >= first && call - first < entry.failing;
  return fails ? unsigned{entry.error} : 0U;
}

bool Recording() {
  return !silent;
}

std::string NumberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value + 0.0); // no "-0"
  return text;
}

void Record(Function function, Arguments arguments) {
  std::string text = std::string(NameOf(function)) + "(";
  for (const std::string& part : arguments.parts)
    text += (text.back() == '(' ? "" : ", ") + part;
  text += ")";
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  log.calls.push_back({NameOf(function), std::move(text), std::move(arguments.numbers)});
}

void ReportMisuse(std::string line) {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  constexpr std::size_t kEnough = 100; // a loop that goes wrong must not fill the memory
  if (log.misuses.size() < kEnough) log.misuses.push_back(std::move(line));
}

std::vector<Call> Calls() {
  const std::lock_guard lock(TheLog().mutex);
  return TheLog().calls;
}

std::vector<std::string> CallTexts() {
  std::vector<std::string> texts;
  for (Call& call : Calls())
    texts.push_back(std::move(call.text));
  return texts;
}

std::vector<Call> CallsOf(std::string_view function) {
  (void)EntryOf(function); // a name that there is
  std::vector<Call> calls = Calls();
  std::erase_if(calls, [&](const Call& call) { return call.function != function; });
  return calls;
}

std::vector<std::string> Listed(std::string_view calls) {
  const auto texts = SplitList(calls, "; ");
  return {texts.begin(), texts.end()};
}

void ClearCalls() {
  const std::lock_guard lock(TheLog().mutex);
  TheLog().calls.clear();
}

std::uint64_t CallCount(std::string_view function) {
  return EntryOf(function).calls;
}

void SetSilent(bool on) {
  silent = on;
}

void Fail(std::string_view function, unsigned error, std::uint64_t first, std::uint64_t count) {
  Entry& entry = EntryOf(function);
  entry.failing = 0;
  entry.error = error;
  entry.first_failing = entry.calls + first;
  entry.failing = count;
}

void OnCall(std::string_view function, std::function<void()> hook) {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  const Hook* kept = nullptr;
  if (hook) kept = log.hooks.emplace_back(std::make_unique<const Hook>(std::move(hook))).get();
  EntryOf(function).hook.store(kept, std::memory_order_release);
}

std::vector<std::string> Misuses() {
  const std::lock_guard lock(TheLog().mutex);
  return TheLog().misuses;
}

void Reset() {
  ResetAgl(); // first: it may find misuses
  ResetGl();
  ResetBundle();
  SetSilent(false);
  for (Entry& entry : entries) {
    entry.hook = nullptr;
    entry.failing = 0;
    entry.calls = 0;
  }
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  log.calls.clear();
  log.misuses.clear();
  log.hooks.clear();
}

} // namespace halvenor::stand_ins
