#include "desktop/window/visualizer.h"

#include "host/plugin_module.h"

#include <functional>
#include <system_error>
#include <utility>

namespace halvenor {

namespace {

// Dragging an edge changes the size too often to redraw each time; entering full screen passes
// through sizes that should not be drawn.
constexpr int kResizeMilliseconds = 40;
constexpr int kSwitchMilliseconds = 150;

// Passes everything on to another store and reports its failures.
class ReportingStore final : public PreferenceStore {
public:
  using Report = std::function<void(const QString& line)>;

  ReportingStore(std::unique_ptr<PreferenceStore> store, Report report)
      : store_(std::move(store)), report_(std::move(report)) {}

  Status Read(std::string_view plugin, std::span<std::byte> buffer,
              std::size_t& sizeRead) override {
    const Status status = store_->Read(plugin, buffer, sizeRead);
    if (status != status::kOk) {
      report_(Visualizer::tr("The visualizer's settings cannot be read, so it starts with its "
                             "defaults: %1.")
                  .arg(ReasonOf(status)));
    }
    return status;
  }
  Status Write(std::string_view plugin, std::span<const std::byte> block) override {
    const Status status = store_->Write(plugin, block);
    if (status != status::kOk) {
      report_(Visualizer::tr("The visualizer's settings cannot be saved: %1. Check that there is "
                             "free space and that you may write there.")
                  .arg(ReasonOf(status)));
    }
    return status;
  }

private:
  static QString ReasonOf(Status status) {
    return QString::fromStdString(std::generic_category().message(-status));
  }

  const std::unique_ptr<PreferenceStore> store_;
  const Report report_;
};

} // namespace

Visualizer::Visualizer(std::unique_ptr<PreferenceStore> store)
    : store_(std::make_unique<ReportingStore>(std::move(store),
                                              [this](const QString& line) { ReportStore(line); })) {
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
    error = "The plug-in " + module->Path().string() + " ran out of memory while starting";
    return nullptr;
  }
  visualizer->SetSeen(true);
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

void Visualizer::SetSeen(bool seen) {
  plugin_->SetFrameUse(seen ? kHalvenorFrameTimely : kHalvenorFrameTrailsOnly);
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

// Comes from inside a message, and before anybody listens.
void Visualizer::ReportStore(const QString& line) {
  QMetaObject::invokeMethod(
      this, [this, line] { emit Reported(line); }, Qt::QueuedConnection);
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
