// The grouped form: sections with a header over a rounded box of rows, and the rows.
#pragma once

#include "settings/views/ToneLabel.h"

#include <QWidget>

namespace skylet {

// A title at the leading edge, a control at the trailing one, and a caption under both.
class FormRow : public QWidget {
  public:
    // Takes the control. Title and caption become what screen readers say about `named`, or about the control
    // where that is null. The control may reach `overhang` pixels beyond the trailing edge.
    FormRow(const QString& title, QWidget* control, const QString& caption = {}, QWidget* named = nullptr,
            int overhang = 0);

    // An empty text hides the caption.
    void setCaption(const QString& caption);
    [[nodiscard]] ToneLabel& captionLabel() { return *caption_; }

  private:
    QWidget* named_;
    ToneLabel* caption_;
};

// A row of one small text.
class HintRow : public QWidget {
  public:
    explicit HintRow(const QString& text);
};

class FormSection : public QWidget {
  public:
    explicit FormSection(const QString& header);

    // Takes the row. Rows may be hidden and shown at any time.
    void addRow(QWidget* row);

  private:
    class Box;
    Box* box_;
};

} // namespace skylet
