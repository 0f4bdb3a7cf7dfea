#include "config_window/setting_control.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtCore/QSignalBlocker>
#include <QtGui/QPainter>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

#include <algorithm>
#include <cmath>

namespace halvenor {
namespace {

QString Text(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

double GetNumber(const Settings& settings, const SettingField& field) {
  if (field.type == SettingType::Real)
    return static_cast<double>(ReadField<float>(settings, field));
  return ReadField<std::int32_t>(settings, field);
}

void PutNumber(Settings& settings, const SettingField& field, double value) {
  if (field.type == SettingType::Real) {
    StoreField(settings, field, static_cast<float>(value));
  } else {
    StoreField(settings, field, static_cast<std::int32_t>(std::lround(value)));
  }
}

QHBoxLayout* MakeRow(QWidget* editor) {
  auto* row = new QHBoxLayout(editor);
  row->setContentsMargins({});
  return row;
}

void NameWidget(QWidget* widget, const SettingField& field, const QString& part = {}) {
  widget->setObjectName(Text(field.name) + part);
  widget->setAccessibleName(SettingLabel(field));
}

bool IsTypedInto(const QDoubleSpinBox* spin) {
  const auto* line = spin->findChild<QLineEdit*>();
  return spin->hasFocus() && line && line->isModified();
}

QString Suffix(const SettingField& field) {
  if (field.unit.empty()) return {};
  return field.angle ? QStringLiteral("\u00B0") : ' ' + SettingText(field.unit.data());
}

// A number to type, and a slider where the range is one that a hand can cover.
class NumberControl final : public SettingControl {
public:
  explicit NumberControl(const SettingField& field) : SettingControl(field, new QWidget) {
    constexpr double kLargestSliderRange = 360;
    const double range = field.maximum - field.minimum;
    QHBoxLayout* row = MakeRow(Editor());
    spin_ = new QDoubleSpinBox;
    spin_->setDecimals(field.type == SettingType::Integer ? 0 : range <= 1 ? 3 : 1);
    spin_->setSingleStep(range <= 1 ? 0.01 : 1);
    spin_->setRange(field.minimum, field.maximum);
    spin_->setSuffix(Suffix(field));
    NameWidget(spin_, field);
    if (range <= kLargestSliderRange) {
      AddSlider(row);
      row->addWidget(spin_);
    } else {
      row->addWidget(spin_, 1);
    }
    Editor()->setFocusProxy(slider_ ? static_cast<QWidget*>(slider_) : spin_);
    connect(spin_, &QDoubleSpinBox::valueChanged, this, [this](double value) {
      if (slider_) {
        const QSignalBlocker quiet(slider_);
        slider_->setValue(ToSlider(value));
      }
      OnMoved();
    });
  }

private:
  static constexpr int kFineSteps = 1000;

  void AddSlider(QHBoxLayout* row) {
    const SettingField& field = Field();
    steps_ = field.type == SettingType::Integer ? static_cast<int>(field.maximum - field.minimum)
                                                : kFineSteps;
    slider_ = new QSlider(Qt::Horizontal);
    slider_->setRange(0, steps_);
    slider_->setSingleStep(std::max(1, steps_ / 100));
    slider_->setPageStep(std::max(1, steps_ / 10));
    slider_->setMinimumWidth(slider_->fontMetrics().averageCharWidth() * 8);
    NameWidget(slider_, field, QStringLiteral(".slider"));
    row->addWidget(slider_, 1);
    connect(slider_, &QSlider::valueChanged, this, [this](int step) {
      spin_->setValue(Field().minimum + (Field().maximum - Field().minimum) * step / steps_);
    });
  }

  int ToSlider(double value) const {
    const double part = (value - Field().minimum) / (Field().maximum - Field().minimum);
    return static_cast<int>(std::lround(part * steps_));
  }

  void Display(const Settings& settings) override {
    const double value = GetNumber(settings, Field());
    spin_->setValue(std::isnan(value) ? Field().minimum : value);
  }
  void Write(Settings& settings) const override { PutNumber(settings, Field(), spin_->value()); }
  bool IsHeld() const override {
    return (slider_ && slider_->isSliderDown()) || IsTypedInto(spin_);
  }

  QDoubleSpinBox* spin_ = nullptr;
  QSlider* slider_ = nullptr;
  int steps_ = 0;
};

// A number that people count in another unit than it is stored in.
class MeasureControl final : public SettingControl {
public:
  MeasureControl(const SettingField& field, const ShownMeasure& measure)
      : SettingControl(field, new QWidget), measure_(measure), spin_(new QDoubleSpinBox),
        endless_(new QCheckBox(SettingText(measure.endlessLabel))) {
    QHBoxLayout* row = MakeRow(Editor());
    spin_->setRange(measure.minimum, measure.maximum);
    spin_->setDecimals(measure.decimals);
    spin_->setSingleStep(measure.step);
    spin_->setSuffix(' ' + SettingText(measure.unit));
    NameWidget(spin_, field);
    NameWidget(endless_, field, QStringLiteral(".endless"));
    endless_->setAccessibleName(
        QStringLiteral("%1: %2").arg(SettingLabel(field), endless_->text()));
    row->addWidget(spin_, 1);
    row->addWidget(endless_);
    Editor()->setFocusProxy(spin_);
    connect(spin_, &QDoubleSpinBox::valueChanged, this, &MeasureControl::OnMoved);
    connect(endless_, &QCheckBox::toggled, this, [this](bool endless) {
      spin_->setEnabled(!endless);
      OnMoved();
    });
  }

private:
  void Display(const Settings& settings) override {
    const auto value = ReadField<std::int32_t>(settings, Field());
    endless_->setChecked(value == measure_.endless);
    if (value == measure_.endless) return;
    spin_->setValue(std::clamp(measure_.fromStored(value), measure_.minimum, measure_.maximum));
  }
  void Write(Settings& settings) const override {
    StoreField(settings, Field(),
               endless_->isChecked()
                   ? measure_.endless
                   : static_cast<std::int32_t>(std::lround(measure_.toStored(spin_->value()))));
  }
  bool IsHeld() const override { return IsTypedInto(spin_); }

  const ShownMeasure& measure_;
  QDoubleSpinBox* spin_;
  QCheckBox* endless_;
};

class FlagControl final : public SettingControl {
public:
  explicit FlagControl(const SettingField& field)
      : SettingControl(field, new QCheckBox(SettingLabel(field))),
        box_(static_cast<QCheckBox*>(Editor())) {
    NameWidget(box_, field);
    connect(box_, &QCheckBox::toggled, this, &FlagControl::OnMoved);
  }
  bool HasOwnLabel() const override { return true; }

private:
  void Display(const Settings& settings) override {
    box_->setChecked(ReadField<std::int32_t>(settings, Field()) != 0);
  }
  void Write(Settings& settings) const override {
    StoreField<std::int32_t>(settings, Field(), box_->isChecked());
  }

  QCheckBox* box_;
};

class ChoiceControl final : public SettingControl {
public:
  explicit ChoiceControl(const SettingField& field)
      : SettingControl(field, new QComboBox), box_(static_cast<QComboBox*>(Editor())) {
    for (const char* choice : field.choices)
      box_->addItem(SettingText(choice));
    NameWidget(box_, field);
    connect(box_, &QComboBox::currentIndexChanged, this, &ChoiceControl::OnMoved);
  }

private:
  int First() const { return static_cast<int>(Field().minimum); }
  // A number that is no choice shows none.
  void Display(const Settings& settings) override {
    const int index = ReadField<std::int32_t>(settings, Field()) - First();
    box_->setCurrentIndex(index >= 0 && index < box_->count() ? index : -1);
  }
  void Write(Settings& settings) const override {
    if (box_->currentIndex() >= 0)
      StoreField<std::int32_t>(settings, Field(), box_->currentIndex() + First());
  }
  bool IsHeld() const override { return box_->view()->isVisible(); }

  QComboBox* box_;
};

class ColorControl final : public SettingControl {
public:
  explicit ColorControl(const SettingField& field)
      : SettingControl(field, new QPushButton), button_(static_cast<QPushButton*>(Editor())) {
    NameWidget(button_, field);
    const int height = button_->fontMetrics().height();
    button_->setIconSize({height * 4, height});
    connect(button_, &QPushButton::clicked, this, &ColorControl::Choose);
  }

private:
  static QColor ToQt(const Color& color) {
    // `!(x > 0)` is true for what is no number.
    const auto part = [](float x) { return !(x > 0) ? 0.0F : std::min(x, 1.0F); };
    return QColor::fromRgbF(part(color.red), part(color.green), part(color.blue));
  }

  void Paint() {
    const QColor color = ToQt(color_);
    const qreal scale = button_->devicePixelRatioF();
    QPixmap swatch(button_->iconSize() * scale);
    swatch.setDevicePixelRatio(scale);
    swatch.fill(Qt::transparent);
    QPainter painter(&swatch);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(button_->palette().color(QPalette::Mid));
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF({}, QSizeF(button_->iconSize())).adjusted(0.5, 0.5, -0.5, -0.5),
                            3, 3);
    painter.end();
    button_->setIcon(swatch);
    button_->setText(color.name().toUpper());
    button_->setAccessibleName(QStringLiteral("%1 %2").arg(SettingLabel(Field()), button_->text()));
  }

  void Choose() {
    if (dialog_) {
      dialog_->raise();
      dialog_->activateWindow();
      return;
    }
    dialog_ = new QColorDialog(ToQt(color_), button_->window());
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    dialog_->setOption(QColorDialog::DontUseNativeDialog);
    dialog_->setWindowTitle(SettingLabel(Field()));
    connect(dialog_, &QColorDialog::currentColorChanged, this, [this](const QColor& color) {
      Move({color.redF(), color.greenF(), color.blueF()});
    });
    connect(dialog_, &QColorDialog::rejected, this, [this, before = color_] { Move(before); });
    dialog_->show();
  }

  void Move(const Color& color) {
    color_ = color;
    Paint();
    OnMoved();
  }

  void Display(const Settings& settings) override {
    color_ = ReadField<Color>(settings, Field());
    Paint();
  }
  void Write(Settings& settings) const override { StoreField(settings, Field(), color_); }

  QPushButton* button_;
  QPointer<QColorDialog> dialog_;
  Color color_{};
};

} // namespace

SettingControl::SettingControl(const SettingField& field, QWidget* editor)
    : field_(field), editor_(editor) {}

void SettingControl::Show(const Settings& settings) {
  std::string text = ToText(settings, field_);
  if (text == shown_ || IsHeld()) return;
  shown_ = std::move(text);
  displaying_ = true;
  Display(settings);
  displaying_ = false;
}

void SettingControl::Store(Settings& settings) {
  Write(settings);
  shown_ = ToText(settings, field_);
}

void SettingControl::OnMoved() {
  if (!displaying_) emit Edited();
}

SettingControl* MakeSettingControl(const SettingField& field, QObject* parent) {
  SettingControl* control = nullptr;
  if (field.measure != nullptr) {
    control = new MeasureControl(field, *field.measure);
  } else if (field.type == SettingType::Flag) {
    control = new FlagControl(field);
  } else if (field.type == SettingType::Color) {
    control = new ColorControl(field);
  } else if (!field.choices.empty()) {
    control = new ChoiceControl(field);
  } else {
    control = new NumberControl(field);
  }
  control->setParent(parent);
  return control;
}

QString SettingText(const char* text) {
  return QCoreApplication::translate(kSettingTextContext, text);
}

QString SettingLabel(const SettingField& field) {
  return SettingText(field.label);
}

} // namespace halvenor
