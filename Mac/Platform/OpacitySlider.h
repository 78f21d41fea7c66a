#pragma once

#include <QtWidgets/QSlider>

/// A slider in percent that assistive tools see as going from 0 to 1.
class OpacitySlider : public QSlider {
public:
    explicit OpacitySlider(QWidget* zpParent = nullptr);
};
