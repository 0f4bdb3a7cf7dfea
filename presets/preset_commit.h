// One change of a person's presets on its way to the disk.
#pragma once

#include "files/locked_folder.h"
#include "presets/preset_store.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace halvenor {

inline constexpr std::string_view kPresetExtension = ".preset";
inline constexpr char kPresetMarksFile[] = "marks.ini";

struct PresetWrite {
  std::string id;
  std::string bytes;
  enum class Kind { New, OtherPrograms, Over } kind; ///< in the order in which they are made
  std::size_t staged = 0;
};

/// Looks at what is on the disk, writes everything that is new aside, and only then names it. A
/// kill in between leaves a change half made, and every preset there.
class PresetCommit {
public:
  using Ids = std::set<std::string>;

  /// All three outlive this object.
  PresetCommit(LockedFolder& folder, PresetChange& change, const Ids& fixed);

  /// False when nothing was changed; `Error` says why.
  bool Run();
  [[nodiscard]] const std::string& Error() const { return error_; }

  // What `Run` did.
  [[nodiscard]] const std::vector<PresetWrite>& Writes() const { return writes_; }
  [[nodiscard]] const std::optional<PresetMarks>& Marks() const { return marks_; }

private:
  bool Plan(PresetEdit& edit);
  void GiveFreshId(PresetEdit& edit);
  void PlanMarks();
  bool StageAll();
  bool NameAll();
  bool Name(const PresetWrite& write);
  bool SetAside(const std::string& file);
  bool NameMarks();
  bool Fail(const std::string& file, int number);

  LockedFolder& folder_;
  PresetChange& change_;
  const Ids& fixed_;
  Ids taken_;
  std::vector<PresetWrite> writes_;
  std::vector<std::string> setAside_;
  std::optional<PresetMarks> marks_; ///< when they change
  bool marksAreUnreadable_ = false;
  std::size_t stagedMarks_ = 0;
  std::vector<std::function<void()>> steps_; ///< each takes back what was done
  std::string error_;
};

} // namespace halvenor
