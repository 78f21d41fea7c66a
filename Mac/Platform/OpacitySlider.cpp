#include "OpacitySlider.h"

#include <QtCore/QVariant>
#include <QtWidgets/QAccessibleWidget>

#include <cmath>

namespace {

constexpr double kWhole = 100.0;

class OpacityValue : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit OpacityValue(OpacitySlider& zrSlider)
        : QAccessibleWidget(&zrSlider, QAccessible::Slider), mrSlider(zrSlider) {}

    void* interface_cast(QAccessible::InterfaceType zType) override {
        return zType == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                    : QAccessibleWidget::interface_cast(zType);
    }

    QVariant currentValue() const override { return mrSlider.value() / kWhole; }

    void setCurrentValue(const QVariant& zValue) override {
        mrSlider.setValue(static_cast<int>(std::lround(zValue.toDouble() * kWhole)));
    }

    QVariant minimumValue() const override { return mrSlider.minimum() / kWhole; }

    QVariant maximumValue() const override { return mrSlider.maximum() / kWhole; }

    QVariant minimumStepSize() const override { return mrSlider.singleStep() / kWhole; }

private:
    OpacitySlider& mrSlider;
};

QAccessibleInterface* MakeValue(const QString& /*zClass*/, QObject* zpObject) {
    auto* const slider = dynamic_cast<OpacitySlider*>(zpObject);
    return slider != nullptr ? new OpacityValue(*slider) : nullptr; // the toolkit's to delete
}

} // namespace

OpacitySlider::OpacitySlider(QWidget* zpParent) : QSlider(zpParent) {
    QAccessible::installFactory(MakeValue); // once only, however often it is asked for
}
