// A push button with room around its words, as wide as they need, which the Return key presses as well.
#pragma once

#include <QPushButton>

namespace skylet {

class FormButton : public QPushButton {
  public:
    enum class Size { body, caption };

    explicit FormButton(const QString& text, Size size = Size::body);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void restyle();

    Size size_;
};

} // namespace skylet
