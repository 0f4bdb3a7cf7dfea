// halvenor-render: sound in, moving pictures out.
#include "files/pending_file.h"
#include "files/printable.h"
#include "host/install_paths.h"
#include "render/deliveries.h"
#include "render/offscreen_show.h"
#include "render/options.h"
#include "render/output.h"
#include "render/preset_choice.h"
#include "render/progress.h"
#include "render/stop_signals.h"
#include "render/time_line.h"

#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <unistd.h>

namespace halvenor::render {
namespace {

constexpr int kFailure = 1;

void Tell(const std::string& line) {
  std::fprintf(stderr, "halvenor-render: %s\n", Printable(line, kMessageCharacters).c_str());
}

int Fail(int exitCode, const std::string& error) {
  Tell(error);
  return exitCode;
}

/// Keeps standard output for the frames alone: what any library prints there lands on standard
/// error from now on. Returns the private way to where standard output went, or -1.
int TakeStandardOutput() {
  const int frames = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  dup2(STDERR_FILENO, STDOUT_FILENO);
  return frames;
}

bool SameFile(const std::string& one, const std::string& other) {
  std::error_code none;
  return std::filesystem::equivalent(one, other, none);
}

/// One run of the program.
class Run {
public:
  explicit Run(const Options& options) : options_(options) {}

  /// Opens outputs, then inputs: an output that cannot be written fails before any work.
  bool Open(int framesDescriptor);
  /// Everything up to the end of the sound or the first stop signal.
  bool Perform();
  /// Brings the outputs under their names.
  bool Finish();

  [[nodiscard]] const std::string& Error() const { return error_; }
  /// What there is to say although everything was written; empty when there is nothing.
  [[nodiscard]] std::string Warning() const { return deliveries_->Warning(); }

private:
  bool Dump(const RenderVisualData& record);
  void PressKeysUntil(std::uint64_t time);
  bool DrawUntil(std::uint64_t end);

  const Options& options_;
  std::string error_;
  std::unique_ptr<Output> output_; ///< null when only records are wanted
  PendingFile dump_;               ///< none: no records are wanted
  std::unique_ptr<Deliveries> deliveries_;
  std::unique_ptr<OffscreenShow> show_;
  std::optional<Progress> progress_;
  std::uint64_t frame_ = 0; ///< the next to be drawn
  std::size_t key_ = 0;     ///< the next to be pressed
};

bool Run::Open(int framesDescriptor) {
  if (!options_.output.empty() && SameFile(options_.input, options_.output)) {
    error_ = "the output would replace the input " + options_.input;
    return false;
  }
  if (!options_.output.empty() &&
      !(output_ = OpenOutput(options_, !options_.input.empty(), framesDescriptor, error_)))
    return false;
  if (!options_.dumpFile.empty() && !(dump_ = PendingFile::Create(options_.dumpFile))) {
    error_ = dump_.Problem();
    return false;
  }
  if (!(deliveries_ = Deliveries::Open(options_, error_))) return false;
  if (output_) {
    if (!(show_ = OffscreenShow::Open(options_, error_))) return false;
    if (const MediaTags* const tags = deliveries_->Tags()) show_->Play(tags->title, tags->artist);
  }
  progress_.emplace(options_.progress, deliveries_->Length());
  return true;
}

bool Run::Dump(const RenderVisualData& record) {
  if (!dump_) return true;
  const StopSignals::Interruptible interruptible;
  if (dump_.Write(std::as_bytes(std::span(&record, 1)), StopSignals::HaveArrived)) return true;
  error_ = dump_.Problem();
  return false;
}

// A key acts on the first frame that is not before its time.
void Run::PressKeysUntil(std::uint64_t time) {
  for (; key_ < options_.keys.size() && options_.keys[key_].time <= time; ++key_)
    show_->Press(options_.keys[key_].key);
}

// Draws the frames before `end`, which all show the record just delivered.
bool Run::DrawUntil(std::uint64_t end) {
  for (; StopSignals::Arrived() == 0; ++frame_) {
    const std::uint64_t time = TimeOfFrame(frame_, DrawRate(options_));
    if (time >= end) return true;
    PressKeysUntil(time);
    if (frame_ % static_cast<std::uint64_t>(options_.drawsPerFrame) != 0) {
      if (!show_->DrawUnseen(time, kHalvenorFrameTrailsOnly, error_)) return false;
      continue;
    }
    const std::span<std::uint8_t> picture = output_->NextFrame();
    if (!picture.empty() && !show_->Draw(time, picture, error_)) return false;
    if (picture.empty() || !output_->FinishFrame()) {
      error_ = output_->Error();
      return false;
    }
  }
  return false;
}

bool Run::Perform() {
  while (StopSignals::Arrived() == 0) {
    const Delivery* const delivery = deliveries_->Next();
    if (!delivery) break;
    if (!Dump(delivery->record)) return false;
    if (output_) {
      show_->Deliver(delivery->record);
      const bool heard =
          delivery->sound.empty() ? output_->EndSound() : output_->Sound(delivery->sound);
      if (!heard) {
        error_ = output_->Error();
        return false;
      }
      if (!DrawUntil(delivery->end)) return false;
    }
    progress_->Update(static_cast<double>(delivery->end) / kNanosecondsPerSecond);
  }
  error_ = deliveries_->Error();
  return error_.empty() && StopSignals::Arrived() == 0;
}

bool Run::Finish() {
  progress_.reset();
  if (show_) {
    show_->Stop();
    show_.reset();
  }
  if (output_ && !output_->Finish()) {
    error_ = output_->Error();
    return false;
  }
  if (!dump_ || dump_.Commit()) return true;
  error_ = dump_.Problem();
  return false;
}

int Main(int argc, const char* const* argv) {
  Options options;
  if (const auto end = ReadCommandLine(argc, argv, options))
    return end->error.empty() ? end->exitCode : Fail(end->exitCode, end->error);

  std::filesystem::path plugin(options.pluginPath);
  if (plugin.empty()) plugin = InstalledPluginPath();
  if (options.listPresets)
    return ListPresets(plugin) ? 0 : Fail(kFailure, "cannot write to standard output");
  std::string error;
  if (options.preset && !(options.look = ChoosePreset(*options.preset, plugin, error)))
    return Fail(kFailure, error);

  const StopSignals stopSignals;
  const int framesDescriptor = TakeStandardOutput();
  try {
    Run run(options);
    if (run.Open(framesDescriptor) && run.Perform() && run.Finish()) {
      if (const std::string warning = run.Warning(); !warning.empty()) Tell(warning);
      return 0;
    }
    error = run.Error();
  } catch (const std::bad_alloc&) {
    error = "there is not enough memory for frames of this size";
  }
  if (const int signal = StopSignals::Arrived()) return StopSignals::kStatusBase + signal;
  return Fail(kFailure, error);
}

} // namespace
} // namespace halvenor::render

int main(int argc, char** argv) {
  try {
    return halvenor::render::Main(argc, argv);
  } catch (const std::exception& problem) { // no thread, no memory
    std::fprintf(stderr, "halvenor-render: %s\n", problem.what());
    return halvenor::render::kFailure;
  }
}
