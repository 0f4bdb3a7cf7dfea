// Bundles in made-up folders, asked for by a module that lies in them.
#include "platform/core_foundation.h"
#include "tests/support/scratch_folder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace halvenor {
namespace {

constexpr char kHead[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">";

std::string With(const std::string& key, const std::string& value) {
  return kHead + ("<dict><key>CFBundleName</key><string>a</string><key>" + key + "</key><string>" +
                  value + "</string></dict></plist>");
}

std::string Named(const std::string& identifier) {
  return With("CFBundleIdentifier", identifier);
}

/// A copy of the probe, loaded from its place.
class Module {
public:
  explicit Module(const fs::path& file, bool asLink = false) {
    fs::create_directories(file.parent_path());
    if (asLink)
      fs::create_symlink(BUNDLE_PROBE, file);
    else
      fs::copy_file(BUNDLE_PROBE, file);
    handle_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(handle_, nullptr) << dlerror();
  }
  ~Module() { dlclose(handle_); }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  /// The resources folder, or the letter that says why not.
  [[nodiscard]] std::string Ask(const std::string& identifier, std::ptrdiff_t size = 512) const {
    using Probe = char (*)(const char*, char*, std::ptrdiff_t);
    char buffer[512] = "untouched";
    const auto probe = reinterpret_cast<Probe>(dlsym(handle_, "ProbeResources"));
    const char result = probe(identifier.c_str(), buffer, size);
    if (result != '+') {
      EXPECT_STREQ(buffer, "untouched");
    }
    return result == '+' ? buffer : std::string(1, result);
  }
  [[nodiscard]] CFBundleRef Bundle() const {
    return reinterpret_cast<CFBundleRef (*)()>(dlsym(handle_, "ProbeBundle"))();
  }

private:
  void* handle_;
};

class BundleTest : public testing::Test {
protected:
  [[nodiscard]] fs::path Make(const std::string& name, const std::string& info) const {
    fs::path contents = folder_ / name / "Contents";
    fs::create_directories(contents / "Resources");
    std::ofstream(contents / "Info.plist") << info;
    return contents;
  }

  const ScratchFolder scratch_;
  const fs::path folder_ = fs::canonical(scratch_.Path());
};

TEST_F(BundleTest, EachModuleFindsTheBundlesAroundIt) {
  const fs::path outer = Make("One.bundle", Named("org.example.one"));
  const fs::path inner =
      Make("One.bundle/Contents/Frameworks/In.bundle", Named("org.example.inner"));
  const fs::path twin = Make("Two.bundle", Named("org.example.one"));
  const Module one(outer / "Linux/Probe");
  const Module two(twin / "Linux/Probe");
  const Module deep(inner / "Linux/Probe");
  EXPECT_EQ(one.Ask("org.example.one"), outer / "Resources");
  EXPECT_EQ(two.Ask("org.example.one"), twin / "Resources") << "a copy finds its own";
  EXPECT_EQ(deep.Ask("org.example.inner"), inner / "Resources");
  EXPECT_EQ(deep.Ask("org.example.one"), outer / "Resources");
  EXPECT_EQ(one.Ask("org.example.inner"), "b") << "not inwards";
  EXPECT_EQ(one.Ask("org.example"), "b");

  const fs::path resources = outer / "Resources";
  const auto length = static_cast<std::ptrdiff_t>(resources.native().size());
  EXPECT_EQ(one.Ask("org.example.one", length), "s");
  EXPECT_EQ(one.Ask("org.example.one", length + 1), resources);

  // Found once, it stays, though the file is gone; what lies in it is looked at anew.
  const void* bundle = one.Bundle();
  fs::remove(outer / "Info.plist");
  fs::remove_all(resources);
  EXPECT_EQ(one.Ask("org.example.one"), "r");
  EXPECT_EQ(one.Bundle(), bundle);
}

TEST_F(BundleTest, AModuleMayBeALink) {
  const fs::path contents = Make("Linked.bundle", Named("org.example.linked"));
  const Module module(contents / "Linux/Probe", true);
  EXPECT_EQ(module.Ask("org.example.linked"), contents / "Resources");
}

class PrivateBundleTest : public BundleTest {
protected:
  void SetUp() override {
    BundleTest::SetUp();
    contents_ = Make("Outer.bundle", Named("org.example.outer"));
    module_ = std::make_unique<Module>(contents_ / "Linux/Probe");
    ASSERT_EQ(module_->Ask("org.example.outer"), contents_ / "Resources");
  }
  [[nodiscard]] CFBundleRef Find(const char* name) const {
    const CFURLRef folder = CFBundleCopyPrivateFrameworksURL(module_->Bundle());
    const CFURLRef url =
        CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, folder, name, false);
    const CFBundleRef bundle = CFBundleCreate(kCFAllocatorDefault, url);
    CFRelease(folder);
    CFRelease(url);
    return bundle;
  }

  fs::path contents_;
  std::unique_ptr<Module> module_;
};

TEST_F(PrivateBundleTest, IsTheSameAsLongAsItIsThere) {
  EXPECT_EQ(Find("In.bundle"), nullptr) << "not even a folder for it";
  const fs::path info = Make("Outer.bundle/Contents/Frameworks/In.bundle", "") / "Info.plist";
  const CFBundleRef bundle = Find("In.bundle");
  EXPECT_NE(bundle, nullptr);
  EXPECT_NE(bundle, module_->Bundle());
  EXPECT_EQ(Find("In.bundle"), bundle);
  EXPECT_EQ(Find("../../../Outer.bundle"), module_->Bundle());
  fs::remove(info);
  EXPECT_EQ(Find("In.bundle"), nullptr);
  std::ofstream(info).put('\n');
  EXPECT_EQ(Find("In.bundle"), bundle);
  EXPECT_EQ(Find("Other.bundle"), nullptr);
  EXPECT_EQ(CFURLCreateCopyAppendingPathComponent(kCFAllocatorDefault, nullptr, "a", false),
            nullptr);
  EXPECT_EQ(CFBundleCopyPrivateFrameworksURL(nullptr), nullptr);
  EXPECT_EQ(CFBundleCreate(kCFAllocatorDefault, nullptr), nullptr);
}

TEST_F(PrivateBundleTest, LoadsTheModuleThatItNames) {
  const struct {
    std::string info;
    const char* file; ///< the module; another one has no such function
  } cases[] = {
      {With("CFBundleExecutable", "Named"), "Named"},
      {With("CFBundleName", "Named"), "2"},
      {"not a property list", "3"},
      {With("CFBundleExecutable", ""), "4"},
      {With("CFBundleExecutable", "../Linux/Named"), "5"},
  };
  int number = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.info);
    const std::string name = std::to_string(++number) + ".bundle";
    const fs::path linux = Make("Outer.bundle/Contents/Frameworks/" + name, c.info) / "Linux";
    const CFBundleRef bundle = Find(name.c_str());
    EXPECT_FALSE(CFBundleLoadExecutable(bundle)) << "no module";
    fs::create_directories(linux);
    std::ofstream(linux / c.file) << "not a module";
    EXPECT_FALSE(CFBundleLoadExecutable(bundle));
    EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle, "ProbeBundle"), nullptr);
    fs::remove(linux / c.file);
    fs::copy_file(BUNDLE_PROBE, linux / c.file);
    EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle, "malloc"), nullptr) << "not loaded";
    EXPECT_TRUE(CFBundleLoadExecutable(bundle)) << "tried anew";
    EXPECT_NE(CFBundleGetFunctionPointerForName(bundle, "ProbeBundle"), nullptr);
    EXPECT_EQ(CFBundleGetFunctionPointerForName(bundle, "nothing"), nullptr);
    fs::remove_all(linux);
    EXPECT_TRUE(CFBundleLoadExecutable(bundle)) << "it stays";
  }
  EXPECT_FALSE(CFBundleLoadExecutable(nullptr));
}

TEST_F(BundleTest, WhatIsNoBundleIsNone) {
  const std::string head = kHead;
  const std::string id = "org.example.bad";
  const std::string infos[] = {
      "",
      "not a property list",
      Named(id).substr(0, 120),
      head + "<array><string>" + id + "</string></array></plist>",
      head + "<dict><key>CFBundleName</key><string>" + id + "</string></dict></plist>",
      head + "<dict><key>CFBundleIdentifier</key><integer>1</integer></dict></plist>",
      std::string("bplist00\xff\xff\xff\xff", 12),
  };
  int number = 0;
  for (const std::string& info : infos) {
    const Module module(Make(std::to_string(++number) + ".bundle", info) / "Linux/Probe");
    EXPECT_EQ(module.Ask(id), "b") << info;
  }
  std::ofstream(folder_ / "Info.plist") << Named(id);
  const Module outside(folder_ / "Probe");
  EXPECT_EQ(outside.Ask(id), "b");
  const fs::path beside = Make("Beside.bundle", Named(id)).parent_path() / "Linux/Probe";
  EXPECT_EQ(Module(beside).Ask(id), "b") << "the module does not lie in Contents";
}

} // namespace
} // namespace halvenor
