// Prints how many gigabytes a second one thread copies between two blocks of 64 MiB: the median of
// nine copies. What is read and what is written count once each.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

int main() {
  constexpr std::size_t kBytes = std::size_t{64} << 20;
  std::vector<char> from(kBytes, 1);
  std::vector<char> to(kBytes, 2);
  std::array<double, 9> rates{};
  for (double& rate : rates) {
    const auto began = std::chrono::steady_clock::now();
    std::memcpy(to.data(), from.data(), kBytes);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    from[0] = to[kBytes - 1];
    rate = 2.0 * kBytes / took.count() / 1e9;
  }
  std::nth_element(rates.begin(), rates.begin() + 4, rates.end());
  std::printf("%.1f\n", rates[4]);
}
