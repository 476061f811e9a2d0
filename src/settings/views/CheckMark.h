// A tick in a filled circle, in the form's positive tone.
#pragma once

#include <QWidget>

namespace skylet {

class CheckMark : public QWidget {
  public:
    CheckMark();
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace skylet
