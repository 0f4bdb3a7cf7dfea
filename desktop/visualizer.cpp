#include "desktop/visualizer.h"

#include "host/plugin_module.h"

namespace halvenor {

namespace {

// A size that somebody drags changes more often than anybody sees; the way into full screen leads
// through sizes that nobody wants to see.
constexpr int kResizeMilliseconds = 40;
constexpr int kSwitchMilliseconds = 150;

} // namespace

Visualizer::Visualizer(std::unique_ptr<PreferenceStore> store) : store_(std::move(store)) {
  settle_.setSingleShot(true);
  connect(&settle_, &QTimer::timeout, this, &Visualizer::SetWindow);
}

std::unique_ptr<Visualizer> Visualizer::Create(const std::filesystem::path& plugin,
                                               std::unique_ptr<PreferenceStore> store,
                                               std::string& error) {
  const std::optional<PluginModule> module = PluginModule::Load(plugin, error);
  if (!module) return nullptr;
  std::unique_ptr<Visualizer> visualizer(new Visualizer(std::move(store)));
  visualizer->plugin_ = PluginHost::Create(*module, *visualizer, error);
  if (!visualizer->plugin_) return nullptr;
  if (visualizer->plugin_->Init() == status::kOutOfMemory) {
    error = "the plug-in " + module->Path().string() + " found no memory to start";
    return nullptr;
  }
  return visualizer;
}

Visualizer::~Visualizer() {
  End();
}

void Visualizer::DrawInto(DrawingArea& area) {
  area_ = &area;
  connect(area_, &DrawingArea::Appeared, this, &Visualizer::Show);
  connect(area_, &DrawingArea::Resized, this, [this] {
    if (!settle_.isActive()) settle_.start(kResizeMilliseconds);
  });
  connect(area_, &DrawingArea::AboutToVanish, this, &Visualizer::Hide);
  if (area_->Port()) Show();
}

void Visualizer::TellFullScreen(bool fullScreen) {
  const std::uint32_t options = fullScreen ? kFullScreenOption : 0;
  if (options == windowOptions_) return;
  windowOptions_ = options;
  settle_.start(kSwitchMilliseconds);
}

void Visualizer::End() {
  if (area_) area_->disconnect(this);
  area_ = nullptr;
  settle_.stop();
  plugin_->Cleanup();
}

Status Visualizer::SetFullScreen(bool fullScreen) {
  emit FullScreenWanted(fullScreen);
  return status::kOk;
}

Status Visualizer::SetFullScreenOptions(const FullScreenOptions& options) {
  wantedFullScreen_ = options;
  return status::kOk;
}

void Visualizer::Show() {
  settle_.stop();
  const GrafPtr port = area_->Port();
  if (plugin_->Show(port, port->bounds, windowOptions_) == status::kOk) {
    emit Shown();
  } else {
    disconnect(area_, &DrawingArea::Appeared, this, nullptr);
    emit ShowFailed();
  }
}

void Visualizer::Hide() {
  settle_.stop();
  if (plugin_->IsShown()) plugin_->Hide();
}

void Visualizer::SetWindow() {
  if (!plugin_->IsShown()) return;
  const GrafPtr port = area_->Port();
  plugin_->SetWindow(port, port->bounds, windowOptions_);
}

} // namespace halvenor
