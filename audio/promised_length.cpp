#include "audio/promised_length.h"

#include "audio/gst_media.h"
#include "files/file_bytes.h"
#include "files/translated.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <span>
#include <string>
#include <string_view>

namespace halvenor {

namespace {

constexpr std::size_t kMostRead = 1 << 20;         // bytes: tags with pictures come first
constexpr std::uint64_t kUnknownSize = 0x7FFFF000; // and above: written before it was known

/// Numbers within the beginning of a file; 0 beyond it.
class Bytes {
public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}
  [[nodiscard]] std::uint64_t Big(std::size_t at, int size) const {
    std::uint64_t value = 0;
    for (int i = 0; i < size; ++i)
      value = value << 8U | Byte(at + static_cast<std::size_t>(i));
    return value;
  }
  [[nodiscard]] std::uint64_t Little(std::size_t at, int size) const {
    std::uint64_t value = 0;
    for (int i = size - 1; i >= 0; --i)
      value = value << 8U | Byte(at + static_cast<std::size_t>(i));
    return value;
  }
  [[nodiscard]] bool Has(std::size_t at, std::string_view text) const {
    return at <= bytes_.size() && bytes_.substr(at).starts_with(text);
  }
  [[nodiscard]] std::size_t Size() const { return bytes_.size(); }

private:
  [[nodiscard]] std::uint8_t Byte(std::size_t at) const {
    return at < bytes_.size() ? static_cast<std::uint8_t>(bytes_[at]) : 0;
  }
  std::string_view bytes_;
};

std::optional<double> Quotient(double amount, double rate) {
  return amount > 0 && rate > 0 ? std::optional(amount / rate) : std::nullopt;
}

/// Where the content of a chunk begins; 0 if there is none. Chunks begin at even places.
std::size_t FindChunk(const Bytes& file, std::string_view name, bool big) {
  constexpr std::size_t kFormHeader = 12;
  constexpr std::size_t kChunkHeader = 8;
  for (std::size_t at = kFormHeader; at + kChunkHeader <= file.Size();) {
    if (file.Has(at, name)) return at + kChunkHeader;
    const std::uint64_t size = big ? file.Big(at + 4, 4) : file.Little(at + 4, 4);
    at += kChunkHeader + size + size % 2;
  }
  return 0;
}

std::optional<double> OfWave(const Bytes& file) {
  const std::size_t format = FindChunk(file, "fmt ", false);
  const std::size_t data = FindChunk(file, "data", false);
  if (format == 0 || data == 0) return std::nullopt;
  const std::uint64_t size = file.Little(data - 4, 4);
  if (size >= kUnknownSize) return std::nullopt;
  return Quotient(static_cast<double>(size), static_cast<double>(file.Little(format + 8, 4)));
}

std::optional<double> OfAiff(const Bytes& file) {
  constexpr int kBias = 16383 + 63; // of an 80-bit number with 64 bits of fraction
  const std::size_t common = FindChunk(file, "COMM", true);
  if (common == 0) return std::nullopt;
  const double rate = std::ldexp(static_cast<double>(file.Big(common + 10, 8)),
                                 static_cast<int>(file.Big(common + 8, 2)) - kBias);
  return Quotient(static_cast<double>(file.Big(common + 2, 4)), rate);
}

std::optional<double> OfAu(const Bytes& file) {
  constexpr std::array kBytesOfEncoding{0, 1, 1, 2, 3, 4, 4, 8}; // 27 is a-law
  const std::uint64_t encoding = file.Big(12, 4);
  const int width =
      encoding < kBytesOfEncoding.size() ? kBytesOfEncoding.at(encoding) : (encoding == 27 ? 1 : 0);
  if (file.Big(8, 4) >= kUnknownSize) return std::nullopt;
  return Quotient(static_cast<double>(file.Big(8, 4)),
                  static_cast<double>(file.Big(16, 4) * file.Big(20, 4)) * width);
}

/// The first frame may say how many follow. Tags come before it.
std::optional<double> OfMp3(const Bytes& file) {
  std::size_t at = 0;
  if (file.Has(0, "ID3")) {
    for (std::size_t i = 6; i < 10; ++i) // seven bits each
      at = at << 7U | (file.Big(i, 1) & 0x7FU);
    at += 10;
  }
  const std::uint64_t frame = file.Big(at, 4);
  if (frame >> 21U != 0x7FF || (frame >> 17U & 3U) != 1) return std::nullopt; // layer III
  constexpr std::array kRates{44100, 48000, 32000, 0};
  const std::uint64_t version = frame >> 19U & 3U; // 3 is MPEG 1, 2 is MPEG 2, 0 is MPEG 2.5
  const bool mono = (frame >> 6U & 3U) == 3;
  const bool first = version == 3;
  const double rate = static_cast<double>(kRates.at(frame >> 10U & 3U)) / (first          ? 1
                                                                           : version == 2 ? 2
                                                                                          : 4);
  at += 4U + (first ? (mono ? 17U : 32U) : (mono ? 9U : 17U));
  const bool hasFrames = (file.Has(at, "Xing") || file.Has(at, "Info")) && file.Big(at + 4, 4) % 2;
  if (!hasFrames) return std::nullopt;
  return Quotient(static_cast<double>(file.Big(at + 8, 4)) * (first ? 1152 : 576), rate);
}

} // namespace

std::optional<MissingSound> FindMissingSound(double promised, double decoded) {
  constexpr double kLeastSeconds = 0.5;
  constexpr double kLeastShare = 0.01;
  const double missing = promised - decoded;
  if (!(missing > std::max(kLeastSeconds, kLeastShare * promised))) return std::nullopt;
  return MissingSound{promised, missing};
}

std::string DescribeMissingSound(const std::string& name, const MissingSound& missing) {
  const auto number = [](double seconds) {
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(), "%.2f", seconds);
    return std::string(text.data());
  };
  return gst_media::About(
      name,
      Filled(Translated("halvenor::Audio", "%1 of its %2 seconds of sound are missing or damaged"),
             {number(missing.missing), number(missing.promised)}));
}

std::optional<double> PromisedByHeader(const std::filesystem::path& file) {
  const OpenedFile opened = OpenRegularFile(AT_FDCWD, file.string(), Links::Follow, kAnySize);
  std::string beginning(kMostRead, '\0');
  const std::int64_t size =
      opened ? ReadAt(opened.descriptor.Get(), 0, std::as_writable_bytes(std::span(beginning))) : 0;
  beginning.resize(static_cast<std::size_t>(std::max<std::int64_t>(size, 0)));
  const Bytes bytes(beginning);
  if (bytes.Has(0, "RIFF") && bytes.Has(8, "WAVE")) return OfWave(bytes);
  if (bytes.Has(0, "FORM") && bytes.Has(8, "AIF")) return OfAiff(bytes);
  if (bytes.Has(0, ".snd")) return OfAu(bytes);
  return OfMp3(bytes);
}

} // namespace halvenor
