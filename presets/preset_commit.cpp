#include "presets/preset_commit.h"

#include "files/printable.h"
#include "files/translated.h"
#include "presets/preset_names.h"

#include <algorithm>

namespace halvenor {
namespace {

std::string FileOf(const std::string& id) {
  return id + std::string(kPresetExtension);
}

} // namespace

PresetCommit::PresetCommit(LockedFolder& folder, PresetChange& change, const Ids& fixed)
    : folder_(folder), change_(change), fixed_(fixed), taken_(fixed) {
  for (const std::string& name : folder.Names())
    if (name.ends_with(kPresetExtension))
      taken_.insert(name.substr(0, name.size() - kPresetExtension.size()));
}

bool PresetCommit::Fail(const std::string& file, int number) {
  error_ = file + ": " + ErrorText(number);
  return false;
}

void PresetCommit::GiveFreshId(PresetEdit& edit) {
  if (taken_.contains(edit.id)) {
    const std::string old = edit.id;
    edit.id = FreshIdFor(old, taken_);
    change_.moved[old] = edit.id;
    for (PresetMark& mark : change_.marks)
      if (mark.id == old) mark.id = edit.id;
  }
  taken_.insert(edit.id);
}

bool PresetCommit::Plan(PresetEdit& edit) {
  if (!edit.before && !fixed_.contains(edit.id)) GiveFreshId(edit);
  FileBytes disk = folder_.Read(FileOf(edit.id));
  const bool isOurs = !disk.bytes || disk.bytes == edit.before || disk.bytes == edit.after;
  if (!isOurs) ParsePresets(*disk.bytes, disk.reason);
  if (!disk.reason.empty()) { // what cannot be read is left alone
    error_ = FileOf(edit.id) + " " + Printable(disk.reason);
    return false;
  }
  if (!edit.after) {
    if (!disk.bytes) return true; // another program was faster
    edit.before = disk.bytes;
    setAside_.push_back(edit.id);
    return true;
  }
  if (!isOurs) {
    const std::string id = FreshIdFor(edit.id, taken_);
    taken_.insert(id);
    writes_.push_back({id, *disk.bytes, PresetWrite::Kind::OtherPrograms});
  }
  using Kind = PresetWrite::Kind;
  writes_.push_back({edit.id, *edit.after, disk.bytes ? Kind::Over : Kind::New});
  return true;
}

void PresetCommit::PlanMarks() {
  if (change_.marks.empty()) return;
  const FileBytes disk = folder_.Read(kPresetMarksFile);
  std::string problem = disk.reason;
  marks_ = disk.bytes ? ParsePresetMarks(*disk.bytes, problem) : std::nullopt;
  marksAreUnreadable_ = !problem.empty();
  if (!marks_) marks_.emplace();
  for (const PresetMark& mark : change_.marks)
    Apply(mark, *marks_);
}

bool PresetCommit::StageAll() {
  for (PresetWrite& write : writes_)
    if (const int failed = folder_.Stage(write.bytes, write.staged))
      return Fail(FileOf(write.id), failed);
  if (marks_)
    if (const int failed = folder_.Stage(PrintPresetMarks(*marks_), stagedMarks_))
      return Fail(kPresetMarksFile, failed);
  if (const int failed = folder_.Settle())
    return Fail(Translated("halvenor::Presets", "its files"), failed);
  return true;
}

bool PresetCommit::Name(const PresetWrite& write) {
  const std::string file = FileOf(write.id);
  const bool over = write.kind == PresetWrite::Kind::Over;
  const int failed =
      over ? folder_.NameOver(write.staged, file) : folder_.NameNew(write.staged, file);
  if (failed) return Fail(file, failed);
  // What another program wrote may be the only copy by now.
  if (write.kind == PresetWrite::Kind::New)
    steps_.emplace_back([this, file] { folder_.Delete(file); });
  return true;
}

bool PresetCommit::SetAside(const std::string& file) {
  std::string where;
  if (const int failed = folder_.SetAside(file, where)) return Fail(file, failed);
  steps_.emplace_back([this, file, where] { folder_.Move(where, file); });
  return true;
}

bool PresetCommit::NameMarks() {
  if (!marks_) return true;
  if (marksAreUnreadable_ && !SetAside(kPresetMarksFile)) return false;
  const int failed = folder_.NameOver(stagedMarks_, kPresetMarksFile);
  return failed == 0 || Fail(kPresetMarksFile, failed);
}

bool PresetCommit::NameAll() {
  std::stable_sort(writes_.begin(), writes_.end(),
                   [](const PresetWrite& a, const PresetWrite& b) { return a.kind < b.kind; });
  return std::all_of(writes_.begin(), writes_.end(),
                     [this](const PresetWrite& write) { return Name(write); }) &&
         std::all_of(setAside_.begin(), setAside_.end(),
                     [this](const std::string& id) { return SetAside(FileOf(id)); }) &&
         NameMarks();
}

bool PresetCommit::Run() {
  const bool planned = std::all_of(change_.edits.begin(), change_.edits.end(),
                                   [this](PresetEdit& edit) { return Plan(edit); });
  if (!planned) return false;
  PlanMarks();
  if (!StageAll()) return false;
  const bool named = NameAll();
  if (!named)
    for (auto step = steps_.rbegin(); step != steps_.rend(); ++step)
      (*step)();
  folder_.Sync();
  return named;
}

} // namespace halvenor
