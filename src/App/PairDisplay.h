#pragma once

#include "GUI/ElementContainer.h"
#include "GUI/NumericDisplay.h"

namespace pulsara {

// Two numeric fields of two digits side by side: the pattern being edited and the step
// playing.
class PairDisplay : public ElementContainer {
public:
    PairDisplay();

    void setFrame(SkinFrame*);
    void setFont(const QFont&);
    void setColor(QColor);
    void setValues(int32_t first, int32_t second);
    NumericDisplay& first() { return first_; }
    NumericDisplay& second() { return second_; }

    // Takes the rectangle's height and position and widens itself to its two fields, keeping
    // its right edge.
    void layout(const ElemRect&) override;

private:
    NumericDisplay first_ { 2 };
    NumericDisplay second_ { 2 };
};

} // namespace pulsara
