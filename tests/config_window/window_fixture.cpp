#include "tests/config_window/window_fixture.h"

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QColorDialog>

#include <atomic>
#include <dlfcn.h>
#include <mutex>
#include <thread>

namespace halvenor::test {
namespace {

std::mutex lock;
std::atomic<std::thread::id> holder;

bool Enter() {
  if (holder == std::this_thread::get_id()) return false;
  lock.lock();
  holder = std::this_thread::get_id();
  ++Host::guards;
  return true;
}
void Leave() {
  holder = std::thread::id{};
  lock.unlock();
}
VisualPluginData* Record() {
  return Host::hasRecord ? &Host::record : nullptr;
}
constexpr GuardBacking kBacking{Enter, Leave, Record};

Status Callback(VisualPluginData* record, int code) {
  EXPECT_EQ(holder.load(), std::this_thread::get_id()) << "called back outside the guard";
  EXPECT_EQ(record, &Host::record);
  Host::codes.push_back(code);
  return Host::refusal;
}

template <typename Entry>
void LookUp(void* module, const char* name, Entry& entry) {
  entry = reinterpret_cast<Entry>(dlsym(module, name));
  EXPECT_NE(entry, nullptr) << name;
}

} // namespace

VisualPluginData Host::record;
int Host::guards = 0;
bool Host::hasRecord = true;
std::vector<int> Host::codes;
Status Host::refusal = status::kOk;

const Module& LoadedModule() {
  static const Module loaded = [] {
    Module module{};
    void* handle = dlopen(HALVENOR_CONFIGURATION_MODULE, RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(handle, nullptr) << dlerror();
    LookUp(handle, configuration_entry::kInitialize, module.initialize);
    LookUp(handle, configuration_entry::kOrderWindowFront, module.orderWindowFront);
    LookUp(handle, configuration_entry::kAddPreset, module.addPreset);
    LookUp(handle, configuration_entry::kSwitchToManual, module.switchToManual);
    LookUp(handle, configuration_entry::kLogSettings, module.logSettings);
    return module;
  }();
  return loaded;
}

Settings Host::Present() {
  const RecordGuard guard;
  return record.settings;
}

void Host::Change(const std::function<void(Settings&)>& change) {
  const RecordGuard guard;
  change(record.settings);
}

Status Host::CallLocked(ConfigurationActionEntry entry) {
  const RecordGuard guard;
  const Status status = LoadedModule().initialize(Callback, guard.Record());
  return status == status::kOk ? entry() : status;
}

void Set(Settings& settings, std::string_view field, std::string_view text) {
  const auto problem = SetFromText(settings, *FindSetting(field), text);
  EXPECT_EQ(problem, std::nullopt) << *problem;
}

WindowFixture::WindowFixture() {
  const std::pair<const char*, const char*> folders[] = {
      {"XDG_DATA_HOME", "data"}, {"XDG_CACHE_HOME", "cache"}, {"XDG_CONFIG_HOME", "config"}};
  for (const auto& [variable, name] : folders)
    qputenv(variable, Folder(name).toUtf8());
  qputenv("XDG_RUNTIME_DIR", folder_.path().toUtf8());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("HALVENOR_TEST_RENDERS", Folder("renders").toUtf8());
  qputenv("HALVENOR_TEST_PICTURE", Folder("picture.png").toUtf8());
  static int count = 1;
  static char name[] = "window_test";
  static char* words[] = {name, nullptr};
  application_ = std::make_unique<QApplication>(count, words);
  Host::record = {};
  Host::record.settings = DefaultSettings();
  Host::hasRecord = true;
  Host::codes.clear();
  Host::refusal = status::kOk;
  SetGuardBacking(&kBacking);
}

WindowFixture::~WindowFixture() {
  EndApplication();
  SetGuardBacking(nullptr);
}

void WindowFixture::Open() {
  ASSERT_EQ(Host::CallLocked([] { return status::kOk; }), status::kOk);
  ASSERT_EQ(LoadedModule().orderWindowFront(), status::kOk);
  ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
}

void WindowFixture::AwaitLooks() {
  const int before = Host::guards;
  EXPECT_TRUE(QTest::qWaitFor([&] { return Host::guards > before + 3; }));
}

QWidget* WindowFixture::Window() const {
  QWidget* found = nullptr;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() != "halvenorConfiguration") continue;
    EXPECT_EQ(found, nullptr) << "two windows";
    found = widget;
  }
  return found;
}

void WindowFixture::Click(const char* name) const {
  QTest::mouseClick(Find<QAbstractButton>(name), Qt::LeftButton);
}

void WindowFixture::Move(const SettingField& field) const {
  const std::string name(field.name);
  auto* editor = Find<QWidget>(name.c_str());
  if (!editor) return;
  editor->setFocus();
  switch (field.type) {
  case SettingType::Flag:
    QTest::keyClick(editor, Qt::Key_Space);
    break;
  case SettingType::Color: {
    QTest::keyClick(editor, Qt::Key_Space);
    auto* dialog = Window()->findChild<QColorDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(dialog->isModal());
    const QColor now = dialog->currentColor();
    dialog->setCurrentColor(QColor(now.green(), now.blue(), now.red()));
    dialog->accept();
    QTest::qWait(0); // it deletes itself
    break;
  }
  case SettingType::Integer:
  case SettingType::Real:
    if (auto* slider = Window()->findChild<QWidget*>(QString::fromStdString(name + ".slider"))) {
      QTest::keyClick(slider, Qt::Key_Right);
    } else {
      QTest::keyClick(editor, field.choices.empty() ? Qt::Key_Up : Qt::Key_Down);
    }
    break;
  }
}

} // namespace halvenor::test
