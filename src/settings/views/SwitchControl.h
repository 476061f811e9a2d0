// A check box that looks like a switch: a pill with a knob.
//
// To the keyboard and to screen readers it is the check box that it is.
#pragma once

#include <QCheckBox>

namespace skylet {

class SwitchControl : public QCheckBox {
  public:
    SwitchControl();

    // How far the focus ring reaches beyond the switch, which is to be aligned without it.
    [[nodiscard]] static int overhang();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }
};

} // namespace skylet
