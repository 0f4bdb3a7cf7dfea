#include "tests/stand_ins/recording.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>

namespace halvenor::stand_ins {
namespace {

using Hook = std::function<void()>;

// What is set for one function. Relaxed atomics throughout: the stand-ins must not put threads in
// order that the code under test leaves unordered.
struct Entry {
  const char* name;
  std::atomic<std::uint64_t> calls{0};
  std::atomic<unsigned> error{0};
  std::atomic<std::uint64_t> first_failing{0}; // in terms of `calls`, counted from 1
  std::atomic<std::uint64_t> failing{0};
  std::atomic<const Hook*> hook{nullptr};
};

#define HALVENOR_GL_ENTRY(arity, name, kinds) Entry{#name},
#define HALVENOR_PLATFORM_ENTRY(name) Entry{#name},
Entry entries[] = {HALVENOR_GL_FUNCTIONS(HALVENOR_GL_ENTRY)
                       HALVENOR_PLATFORM_FUNCTIONS(HALVENOR_PLATFORM_ENTRY)};
#undef HALVENOR_GL_ENTRY
#undef HALVENOR_PLATFORM_ENTRY

std::atomic<bool> silent{false};

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

Entry& EntryOf(Function function) {
  return entries[static_cast<std::size_t>(function)];
}

Entry& EntryOf(std::string_view name) {
  for (Entry& entry : entries) {
    if (name == entry.name) return entry;
  }
  std::fprintf(stderr, "no stand-in has a function %.*s\n", static_cast<int>(name.size()),
               name.data());
  std::abort();
}

} // namespace

const char* NameOf(Function function) {
  return EntryOf(function).name;
}

unsigned Enter(Function function) {
  Entry& entry = EntryOf(function);
  if (const Hook* hook = entry.hook.load(std::memory_order_acquire)) (*hook)();
  const std::uint64_t call = entry.calls.fetch_add(1, std::memory_order_relaxed) + 1;
  const std::uint64_t count = entry.failing.load(std::memory_order_relaxed);
  if (count == 0) return 0;
  const std::uint64_t first = entry.first_failing.load(std::memory_order_relaxed);
  const bool fails = call >= first && call - first < count;
  return fails ? entry.error.load(std::memory_order_relaxed) : 0;
}

bool Recording() {
  return !silent.load(std::memory_order_relaxed);
}

std::string NumberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value + 0.0); // no "-0"
  return text;
}

void Record(Function function, const std::vector<std::string>& parts, std::vector<double> arguments,
            std::vector<Vertex> vertices) {
  std::string text = std::string(NameOf(function)) + "(";
  for (std::size_t i = 0; i < parts.size(); ++i)
    text += (i == 0 ? "" : ", ") + parts[i];
  text += ")";
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  log.calls.push_back(
      {NameOf(function), std::move(text), std::move(arguments), std::move(vertices)});
}

void ReportMisuse(std::string line) {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  constexpr std::size_t kEnough = 100; // a loop that goes wrong must not fill the memory
  if (log.misuses.size() < kEnough) log.misuses.push_back(std::move(line));
}

std::vector<Call> Calls() {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  return log.calls;
}

std::vector<std::string> CallTexts() {
  std::vector<std::string> texts;
  for (Call& call : Calls())
    texts.push_back(std::move(call.text));
  return texts;
}

std::vector<Call> CallsOf(std::string_view function) {
  const std::string_view name = EntryOf(function).name;
  std::vector<Call> calls = Calls();
  std::erase_if(calls, [&](const Call& call) { return call.function != name; });
  return calls;
}

void ClearCalls() {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  log.calls.clear();
}

std::uint64_t CallCount(std::string_view function) {
  return EntryOf(function).calls.load(std::memory_order_relaxed);
}

void SetSilent(bool on) {
  silent.store(on, std::memory_order_relaxed);
}

void Fail(std::string_view function, unsigned error, std::uint64_t first, std::uint64_t count) {
  Entry& entry = EntryOf(function);
  entry.failing.store(0, std::memory_order_relaxed);
  entry.error.store(error, std::memory_order_relaxed);
  entry.first_failing.store(entry.calls.load(std::memory_order_relaxed) + first,
                            std::memory_order_relaxed);
  entry.failing.store(count, std::memory_order_relaxed);
}

void OnCall(std::string_view function, std::function<void()> hook) {
  Entry& entry = EntryOf(function);
  const Hook* kept = nullptr;
  if (hook) {
    Log& log = TheLog();
    const std::lock_guard lock(log.mutex);
    kept = log.hooks.emplace_back(std::make_unique<const Hook>(std::move(hook))).get();
  }
  entry.hook.store(kept, std::memory_order_release);
}

std::vector<std::string> Misuses() {
  Log& log = TheLog();
  const std::lock_guard lock(log.mutex);
  return log.misuses;
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
