#include "render/offscreen_show.h"

#include "host/install_paths.h"
#include "host/plugin_module.h"
#include "platform/clock.h"
#include "platform/gl_choice.h"
#include "presets/look.h"
#include "render/time_line.h"

#include <cstring>
#include <optional>
#include <utility>

namespace halvenor::render {
namespace {

// Time 0 on the plug-in's clock. It lies further from the clock's zero than any frame interval.
constexpr std::uint64_t kOrigin = 1000 * kNanosecondsPerSecond;

std::span<std::byte> BytesOf(Settings& settings) {
  return std::as_writable_bytes(std::span(&settings, 1));
}

} // namespace

OffscreenShow::OffscreenShow(const Options& options)
    : log_(LogCapture::Echo::Nothing, "halvenor-render") {
  if (options.preferencesFolder.empty())
    preferences_ = std::make_unique<MemoryPreferenceStore>();
  else
    preferences_ = std::make_unique<FilePreferenceStore>(options.preferencesFolder);
  port_.kind = kHalvenorPortOffscreen;
  port_.bounds = {0, 0, static_cast<std::int16_t>(options.height),
                  static_cast<std::int16_t>(options.width)};
  port_.frameFinished = &TakeFrame;
  port_.frameRefCon = this;
}

OffscreenShow::~OffscreenShow() {
  plugin_.reset();
  clock::UseRealTime();
}

std::unique_ptr<OffscreenShow> OffscreenShow::Open(const Options& options, std::string& error) {
  std::unique_ptr<OffscreenShow> show(new OffscreenShow(options));
  return show->Start(options, error) ? std::move(show) : nullptr;
}

// What the plug-in wrote to its log, as the end of a sentence.
std::string OffscreenShow::Because() {
  const std::string text = log_.TakeText();
  return text.empty() ? "" : ": " + text;
}

bool OffscreenShow::Start(const Options& options, std::string& error) {
  if (const auto choice = GlChoiceFrom(options.gl)) ChooseGl(*choice);
  const auto module =
      PluginModule::Load(options.pluginPath.empty() ? InstalledPluginPath()
                                                    : std::filesystem::path(options.pluginPath),
                         error);
  if (!module) return false;
  plugin_ = PluginHost::Create(*module, *this, error);
  if (!plugin_) return false;
  const PluginRegistration& limits = plugin_->Registration();
  if (options.width < limits.minWidth || options.width > limits.maxWidth ||
      options.height < limits.minHeight || options.height > limits.maxHeight) {
    error = "--size: " + limits.name + " draws from " + std::to_string(limits.minWidth) + "x" +
            std::to_string(limits.minHeight) + " to " + std::to_string(limits.maxWidth) + "x" +
            std::to_string(limits.maxHeight) + " pixels";
    return false;
  }
  LoadSettings(options);

  clock::UseStepped(kOrigin - TimeOfFrame(1, DrawRate(options)));
  if (const Status result = plugin_->Init(); !plugin_->IsInitialized()) {
    error = "the plug-in cannot start (status " + std::to_string(result) + ")" + Because();
    return false;
  }
  if (const Status result = plugin_->Show(&port_, port_.bounds, 0); result != status::kOk) {
    error =
        "the plug-in cannot open its display (status " + std::to_string(result) + ")" + Because();
    return false;
  }
  // 'show' draws a frame and the plug-in's thread draws another before its first sleep. Neither is
  // part of the output.
  if (clock::WaitUntilParked() != clock::StepResult::Frame) {
    error = "the plug-in draws no frames" + Because();
    return false;
  }
  log_.StartEcho(options.verbose ? LogCapture::Echo::Everything : LogCapture::Echo::Errors);
  log_.TakeText(); // has been shown
  return true;
}

// Gives the plug-in the stored block, or defaults without the frame rate, with the look and
// then the settings of the command line.
void OffscreenShow::LoadSettings(const Options& options) {
  Settings settings{};
  std::size_t size = 0;
  const std::string& name = plugin_->Registration().name;
  const Status result = preferences_->Read(name, BytesOf(settings), size);
  const bool isStored = result != status::kOk || size > 0;
  const bool isOurs = plugin_->Registration().creator == kSettingsCreator;
  if ((isStored || !isOurs) && !options.look && options.assignments.empty()) return;
  if (result != status::kOk || size == 0 || settings.settingsVersion != kSettingsVersion) {
    settings = DefaultSettings();
    settings.showFrameRate = 0;
  }
  if (options.look) {
    CopyLook(*options.look, settings);
    settings.autopilot = 0; // it would leave the look at once
  }
  for (const Assignment& assignment : options.assignments)
    SetFromText(settings, *assignment.field, assignment.value);
  // In memory, so that settings of the command line are not stored.
  preferences_ = std::make_unique<MemoryPreferenceStore>();
  preferences_->Write(name, BytesOf(settings));
}

void OffscreenShow::Play(const std::string& title, const std::string& artist) {
  TrackRecords records = MakeTrackRecords(title, artist);
  plugin_->Play(records.Track(), records.Stream());
}

void OffscreenShow::Deliver(const RenderVisualData& record) {
  RenderVisualData copy = record;
  plugin_->RenderData(&copy, deliveries_++);
}

void OffscreenShow::Stop() {
  plugin_->Stop();
}

void OffscreenShow::Press(char key) {
  plugin_->Key(key, false);
}

bool OffscreenShow::Draw(std::uint64_t time, std::span<std::uint8_t> picture, std::string& error) {
  picture_ = picture;
  taken_ = false;
  port_.destination = picture.data();
  port_.destinationStride = std::ptrdiff_t{4} * (port_.bounds.right - port_.bounds.left);
  const clock::StepResult result = plugin_->Step(kOrigin + time);
  port_.destination = nullptr;
  picture_ = {};
  if (result == clock::StepResult::Frame && taken_) return true;
  error = "the plug-in has stopped drawing" + Because();
  return false;
}

bool OffscreenShow::DrawUnseen(std::uint64_t time, HalvenorFrameUse use, std::string& error) {
  if (plugin_->Step(kOrigin + time, use) == clock::StepResult::Frame) return true;
  error = "the plug-in has stopped drawing" + Because();
  return false;
}

void OffscreenShow::TakeFrame(void* refCon, const HalvenorFrame* frame) {
  auto* const self = static_cast<OffscreenShow*>(refCon);
  const std::size_t rowBytes = std::size_t{4} * static_cast<std::size_t>(frame->width);
  const auto rows = static_cast<std::size_t>(frame->height);
  if (self->picture_.size() != rowBytes * rows) return;
  self->taken_ = true;
  // The port's own memory, unless somebody else has finished the frame.
  const std::uint8_t* from = frame->topRow;
  std::uint8_t* to = self->picture_.data();
  if (from == to) return;
  for (std::size_t row = 0; row < rows; ++row, from += frame->stride, to += rowBytes)
    std::memcpy(to, from, rowBytes);
}

} // namespace halvenor::render
