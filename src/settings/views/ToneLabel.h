// A label in one of the form's sizes and tones, which follows font and palette.
#pragma once

#include "settings/views/FormStyle.h"

#include <QLabel>

namespace skylet {

class ToneLabel : public QLabel {
  public:
    enum class Size { body, caption, mediumCaption, header, title };
    // Where the label lies, for the contrast of its colour.
    enum class Ground { box, window };

    ToneLabel(const QString& text, Size size, FormStyle::Tone tone, Ground ground = Ground::box);

    void setTone(FormStyle::Tone tone);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void restyle();

    Size size_;
    FormStyle::Tone tone_;
    Ground ground_;
    bool isRestyling_ = false;
};

} // namespace skylet
