#include "gl_calls/current_table.h"

#include <atomic>

namespace halvenor::gl_calls {
namespace {

template <Function F, class Signature>
struct Nothing;
template <Function F, class Result, class... Arguments>
struct Nothing<F, Result(Arguments...)> {
  static Result Call(Arguments...) { return Result(); }
};

std::atomic<Interceptor> interceptor = nullptr;

} // namespace

constinit Table without_context = MakeTable<Nothing>();
constinit thread_local const Table* current = &without_context;

void Use(const Table* table) {
  const Interceptor intercept = interceptor;
  current = table == nullptr ? &without_context : intercept ? intercept(table) : table;
}

void SetInterceptor(Interceptor intercept) {
  interceptor = intercept;
}

} // namespace halvenor::gl_calls
