// The presets side of the window.
#pragma once

#include "config_window/preset_chooser.h"
#include "config_window/preset_list.h"
#include "config_window/preset_model.h"
#include "config_window/preset_pictures.h"

#include <QtGui/QAction>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QToolButton>

namespace halvenor {

/// The list with its search, what can be done with presets, and how they switch.
class PresetPanel final : public QWidget {
  Q_OBJECT

public:
  /// Both outlive this object.
  PresetPanel(PresetChooser& chooser, LiveSettings& live);

  void FocusList() { list_->setFocus(); }
  /// Nobody sees it.
  void StopPictures() { pictures_.Stop(chooser_.Library().Presets()); }

private:
  struct ActionRow;
  static const ActionRow kActions[];

  void MakeActions();
  QLayout* MakeSearch();
  QLayout* MakeButtons();
  QWidget* MakeSwitching();
  void UpdateActions();
  void UpdateSwitching();
  void ReadSwitching();
  void Tell(const QString& line);

  void Previous() { chooser_.Step(-1); }
  void Next() { chooser_.Step(1); }
  void Random() { chooser_.ChooseRandom(); }
  void Add();
  void Rename();
  void Duplicate();
  void Replace();
  void Favorite();
  void Delete();
  void Undo();
  void RestoreFactory();
  void Import();
  void ExportThis();
  void ExportAll();
  void Find();

  QFileDialog* MakeFileDialog(const QString& title, const char* name);
  void Export(const QString& suggestion, std::vector<std::string> ids);

  PresetChooser& chooser_;
  LiveSettings& live_;
  PresetPictures pictures_;
  PresetModel model_;
  PresetFilter filter_;
  PresetList* list_;
  QLineEdit* search_ = nullptr;
  QToolButton* favoritesShown_ = nullptr;
  QMenu* menu_ = nullptr;
  std::vector<QAction*> actions_; ///< as in `kActions`
  QAction* undo_ = nullptr;
  QRadioButton* manual_ = nullptr;
  QRadioButton* byItself_ = nullptr;
  QDoubleSpinBox* interval_ = nullptr;
  QDoubleSpinBox* smooth_ = nullptr;
  QCheckBox* random_ = nullptr;
  QCheckBox* favoritesOnly_ = nullptr;
};

} // namespace halvenor
